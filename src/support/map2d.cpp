#include "support/map2d.h"

#include "support/image.h"

#include <cmath>

namespace Velorn
{

namespace
{

// The fractional part, made non-negative, so that the picture repeats.
double wrappedFraction(double value)
{
	double integer_part;
	const double fraction = std::modf(value, &integer_part);
	return fraction < 0 ? fraction + 1.0 : fraction;
}

// The pixel under a wrapped coordinate and the weight of its right or lower
// neighbour. A negative fraction a hair below 0 becomes 1 after the shift
// and lands on the size itself, which is pixel 0 again.
void pixelAndWeight(double fraction, uint32_t size, uint32_t& pixel, float& weight)
{
	const double scaled = fraction * size;
	pixel = (uint32_t)scaled;
	weight = (float)(scaled - pixel);
	if(pixel >= size)
		pixel -= size;
}

} // namespace

TiledSamplePoint tiledSamplePoint(double x, double y, uint32_t width, uint32_t height)
{
	uint32_t u, v;
	float a, b;
	pixelAndWeight(wrappedFraction(x), width, u, a);
	pixelAndWeight(wrappedFraction(1.0 - y), height, v, b);
	const uint32_t u1 = u + 1 == width ? 0 : u + 1;
	const uint32_t v1 = v + 1 == height ? 0 : v + 1;
	TiledSamplePoint point;
	point.pixel[0] = (size_t)v * width + u;
	point.pixel[1] = (size_t)v * width + u1;
	point.pixel[2] = (size_t)v1 * width + u;
	point.pixel[3] = (size_t)v1 * width + u1;
	point.weight[0] = (1 - a) * (1 - b);
	point.weight[1] = a * (1 - b);
	point.weight[2] = (1 - a) * b;
	point.weight[3] = a * b;
	return point;
}

Reference<Image> Map2D::resizeToImage(uint32_t max_size, bool& is_linear_out) const
{
	const uint32_t map_width = getMapWidth();
	const uint32_t map_height = getMapHeight();
	uint32_t out_width = max_size, out_height = max_size;
	if(map_width >= map_height)
		out_height = map_width == 0 ? 0 : (uint32_t)((uint64_t)max_size * map_height / map_width);
	else
		out_width = (uint32_t)((uint64_t)max_size * map_width / map_height);

	Reference<Image> image = new Image(out_width, out_height);
	for(uint32_t y = 0; y < out_height; ++y)
		for(uint32_t x = 0; x < out_width; ++x)
		{
			const Colour3f colour = vec3SampleTiled((double)x / out_width, (double)(out_height - 1 - y) / out_height);
			float* pixel = image->getPixel(x, y);
			pixel[0] = colour.r;
			pixel[1] = colour.g;
			pixel[2] = colour.b;
		}
	is_linear_out = true;
	return image;
}

} // namespace Velorn
