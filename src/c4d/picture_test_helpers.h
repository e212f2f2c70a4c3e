#pragma once

#include "c4d/base_bitmap.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

using Rgb = std::array<int, 3>;

inline Rgb pixelOf(const BaseBitmap& bmp, int32_t x, int32_t y)
{
	uint16_t r, g, b;
	bmp.GetPixel(x, y, &r, &g, &b);
	return {r, g, b};
}

// Saves the picture as the file and reads the file back.
inline BaseBitmap saveAndRead(const BaseBitmap& bmp, const std::string& file, int32_t filter,
	const BaseContainer* settings = nullptr, int32_t savebits = SAVEBIT_NONE)
{
	EXPECT_EQ(bmp.Save(Filename(file.c_str()), filter, settings, savebits), IMAGERESULT_OK);
	BaseBitmap read;
	EXPECT_EQ(read.Init(Filename(file.c_str())), IMAGERESULT_OK);
	return read;
}

// Expects every pixel (x, y) of the picture to be expected(x, y).
template<typename Expected>
void expectPixels(const BaseBitmap& bmp, const Expected& expected)
{
	for(int32_t y = 0; y < bmp.GetBh(); ++y)
		for(int32_t x = 0; x < bmp.GetBw(); ++x)
			EXPECT_EQ(pixelOf(bmp, x, y), expected(x, y)) << x << ", " << y;
}
