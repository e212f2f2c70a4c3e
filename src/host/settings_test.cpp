#include "host/settings.h"

#include "c4d/dialog_script.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform.h"
#include "support/platform_utils.h"
#include "support/test_files.h"
#include "support/user_data_dir.h"

#include <gtest/gtest.h>

using namespace Velorn;

namespace
{

// The settings file is written in text mode, whose line ends are the
// system's, and names are joined with the system's separator.
#ifdef _WIN32
const std::string EOL = "\r\n";
#else
const std::string EOL = "\n";
#endif
const std::string SEP(1, Platform::preferredSeparator());

// A user whose application data lives in a scratch directory, with the
// dialog script emptied before and after.
class RendererDiscovery : public testing::Test
{
protected:
	void SetUp() override { DialogScript::get().clear(); }
	void TearDown() override { DialogScript::get().clear(); }

	// A directory that holds a renderer executable.
	std::string installation(const std::string& name)
	{
		const std::string dir = renderers.file(name);
		FileUtils::createDirsForPath(dir);
		FileUtils::writeEntireFile(FileUtils::join(dir, "velorn.exe"), std::string("binary"));
		return dir;
	}

	std::string settingsFile() const { return home.file("Velorn for Cinema 4D/evelornSettings.cfg"); }

	VelornTest::TempDir home;
	VelornTest::TempDir renderers;
	const VelornTest::UserDataDirectory data_dir{home.path()};
};

} // namespace

TEST_F(RendererDiscovery, WithNothingRecordedTheRequesterAsksUntilADirectoryHoldsTheRenderer)
{
	Filename found;
	EXPECT_FALSE(findRenderer(false, found));
	EXPECT_EQ(registryInstallDir().GetString().GetStdString(), ""); // no registry here
	EXPECT_TRUE(FileUtils::fileExists(home.file("Velorn for Cinema 4D")));

	// A directory without the executable is refused and asked again;
	// cancelling ends it.
	DialogScript::get().push(DialogAnswer::choose(Filename(renderers.path().c_str())));
	DialogScript::get().push(DialogAnswer::cancel());
	EXPECT_FALSE(askRendererDir());
	const std::vector<DialogRequest> asked = DialogScript::get().requests();
	ASSERT_EQ(asked.size(), 2u);
	EXPECT_EQ(asked[0].title.GetStdString(), "Please choose the Velorn directory.");
	EXPECT_EQ(asked[0].kind, DialogRequest::Kind::Directory);
	EXPECT_FALSE(FileUtils::fileExists(settingsFile()));

	// An empty script counts as a cancel too.
	EXPECT_FALSE(askRendererDir());
}

TEST_F(RendererDiscovery, AChosenDirectoryIsSavedAndFoundNextTime)
{
	const std::string dir = installation("Velorn");
	DialogScript::get().push(DialogAnswer::choose(Filename(renderers.path().c_str())));
	DialogScript::get().push(DialogAnswer::choose(Filename(dir.c_str())));
	EXPECT_TRUE(askRendererDir());
	EXPECT_EQ(DialogScript::get().requests().size(), 2u);
	EXPECT_EQ(VelornTest::readFile(settingsFile()), "<global_settings>" + EOL + "    <PATH>" + dir + "</PATH>" + EOL + "</global_settings>" + EOL);

	Filename found;
	ASSERT_TRUE(findRenderer(false, found));
	EXPECT_EQ(found.GetString().GetStdString(), dir + SEP + "velorn.exe");
	// The console executable is named without checking that it is there.
	ASSERT_TRUE(findRenderer(true, found));
	EXPECT_EQ(found.GetString().GetStdString(), dir + SEP + "velorn_console.exe");

	// Saving again replaces the recorded directory.
	const std::string moved = installation("Velorn 2");
	saveRendererDir(Filename(moved.c_str()));
	ASSERT_TRUE(findRenderer(false, found));
	EXPECT_EQ(found.GetString().GetStdString(), moved + SEP + "velorn.exe");
	EXPECT_EQ(VelornTest::readFile(settingsFile()).find(dir + "<"), std::string::npos);
}

TEST_F(RendererDiscovery, ARecordedDirectoryWithoutTheRendererOrAForeignFileFindsNothing)
{
	const std::string dir = installation("Velorn");
	saveRendererDir(Filename(dir.c_str()));
	FileUtils::deleteFile(FileUtils::join(dir, "velorn.exe"));
	Filename found;
	EXPECT_FALSE(findRenderer(false, found));

	installation("Velorn");
	FileUtils::writeEntireFile(settingsFile(), "<other><PATH>" + dir + "</PATH></other>");
	EXPECT_FALSE(findRenderer(false, found));
	FileUtils::writeEntireFile(settingsFile(), "not xml at all <");
	EXPECT_FALSE(findRenderer(false, found));

	// The first global_settings element with children counts.
	FileUtils::writeEntireFile(settingsFile(), "<global_settings/>\n<global_settings><PATH>" + dir + "</PATH></global_settings>");
	EXPECT_TRUE(findRenderer(false, found));
}

TEST(InstallDirectory, TheRealtimeEditionPrefersItsOwnDirectory)
{
	struct Case
	{
		const char* renderer;
		const char* realtime;
		int32_t realtime_edition;
		const char* chosen;
	};
	const Case cases[] = {
		{"R", "RT", 0, "R"},
		{"R", "RT", 1, "RT"},
		{"", "RT", 0, "RT"},
		{"R", "", 1, "R"},
		{"", "", 1, ""},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(std::string(c.renderer) + "|" + c.realtime + "|" + std::to_string(c.realtime_edition));
		EXPECT_EQ(chooseInstallDir(c.renderer, c.realtime, c.realtime_edition).GetString().GetStdString(), c.chosen);
	}
}
