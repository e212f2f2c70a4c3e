#include "cli/preview_command.h"

#include "c4d/base_bitmap.h"
#include "support/failures.h"
#include "support/file_utils.h"
#include "support/test_files.h"
#include "support/user_data_dir.h"

#include <gtest/gtest.h>

// A material of the bundled example previewed by the stand-in renderer's SDK
// library, as the material manager would show it.
TEST(PreviewCommand, SavesThePictureOrSaysWhyNot)
{
	if(!Velorn::FileUtils::fileExists(std::string(VELORN_RENDERER_DIR) + "/velorn_sdk.dll"))
		GTEST_SKIP() << "the stand-in renderer is not built (no Embree)";
	VelornTest::TempDir home, out;
	const VelornTest::UserDataDirectory data_dir(home.path());
	PreviewCommand::Options options;
	options.material = "Glossy Floor";
	options.document = VelornTest::testDataPath("../examples/studio.json");
	options.plugins = VELORN_PLUGIN_DIR;
	options.renderer_dir = VELORN_RENDERER_DIR;
	options.image = out.file("preview.png");
	options.size = 10;
	options.quality = "low";
	const std::string report = PreviewCommand::run(options);
	EXPECT_NE(report.find("Preview: The preview was rendered.\nImage: " + options.image + " (10 x 10)\n"),
		std::string::npos)
		<< report;
	BaseBitmap picture;
	ASSERT_EQ(picture.Init(Filename(String(options.image))), IMAGERESULT_OK);
	EXPECT_EQ(picture.GetBw(), 10);
	EXPECT_EQ(picture.GetBh(), 10);

	options.quality = "off";
	const std::string off = VelornTest::failureOf([&] { PreviewCommand::run(options); });
	const std::string failed = "Preview: The preview failed (result 2).";
	ASSERT_GE(off.size(), failed.size()) << off;
	EXPECT_EQ(off.substr(off.size() - failed.size()), failed) << off;

	options.material = "Nothing";
	EXPECT_EQ(VelornTest::failureOf([&] { PreviewCommand::run(options); }),
		"The document has no material named 'Nothing'.");
}
