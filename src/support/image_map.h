#pragma once

#include "support/map2d.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Velorn
{

class InStream;
class OutStream;

// How the values of an image map turn into floats for sampling.
struct FloatComponentValueTraits
{
	static float toFloat(float value) { return value; }
};

// A picture with any number of channels, interleaved by pixel, rows from the
// top. Maps of 1 and 2 channels sample as grey from their first channel;
// wider ones give their first three channels as the colour. The library
// uses ImageMapFloat; failures throw Exception.
template <class V, class ComponentValueTraits>
class ImageMap : public Map2D
{
public:
	ImageMap() = default;
	// Every value 0.
	ImageMap(uint32_t width_, uint32_t height_, uint32_t num_components_) { resize(width_, height_, num_components_); }

	void resize(uint32_t new_width, uint32_t new_height, uint32_t new_num_components);
	bool isEmpty() const { return data.empty(); }

	uint32_t getWidth() const { return width; }
	uint32_t getHeight() const { return height; }
	uint32_t getNumComponents() const { return num_components; }
	V* getData() { return data.data(); }
	const V* getData() const { return data.data(); }
	size_t numValues() const { return data.size(); }
	V* getPixel(uint32_t x, uint32_t y) { return data.data() + ((size_t)width * y + x) * num_components; }
	const V* getPixel(uint32_t x, uint32_t y) const { return data.data() + ((size_t)width * y + x) * num_components; }

	Colour3f vec3SampleTiled(double x, double y) const override;
	float scalarSampleTiled(double x, double y) const override;
	uint32_t getMapWidth() const override { return width; }
	uint32_t getMapHeight() const override { return height; }

	// The chunked form: version 1, width, height, number of components, then
	// the values.
	void writeToStream(OutStream& stream) const;
	void readFromStream(InStream& stream);

private:
	float sampleChannel(const TiledSamplePoint& point, uint32_t channel) const;

	uint32_t width = 0;
	uint32_t height = 0;
	uint32_t num_components = 0;
	std::vector<V> data;
};

using ImageMapFloat = ImageMap<float, FloatComponentValueTraits>;
extern template class ImageMap<float, FloatComponentValueTraits>;

} // namespace Velorn
