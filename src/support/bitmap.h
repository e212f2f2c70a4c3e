#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Velorn
{

// An 8-bit picture with any number of bytes per pixel, rows from the top,
// pixels interleaved: the byte image that float pictures are filled from and
// copied into.
class Bitmap
{
public:
	Bitmap() = default;
	Bitmap(uint32_t width, uint32_t height, uint32_t bytes_pp) { resize(width, height, bytes_pp); }

	// A picture of the new size with every byte 0.
	void resize(uint32_t new_width, uint32_t new_height, uint32_t new_bytes_pp)
	{
		width = new_width;
		height = new_height;
		bytes_pp = new_bytes_pp;
		data.assign((size_t)width * height * bytes_pp, 0);
	}

	uint32_t getWidth() const { return width; }
	uint32_t getHeight() const { return height; }
	uint32_t getBytesPP() const { return bytes_pp; }

	uint8_t* getPixel(uint32_t x, uint32_t y) { return data.data() + ((size_t)width * y + x) * bytes_pp; }
	const uint8_t* getPixel(uint32_t x, uint32_t y) const { return data.data() + ((size_t)width * y + x) * bytes_pp; }

private:
	std::vector<uint8_t> data;
	uint32_t width = 0;
	uint32_t height = 0;
	uint32_t bytes_pp = 0;
};

} // namespace Velorn
