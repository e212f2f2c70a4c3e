#include "cli/draw_command.h"

#include "c4d/base_bitmap.h"
#include "c4d/picture_test_helpers.h"
#include "support/exceptions.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

TEST(DrawCommand, ViewSize)
{
	int32_t w = 0, h = 0;
	DrawCommand::parseSize("640x400", w, h);
	EXPECT_EQ(w, 640);
	EXPECT_EQ(h, 400);
	for(const char* bad : {"640", "x400", "640x", "0x10", "10x16385", "10x10px", "-5x10"})
	{
		SCOPED_TRACE(bad);
		EXPECT_THROW(DrawCommand::parseSize(bad, w, h), Velorn::StringUtilsExcep);
	}
}

// The example's camera tag draws its render region (200, 150)-(600, 450) of
// a 960 by 540 picture in a view of 640 by 400: the picture spans rows 20 to
// 379, so s = 359 / 540 and x scales by 639 / 960; the top edge lies on row
// 150 * s + 21 = 120.7, between columns 133.1 and 399.4.
TEST(DrawCommand, DrawsTheExampleView)
{
	VelornTest::TempDir out;
	DrawCommand::Options options;
	options.plugins = VELORN_PLUGIN_DIR;
	options.document = VelornTest::testDataPath("../examples/editor_view.json");
	options.image = out.file("view.png");
	options.size = "640x400";
	const std::string said = DrawCommand::run(options);
	EXPECT_EQ(said.substr(0, said.find('(')), "Wrote " + options.image + " ");

	BaseBitmap bmp;
	ASSERT_EQ(bmp.Init(Filename(options.image.c_str())), IMAGERESULT_OK);
	EXPECT_EQ(bmp.GetBw(), 640);
	EXPECT_EQ(bmp.GetBh(), 400);
	EXPECT_EQ(pixelOf(bmp, 380, 121), (Rgb{255, 0, 0}));
	EXPECT_NE(pixelOf(bmp, 380, 125), (Rgb{255, 0, 0}));

	options.document = VelornTest::testDataPath("../examples/no such document.json");
	EXPECT_THROW(DrawCommand::run(options), Velorn::MessageException);
}
