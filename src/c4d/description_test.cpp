#include "c4d/base_material.h"
#include "c4d/console.h"
#include "c4d/description.h"
#include "c4d/description_file.h"
#include "c4d/document_file.h"
#include "c4d/resources.h"

#include "support/failures.h"
#include "support/file_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <iterator>

namespace
{

const int32_t TYPE = 1030001;

// A module directory with description files and material plug-ins that
// name them; the host's resources point at the directory.
class DescriptionTest : public testing::Test
{
protected:
	void SetUp() override { TearDown(); }
	void TearDown() override
	{
		PluginRegistry::get().clear();
		HostResources::get().clear();
		HostConsole::get().clear();
	}

	static void registerType(int32_t type, const std::string& symbol)
	{
		ASSERT_TRUE(RegisterMaterialPlugin(type, String("Test material"), 0,
			[]() -> NodeData* { return new MaterialData(); }, String(symbol), 0));
	}

	void install(const std::string& symbol, const std::string& text)
	{
		writeDescription(symbol, text);
		registerType(TYPE, symbol);
		HostResources::get().init(String(module.path()));
	}

	void writeDescription(const std::string& symbol, const std::string& text)
	{
		const Filename file = HostResources::descriptionFile(String(module.path()), String(symbol));
		Velorn::FileUtils::createDirsForPath(file.GetDirectory().GetString().GetStdString());
		VelornTest::writeFile(file.GetString().GetStdString(), text);
	}

	static std::vector<String> consoleLines() { return HostConsole::get().texts(HostConsole::Kind::Print); }

	VelornTest::TempDir module;
};

} // namespace

TEST_F(DescriptionTest, LoadsTheFileOfTheRegisteredType)
{
	const struct
	{
		const char* json;
		int32_t id, dtype, parent;
		const char* name;
		bool hidden;
	} expected[] = {
		{R"("type": "group", "name": "Basic")", 100, DTYPE_GROUP, 0, "Basic", false},
		{R"("type": "long", "name": 5001, "group": 100, "cycle": [[1, "One"], [2, 5002]])", 101, DTYPE_LONG, 100,
			"Kind", false},
		{R"("type": "real", "name": "Scale", "group": 100, "min": -1, "max": 100, "step": 0.01, "min_slider": 0,
			"max_slider": 1)", 102, DTYPE_REAL, 100, "Scale", false},
		{R"("type": "group", "name": "Hidden page", "hide": true)", 200, DTYPE_GROUP, 0, "Hidden page", true},
		// Hidden through one and two groups above, even with its own flag off.
		{R"("type": "group", "name": "Inner", "group": 200)", 201, DTYPE_GROUP, 200, "Inner", true},
		{R"("type": "shader", "name": "Texture", "group": 201)", 202, DTYPE_BASELISTLINK, 201, "Texture", true},
		{R"("type": "material", "group": 200, "hide": false)", 203, DTYPE_BASELISTLINK, 200, "", true},
		{R"("type": "bool", "name": "Switch")", 300, DTYPE_BOOL, 0, "Switch", false},
		{R"("type": "long", "name": "Layer", "cycle": [])", 301, DTYPE_LONG, 0, "Layer", false},
		{R"("type": "color", "name": "Tint", "hide": true)", 302, DTYPE_COLOR, 0, "Tint", true},
		{R"("type": "link", "name": "Target", "group": 0)", 303, DTYPE_BASELISTLINK, 0, "Target", false},
		{R"("type": "vector", "name": "Centre")", 304, DTYPE_VECTOR, 0, "Centre", false},
		{R"("type": "string", "name": "Notes")", 305, DTYPE_STRING, 0, "Notes", false},
		{R"("type": "filename", "name": "Data file")", 306, DTYPE_FILENAME, 0, "Data file", false},
	};
	std::string entries;
	for(const auto& x : expected)
		entries += (entries.empty() ? "{\"id\": " : ", {\"id\": ") + std::to_string(x.id) + ", " + x.json + "}";
	install("Mtest", R"({"symbol": "Mtest", "entries": [)" + entries + "]}");
	StringTable strings;
	strings.set(5001, "Kind");
	strings.set(5002, "Two");
	HostResources::get().setStrings(strings);

	BaseMaterial* mat = BaseMaterial::Alloc(TYPE);
	ASSERT_NE(mat, nullptr);
	Description description;
	int32_t flags = 0;
	ASSERT_TRUE(mat->GetNodeData()->GetDDescription(mat, &description, flags));
	EXPECT_NE(flags & DESCFLAGS_DESC_LOADED, 0);
	BaseMaterial::Free(mat);

	ASSERT_EQ(description.entries().size(), std::size(expected));
	for(size_t i = 0; i < std::size(expected); ++i)
	{
		const auto& x = expected[i];
		SCOPED_TRACE(x.id);
		const DescriptionEntry& e = description.entries()[i];
		EXPECT_EQ(e.id[0].id, x.id);
		EXPECT_EQ(e.dtype, x.dtype);
		EXPECT_EQ(e.parent, x.parent);
		EXPECT_EQ(e.settings.GetInt32(DESC_PARENTGROUP, -1), x.parent);
		EXPECT_EQ(e.settings.GetString(DESC_NAME), String(x.name));
		EXPECT_EQ(e.settings.GetString(DESC_SHORT_NAME), String(x.name));
		EXPECT_EQ(description.IsHidden(x.id), x.hidden);
	}
	EXPECT_EQ(description.groupEntries(200), (std::vector<DescID>{201, 203}));

	// Labels from the string table; an empty cycle stays a cycle.
	std::vector<std::pair<int32_t, std::string>> cycle;
	for(const BaseContainer::Entry& e : description.GetParameterI(101)->GetContainer(DESC_CYCLE))
		cycle.emplace_back(e.first, e.second.GetString().GetStdString());
	EXPECT_EQ(cycle, (std::vector<std::pair<int32_t, std::string>>{{1, "One"}, {2, "Two"}}));
	EXPECT_NE(description.GetParameterI(301)->GetDataPointer(DESC_CYCLE), nullptr);
	EXPECT_EQ(description.GetParameterI(300)->GetDataPointer(DESC_CYCLE), nullptr);

	const BaseContainer* scale = description.GetParameterI(102);
	const std::pair<int32_t, double> range[] = {
		{DESC_MIN, -1}, {DESC_MAX, 100}, {DESC_STEP, 0.01}, {DESC_MINSLIDER, 0}, {DESC_MAXSLIDER, 1}};
	for(const auto& [setting, value] : range)
		EXPECT_EQ(scale->GetFloat(setting, -99), value) << setting;

	// Shader and material links accept their base type; a plain link any node.
	EXPECT_EQ(description.GetParameterI(202)->GetContainer(DESC_ACCEPT).GetInt32(Xbase), Xbase);
	EXPECT_EQ(description.GetParameterI(203)->GetContainer(DESC_ACCEPT).GetInt32(Mbase), Mbase);
	EXPECT_EQ(description.GetParameterI(303)->GetDataPointer(DESC_ACCEPT), nullptr);

	// Resource names are looked up at each load, from the table of that time.
	strings.set(5001, "Sort");
	HostResources::get().setStrings(strings);
	ASSERT_TRUE(description.LoadDescription(TYPE));
	EXPECT_EQ(description.GetParameterI(101)->GetString(DESC_NAME), String("Sort"));
	EXPECT_TRUE(consoleLines().empty());
}

TEST_F(DescriptionTest, SetParameterAddsAtTheEndOfItsGroupOrReplacesInPlace)
{
	// Each entry goes behind the last that its group holds at any depth (12
	// before the group 20, 16 behind what the group 14 inside 10 holds, 23
	// not at the end), right behind an empty group (24), and at the end for
	// the top or a group the description does not hold (30).
	const std::pair<int32_t, int32_t> adds[] = {{10, 0}, {11, 10}, {20, 0}, {21, 20}, {12, 10}, {14, 10}, {15, 14},
		{16, 10}, {22, 0}, {23, 20}, {24, 23}, {30, 99}};
	Description d;
	BaseContainer settings = GetCustomDataTypeDefault(DTYPE_GROUP);
	settings.SetInt32(DESC_PARENTGROUP, 77);
	for(const auto& [id, group] : adds)
		ASSERT_TRUE(d.SetParameter(id, DTYPE_GROUP, settings, group));
	std::vector<int32_t> order;
	for(const DescriptionEntry& e : d.entries())
		order.push_back(e.id[0].id);
	EXPECT_EQ(order, (std::vector<int32_t>{10, 11, 12, 14, 15, 16, 20, 21, 23, 24, 22, 30}));
	EXPECT_EQ(d.find(15)->settings.GetInt32(DESC_PARENTGROUP), 14);
	EXPECT_EQ(d.find(15)->parent, 14);

	// Replacing keeps the place and takes type, settings and group.
	BaseContainer replaced = GetCustomDataTypeDefault(DTYPE_BOOL);
	replaced.SetString(DESC_NAME, String("Replaced"));
	ASSERT_TRUE(d.SetParameter(11, DTYPE_BOOL, replaced, 20));
	EXPECT_FALSE(d.SetParameter(0, DTYPE_BOOL, replaced, 0));
	ASSERT_EQ(d.entries().size(), 12u);
	const DescriptionEntry& second = d.entries()[1];
	EXPECT_EQ(second.id, DescID(11));
	EXPECT_EQ(second.dtype, DTYPE_BOOL);
	EXPECT_EQ(second.parent, 20);
	EXPECT_EQ(second.settings.GetString(DESC_NAME), String("Replaced"));

	// Hiding a group in place hides what it holds at any depth.
	d.GetParameterI(20)->SetBool(DESC_HIDE, true);
	EXPECT_TRUE(d.IsHidden(24));
	EXPECT_TRUE(d.IsHidden(11));
	EXPECT_FALSE(d.IsHidden(12));

	// A group made its own ancestor ends the walk up instead of looping.
	ASSERT_TRUE(d.SetParameter(10, DTYPE_GROUP, GetCustomDataTypeDefault(DTYPE_GROUP), 14));
	EXPECT_FALSE(d.IsHidden(15));
}

// One case for each check of the reader; the checks of JSON values it shares
// with document files are tested there.
TEST_F(DescriptionTest, BadFilesTellTheirPlace)
{
	const auto entries = [](const std::string& list) { return R"({"symbol": "X", "entries": [)" + list + "]}"; };
	const std::string ok = R"({"id": 1, "type": "group"}, {"id": 2, "type": "bool"}, {"id": 3, "type": "long"}, )";
	// Messages behind the file name.
	const struct
	{
		std::string text;
		std::string message;
	} cases[] = {
		{"{\n  \"symbol\": \"X\",,", ":2:17: not valid JSON"},
		{R"({"symbol": "Y", "entries": []})", ": symbol: the file is the description of 'X', not of 'Y'"},
		{entries(R"({"id": 1, "type": "bool", "default": true})"), ": entries[0]: unknown key 'default'"},
		{entries(R"({"id": 0, "type": "bool"})"), ": entries[0].id: the id 0 is not positive"},
		{entries(ok + R"({"id": 2, "type": "real"})"), ": entries[3].id: the id 2 is given twice"},
		{entries(ok + R"({"id": 4, "type": "colour"})"), ": entries[3].type: unknown entry type 'colour' (one of "
			"group, bool, long, real, vector, color, string, filename, link, shader, material, button, bitmap)"},
		{entries(R"({"id": 1, "type": "bool", "name": 1.5})"),
			": entries[0].name: expected a text or the id of a resource string"},
		{entries(R"({"id": 1, "type": "group", "group": 1})"),
			": entries[0].group: no group 1 is declared before this entry"},
		{entries(ok + R"({"id": 4, "type": "real", "group": 3})"), ": entries[3].group: the entry 3 is no group"},
		{entries(R"({"id": 1, "type": "real", "cycle": []})"), ": entries[0]: cycle is only for entries of type long"},
		{entries(R"({"id": 1, "type": "long", "cycle": [[1, "a"], [2]]})"),
			": entries[0].cycle[1]: expected [value, label]"},
		{entries(R"({"id": 1, "type": "long", "cycle": [[1, "a"], [1, "b"]]})"),
			": entries[0].cycle[1][0]: the value 1 is given twice"},
		{entries(R"({"id": 1, "type": "shader", "step": 1})"),
			": entries[0]: step is only for entries of type long or real"},
		{entries(R"({"id": 1, "type": "long", "min": 5, "max": 1})"), ": entries[0].max: max 1 is below min 5"},
		{entries(R"({"id": 1, "type": "real", "min_slider": 2, "max_slider": 0.5})"),
			": entries[0].max_slider: max_slider 0.5 is below min_slider 2"},
		{entries(R"({"id": 1, "type": "real", "step": 0})"), ": entries[0].step: the step must be positive"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.text);
		EXPECT_EQ(VelornTest::failureOf<DocumentFileExcep>([&] { DescriptionFile::parse(c.text, "X.json", "X"); }),
			"X.json" + c.message);
	}
}

TEST_F(DescriptionTest, TypesWithoutADescriptionAndFilesThatFail)
{
	Description d;
	ASSERT_TRUE(d.SetParameter(1, DTYPE_BOOL, GetCustomDataTypeDefault(DTYPE_BOOL), 0));

	// No registration, a registration that names no description, and no
	// module directory to look in.
	EXPECT_FALSE(d.LoadDescription(Mmaterial));
	registerType(TYPE + 1, "");
	EXPECT_FALSE(d.LoadDescription(TYPE + 1));
	EXPECT_TRUE(consoleLines().empty());
	registerType(TYPE + 2, "Mmissing");
	EXPECT_FALSE(d.LoadDescription(TYPE + 2));
	EXPECT_EQ(consoleLines(), std::vector<String>{"Cannot load the description 'Mmissing': the host has no module directory"});

	// A missing and a bad file are each told once until the host forgets its
	// descriptions; the entries stay as they were.
	install("Mbroken", R"({"symbol": "Mbroken", "entries": [{"id": 0, "type": "real"}]})");
	HostConsole::get().clear();
	for(int i = 0; i < 2; ++i)
	{
		EXPECT_FALSE(d.LoadDescription(TYPE + 2));
		EXPECT_FALSE(d.LoadDescription(TYPE));
	}
	const std::string dir = module.file("res/description/");
	EXPECT_EQ(consoleLines(), (std::vector<String>{
		"Cannot load the description 'Mmissing': could not open '" + dir + "Mmissing.json' for reading.",
		"Cannot load the description 'Mbroken': " + dir + "Mbroken.json: entries[0].id: the id 0 is not positive"}));
	ASSERT_EQ(d.entries().size(), 1u);
	EXPECT_EQ(d.entries()[0].id, DescID(1));

	// A file is read once: a change shows after init, and clear forgets it.
	writeDescription("Mbroken", R"({"symbol": "Mbroken", "entries": [{"id": 7, "type": "real"}]})");
	EXPECT_FALSE(d.LoadDescription(TYPE));
	HostResources::get().init(String(module.path()));
	ASSERT_TRUE(d.LoadDescription(TYPE));
	writeDescription("Mbroken", R"({"symbol": "Mbroken", "entries": [{"id": 8, "type": "real"}]})");
	ASSERT_TRUE(d.LoadDescription(TYPE));
	EXPECT_EQ(d.entries()[0].id, DescID(7));
	HostResources::get().clear();
	EXPECT_FALSE(d.LoadDescription(TYPE));
}

TEST_F(DescriptionTest, TheDocumentedExampleLoads)
{
	install("Mexamplematerial", VelornTest::readFile(VelornTest::testDataPath("../docs/description-format-example.json")));
	Description d;
	ASSERT_TRUE(d.LoadDescription(TYPE));
	EXPECT_EQ(d.entries().size(), 11u);
	EXPECT_TRUE(consoleLines().empty());
}
