#include "standin/image_files.h"

#include "support/exceptions.h"
#include "support/failures.h"
#include "support/test_files.h"

#include <gtest/gtest.h>
#include <jpeglib.h>

#include <cstdio>

namespace Velorn
{
namespace Standin
{
namespace
{

// A flat grey JPEG of the given size and value, through libjpeg.
void writeGreyJPEG(const std::string& path, int width, int height, int value)
{
	FILE* f = std::fopen(path.c_str(), "wb");
	ASSERT_TRUE(f);
	jpeg_compress_struct info;
	jpeg_error_mgr error;
	info.err = jpeg_std_error(&error);
	jpeg_create_compress(&info);
	jpeg_stdio_dest(&info, f);
	info.image_width = width;
	info.image_height = height;
	info.input_components = 3;
	info.in_color_space = JCS_RGB;
	jpeg_set_defaults(&info);
	jpeg_set_quality(&info, 100, TRUE);
	jpeg_start_compress(&info, TRUE);
	std::vector<JSAMPLE> row(width * 3, (JSAMPLE)value);
	while(info.next_scanline < info.image_height)
	{
		JSAMPROW p = row.data();
		jpeg_write_scanlines(&info, &p, 1);
	}
	jpeg_finish_compress(&info);
	jpeg_destroy_compress(&info);
	std::fclose(f);
}

TEST(ImageFiles, PNGAndJPEGLoadAsLinearFloats)
{
	VelornTest::TempDir dir;
	// PNG keeps the bytes: 51 / 255 = 0.2 and 255 / 255 = 1, squared with
	// gamma 2.
	Bitmap bitmap(2, 1, 3);
	uint8_t* p = bitmap.getPixel(0, 0);
	p[0] = 51;
	p[1] = 255;
	p[2] = 0;
	bitmap.getPixel(1, 0)[2] = 255;
	writePNG(dir.file("two.png"), bitmap);
	Image png;
	loadImageFile(dir.file("two.png"), 2.0f, png);
	ASSERT_EQ(png.getWidth(), 2u);
	ASSERT_EQ(png.getHeight(), 1u);
	const float expected[6] = {0.04f, 1, 0, 0, 0, 1};
	for(int i = 0; i < 6; ++i)
		EXPECT_NEAR(png.getData()[i], expected[i], 1e-6f) << i;

	// A flat JPEG decodes to its value within a step: 200 / 255 = 0.784.
	writeGreyJPEG(dir.file("grey.jpg"), 8, 4, 200);
	Image jpeg;
	loadImageFile(dir.file("grey.jpg"), 1.0f, jpeg);
	ASSERT_EQ(jpeg.getWidth(), 8u);
	ASSERT_EQ(jpeg.getHeight(), 4u);
	EXPECT_NEAR(jpeg.getPixel(5, 3)[1], 200 / 255.0f, 1.5f / 255);
}

TEST(ImageFiles, UnreadableFilesAreErrorsNamingThem)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("text.png"), "hello, not a picture");
	VelornTest::writeFile(dir.file("cut.png"), std::string("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16));
	VelornTest::writeFile(dir.file("short.png"), "ab");
	const struct
	{
		std::string file, message;
	} cases[] = {
		{dir.file("none.png"), "Could not open image file '" + dir.file("none.png") + "'."},
		{dir.file("short.png"), "Image file '" + dir.file("short.png") + "' is too short."},
		{dir.file("text.png"), "Image file '" + dir.file("text.png") + "' is neither PNG nor JPEG."},
		{dir.file("cut.png"), "Corrupt PNG file '" + dir.file("cut.png") + "'."},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.file);
		Image image;
		EXPECT_EQ(VelornTest::failureOf<Exception>([&] { loadImageFile(c.file, 1, image); }), c.message);
	}
}

} // namespace
} // namespace Standin
} // namespace Velorn
