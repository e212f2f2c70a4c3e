#include "cli/render_command.h"

#include "support/exceptions.h"
#include "support/failures.h"
#include "support/platform_utils.h"
#include "support/test_files.h"
#include "support/user_data_dir.h"

#include <gtest/gtest.h>

#include <filesystem>

// The bundled example rendered through the command: the scene in the quick
// render folder, and the renderer (here a program that records its
// arguments) started with it; an animation goes as a queue.
TEST(RenderCommand, StartsTheRendererWithTheScene)
{
	VelornTest::TempDir home, renderer, out;
	const VelornTest::UserDataDirectory data_dir(home.path());
	Velorn::PlatformUtils::setEnvironmentVariable("VELORN_RECORD_ARGUMENTS", out.file("arguments.txt"));
	for(const char* name : {"velorn.exe", "velorn_console.exe"})
		std::filesystem::copy_file(RECORD_ARGUMENTS, renderer.file(name));

	RenderCommand::Options options;
	options.document = VelornTest::testDataPath("../examples/studio.json");
	options.plugins = VELORN_PLUGIN_DIR;
	options.renderer_dir = renderer.path();
	const std::string quick = home.file("Velorn for Cinema 4D/quickrender/quickrender");
	const std::string report = RenderCommand::renderExternally(options);
	EXPECT_NE(report.find("Launching Velorn...\nScene: " + quick + ".vls\nRenderer: " + renderer.file("velorn.exe") +
				  "\nCommand line: velorn.exe -seed "),
		std::string::npos)
		<< report;
	EXPECT_NE(report.find(" --thread_priority belownormal \"" + quick + ".vls\"\n"), std::string::npos) << report;

	// The example's render data renders frames 0 to 2.
	options.animation = true;
	const std::string queued = RenderCommand::renderExternally(options);
	EXPECT_NE(queued.find("Queue: " + quick + ".vlq\n  " + quick + "_frame000000.vls\n  " + quick +
				  "_frame000001.vls\n  " + quick + "_frame000002.vls\n"),
		std::string::npos)
		<< queued;

	options.document = VelornTest::testDataPath("data/materials/diffuse.json");
	EXPECT_EQ(VelornTest::failureOf([&] { RenderCommand::renderExternally(options); }),
		"The document has no render settings of the renderer: it renders one frame.");
}
