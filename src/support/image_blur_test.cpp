#include "support/image.h"
#include "support/image_blur.h"
#include "support/task_manager.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>

using namespace Velorn;

namespace
{

// Pseudo-random values in [0, 1), the same on every run.
Image noiseImage(uint32_t width, uint32_t height)
{
	Image image(width, height);
	uint32_t state = 12345;
	for(size_t i = 0; i < image.numPixels() * 3; ++i)
	{
		state = state * 1664525u + 1013904223u;
		image.getData()[i] = (float)(state >> 8) / 16777216.0f;
	}
	return image;
}

// The wrapped offset from a to b along a line of n pixels, in -n/2 .. n/2.
int wrappedOffset(int a, int b, int n)
{
	int d = ((b - a) % n + n) % n;
	return d > n / 2 ? d - n : d;
}

} // namespace

TEST(ImageBlur, KernelRadiusAndTaps)
{
	// The radius is where a tap falls to 1e-5 of the peak: for sigma 1,
	// sqrt(-2 ln(sqrt(2 pi) 1e-5)) = 4.60, for sigma 4 17.17.
	const BlurKernel one = gaussianBlurKernel(1.0f, 100, 100);
	ASSERT_EQ(one.radius, 4);
	ASSERT_EQ(one.taps.size(), 9u);
	const float expected[5] = {0.000133831f, 0.00443186f, 0.0539911f, 0.241971f, 0.398943f};
	for(int i = 0; i < 5; ++i)
	{
		EXPECT_NEAR(one.taps[i], expected[i], 1e-6f) << i;
		EXPECT_EQ(one.taps[i], one.taps[8 - i]) << i;
	}
	EXPECT_EQ(gaussianBlurKernel(4.0f, 100, 100).radius, 17);
	EXPECT_EQ(gaussianBlurKernel(4.0f, 100, 100).taps.size(), 35u);
	// Clamped to one less than the smaller side.
	EXPECT_EQ(gaussianBlurKernel(4.0f, 100, 9).radius, 8);
	// At least 1: a narrow sigma has outer taps far below 1e-12, set to 0.
	const BlurKernel narrow = gaussianBlurKernel(0.1f, 100, 100);
	ASSERT_EQ(narrow.radius, 1);
	EXPECT_EQ(narrow.taps, (std::vector<float>{0.0f, 1.0f, 0.0f}));
	// So wide that even the peak is below the cut: the largest radius.
	EXPECT_EQ(gaussianBlurKernel(1e6f, 20, 30).radius, 19);
	// A sum of 1 keeps the picture's energy.
	const BlurKernel two = gaussianBlurKernel(2.0f, 100, 100);
	EXPECT_EQ(two.radius, 8);
	EXPECT_NEAR(std::accumulate(two.taps.begin(), two.taps.end(), 0.0), 1.0, 1e-6);
}

TEST(ImageBlur, SingleLitPixelWrapsAroundTheEdges)
{
	TaskManager manager(2);
	const BlurKernel kernel = gaussianBlurKernel(1.0f, 16, 12);
	// Lit pixels in a corner and at the right edge halfway down.
	const int lit[][2] = {{0, 0}, {15, 6}};
	for(const auto& source : lit)
	{
		SCOPED_TRACE(testing::Message() << source[0] << ", " << source[1]);
		Image image(16, 12);
		std::fill(image.getPixel(source[0], source[1]), image.getPixel(source[0], source[1]) + 3, 1.0f);
		image.gaussianBlur(1.0f, manager);

		double energy = 0;
		for(int y = 0; y < 12; ++y)
			for(int x = 0; x < 16; ++x)
			{
				const int dx = wrappedOffset(source[0], x, 16), dy = wrappedOffset(source[1], y, 12);
				const bool inside = std::abs(dx) <= kernel.radius && std::abs(dy) <= kernel.radius;
				const float expected = inside ? kernel.taps[dx + kernel.radius] * kernel.taps[dy + kernel.radius] : 0.0f;
				EXPECT_NEAR(image.getPixel(x, y)[1], expected, 1e-7f) << x << ", " << y;
				energy += image.getPixel(x, y)[0];
			}
		EXPECT_NEAR(energy, 1.0, 1e-5);
	}
}

TEST(ImageBlur, ThreadsComputeWhatOneThreadComputes)
{
	// Odd sizes, so that the rows and columns divide unevenly among tasks,
	// and wide enough for columns to be taken in several strips.
	const int width = 601, height = 23;
	const Image source = noiseImage(width, height);
	Image single = source;
	TaskManager one(1);
	single.gaussianBlur(2.0f, one);

	// Against a direct sum over the wrapped neighbourhood.
	const BlurKernel kernel = gaussianBlurKernel(2.0f, width, height);
	const int r = kernel.radius;
	for(int y = 0; y < height; y += 5)
		for(int x = 0; x < width; x += 7)
		{
			double sum = 0;
			for(int j = -r; j <= r; ++j)
				for(int i = -r; i <= r; ++i)
					sum += (double)kernel.taps[i + r] * kernel.taps[j + r] *
						source.getPixel((uint32_t)((x + i + width) % width), (uint32_t)((y + j + height) % height))[2];
			EXPECT_NEAR(single.getPixel(x, y)[2], sum, 1e-5) << x << ", " << y;
		}

	for(const size_t num_threads : {2u, 3u, 8u})
	{
		SCOPED_TRACE(num_threads);
		Image parallel = source;
		TaskManager manager(num_threads);
		parallel.gaussianBlur(2.0f, manager);
		EXPECT_EQ(std::memcmp(parallel.getData(), single.getData(), source.numPixels() * 3 * sizeof(float)), 0);
	}
}

TEST(ImageBlur, DegenerateSizesAndSigmas)
{
	TaskManager manager(2);
	const Image source = noiseImage(5, 1);
	Image line = source;
	// A picture one pixel high has a radius of 0: nothing moves.
	line.gaussianBlur(3.0f, manager);
	EXPECT_EQ(std::memcmp(line.getData(), source.getData(), 15 * sizeof(float)), 0);
	line.gaussianBlur(0.0f, manager);
	EXPECT_EQ(std::memcmp(line.getData(), source.getData(), 15 * sizeof(float)), 0);
	Image empty;
	empty.gaussianBlur(1.0f, manager);
	EXPECT_EQ(empty.numPixels(), 0u);
}
