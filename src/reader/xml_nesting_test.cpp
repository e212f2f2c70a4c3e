#include "reader/xml_nesting.h"

#include "reader/scene_parser_test_helpers.h"

#include <gtest/gtest.h>

using namespace Velorn;
using VelornTest::classAndFailureOf;

namespace
{

std::string repeated(const std::string& part, size_t count)
{
	std::string text;
	for(size_t i = 0; i < count; ++i)
		text += part;
	return text;
}

std::string nested(size_t depth, const std::string& inner = "") { return repeated("<a>", depth) + inner + repeated("</a>", depth); }

const std::string too_deep = "SceneParserExcep: Elements nest more than 256 levels deep in the text; it is not read.";

std::string checkInOnePiece(const std::string& text)
{
	return classAndFailureOf([&] { XMLNestingCheck::checkText(text, "the text"); });
}

// The same text fed one byte at a time, so that every construct is cut.
std::string checkByteByByte(const std::string& text)
{
	return classAndFailureOf([&] {
		XMLNestingCheck check("the text");
		for(char c : text)
			check.feed(&c, 1);
	});
}

} // namespace

TEST(XMLNesting, CountsOnlyElementsThatAreOpen)
{
	const std::string many_lt = repeated("a<b ", 300);
	const struct
	{
		const char* what;
		std::string text;
		bool passes;
	} cases[] = {
		{"at the limit", nested(256), true},
		{"one past it", nested(257), false},
		{"siblings", "<s>" + repeated("<a></a>", 300) + "</s>", true},
		{"empty elements", nested(255, repeated("<a/>", 300)), true},
		{"empty element with attributes", nested(255, "<a x=\"1\" y='2'/>"), true},
		{"'/>' in an attribute value ends no tag", nested(255, repeated("<a x='/>' y=\"<b/>\">", 2)), false},
		{"CDATA", nested(255, "<![CDATA[" + many_lt + "]]>"), true},
		{"comment", nested(255, "<!--" + many_lt + "-->"), true},
		{"'<!-->' ends no comment", nested(255, "<!-->" + many_lt + "-->"), true},
		{"instruction and declaration", "<?xml version=\"1.0\"?><!DOCTYPE x>" + nested(256), true},
		{"after a CDATA section, tags count again", nested(200, "<![CDATA[<]]>" + nested(57)), false},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.what);
		const std::string expected = c.passes ? "(no failure)" : too_deep;
		EXPECT_EQ(checkInOnePiece(c.text), expected);
		EXPECT_EQ(checkByteByByte(c.text), expected);
	}
}

// A nesting that would run TinyXML out of stack ends as a message, in a
// scene file and in a settings text.
TEST(XMLNesting, ParserRefusesDeepTextsBeforeTinyXMLReadsThem)
{
	VelornTest::TempDir dir;
	const std::string path = VelornTest::putFile(dir, "deep.vls", "<scene>" + nested(100000) + "</scene>");
	SceneParser parser;
	EXPECT_EQ(classAndFailureOf([&] { parser.parseFile(path, ""); }),
		"SceneParserExcep: Elements nest more than 256 levels deep in '" + path + "'; it is not read.");
	EXPECT_EQ(classAndFailureOf([&] { parser.parseSettingsText(nested(100000)); }),
		"SceneParserExcep: Elements nest more than 256 levels deep in the settings text; it is not read.");
}
