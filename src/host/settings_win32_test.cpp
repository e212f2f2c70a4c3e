// Renderer discovery through the registry and the launch through
// CreateProcessW, in the Windows build under Wine. The keys are written with
// the system's reg.exe into the current user's hive, which the build's own
// Wine prefix holds.

#include "c4d/console.h"
#include "host/host_test_helpers.h"
#include "host/plugin_globals.h"
#include "host/renderer_launch.h"
#include "host/settings.h"
#include "support/file_utils.h"
#include "support/platform.h"
#include "support/platform_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

using namespace Velorn;

namespace
{

int reg(const std::string& arguments)
{
	int code = -1;
	const std::string tool = PlatformUtils::getEnvironmentVariable("SystemRoot") + "\\system32\\reg.exe";
	EXPECT_TRUE(Platform::runProcess(tool, "reg.exe " + arguments, false, code)) << Platform::lastErrorString();
	return code;
}

void setInstallDirectory(const std::string& key, const std::string& dir)
{
	ASSERT_EQ(reg("add \"HKCU\\Software\\Tessmark Labs\\" + key + "\" /v InstallDirectory /t REG_SZ /d \"" + dir
				  + "\" /f"),
		0);
}

// Both keys written by the test and removed at its end, and the edition
// flag put back.
class RegistryDiscovery : public testing::Test
{
protected:
	void SetUp() override
	{
		reg("delete \"HKCU\\Software\\Tessmark Labs\" /f");
		saved_edition = realtime_edition;
	}
	void TearDown() override
	{
		reg("delete \"HKCU\\Software\\Tessmark Labs\" /f");
		realtime_edition = saved_edition;
	}

	// A directory with a renderer in it: the recording program under the
	// renderer's names.
	std::string installation(const std::string& name)
	{
		const std::string dir = FileUtils::join(root.path(), name);
		FileUtils::createDirsForPath(dir);
		for(const char* exe : {"velorn.exe", "velorn_console.exe"})
			FileUtils::copyFile(RECORD_ARGUMENTS, FileUtils::join(dir, exe));
		return dir;
	}

	VelornTest::TempDir root;
	int32_t saved_edition = 0;
};

} // namespace

TEST_F(RegistryDiscovery, TheRendererAndTheRealtimeEditionAreFoundUnderTheirKeys)
{
	realtime_edition = 0;
	EXPECT_EQ(registryInstallDir().GetString().GetStdString(), "") << "no keys";

	// U+00FC in the directory's name, to cross the wide calls both ways.
	const std::string renderer = installation("Velorn Renderer \xC3\xBC");
	const std::string realtime = installation("Velorn RT");
	setInstallDirectory("Velorn RT", realtime);
	EXPECT_EQ(registryInstallDir().GetString().GetStdString(), realtime) << "only the realtime key";
	setInstallDirectory("Velorn Renderer", renderer);
	EXPECT_EQ(registryInstallDir().GetString().GetStdString(), renderer);
	realtime_edition = 1;
	EXPECT_EQ(registryInstallDir().GetString().GetStdString(), realtime);
	realtime_edition = 0;

	Filename found;
	ASSERT_TRUE(findRenderer(false, found));
	EXPECT_EQ(found.GetString().GetStdString(), renderer + "\\velorn.exe");
	ASSERT_TRUE(findRenderer(true, found));
	EXPECT_EQ(found.GetString().GetStdString(), renderer + "\\velorn_console.exe");
}

// The renderer found in the registry is started by its full path, with its
// file name alone heading the command line, every path quoted, and below
// normal priority asked for.
TEST_F(RegistryDiscovery, TheRegisteredRendererStartsWithTheCommandLine)
{
	realtime_edition = 0;
	setInstallDirectory("Velorn Renderer", installation("Velorn"));
	VelornTest::TempDir out;
	const std::string record = FileUtils::join(out.path(), "arguments.txt");
	PlatformUtils::setEnvironmentVariable("VELORN_RECORD_ARGUMENTS", record);

	RendererRequest request;
	request.low_priority = true;
	request.scene_file = Filename("C:\\my scenes\\a b.vls");
	request.output_file = Filename("C:\\out put\\frame.png");
	ASSERT_TRUE(launchRenderer(false, request));
	EXPECT_EQ(argumentsAfterSeed(recordedArguments(record), "velorn.exe"),
		"--thread_priority\nbelownormal\n-o\nC:\\out put\\frame.png\n-vlio\nC:\\out put\\frame.vli\n-uexro\n"
		"C:\\out put\\frame_untonemapped.exr\n-texro\nC:\\out put\\frame_tonemapped.exr\nC:\\my scenes\\a b.vls\n");
}

// A renderer file that Windows cannot start: CreateProcessW fails, the
// launch says so by its result alone, nothing else reaches the console, and
// the system's reason is the last error.
TEST_F(RegistryDiscovery, ARendererThatCannotStartIsNotLaunched)
{
	realtime_edition = 0;
	const std::string dir = installation("Velorn");
	VelornTest::writeFile(FileUtils::join(dir, "velorn.exe"), "MZ not a program");
	setInstallDirectory("Velorn Renderer", dir);
	HostConsole::get().clear();

	RendererRequest request;
	request.scene_file = Filename("C:\\scenes\\a.vls");
	EXPECT_FALSE(launchRenderer(false, request));
	// ERROR_BAD_EXE_FORMAT.
	EXPECT_EQ(Platform::lastErrorCode(), 193);
	EXPECT_NE(Platform::lastErrorString().find("(error code=193)"), std::string::npos) << Platform::lastErrorString();
	EXPECT_EQ(HostConsole::get().texts(HostConsole::Kind::Print), std::vector<::String>{::String("Launching Velorn...")});
}
