#include "host/renderer_launch.h"

#include "c4d/console.h"
#include "host/host_test_helpers.h"
#include "host/settings.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform.h"
#include "support/platform_utils.h"
#include "support/test_files.h"
#include "support/user_data_dir.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace Velorn;

namespace
{

// The separator of the output paths: a backslash on Windows.
const std::string SEP(1, Platform::preferredSeparator());

RendererRequest request(bool low_priority, bool network, int32_t halt, const char* output, const char* scene)
{
	RendererRequest r;
	r.low_priority = low_priority;
	r.network_master = network;
	r.port = 7788;
	r.halt_spp = halt;
	r.output_file = Filename(output);
	r.scene_file = Filename(scene);
	return r;
}

} // namespace

// Each switch adds its items in the renderer's order; every path is quoted.
TEST(RendererLaunch, ArgumentText)
{
	const std::string outputs = " -o \"/out dir" + SEP + "car.png\" -vlio \"/out dir" + SEP + "car.vli\" -uexro \"/out dir"
		+ SEP + "car_untonemapped.exr\" -texro \"/out dir" + SEP + "car_tonemapped.exr\"";
	const struct
	{
		RendererRequest request;
		std::string text;
	} cases[] = {
		{request(false, false, -1, "", "/s/a.vls"), " -seed 42 \"/s/a.vls\""},
		{request(true, false, -1, "", "/my scenes/a b.vlq"), " -seed 42 --thread_priority belownormal \"/my scenes/a b.vlq\""},
		{request(false, true, -1, "", "a.vls"), " -seed 42 -n wm -p 7788 \"a.vls\""},
		{request(false, false, 16, "", "a.vls"), " -seed 42 -haltspp 16 \"a.vls\""},
		{request(false, false, 0, "", "a.vls"), " -seed 42 -haltspp 0 \"a.vls\""},
		{request(true, true, 4, "/out dir/car.jpg", "/s/a.vls"),
			" -seed 42 --thread_priority belownormal -n wm -p 7788 -haltspp 4" + outputs + " \"/s/a.vls\""},
		{request(false, false, -1, "/out dir/car", "/s/a.vls"), " -seed 42" + outputs + " \"/s/a.vls\""},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.text);
		EXPECT_EQ(rendererArguments(c.request, 42), c.text);
	}
}

// The executable goes on the line by its file name alone; a text that does
// not start with a blank gets one behind it.
TEST(RendererLaunch, CommandLine)
{
	const Filename exe("/opt/velorn renderer/velorn.exe");
	EXPECT_EQ(rendererCommandLine(exe, " -seed 1 \"a.vls\""), "velorn.exe -seed 1 \"a.vls\"");
	EXPECT_EQ(rendererCommandLine(exe, "-seed 1"), "velorn.exe-seed 1 ");
	EXPECT_EQ(rendererCommandLine(exe, ""), "velorn.exe");
}

// The renderer is found where the user recorded it and started with the
// line as its arguments; without a renderer nothing starts.
TEST(RendererLaunch, StartsTheRecordedRenderer)
{
	VelornTest::TempDir home, install, out;
	const VelornTest::UserDataDirectory data_dir(home.path());
	const std::string record = out.file("arguments.txt");
	PlatformUtils::setEnvironmentVariable("VELORN_RECORD_ARGUMENTS", record);
	HostConsole::get().clear();

	const RendererRequest scene = request(true, false, -1, "", "/my scenes/a b.vls");
	EXPECT_FALSE(launchRenderer(true, scene));
	EXPECT_EQ(HostConsole::get().texts(HostConsole::Kind::Print), std::vector<::String>{::String("Launching Velorn...")});

	for(const char* name : {"velorn.exe", "velorn_console.exe"})
		std::filesystem::copy_file(RECORD_ARGUMENTS, install.file(name));
	saveRendererDir(Filename(install.path().c_str()));
	ASSERT_TRUE(launchRenderer(true, scene));
	EXPECT_EQ(argumentsAfterSeed(recordedArguments(record), "velorn_console.exe"),
		"--thread_priority\nbelownormal\n/my scenes/a b.vls\n");
	HostConsole::get().clear();
}
