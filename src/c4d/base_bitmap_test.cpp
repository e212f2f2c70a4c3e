#include "c4d/base_bitmap.h"
#include "c4d/base_container.h"
#include "c4d/picture_test_helpers.h"

#include "support/file_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdlib>
#include <string>

namespace
{

// A picture whose pixels all differ, with an alpha channel that differs
// from them when alpha is set.
BaseBitmap pattern(int32_t width, int32_t height, bool alpha)
{
	BaseBitmap bmp;
	EXPECT_EQ(bmp.Init(width, height, alpha ? 32 : 24), IMAGERESULT_OK);
	for(int32_t y = 0; y < height; ++y)
	{
		for(int32_t x = 0; x < width; ++x)
		{
			bmp.SetPixel(x, y, x * 37 % 256, y * 51 % 256, (x * y * 13 + 7) % 256);
			if(alpha)
				bmp.SetAlphaPixel(bmp.GetInternalChannel(), x, y, (x + y * width) * 11 % 256);
		}
	}
	return bmp;
}

// The largest difference of a component between two pictures of one size.
int largestDifference(const BaseBitmap& a, const BaseBitmap& b)
{
	int largest = 0;
	for(int32_t y = 0; y < a.GetBh(); ++y)
		for(int32_t x = 0; x < a.GetBw(); ++x)
			for(int k = 0; k < 3; ++k)
				largest = std::max(largest, std::abs(pixelOf(a, x, y)[k] - pixelOf(b, x, y)[k]));
	return largest;
}

// The number of colour components the file stores a pixel with: the colour
// type of a PNG's header, the component count of a baseline JPEG's frame.
int storedComponents(const std::string& path)
{
	const std::string bytes = VelornTest::readFile(path);
	if(bytes.compare(1, 3, "PNG") == 0)
	{
		// Colour type at offset 25: 0 grey, 2 RGB, 4 grey and alpha, 6 RGBA.
		const int type = (unsigned char)bytes[25];
		return type == 0 || type == 4 ? 1 : 3;
	}
	const size_t frame = bytes.find("\xff\xc0");
	return frame == std::string::npos ? -1 : (unsigned char)bytes[frame + 9];
}

// A PNG chunk: length, type, data and the CRC of type and data.
std::string pngChunk(const std::string& type, const std::string& data)
{
	std::string chunk;
	for(const int shift : {24, 16, 8, 0})
		chunk += (char)((data.size() >> shift) & 0xff);
	chunk += type + data;
	const std::string covered = type + data;
	const uLong crc = crc32(0L, reinterpret_cast<const Bytef*>(covered.data()), (uInt)covered.size());
	for(const int shift : {24, 16, 8, 0})
		chunk += (char)((crc >> shift) & 0xff);
	return chunk;
}

} // namespace

// Sixteen-bit pictures as other tools write them, without a gamma chunk,
// read as the same values in eight bits (value / 257), not as linear light
// brightened for the screen.
TEST(BaseBitmap, SixteenBitGreyPngReadsAsEncoded)
{
	VelornTest::TempDir dir;
	// Three grey samples in one row: 0, 0x8080 and 0xffff.
	const std::string header = std::string("\0\0\0\3\0\0\0\1", 8) + std::string("\x10\0\0\0\0", 5);
	const std::string row = std::string("\0\0\0\x80\x80\xff\xff", 7);
	uLongf packedSize = compressBound((uLong)row.size());
	std::string packed(packedSize, '\0');
	ASSERT_EQ(compress(reinterpret_cast<Bytef*>(&packed[0]), &packedSize, reinterpret_cast<const Bytef*>(row.data()),
				  (uLong)row.size()),
		Z_OK);
	packed.resize(packedSize);
	const std::string file = dir.file("grey16.png");
	VelornTest::writeFile(file, std::string("\x89PNG\r\n\x1a\n") + pngChunk("IHDR", header) +
			pngChunk("IDAT", packed) + pngChunk("IEND", ""));
	BaseBitmap bmp;
	ASSERT_EQ(bmp.Init(Filename(file.c_str())), IMAGERESULT_OK);
	ASSERT_EQ(bmp.GetBw(), 3);
	EXPECT_EQ(pixelOf(bmp, 0, 0), (Rgb{0, 0, 0}));
	EXPECT_EQ(pixelOf(bmp, 1, 0), (Rgb{128, 128, 128}));
	EXPECT_EQ(pixelOf(bmp, 2, 0), (Rgb{255, 255, 255}));
}

TEST(BaseBitmap, PngRoundTripsExactly)
{
	VelornTest::TempDir dir;
	const struct
	{
		const char* what;
		bool alpha;
		int32_t savebits;
		int32_t depthRead;
	} cases[] = {
		{"24 bits", false, SAVEBIT_NONE, 24},
		{"32 bits with the alpha written", true, SAVEBIT_ALPHA, 32},
		{"32 bits without the alpha bit", true, SAVEBIT_NONE, 24},
		{"24 bits with the alpha bit, having none", false, SAVEBIT_ALPHA, 24},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.what);
		BaseBitmap original = pattern(7, 5, c.alpha);
		BaseBitmap read = saveAndRead(original, dir.file(std::string(c.what) + ".png"), FILTER_PNG, nullptr, c.savebits);
		ASSERT_EQ(read.GetBw(), 7);
		ASSERT_EQ(read.GetBh(), 5);
		EXPECT_EQ(read.GetBt(), c.depthRead);
		EXPECT_EQ(largestDifference(read, original), 0);
		if(c.depthRead != 32)
			continue;
		for(int32_t y = 0; y < 5; ++y)
		{
			for(int32_t x = 0; x < 7; ++x)
			{
				uint16_t expected, actual;
				original.GetAlphaPixel(original.GetInternalChannel(), x, y, &expected);
				read.GetAlphaPixel(read.GetInternalChannel(), x, y, &actual);
				EXPECT_EQ(actual, expected) << x << ", " << y;
			}
		}
	}
}

// JPEG loses a little; how much depends on the quality setting, 90 when the
// settings do not say.
TEST(BaseBitmap, JpegRoundTripsWithinItsLoss)
{
	VelornTest::TempDir dir;
	BaseBitmap smooth;
	ASSERT_EQ(smooth.Init(32, 24), IMAGERESULT_OK);
	for(int32_t y = 0; y < 24; ++y)
		for(int32_t x = 0; x < 32; ++x)
			smooth.SetPixel(x, y, 40 + x * 5, 200 - y * 6, 90 + (x + y) * 2);

	int lossAt[3] = {};
	const int32_t qualities[] = {100, 0, 5};
	for(int i = 0; i < 3; ++i)
	{
		SCOPED_TRACE(qualities[i]);
		BaseContainer settings;
		if(qualities[i])
			settings.SetInt32(JPGSAVER_QUALITY, qualities[i]);
		const BaseBitmap read = saveAndRead(smooth, dir.file("smooth" + std::to_string(i) + ".jpg"), FILTER_JPG, &settings);
		EXPECT_EQ(read.GetBt(), 24);
		ASSERT_EQ(read.GetBw(), 32);
		ASSERT_EQ(read.GetBh(), 24);
		lossAt[i] = largestDifference(read, smooth);
	}
	EXPECT_LE(lossAt[0], 4);
	EXPECT_LE(lossAt[1], 12);
	EXPECT_GT(lossAt[2], lossAt[1]);
	EXPECT_GT(lossAt[1], lossAt[0]);
}

// The grey flag writes one channel holding the mean of red, green and blue.
TEST(BaseBitmap, GreyFlagWritesOneChannel)
{
	VelornTest::TempDir dir;
	BaseBitmap colour;
	ASSERT_EQ(colour.Init(8, 8, 32), IMAGERESULT_OK);
	colour.Clear(200, 41, 61);
	const struct
	{
		int32_t filter;
		const char* name;
		int tolerance;
	} cases[] = {{FILTER_PNG, "grey.png", 0}, {FILTER_JPG, "grey.jpg", 1}};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		const BaseBitmap read = saveAndRead(colour, dir.file(c.name), c.filter, nullptr, SAVEBIT_GREYSCALE);
		EXPECT_EQ(storedComponents(dir.file(c.name)), 1);
		for(const Rgb& p : {pixelOf(read, 0, 0), pixelOf(read, 7, 7)})
		{
			EXPECT_EQ(p[0], p[1]);
			EXPECT_EQ(p[1], p[2]);
			// (200 + 41 + 61) / 3 = 100.67, rounded.
			EXPECT_NEAR(p[0], 101, c.tolerance);
		}
	}
	// Without the flag the colour stays.
	const std::string file = dir.file("colour.png");
	ASSERT_EQ(colour.Save(Filename(file.c_str()), FILTER_PNG, nullptr, SAVEBIT_NONE), IMAGERESULT_OK);
	EXPECT_EQ(storedComponents(file), 3);
}

// Files that hold no readable picture fail with their code and leave the
// bitmap as it was.
TEST(BaseBitmap, BadFilesFailCleanly)
{
	VelornTest::TempDir dir;
	// Large enough that most of the JPEG is its image data.
	const BaseBitmap good = pattern(64, 64, false);
	const std::string png = dir.file("good.png"), jpg = dir.file("good.jpg");
	ASSERT_EQ(good.Save(Filename(png.c_str()), FILTER_PNG, nullptr, SAVEBIT_NONE), IMAGERESULT_OK);
	ASSERT_EQ(good.Save(Filename(jpg.c_str()), FILTER_JPG, nullptr, SAVEBIT_NONE), IMAGERESULT_OK);
	const std::string pngBytes = VelornTest::readFile(png), jpgBytes = VelornTest::readFile(jpg);
	std::string flipped = pngBytes;
	// A byte inside the image data: its checksum no longer matches.
	flipped[flipped.size() - 20] ^= 0x55;
	std::string badJpeg = jpgBytes;
	// The first byte of the frame header's precision: 8 becomes 12 bits
	// without the tables for it.
	badJpeg[badJpeg.find("\xff\xc0") + 4] = 99;

	const struct
	{
		const char* name;
		std::string bytes;
		IMAGERESULT expected;
	} cases[] = {
		{"empty", "", IMAGERESULT_WRONGTYPE},
		{"text", "a text file, no picture", IMAGERESULT_WRONGTYPE},
		{"png signature alone", pngBytes.substr(0, 8), IMAGERESULT_FILESTRUCTURE},
		{"png cut in half", pngBytes.substr(0, pngBytes.size() / 2), IMAGERESULT_FILESTRUCTURE},
		{"png with a damaged byte", flipped, IMAGERESULT_FILESTRUCTURE},
		// The library makes up the missing rows; the picture is refused all the same.
		{"jpeg cut inside its image data", jpgBytes.substr(0, jpgBytes.size() - 200), IMAGERESULT_FILESTRUCTURE},
		{"jpeg header alone", jpgBytes.substr(0, 3), IMAGERESULT_FILESTRUCTURE},
		{"jpeg with a bad frame header", badJpeg, IMAGERESULT_FILESTRUCTURE},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		const std::string file = dir.file(std::string(c.name) + ".img");
		VelornTest::writeFile(file, c.bytes);
		BaseBitmap bmp;
		ASSERT_EQ(bmp.Init(3, 2), IMAGERESULT_OK);
		bmp.SetPixel(1, 1, 9, 8, 7);
		EXPECT_EQ(bmp.Init(Filename(file.c_str())), c.expected);
		EXPECT_EQ(bmp.GetBw(), 3);
		EXPECT_EQ(bmp.GetBh(), 2);
		EXPECT_EQ(pixelOf(bmp, 1, 1), (Rgb{9, 8, 7}));
	}
	BaseBitmap bmp;
	EXPECT_EQ(bmp.Init(Filename(dir.file("missing.png").c_str())), IMAGERESULT_NOTEXISTING);
	EXPECT_EQ(bmp.GetBt(), 0);
}

// A save that cannot be completed leaves no file behind: neither the target
// nor a partial file beside it.
TEST(BaseBitmap, FailedSaveLeavesNothing)
{
	VelornTest::TempDir dir;
	const BaseBitmap bmp = pattern(4, 4, false);
	for(const int32_t filter : {FILTER_PNG, FILTER_JPG})
	{
		SCOPED_TRACE(filter);
		const std::string missing = dir.file("no such folder");
		EXPECT_EQ(bmp.Save(Filename((missing + "/a.img").c_str()), filter, nullptr, SAVEBIT_NONE), IMAGERESULT_FILEERROR);
		EXPECT_FALSE(Velorn::FileUtils::fileExists(missing));
		// A folder in the target's place cannot be replaced by the picture.
		const std::string folder = dir.file("taken");
		Velorn::FileUtils::createDirsForPath(folder);
		EXPECT_EQ(bmp.Save(Filename(folder.c_str()), filter, nullptr, SAVEBIT_NONE), IMAGERESULT_FILEERROR);
		EXPECT_EQ(Velorn::FileUtils::getFilesInDir(dir.path()), std::vector<std::string>{"taken"});
		EXPECT_TRUE(Velorn::FileUtils::getFilesInDir(folder).empty());
	}
	BaseBitmap empty;
	EXPECT_EQ(empty.Save(Filename(dir.file("empty.png").c_str()), FILTER_PNG, nullptr, SAVEBIT_NONE),
		IMAGERESULT_PARAM_ERROR);
	EXPECT_EQ(bmp.Save(Filename(dir.file("odd.bmp").c_str()), 1234, nullptr, SAVEBIT_NONE), IMAGERESULT_PARAM_ERROR);
	EXPECT_EQ(Velorn::FileUtils::getFilesInDir(dir.path()), std::vector<std::string>{"taken"});
}
