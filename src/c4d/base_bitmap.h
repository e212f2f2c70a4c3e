#pragma once

#include "c4d/filename.h"

#include <cstdint>
#include <memory>
#include <vector>

class BaseContainer;

// Results of loading, initialising and saving pictures.
enum IMAGERESULT
{
	IMAGERESULT_OK = 1,
	IMAGERESULT_NOTEXISTING = -1,
	IMAGERESULT_WRONGTYPE = 2,
	IMAGERESULT_OUTOFMEMORY = 3,
	IMAGERESULT_FILEERROR = 4,
	IMAGERESULT_FILESTRUCTURE = 5,
	IMAGERESULT_MISC_ERROR = 6,
	IMAGERESULT_PARAM_ERROR = 7,
};

// The host's image file filters.
enum
{
	FILTER_JPG = 1104,
	FILTER_PNG = 1023671,
};

// Settings of the JPEG filter: the quality from 0 to 100 (a long).
enum
{
	JPGSAVER_QUALITY = 10021,
};

// How Save writes the pixels.
enum
{
	SAVEBIT_NONE = 0,
	// The alpha channel goes into the file (PNG only).
	SAVEBIT_ALPHA = 0x1,
	// One grey value a pixel, the mean of red, green and blue.
	SAVEBIT_GREYSCALE = 0x10,
};

// A picture of the host: 24 bits of colour a pixel, rows from the top, with
// at most one alpha channel beside it (a 32-bit picture).
class BaseBitmap
{
public:
	BaseBitmap();
	~BaseBitmap();

	static BaseBitmap* Alloc() { return new BaseBitmap(); }
	static void Free(BaseBitmap*& bmp)
	{
		delete bmp;
		bmp = nullptr;
	}

	// A black picture of x by y; depth 24 or 32 (32 adds an alpha channel
	// of 0). Anything else, or a size below 1, is IMAGERESULT_PARAM_ERROR
	// and leaves the picture as it was.
	IMAGERESULT Init(int32_t x, int32_t y, int32_t depth = 24);
	// The picture of a PNG or JPEG file; a PNG with alpha brings its alpha
	// channel. The file's kind is found by its first bytes, not its suffix.
	IMAGERESULT Init(const Filename& name);

	int32_t GetBw() const { return width; }
	int32_t GetBh() const { return height; }
	// 24, or 32 with an alpha channel; 0 before Init.
	int32_t GetBt() const;

	// Every pixel to one colour (components 0 to 255).
	void Clear(int32_t r, int32_t g, int32_t b);
	// Pixel access; coordinates outside the picture read black and write
	// nothing.
	void GetPixel(int32_t x, int32_t y, uint16_t* r, uint16_t* g, uint16_t* b) const;
	void SetPixel(int32_t x, int32_t y, int32_t r, int32_t g, int32_t b);

	// The alpha channel; AddChannel makes it (all 0) when there is none and
	// answers the one there is otherwise. The internal and straight flags
	// are the application's and change nothing here.
	BaseBitmap* GetInternalChannel() { return alpha ? this : nullptr; }
	BaseBitmap* AddChannel(bool internal, bool straight);
	void GetAlphaPixel(BaseBitmap* channel, int32_t x, int32_t y, uint16_t* value) const;
	void SetAlphaPixel(BaseBitmap* channel, int32_t x, int32_t y, int32_t value);

	// Writes the picture through the filter (FILTER_PNG or FILTER_JPG).
	// data may hold JPGSAVER_QUALITY (90 when absent). The file is written
	// whole or not at all: a failed save leaves no file behind.
	IMAGERESULT Save(const Filename& name, int32_t format, const BaseContainer* data, int32_t savebits) const;

	// A copy of size, pixels and alpha.
	BaseBitmap* GetClone() const;

private:
	int32_t width = 0;
	int32_t height = 0;
	// Three bytes a pixel, red, green, blue.
	std::vector<uint8_t> rgb;
	// One byte a pixel when there is an alpha channel.
	std::vector<uint8_t> alphaValues;
	bool alpha = false;
};
