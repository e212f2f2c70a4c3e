#include "support/image_map.h"

#include "support/binary_stream.h"

#include <string>

namespace Velorn
{

template <class V, class ComponentValueTraits>
void ImageMap<V, ComponentValueTraits>::resize(uint32_t new_width, uint32_t new_height, uint32_t new_num_components)
{
	width = new_width;
	height = new_height;
	num_components = new_num_components;
	data.assign((size_t)width * height * num_components, V());
}

template <class V, class ComponentValueTraits>
float ImageMap<V, ComponentValueTraits>::sampleChannel(const TiledSamplePoint& point, uint32_t channel) const
{
	const V* values = data.data();
	const uint32_t stride = num_components;
	return point.sum([values, stride, channel](size_t i) { return ComponentValueTraits::toFloat(values[i * stride + channel]); });
}

template <class V, class ComponentValueTraits>
Colour3f ImageMap<V, ComponentValueTraits>::vec3SampleTiled(double x, double y) const
{
	if(data.empty())
		return Colour3f{0, 0, 0};
	const TiledSamplePoint point = tiledSamplePoint(x, y, width, height);
	if(num_components < 3)
	{
		const float grey = sampleChannel(point, 0);
		return Colour3f{grey, grey, grey};
	}
	return Colour3f{sampleChannel(point, 0), sampleChannel(point, 1), sampleChannel(point, 2)};
}

template <class V, class ComponentValueTraits>
float ImageMap<V, ComponentValueTraits>::scalarSampleTiled(double x, double y) const
{
	if(data.empty())
		return 0;
	if(num_components < 3)
		return sampleChannel(tiledSamplePoint(x, y, width, height), 0);
	const Colour3f colour = vec3SampleTiled(x, y);
	return (colour.r + colour.g + colour.b) * (1.0f / 3.0f);
}

template <class V, class ComponentValueTraits>
void ImageMap<V, ComponentValueTraits>::writeToStream(OutStream& stream) const
{
	stream.writeInt32(CHUNKED_FORM_VERSION);
	stream.writeUInt32(width);
	stream.writeUInt32(height);
	stream.writeUInt32(num_components);
	stream.writeData(data.data(), data.size() * sizeof(V));
}

template <class V, class ComponentValueTraits>
void ImageMap<V, ComponentValueTraits>::readFromStream(InStream& stream)
{
	readChunkedFormVersion(stream);
	const uint32_t new_width = stream.readUInt32();
	const uint32_t new_height = stream.readUInt32();
	const uint32_t new_num_components = stream.readUInt32();
	checkStreamHolds(stream, {new_width, new_height, new_num_components, sizeof(V)},
		"Image map size " + std::to_string(new_width) + " x " + std::to_string(new_height) + " x " +
			std::to_string(new_num_components));
	resize(new_width, new_height, new_num_components);
	stream.readData(data.data(), data.size() * sizeof(V));
}

template class ImageMap<float, FloatComponentValueTraits>;

} // namespace Velorn
