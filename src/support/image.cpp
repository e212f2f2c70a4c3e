#include "support/image.h"

#include "support/binary_stream.h"
#include "support/bitmap.h"
#include "support/exceptions.h"

#include <cmath>

namespace Velorn
{

void Image::resize(uint32_t new_width, uint32_t new_height)
{
	width = new_width;
	height = new_height;
	pixels.assign(numPixels() * 3, 0.0f);
}

void Image::resizeForOverwrite(uint32_t new_width, uint32_t new_height)
{
	width = new_width;
	height = new_height;
	if(pixels.size() != numPixels() * 3)
	{
		pixels.clear();
		pixels.resize(numPixels() * 3);
	}
}

Colour3f Image::vec3SampleTiled(double x, double y) const
{
	if(pixels.empty())
		return Colour3f{0, 0, 0};
	const TiledSamplePoint point = tiledSamplePoint(x, y, width, height);
	const float* data = pixels.data();
	return Colour3f{point.sum([data](size_t i) { return data[i * 3]; }),
		point.sum([data](size_t i) { return data[i * 3 + 1]; }),
		point.sum([data](size_t i) { return data[i * 3 + 2]; })};
}

float Image::scalarSampleTiled(double x, double y) const
{
	const Colour3f colour = vec3SampleTiled(x, y);
	return (colour.r + colour.g + colour.b) * (1.0f / 3.0f);
}

void Image::setFromBitmap(const Bitmap& bitmap, float gamma)
{
	const uint32_t bytes_pp = bitmap.getBytesPP();
	if(bytes_pp != 1 && bytes_pp != 3)
		throw Exception("Image bytes per pixel must be 1 or 3.");
	float value_of_byte[256];
	for(int i = 0; i < 256; ++i)
		value_of_byte[i] = std::pow((float)i / 255.0f, gamma);

	resize(bitmap.getWidth(), bitmap.getHeight());
	for(uint32_t y = 0; y < height; ++y)
		for(uint32_t x = 0; x < width; ++x)
		{
			const uint8_t* source = bitmap.getPixel(x, y);
			float* pixel = getPixel(x, y);
			for(int c = 0; c < 3; ++c)
				pixel[c] = value_of_byte[source[bytes_pp == 1 ? 0 : c]];
		}
}

namespace
{

// value * 255 truncated to an integer, of which the low byte is kept, as
// a plain conversion to an 8-bit value does on the processors the renderer
// runs on. Values beyond the integer range, and NaN, give that conversion's
// "indefinite" integer, whose low byte is 0.
uint8_t truncatedByte(float value)
{
	const float scaled = value * 255.0f;
	if(!(scaled > -2147483648.0f && scaled < 2147483648.0f))
		return 0;
	return (uint8_t)(uint32_t)(int32_t)scaled;
}

} // namespace

void Image::copyRegionToBitmap(Bitmap& bitmap, int x1, int y1, int x2, int y2) const
{
	const uint32_t bytes_pp = bitmap.getBytesPP();
	if(bytes_pp != 3 && bytes_pp != 4)
		throw Exception("BytesPP != 3");
	if(x1 < 0 || x1 >= x2 || (int64_t)x2 > width || y1 < 0 || y1 >= y2 || (int64_t)y2 > height)
		throw Exception("Region coordinates are invalid");

	bitmap.resize(x2 - x1, y2 - y1, bytes_pp);
	for(int y = y1; y < y2; ++y)
		for(int x = x1; x < x2; ++x)
		{
			const float* pixel = getPixel(x, y);
			uint8_t* target = bitmap.getPixel(x - x1, y - y1);
			for(int c = 0; c < 3; ++c)
				target[c] = truncatedByte(pixel[c]);
		}
}

void Image::addImage(const Image& other)
{
	if(other.width != width || other.height != height)
		throw Exception("Dimensions not the same");
	for(size_t i = 0; i < pixels.size(); ++i)
		pixels[i] += other.pixels[i];
}

void Image::writeToStream(OutStream& stream) const
{
	stream.writeInt32(CHUNKED_FORM_VERSION);
	stream.writeUInt32(width);
	stream.writeUInt32(height);
	stream.writeData(pixels.data(), pixels.size() * sizeof(float));
}

void Image::readFromStream(InStream& stream)
{
	readChunkedFormVersion(stream);
	const uint32_t new_width = stream.readUInt32();
	const uint32_t new_height = stream.readUInt32();
	checkStreamHolds(stream, {new_width, new_height, 3 * sizeof(float)},
		"Image size " + std::to_string(new_width) + " x " + std::to_string(new_height));
	resize(new_width, new_height);
	stream.readData(pixels.data(), pixels.size() * sizeof(float));
}

} // namespace Velorn
