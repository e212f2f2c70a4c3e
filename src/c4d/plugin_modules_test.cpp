#include "c4d/plugin_modules.h"

#include "c4d/console.h"
#include "c4d/preview_scenes.h"

#include "support/file_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

namespace
{

using Lines = std::vector<std::string>;

// A plug-in directory of its own per test, into which the built recording
// modules are copied under the names a test gives them.
class PluginDirectory : public ::testing::Test
{
protected:
	void SetUp() override { HostConsole::get().clear(); }

	void install(const char* built_module, const std::string& relative)
	{
		Velorn::FileUtils::createDirsForPath(Velorn::FileUtils::getDirectory(dir.file(relative)));
		VelornTest::writeFile(dir.file(relative), VelornTest::readFile(built_module));
	}

	// The console lines since the last call.
	static Lines printed()
	{
		Lines lines;
		for(const String& text : HostConsole::get().texts(HostConsole::Kind::Print))
			lines.push_back(text.GetStdString());
		HostConsole::get().clear();
		return lines;
	}

	VelornTest::TempDir dir;
};

} // namespace

TEST_F(PluginDirectory, ModulesStartInNameOrderAndThoseThatCannotAreReportedAndUnloaded)
{
	install(MODULE_FIRST, "a_first.cdl");
	VelornTest::writeFile(dir.file("broken.cdl"), "not a library");
	VelornTest::writeFile(dir.file("notes.txt"), "");
	install(MODULE_SECOND, "sub/b_second.cdl");
	install(MODULE_REFUSES, "sub/c_refuses.cdl");
	install(MODULE_TOO_NEW, "sub/d_too_new.cdl");
	install(MODULE_NO_ENTRY, "sub/e_no_entry.cdl");
	install(MODULE_REFUSES, "sub/deeper/f_deep.cdl"); // only direct sub-directories count
	const std::string sub = dir.file("sub");
	{
		PluginModules modules;
		EXPECT_EQ(modules.start(String(dir.path())), 2);
		EXPECT_EQ(modules.modules(), (std::vector<Filename>{String(dir.file("a_first.cdl")), String(dir.file("sub/b_second.cdl"))}));

		Lines lines = printed();
		// The reason a file is no library is the system's text.
		const std::string broken = "Plug-in module " + dir.file("broken.cdl") + " could not be loaded: ";
		ASSERT_GT(lines.size(), 3u);
		EXPECT_EQ(lines[3].substr(0, broken.size()), broken);
		EXPECT_GT(lines[3].size(), broken.size());
		lines[3] = broken + "...";
		EXPECT_EQ(lines, (Lines{
			"first: init sys, version 9800, directory " + dir.path(),
			"first: message 1",
			"first: init",
			broken + "...",
			"second: init sys, version 9800, directory " + sub,
			"second: message 1",
			"second: init",
			"refuses: init sys, version 9800, directory " + sub,
			"refuses: message 1",
			"refuses: init",
			"Plug-in module " + dir.file("sub/c_refuses.cdl") + " refused to start (action 2 returned 0)",
			"refuses: end",
			"refuses: unloaded",
			"too_new: init sys, version 9800, directory " + sub,
			"Plug-in module " + dir.file("sub/d_too_new.cdl") + " refused to start (action 1 returned -3)",
			"too_new: unloaded",
			"Plug-in module " + dir.file("sub/e_no_entry.cdl") + " has no c4d_main",
			"no_entry: unloaded",
			"first: message 1001188",
			"second: message 1001188",
		}));
	}
	// Going out of scope ends what is still loaded.
	EXPECT_EQ(printed(), (Lines{"second: end", "second: unloaded", "first: end", "first: unloaded"}));
}

TEST_F(PluginDirectory, MessagesGoToEveryModuleAndTheEndFreesThePreviewScenesAndUnloadsThem)
{
	install(MODULE_FIRST, "first.cdl");
	install(MODULE_SECOND, "second/second.cdl");
	PluginModules modules;
	ASSERT_EQ(modules.start(String(dir.path())), 2);
	printed();

	int data = 0;
	EXPECT_EQ(modules.sendMessage(C4DPL_BUILDMENU, &data), 2);
	EXPECT_EQ(modules.sendMessage(5, nullptr), 0);
	EXPECT_EQ(printed(), (Lines{"first: message 1001188 with data", "second: message 1001188 with data",
							 "first: message 5", "second: message 5"}));

	VelornTest::writeFile(dir.file("scene.json"), R"({"version": 1})");
	ASSERT_TRUE(AddUserPreviewScene(String(dir.file("scene.json")), 1024337, nullptr));
	modules.end();
	EXPECT_TRUE(PreviewScenes::get().of(1024337).empty());
	EXPECT_EQ(printed(), (Lines{"second: end", "second: unloaded", "first: end", "first: unloaded"}));
	EXPECT_TRUE(modules.modules().empty());
	EXPECT_EQ(modules.sendMessage(C4DPL_BUILDMENU, nullptr), 0);
	modules.end();
	EXPECT_EQ(modules.start(String(dir.file("missing"))), 0);
	EXPECT_EQ(printed(), Lines{});
}
