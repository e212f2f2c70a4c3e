// How deep a document file may nest, and the inputs that once crashed the
// document fuzzer, each with the message it must fail with.
#include "c4d/document_file.h"

#include "support/failures.h"
#include "support/file_utils.h"
#include "support/string_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

// The message of the DocumentFileExcep that reading text as the file
// "input.json" throws; "(no failure)" when the document reads.
std::string readFailure(const std::string& text)
{
	return VelornTest::failureOf<DocumentFileExcep>([&] {
		BaseDocument* doc = ReadDocumentText(text, Filename(String("input.json")));
		BaseDocument::Free(doc);
	});
}

std::string repeated(int times, const std::string& text)
{
	std::string all;
	for(int i = 0; i < times; ++i)
		all += text;
	return all;
}

// levels copies of open, then middle, then levels copies of close.
std::string nested(int levels, const std::string& open, const std::string& close, const std::string& middle = "")
{
	return repeated(levels, open) + middle + repeated(levels, close);
}

} // namespace

// Objects, caches, shaders and containers count together: 256 levels read,
// the 257th fails at its place.
TEST(DocumentNesting, ReadsUpTo256Levels)
{
	const std::string child = "{\"type\": 5140, \"children\": [";
	const std::string cache = "{\"type\": 5140, \"cache\": ";
	const std::string shader = "{\"type\": 5832, \"children\": [";
	const std::string container = "{\"id\": 1, \"type\": \"container\", \"value\": {\"id\": 2, \"params\": [";
	auto objects = [&](int levels) { return "{\"version\": 1, \"objects\": [" + nested(levels, child, "]}") + "]}"; };
	// levels caches, and the innermost object.
	auto caches = [&](int levels) {
		return "{\"version\": 1, \"objects\": [" + nested(levels, cache, "}", "{\"type\": 5140}") + "]}";
	};
	auto shaders = [&](int levels) {
		return "{\"version\": 1, \"materials\": [{\"type\": 5703, \"shaders\": [" + nested(levels, shader, "]}") + "]}]}";
	};
	// A container in the parameters of an object, one level itself.
	auto containers = [&](int levels) {
		return "{\"version\": 1, \"objects\": [{\"type\": 5140, \"params\": [" + nested(levels, container, "]}}") + "]}]}";
	};
	// 128 levels of children, then an object with levels caches.
	auto mixed = [&](int levels) {
		return "{\"version\": 1, \"objects\": [" +
			nested(128, child, "]}", nested(levels, cache, "}", "{\"type\": 5140}")) + "]}";
	};
	const std::string tooDeep = ": nested deeper than 256 levels";
	struct Case
	{
		const char* what;
		std::string within, beyond, place;
	};
	const Case cases[] = {
		{"children", objects(256), objects(257), "objects[0]" + repeated(256, ".children[0]")},
		{"caches", caches(255), caches(256), "objects[0]" + repeated(256, ".cache")},
		{"children and caches", mixed(127), mixed(128), "objects[0]" + repeated(128, ".children[0]") + repeated(128, ".cache")},
		{"shaders", shaders(256), shaders(257), "materials[0].shaders[0]" + repeated(256, ".children[0]")},
		{"containers", containers(256), containers(257), "objects[0].params[0].value" + repeated(256, ".params[0].value")},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		EXPECT_EQ(readFailure(c.within), "(no failure)");
		EXPECT_EQ(readFailure(c.beyond), "input.json: " + c.place + tooDeep);
	}
}

// Every input of fuzz/corpus/document_fuzzer fails with the message of its
// .txt file beside it.
TEST(DocumentNesting, FuzzerFindingsFailCleanly)
{
	const std::string dir = VelornTest::testDataPath("../fuzz/corpus/document_fuzzer");
	int inputs = 0;
	for(const std::string& name : Velorn::FileUtils::getFilesInDir(dir))
	{
		if(!Velorn::hasExtension(name, "json"))
			continue;
		SCOPED_TRACE(name);
		++inputs;
		const std::string base = Velorn::FileUtils::join(dir, Velorn::FileUtils::eatExtension(name));
		std::string expected = VelornTest::readFile(base + ".txt");
		expected.erase(expected.find_last_not_of('\n') + 1);
		EXPECT_EQ(readFailure(VelornTest::readFile(base + ".json")), expected);
	}
	EXPECT_GT(inputs, 0);
}
