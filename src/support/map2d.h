#pragma once

#include "support/reference.h"

#include <cstddef>
#include <cstdint>

namespace Velorn
{

class Image;

struct Colour3f
{
	float r, g, b;

	bool operator==(const Colour3f& other) const { return r == other.r && g == other.g && b == other.b; }
	bool operator!=(const Colour3f& other) const { return !(*this == other); }
};

// A picture that shaders and textures sample. Coordinates (x, y) run over
// [0, 1) once and repeat outside it; y runs upwards.
class Map2D : public RefCounted
{
public:
	// Bilinear samples of the tiled picture.
	virtual Colour3f vec3SampleTiled(double x, double y) const = 0;
	// The mean of the colour, or the single channel of a one-channel map.
	virtual float scalarSampleTiled(double x, double y) const = 0;

	virtual uint32_t getMapWidth() const = 0;
	virtual uint32_t getMapHeight() const = 0;

	// An RGB picture of the same proportions whose longer side is max_size: each
	// pixel (x, y) is the tiled sample at (x / width, (height - 1 - y) /
	// height). Such a picture holds linear values, so is_linear_out is set.
	virtual Reference<Image> resizeToImage(uint32_t max_size, bool& is_linear_out) const;
};

// Where a wrapped bilinear sample reads: the indices of four pixels of a
// picture stored row by row, and their weights.
struct TiledSamplePoint
{
	size_t pixel[4]; // (u, v), (u + 1, v), (u, v + 1), (u + 1, v + 1)
	float weight[4];

	// The weighted sum of one channel; channel(i) is its value at pixel i.
	template <class Channel>
	float sum(Channel channel) const
	{
		return weight[0] * channel(pixel[0]) + weight[1] * channel(pixel[1]) + weight[2] * channel(pixel[2]) +
			weight[3] * channel(pixel[3]);
	}
};

// The sample point of (x, y) in a picture of width by height pixels, both
// at least 1. The fractional parts of x and 1 - y, each in [0, 1), scaled by
// the size, give the pixel and the weights; the neighbours to the right and
// below wrap around.
TiledSamplePoint tiledSamplePoint(double x, double y, uint32_t width, uint32_t height);

} // namespace Velorn
