#include "c4d/resources.h"

#include "support/failures.h"
#include "support/file_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

TEST(StringTable, ReadsTheFileForm)
{
	const StringTable table = StringTable::parse("// Command names\r\n"
												 "1000 \"Velorn Renderer\"\r\n"
												 "\n"
												 "   // indented comment\n"
												 "1001\t\"Say \\\"hello\\\"\\nback\\\\slash\"  \n"
												 "-5 \"\"\n"
												 "2147483647 \"Gr\xC3\xBC\xC3\x9F""e // not a comment\"",
		"c4d_strings.str");
	const struct
	{
		int32_t id;
		bool found;
		const char* text;
	} cases[] = {
		{1000, true, "Velorn Renderer"},
		{1001, true, "Say \"hello\"\nback\\slash"},
		{-5, true, ""},
		{2147483647, true, "Gr\xC3\xBC\xC3\x9F""e // not a comment"},
		{1002, false, "untouched"},
	};
	EXPECT_EQ(table.size(), 4u);
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.id);
		String text("untouched");
		EXPECT_EQ(table.find(c.id, text), c.found);
		EXPECT_EQ(text, String(c.text));
	}
}

TEST(StringTable, BadLinesTellTheirPlace)
{
	const struct
	{
		const char* text;
		const char* message;
	} cases[] = {
		{"\"no id\"", "s.str:1: expected an id"},
		{"1 \"a\"\nname \"b\"", "s.str:2: expected an id"},
		{"4294967296 \"big\"", "s.str:1: the id 4294967296 does not fit 32 bits"},
		{"12\"glued\"", "s.str:1: expected a quoted text after the id"},
		{"12", "s.str:1: expected a quoted text after the id"},
		{"12 text", "s.str:1: expected a quoted text after the id"},
		{"12 \"open", "s.str:1: the text has no closing quote"},
		{"12 \"open\\", "s.str:1: the text has no closing quote"},
		{"12 \"tab\\t\"", "s.str:1: unknown escape \\t"},
		{"12 \"a\" \"b\"", "s.str:1: unexpected text after the closing quote"},
		{"12 \"a\"\n\n12 \"b\"", "s.str:3: the id 12 is given twice"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.text);
		EXPECT_EQ(VelornTest::failureOf<ResourceExcep>([&] { StringTable::parse(c.text, "s.str"); }), c.message);
	}
}

TEST(HostResources, LoadsTheModulesTableAndTellsMissingStrings)
{
	HostResources& resources = HostResources::get();
	VelornTest::TempDir module;
	const Filename file = HostResources::stringsFile(module.path().c_str());
	EXPECT_EQ(file, Filename(module.file("res/strings_us/c4d_strings.str").c_str()));

	EXPECT_FALSE(resources.init(module.path().c_str()));
	EXPECT_EQ(resources.error(), String("could not open '" + file.GetString().GetStdString() + "' for reading."));

	Velorn::FileUtils::createDirsForPath(file.GetDirectory().GetString().GetStdString());
	VelornTest::writeFile(file.GetString().GetStdString(), "1000 \"Velorn Renderer\"\n");
	ASSERT_TRUE(resources.init(module.path().c_str()));
	EXPECT_FALSE(resources.error().Content());
	EXPECT_EQ(GeLoadString(1000), String("Velorn Renderer"));
	String text;
	EXPECT_FALSE(resources.find(1001, text));
	EXPECT_EQ(GeLoadString(1001), String());

	// A broken file leaves no strings from the one before.
	VelornTest::writeFile(file.GetString().GetStdString(), "1000 \"Velorn\n");
	EXPECT_FALSE(resources.init(module.path().c_str()));
	EXPECT_EQ(resources.error(), String(file.GetString().GetStdString() + ":1: the text has no closing quote"));
	EXPECT_EQ(GeLoadString(1000), String());

	// Clear forgets a table that tests set directly too.
	StringTable table;
	table.set(7, "seven");
	resources.setStrings(table);
	resources.clear();
	EXPECT_EQ(GeLoadString(7), String());
}
