#pragma once

#include "support/map2d.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace Velorn
{

class Bitmap;
class FilterFunction;
class InStream;
class OutStream;
class TaskManager;

// An allocator whose vectors leave new floats unset on resize(), so that a
// picture that tasks fill completely is not first cleared on one thread.
template <class T>
struct UnclearedAllocator : std::allocator<T>
{
	template <class U>
	struct rebind
	{
		using other = UnclearedAllocator<U>;
	};
	UnclearedAllocator() = default;
	template <class U>
	UnclearedAllocator(const UnclearedAllocator<U>&) {}

	template <class U>
	void construct(U* p) { ::new((void*)p) U; }
	template <class U, class... Args>
	void construct(U* p, Args&&... args) { ::new((void*)p) U(std::forward<Args>(args)...); }
};

// An RGB float picture: three floats per pixel, rows from the top. Not
// locked: one thread changes it at a time, or threads change disjoint rows.
// Failures throw Exception.
class Image : public Map2D
{
public:
	Image() = default;
	// Every value 0.
	Image(uint32_t width_, uint32_t height_) { resize(width_, height_); }

	// A picture of the new size with every value 0.
	void resize(uint32_t new_width, uint32_t new_height);

	uint32_t getWidth() const { return width; }
	uint32_t getHeight() const { return height; }
	size_t numPixels() const { return (size_t)width * height; }
	float* getData() { return pixels.data(); }
	const float* getData() const { return pixels.data(); }
	float* getPixel(uint32_t x, uint32_t y) { return pixels.data() + ((size_t)width * y + x) * 3; }
	const float* getPixel(uint32_t x, uint32_t y) const { return pixels.data() + ((size_t)width * y + x) * 3; }

	Colour3f vec3SampleTiled(double x, double y) const override;
	float scalarSampleTiled(double x, double y) const override;
	uint32_t getMapWidth() const override { return width; }
	uint32_t getMapHeight() const override { return height; }

	// Takes the size of a bitmap of 1 or 3 bytes per pixel; each value is
	// byte / 255 raised to gamma, and a single byte fills all three channels.
	void setFromBitmap(const Bitmap& bitmap, float gamma);
	// Resizes a bitmap of 3 or 4 bytes per pixel to the region x1 <= x < x2,
	// y1 <= y < y2 and writes each channel as value * 255, truncated and not
	// clamped: the low byte of the integer is kept. A fourth byte stays 0.
	void copyRegionToBitmap(Bitmap& bitmap, int x1, int y1, int x2, int y2) const;
	// Adds another picture of the same size, pixel by pixel.
	void addImage(const Image& other);

	// Blurs the picture in place with a Gaussian of standard deviation sigma,
	// rows and then columns, as tasks of the manager. Rows and columns wrap
	// around, as the tiled sampler does. A sigma that is not positive leaves
	// the picture as it is.
	void gaussianBlur(float sigma, TaskManager& task_manager);
	// Makes the final picture from this internal one: the border of
	// border_width pixels is dropped and every ss_factor by ss_factor pixels
	// become one, weighted by the filter. Output rows are tasks of the
	// manager.
	void downsampleImage(uint32_t ss_factor, uint32_t border_width, const FilterFunction& filter, Image& out,
		TaskManager& task_manager) const;

	// The chunked form: version 1, width, height, then the floats.
	void writeToStream(OutStream& stream) const;
	void readFromStream(InStream& stream);

private:
	// The new size with values that the caller overwrites, every one.
	void resizeForOverwrite(uint32_t new_width, uint32_t new_height);

	std::vector<float, UnclearedAllocator<float>> pixels;
	uint32_t width = 0;
	uint32_t height = 0;
};

} // namespace Velorn
