#include "support/bitmap.h"
#include "support/filter_function.h"
#include "support/image.h"
#include "support/image_map.h"
#include "support/task_manager.h"

#include "support/failures.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Velorn;
using VelornTest::failureOf;

namespace
{

// Red is x + 10 y, green and blue 3 and 6 more: every pixel tells where it
// is, and sums of a few pixels stay exact in floats.
Image positionImage(uint32_t width, uint32_t height)
{
	Image image(width, height);
	for(uint32_t y = 0; y < height; ++y)
		for(uint32_t x = 0; x < width; ++x)
		{
			float* pixel = image.getPixel(x, y);
			pixel[0] = (float)(x + 10 * y);
			pixel[1] = pixel[0] + 3;
			pixel[2] = pixel[0] + 6;
		}
	return image;
}

Colour3f redShifted(float red) { return Colour3f{red, red + 3, red + 6}; }

// 1 - x up to a distance of 1.
class TentFilter : public FilterFunction
{
public:
	double getSupportRadius() const override { return 1.0; }
	double eval(double x) const override { return x < 1.0 ? 1.0 - x : 0.0; }
	std::string description() const override { return "tent"; }
};

} // namespace

TEST(ImageSampler, WrapsAndRunsUpwards)
{
	const Image image = positionImage(4, 2);
	// Samples between four pixels, with the right and lower neighbours
	// wrapping: (3, 0), (0, 0), (3, 1), (0, 1) at a quarter each.
	EXPECT_EQ(image.vec3SampleTiled(0.875, 0.75), redShifted(6.5f));
	EXPECT_EQ(image.vec3SampleTiled(-0.125, 1.75), redShifted(6.5f));
	EXPECT_FLOAT_EQ(image.scalarSampleTiled(0.875, 0.75), 9.5f);
	// y = 0.5 lands on row 1 exactly, between columns 1 and 2.
	EXPECT_EQ(image.vec3SampleTiled(0.375, 0.5), redShifted(11.5f));
	EXPECT_EQ(image.vec3SampleTiled(1.5, -0.25), image.vec3SampleTiled(0.5, 0.75));
	EXPECT_EQ(image.vec3SampleTiled(1.5, -0.25), redShifted(7.0f));
	// A coordinate a hair below 0 wraps to the full width, which is column 0.
	EXPECT_EQ(image.vec3SampleTiled(-1e-300, 0.5), redShifted(10.0f));
	EXPECT_EQ(Image().vec3SampleTiled(0.3, 0.3), (Colour3f{0, 0, 0}));

	ImageMapFloat grey(2, 2, 1);
	ImageMapFloat colour(2, 2, 3);
	for(uint32_t i = 0; i < 4; ++i)
	{
		grey.getData()[i] = (float)(i + 1);
		for(uint32_t c = 0; c < 3; ++c)
			colour.getData()[i * 3 + c] = (float)(i + 1) * std::pow(10.0f, (float)c);
	}
	EXPECT_EQ(grey.vec3SampleTiled(0.25, 0.75), (Colour3f{2.5f, 2.5f, 2.5f}));
	EXPECT_EQ(grey.scalarSampleTiled(0.25, 0.75), 2.5f);
	EXPECT_EQ(colour.vec3SampleTiled(0.25, 0.75), (Colour3f{2.5f, 25.0f, 250.0f}));
	EXPECT_FLOAT_EQ(colour.scalarSampleTiled(0.25, 0.75), 92.5f);
}

TEST(ImageSampler, ResizeToImage)
{
	const Image image = positionImage(4, 2);
	bool is_linear = false;
	const Reference<Image> wide = image.resizeToImage(8, is_linear);
	EXPECT_TRUE(is_linear);
	ASSERT_EQ(wide->getWidth(), 8u);
	ASSERT_EQ(wide->getHeight(), 4u);
	// Pixel (0, 0) samples (0, 3/4): rows 0 and 1 of column 0, half each.
	EXPECT_EQ(wide->vec3SampleTiled(0, 1), redShifted(5.0f));
	EXPECT_EQ(wide->getPixel(0, 0)[0], 5.0f);
	// The last row samples y = 0, whose 1 - y wraps to row 0: columns 0 and 1.
	EXPECT_EQ(wide->getPixel(1, 3)[0], 0.5f);
	EXPECT_EQ(wide->getPixel(1, 3)[2], 6.5f);

	const Reference<Image> tall = positionImage(2, 4).resizeToImage(8, is_linear);
	EXPECT_EQ(tall->getWidth(), 4u);
	EXPECT_EQ(tall->getHeight(), 8u);

	ImageMapFloat grey(2, 1, 1);
	grey.getData()[0] = 2;
	grey.getData()[1] = 4;
	const Reference<Image> from_map = grey.resizeToImage(4, is_linear);
	ASSERT_EQ(from_map->getHeight(), 2u);
	EXPECT_EQ(from_map->vec3SampleTiled(0.25, 0), (Colour3f{3, 3, 3}));
}

TEST(Image, FromAndToBitmaps)
{
	Bitmap rgb(2, 1, 3);
	const uint8_t bytes[6] = {255, 0, 51, 102, 204, 255};
	std::copy(bytes, bytes + 6, rgb.getPixel(0, 0));
	Image image;
	image.setFromBitmap(rgb, 2.0f);
	ASSERT_EQ(image.getWidth(), 2u);
	const float expected[6] = {1.0f, 0.0f, 0.04f, 0.16f, 0.64f, 1.0f};
	for(int i = 0; i < 6; ++i)
		EXPECT_NEAR(image.getData()[i], expected[i], 1e-6f) << i;

	Bitmap grey(1, 2, 1);
	grey.getPixel(0, 0)[0] = 51;
	grey.getPixel(0, 1)[0] = 255;
	image.setFromBitmap(grey, 1.0f);
	ASSERT_EQ(image.getHeight(), 2u);
	EXPECT_EQ(image.vec3SampleTiled(0, 1), (Colour3f{0.2f, 0.2f, 0.2f}));
	EXPECT_EQ(image.getPixel(0, 1)[2], 1.0f);
	EXPECT_EQ(failureOf([&] { image.setFromBitmap(Bitmap(1, 1, 4), 1.0f); }), "Image bytes per pixel must be 1 or 3.");

	// Values times 255, truncated, and the low byte of that: no clamping.
	Image source(3, 2);
	const float values[6] = {0.5f, 1.0f, 1.5f, -0.5f, 2.0f, 1e10f};
	std::copy(values, values + 6, source.getPixel(1, 1));
	Bitmap target(10, 10, 4);
	source.copyRegionToBitmap(target, 1, 1, 3, 2);
	ASSERT_EQ(target.getWidth(), 2u);
	ASSERT_EQ(target.getHeight(), 1u);
	ASSERT_EQ(target.getBytesPP(), 4u);
	const uint8_t expected_bytes[8] = {127, 255, 126, 0, 129, 254, 0, 0};
	for(int i = 0; i < 8; ++i)
		EXPECT_EQ(target.getPixel(0, 0)[i], expected_bytes[i]) << i;

	Bitmap three(1, 1, 3);
	source.copyRegionToBitmap(three, 0, 0, 3, 2);
	EXPECT_EQ(three.getWidth(), 3u);
	EXPECT_EQ(three.getBytesPP(), 3u);
	EXPECT_EQ(three.getPixel(2, 1)[0], 129);

	EXPECT_EQ(failureOf([&] { source.copyRegionToBitmap(grey, 0, 0, 1, 1); }), "BytesPP != 3");
	const int bad_regions[][4] = {{-1, 0, 1, 1}, {1, 0, 1, 1}, {0, 0, 4, 1}, {0, 1, 1, 1}, {0, 0, 1, 3}, {2, 0, 1, 1}};
	for(const auto& r : bad_regions)
		EXPECT_EQ(failureOf([&] { source.copyRegionToBitmap(three, r[0], r[1], r[2], r[3]); }),
			"Region coordinates are invalid")
			<< r[0] << " " << r[1] << " " << r[2] << " " << r[3];
}

TEST(Image, AddImage)
{
	Image sum = positionImage(3, 2);
	sum.addImage(positionImage(3, 2));
	EXPECT_EQ(sum.vec3SampleTiled(1.0 / 3, 0.5), (Colour3f{22, 28, 34}));
	EXPECT_EQ(failureOf([&] { sum.addImage(Image(2, 3)); }), "Dimensions not the same");
}

TEST(ImageDownsample, BoxFilterAveragesBlocksInsideTheBorder)
{
	const BoxFilterFunction box;
	EXPECT_EQ(box.getSupportRadius(), 0.5);
	EXPECT_EQ(box.eval(0.49), 1.0);
	EXPECT_EQ(box.eval(0.5), 0.0);
	EXPECT_EQ(box.description(), "box");

	TaskManager manager(2);
	for(const uint32_t internal_width : {6u, 7u})
	{
		SCOPED_TRACE(internal_width);
		Image out;
		positionImage(internal_width, 6).downsampleImage(2, 1, box, out, manager);
		ASSERT_EQ(out.getWidth(), 2u);
		ASSERT_EQ(out.getHeight(), 2u);
		EXPECT_EQ(out.getPixel(0, 0)[0], 16.5f); // (11 + 12 + 21 + 22) / 4
		EXPECT_EQ(out.getPixel(1, 0)[0], 18.5f);
		EXPECT_EQ(out.getPixel(0, 1)[0], 36.5f);
		EXPECT_EQ(out.getPixel(1, 1)[2], 44.5f);
	}
	Image none;
	positionImage(4, 4).downsampleImage(2, 2, box, none, manager);
	EXPECT_EQ(none.numPixels(), 0u);
	EXPECT_EQ(failureOf([&] { positionImage(4, 4).downsampleImage(0, 0, box, none, manager); }),
		"Supersampling factor must be at least 1.");
}

TEST(ImageDownsample, WideFiltersAreClippedToTheSource)
{
	// A tent of radius 1 at factor 2 has 4 taps of 1/4, 3/4, 3/4, 1/4 along
	// each axis, over /4; every output pixel of a 4 by 4 source loses one of
	// the outer taps in each direction: 1.75 * 1.75 / 4.
	Image ones(4, 4);
	std::fill(ones.getData(), ones.getData() + 48, 1.0f);
	Image out;
	TaskManager manager(3);
	ones.downsampleImage(2, 0, TentFilter(), out, manager);
	ASSERT_EQ(out.getWidth(), 2u);
	for(uint32_t y = 0; y < 2; ++y)
		for(uint32_t x = 0; x < 2; ++x)
			EXPECT_EQ(out.vec3SampleTiled(x * 0.5, 1.0 - y * 0.5), (Colour3f{0.765625f, 0.765625f, 0.765625f}));
}
