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

// A module directory with description files, a material plug-in of
// type TYPE whose description is the symbol given, and the host's
// resources pointed at the directory.
class DescriptionTest : public testing::Test
{
protected:
	void SetUp() override { reset(); }
	void TearDown() override { reset(); }

	static void reset()
	{
		PluginRegistry::get().clear();
		HostResources::get().clear();
		HostConsole::get().clear();
	}

	void install(const std::string& symbol, const std::string& text, int32_t type = TYPE)
	{
		writeDescription(symbol, text);
		ASSERT_TRUE(RegisterMaterialPlugin(type, String("Test material"), 0,
			[]() -> NodeData* { return new MaterialData(); }, String(symbol), 0));
		// The module has no string table; its directory is kept all the same.
		EXPECT_FALSE(HostResources::get().init(String(module.path())));
	}

	void writeDescription(const std::string& symbol, const std::string& text)
	{
		const std::string file =
			HostResources::descriptionFile(String(module.path()), String(symbol)).GetString().GetStdString();
		Velorn::FileUtils::createDirsForPath(Filename(String(file)).GetDirectory().GetString().GetStdString());
		VelornTest::writeFile(file, text);
	}

	static std::vector<String> consoleLines() { return HostConsole::get().texts(HostConsole::Kind::Print); }

	VelornTest::TempDir module;
};

const char* const FILE_TEXT = R"({
	"symbol": "Mtest",
	"entries": [
		{"id": 100, "type": "group", "name": "Basic"},
		{"id": 101, "type": "long", "name": 5001, "group": 100, "cycle": [[1, "One"], [2, 5002]]},
		{"id": 102, "type": "real", "name": "Scale", "group": 100, "min": -1, "max": 100, "step": 0.01,
			"min_slider": 0, "max_slider": 1},
		{"id": 200, "type": "group", "name": "Hidden page", "hide": true},
		{"id": 201, "type": "group", "name": "Inner", "group": 200},
		{"id": 202, "type": "shader", "name": "Texture", "group": 201},
		{"id": 203, "type": "material", "group": 200, "hide": false},
		{"id": 300, "type": "bool", "name": "Switch"},
		{"id": 301, "type": "long", "name": "Layer", "cycle": []},
		{"id": 302, "type": "color", "name": "Tint", "hide": true},
		{"id": 303, "type": "link", "name": "Target", "group": 0},
		{"id": 304, "type": "vector", "name": "Centre"},
		{"id": 305, "type": "string", "name": "Notes"},
		{"id": 306, "type": "filename", "name": "Data file"}
	]
})";

// The labels of a cycle container, in its order.
std::vector<std::pair<int32_t, std::string>> cycleOf(const BaseContainer& settings)
{
	std::vector<std::pair<int32_t, std::string>> items;
	for(const BaseContainer::Entry& e : settings.GetContainer(DESC_CYCLE))
		items.emplace_back(e.first, e.second.GetString().GetStdString());
	return items;
}

} // namespace

TEST_F(DescriptionTest, LoadsTheFileOfTheRegisteredType)
{
	install("Mtest", FILE_TEXT);
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

	const struct
	{
		int32_t id, dtype, parent;
		const char* name;
		bool hidden;
	} expected[] = {
		{100, DTYPE_GROUP, 0, "Basic", false},
		{101, DTYPE_LONG, 100, "Kind", false},
		{102, DTYPE_REAL, 100, "Scale", false},
		{200, DTYPE_GROUP, 0, "Hidden page", true},
		// Hidden through the group above, and through two groups above.
		{201, DTYPE_GROUP, 200, "Inner", true},
		{202, DTYPE_BASELISTLINK, 201, "Texture", true},
		// Its own flag off does not show it in a hidden group.
		{203, DTYPE_BASELISTLINK, 200, "", true},
		{300, DTYPE_BOOL, 0, "Switch", false},
		{301, DTYPE_LONG, 0, "Layer", false},
		{302, DTYPE_COLOR, 0, "Tint", true},
		{303, DTYPE_BASELISTLINK, 0, "Target", false},
		{304, DTYPE_VECTOR, 0, "Centre", false},
		{305, DTYPE_STRING, 0, "Notes", false},
		{306, DTYPE_FILENAME, 0, "Data file", false},
	};
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
		EXPECT_EQ(description.find(x.id), &e);
	}
	EXPECT_FALSE(description.IsHidden(999));
	EXPECT_EQ(description.find(999), nullptr);

	// A cycle with a label from the string table; an empty one stays a cycle.
	const BaseContainer* kind = description.GetParameterI(101);
	ASSERT_NE(kind, nullptr);
	EXPECT_EQ(cycleOf(*kind), (std::vector<std::pair<int32_t, std::string>>{{1, "One"}, {2, "Two"}}));
	ASSERT_NE(description.GetParameterI(301)->GetDataPointer(DESC_CYCLE), nullptr);
	EXPECT_EQ(description.GetParameterI(301)->GetContainer(DESC_CYCLE).GetCount(), 0);
	EXPECT_EQ(description.GetParameterI(300)->GetDataPointer(DESC_CYCLE), nullptr);

	const BaseContainer* scale = description.GetParameterI(102);
	EXPECT_EQ(scale->GetFloat(DESC_MIN), -1.0);
	EXPECT_EQ(scale->GetFloat(DESC_MAX), 100.0);
	EXPECT_EQ(scale->GetFloat(DESC_STEP), 0.01);
	EXPECT_EQ(scale->GetFloat(DESC_MINSLIDER), 0.0);
	EXPECT_EQ(scale->GetFloat(DESC_MAXSLIDER), 1.0);
	for(int32_t setting : {DESC_MIN, DESC_MAX, DESC_STEP, DESC_MINSLIDER, DESC_MAXSLIDER})
		EXPECT_EQ(kind->GetDataPointer(setting), nullptr);

	// Shader and material links accept their base type; a plain link any node.
	EXPECT_EQ(description.GetParameterI(202)->GetContainer(DESC_ACCEPT).GetInt32(Xbase), Xbase);
	EXPECT_EQ(description.GetParameterI(202)->GetContainer(DESC_ACCEPT).GetCount(), 1);
	EXPECT_EQ(description.GetParameterI(203)->GetContainer(DESC_ACCEPT).GetInt32(Mbase), Mbase);
	EXPECT_EQ(description.GetParameterI(203)->GetContainer(DESC_ACCEPT).GetCount(), 1);
	EXPECT_EQ(description.GetParameterI(303)->GetDataPointer(DESC_ACCEPT), nullptr);

	EXPECT_EQ(description.groupEntries(100), (std::vector<DescID>{101, 102}));
	EXPECT_EQ(description.groupEntries(200), (std::vector<DescID>{201, 203}));
	EXPECT_EQ(description.groupEntries(0), (std::vector<DescID>{100, 200, 300, 301, 302, 303, 304, 305, 306}));

	// Resource names are looked up at each load, from the table of that time.
	strings.set(5001, "Sort");
	HostResources::get().setStrings(strings);
	ASSERT_TRUE(description.LoadDescription(TYPE));
	EXPECT_EQ(description.GetParameterI(101)->GetString(DESC_NAME), String("Sort"));
	EXPECT_TRUE(consoleLines().empty());
}

TEST_F(DescriptionTest, SetParameterAddsAtTheEndOfItsGroupOrReplacesInPlace)
{
	Description d;
	BaseContainer named = GetCustomDataTypeDefault(DTYPE_REAL);
	named.SetString(DESC_NAME, String("Named"));
	named.SetInt32(DESC_PARENTGROUP, 77);
	const struct
	{
		int32_t id, dtype, group;
	} adds[] = {
		{10, DTYPE_GROUP, 0},
		{11, DTYPE_LONG, 10},
		{20, DTYPE_GROUP, 0},
		{21, DTYPE_REAL, 20},
		// Behind 11, before the group 20.
		{12, DTYPE_BOOL, 10},
		{14, DTYPE_GROUP, 10},
		{15, DTYPE_LONG, 14},
		// Behind the entries of the group 14 inside 10.
		{16, DTYPE_BOOL, 10},
		{22, DTYPE_GROUP, 0},
		// Behind 21, the last entry of 20, and not at the end.
		{23, DTYPE_GROUP, 20},
		// Right behind its group, which is empty.
		{24, DTYPE_REAL, 23},
		// A group the description does not hold: at the end.
		{30, DTYPE_REAL, 99},
	};
	for(const auto& a : adds)
		ASSERT_TRUE(d.SetParameter(a.id, a.dtype, named, a.group));
	std::vector<int32_t> order;
	for(const DescriptionEntry& e : d.entries())
		order.push_back(e.id[0].id);
	EXPECT_EQ(order, (std::vector<int32_t>{10, 11, 12, 14, 15, 16, 20, 21, 23, 24, 22, 30}));
	// The settings are kept, the parent group set to the group given.
	EXPECT_EQ(d.find(15)->settings.GetString(DESC_NAME), String("Named"));
	EXPECT_EQ(d.find(15)->settings.GetInt32(DESC_PARENTGROUP), 14);
	EXPECT_EQ(d.find(15)->parent, 14);

	// Replacing keeps the place and takes type, settings and group.
	BaseContainer replaced = GetCustomDataTypeDefault(DTYPE_BOOL);
	replaced.SetString(DESC_NAME, String("Replaced"));
	ASSERT_TRUE(d.SetParameter(11, DTYPE_BOOL, replaced, 20));
	ASSERT_EQ(d.entries().size(), 12u);
	EXPECT_EQ(d.entries()[1].id, DescID(11));
	EXPECT_EQ(d.entries()[1].dtype, DTYPE_BOOL);
	EXPECT_EQ(d.entries()[1].parent, 20);
	EXPECT_EQ(d.entries()[1].settings.GetString(DESC_NAME), String("Replaced"));
	EXPECT_EQ(d.groupEntries(10), (std::vector<DescID>{12, 14, 16}));
	EXPECT_EQ(d.groupEntries(20), (std::vector<DescID>{11, 21, 23}));

	EXPECT_FALSE(d.SetParameter(0, DTYPE_BOOL, replaced, 0));
	EXPECT_EQ(d.entries().size(), 12u);

	// Settings change in place; hiding a group hides what it holds.
	EXPECT_FALSE(d.IsHidden(24));
	d.GetParameterI(20)->SetBool(DESC_HIDE, true);
	EXPECT_TRUE(d.IsHidden(24));
	EXPECT_TRUE(d.IsHidden(11));
	EXPECT_FALSE(d.IsHidden(12));
	EXPECT_EQ(d.GetParameterI(999), nullptr);

	// A group made its own ancestor ends the walk up instead of looping.
	ASSERT_TRUE(d.SetParameter(10, DTYPE_GROUP, GetCustomDataTypeDefault(DTYPE_GROUP), 14));
	EXPECT_FALSE(d.IsHidden(15));

	const BaseContainer fresh = GetCustomDataTypeDefault(DTYPE_REAL);
	EXPECT_EQ(fresh.GetString(DESC_NAME, String("x")), String());
	EXPECT_FALSE(fresh.GetBool(DESC_HIDE, true));
	EXPECT_EQ(fresh.GetDataPointer(DESC_MIN), nullptr);
}

TEST_F(DescriptionTest, BadFilesTellTheirPlace)
{
	const std::string head = R"({"symbol": "X", "entries": [)";
	const std::string ok = R"({"id": 1, "type": "group"}, {"id": 2, "type": "bool"}, {"id": 3, "type": "long"}, )";
	const struct
	{
		std::string text;
		std::string message;
	} cases[] = {
		{"{\n  \"symbol\": \"X\",,", "X.json:2:17: not valid JSON"},
		{"[]", "X.json: expected an object"},
		{R"({"entries": []})", "X.json: missing key 'symbol'"},
		{R"({"symbol": "X"})", "X.json: missing key 'entries'"},
		{R"({"symbol": "X", "entries": [], "version": 1})", "X.json: unknown key 'version'"},
		{R"({"symbol": 5, "entries": []})", "X.json: symbol: expected a string"},
		{R"({"symbol": "Y", "entries": []})", "X.json: symbol: the file is the description of 'X', not of 'Y'"},
		{R"({"symbol": "X", "entries": {}})", "X.json: entries: expected an array"},
		{head + "5]}", "X.json: entries[0]: expected an object"},
		{head + R"({"type": "bool"}]})", "X.json: entries[0]: missing key 'id'"},
		{head + R"({"id": 1}]})", "X.json: entries[0]: missing key 'type'"},
		{head + R"({"id": 1, "type": "bool", "default": true}]})", "X.json: entries[0]: unknown key 'default'"},
		{head + R"({"id": 0, "type": "bool"}]})", "X.json: entries[0].id: the id 0 is not positive"},
		{head + R"({"id": -4, "type": "bool"}]})", "X.json: entries[0].id: the id -4 is not positive"},
		{head + R"({"id": 3000000000, "type": "bool"}]})",
			"X.json: entries[0].id: the integer 3000000000 does not fit 32 bits"},
		{head + ok + R"({"id": 2, "type": "real"}]})", "X.json: entries[3].id: the id 2 is given twice"},
		{head + ok + R"({"id": 4, "type": "colour"}]})",
			"X.json: entries[3].type: unknown entry type 'colour' (one of group, bool, long, real, vector, color, "
			"string, filename, link, shader, material)"},
		{head + R"({"id": 1, "type": "bool", "name": 1.5}]})",
			"X.json: entries[0].name: expected a text or the id of a resource string"},
		{head + R"({"id": 2, "type": "bool", "group": 1}, {"id": 1, "type": "group"}]})",
			"X.json: entries[0].group: no group 1 is declared before this entry"},
		{head + R"({"id": 1, "type": "group", "group": 1}]})",
			"X.json: entries[0].group: no group 1 is declared before this entry"},
		{head + ok + R"({"id": 4, "type": "real", "group": 3}]})", "X.json: entries[3].group: the entry 3 is no group"},
		{head + R"({"id": 1, "type": "bool", "group": "Basic"}]})", "X.json: entries[0].group: expected an integer"},
		{head + R"({"id": 1, "type": "real", "cycle": []}]})", "X.json: entries[0]: cycle is only for entries of type long"},
		{head + R"({"id": 1, "type": "long", "cycle": {}}]})", "X.json: entries[0].cycle: expected an array"},
		{head + R"({"id": 1, "type": "long", "cycle": [[1, "a"], [2]]}]})",
			"X.json: entries[0].cycle[1]: expected [value, label]"},
		{head + R"({"id": 1, "type": "long", "cycle": [["1", "a"]]}]})",
			"X.json: entries[0].cycle[0][0]: expected an integer"},
		{head + R"({"id": 1, "type": "long", "cycle": [[1, "a"], [1, "b"]]}]})",
			"X.json: entries[0].cycle[1][0]: the value 1 is given twice"},
		{head + R"({"id": 1, "type": "long", "cycle": [[1, true]]}]})",
			"X.json: entries[0].cycle[0][1]: expected a text or the id of a resource string"},
		{head + R"({"id": 1, "type": "vector", "min": 0}]})",
			"X.json: entries[0]: min is only for entries of type long or real"},
		{head + R"({"id": 1, "type": "shader", "step": 1}]})",
			"X.json: entries[0]: step is only for entries of type long or real"},
		{head + R"({"id": 1, "type": "real", "max_slider": "1"}]})", "X.json: entries[0].max_slider: expected a number"},
		{head + R"({"id": 1, "type": "long", "min": 5, "max": 1}]})", "X.json: entries[0].max: max 1 is below min 5"},
		{head + R"({"id": 1, "type": "real", "min_slider": 2, "max_slider": 0.5}]})",
			"X.json: entries[0].max_slider: max_slider 0.5 is below min_slider 2"},
		{head + R"({"id": 1, "type": "real", "step": 0}]})", "X.json: entries[0].step: the step must be positive"},
		{head + R"({"id": 1, "type": "group", "hide": "yes"}]})", "X.json: entries[0].hide: expected true or false"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.text);
		EXPECT_EQ(VelornTest::failureOf<DocumentFileExcep>([&] { DescriptionFile::parse(c.text, "X.json", "X"); }),
			c.message);
	}
}

TEST_F(DescriptionTest, TypesWithoutADescriptionAndFilesThatFail)
{
	Description d;
	ASSERT_TRUE(d.SetParameter(1, DTYPE_BOOL, GetCustomDataTypeDefault(DTYPE_BOOL), 0));

	// No registration, and a registration that names no description.
	EXPECT_FALSE(d.LoadDescription(Mmaterial));
	ASSERT_TRUE(RegisterMaterialPlugin(TYPE + 1, String("Plain"), 0, []() -> NodeData* { return new MaterialData(); },
		String(), 0));
	EXPECT_FALSE(d.LoadDescription(TYPE + 1));
	BaseMaterial* plain = BaseMaterial::Alloc(TYPE + 1);
	EXPECT_FALSE(plain->GetDescription(&d));
	BaseMaterial::Free(plain);
	EXPECT_TRUE(consoleLines().empty());

	// Without a module directory no file is looked for.
	ASSERT_TRUE(RegisterMaterialPlugin(TYPE + 2, String("Early"), 0, []() -> NodeData* { return new MaterialData(); },
		String("Mearly"), 0));
	EXPECT_FALSE(d.LoadDescription(TYPE + 2));
	EXPECT_EQ(consoleLines(), std::vector<String>{"Cannot load the description 'Mearly': the host has no module directory"});

	// A missing file and a bad file fail, each told once until the host
	// forgets its descriptions; the entries stay as they were.
	install("Mbroken", R"({"symbol": "Mbroken", "entries": [{"id": 1, "type": "colour"}]})");
	HostConsole::get().clear();
	const std::string missing = HostResources::descriptionFile(String(module.path()), "Mearly").GetString().GetStdString();
	const std::string broken = HostResources::descriptionFile(String(module.path()), "Mbroken").GetString().GetStdString();
	for(int i = 0; i < 2; ++i)
	{
		EXPECT_FALSE(d.LoadDescription(TYPE + 2));
		EXPECT_FALSE(d.LoadDescription(TYPE));
	}
	EXPECT_EQ(consoleLines(), (std::vector<String>{
		"Cannot load the description 'Mearly': could not open '" + missing + "' for reading.",
		"Cannot load the description 'Mbroken': " + broken + ": entries[0].type: unknown entry type 'colour' (one of "
			"group, bool, long, real, vector, color, string, filename, link, shader, material)"}));
	ASSERT_EQ(d.entries().size(), 1u);
	EXPECT_EQ(d.entries()[0].id, DescID(1));

	// A file is read once: a change shows after init or clear.
	writeDescription("Mbroken", R"({"symbol": "Mbroken", "entries": [{"id": 7, "type": "real"}]})");
	EXPECT_FALSE(d.LoadDescription(TYPE));
	HostResources::get().init(String(module.path()));
	ASSERT_TRUE(d.LoadDescription(TYPE));
	writeDescription("Mbroken", R"({"symbol": "Mbroken", "entries": [{"id": 8, "type": "real"}]})");
	ASSERT_TRUE(d.LoadDescription(TYPE));
	ASSERT_EQ(d.entries().size(), 1u);
	EXPECT_EQ(d.entries()[0].id, DescID(7));
	HostResources::get().clear();
	EXPECT_EQ(HostResources::get().moduleDirectory(), Filename());
	HostResources::get().init(String(module.path()));
	EXPECT_EQ(HostResources::get().moduleDirectory(), Filename(String(module.path())));
	ASSERT_TRUE(d.LoadDescription(TYPE));
	EXPECT_EQ(d.entries()[0].id, DescID(8));
	EXPECT_EQ(consoleLines().size(), 2u);
}

TEST_F(DescriptionTest, TheDocumentedExampleLoads)
{
	const std::string example = VelornTest::testDataPath("../docs/description-format-example.json");
	install("Mexamplematerial", VelornTest::readFile(example));
	EXPECT_EQ(HostResources::descriptionFile("/plugins/velorn", "Mexamplematerial"),
		Filename("/plugins/velorn/res/description/Mexamplematerial.json"));
	StringTable strings;
	strings.set(20001, "Texture");
	HostResources::get().setStrings(strings);

	Description d;
	ASSERT_TRUE(d.LoadDescription(TYPE));
	ASSERT_EQ(d.entries().size(), 11u);
	EXPECT_EQ(d.groupEntries(0), (std::vector<DescID>{1000, 1010, 1020, 1030}));
	EXPECT_EQ(d.groupEntries(1010), (std::vector<DescID>{1011, 1012, 1013}));
	EXPECT_EQ(cycleOf(*d.GetParameterI(1001)), (std::vector<std::pair<int32_t, std::string>>{{1002, "Matte"},
		{1003, "Glossy"}}));
	EXPECT_EQ(d.GetParameterI(1013)->GetString(DESC_NAME), String("Texture"));
	EXPECT_EQ(d.GetParameterI(1012)->GetFloat(DESC_MAX), 10.0);
	EXPECT_EQ(d.find(1011)->dtype, DTYPE_COLOR);
	EXPECT_TRUE(d.IsHidden(1022));
	EXPECT_TRUE(d.IsHidden(1030));
	EXPECT_FALSE(d.IsHidden(1013));
	EXPECT_TRUE(consoleLines().empty());
}
