#include "support/master_buffer.h"

#include "support/binary_stream.h"
#include "support/exceptions.h"

namespace Velorn
{

namespace
{

const int32_t CHUNK_MARK = 100;
const int32_t END_MARK = 101;
const uint32_t MAX_NUM_LAYERS = 1000;

// A layer in the stream is at least its name's length and its picture's
// version, width and height.
const uint64_t MIN_LAYER_BYTES = 4 + 12;

std::string sizeText(uint64_t width, uint64_t height) { return std::to_string(width) + " x " + std::to_string(height); }

} // namespace

MasterBuffer::MasterBuffer(uint32_t internal_width_, uint32_t internal_height_, size_t layer_count, uint32_t final_width_,
	uint32_t final_height_, const std::vector<std::string>& names, bool render_foreground_alpha_)
	: layers(layer_count), internal_width(internal_width_), internal_height(internal_height_), final_width(final_width_),
	  final_height(final_height_), render_foreground_alpha(render_foreground_alpha_)
{
	for(size_t i = 0; i < layer_count; ++i)
	{
		layers[i].image.resize(internal_width, internal_height);
		if(i < names.size())
			layers[i].name = names[i];
	}
	if(render_foreground_alpha)
		alpha.resize(internal_width, internal_height, 1);
}

void MasterBuffer::addBuffer(const MasterBuffer& other)
{
	if(other.layers.size() != layers.size())
		throw Exception("Num layers differs");
	for(size_t i = 0; i < layers.size(); ++i)
		layers[i].image.addImage(other.layers[i].image);
	if(alpha.isEmpty() != other.alpha.isEmpty())
		throw Exception("Alpha channel presence differs");
	if(alpha.getWidth() != other.alpha.getWidth() || alpha.getHeight() != other.alpha.getHeight() ||
		alpha.getNumComponents() != other.alpha.getNumComponents())
		throw Exception("Alpha channel dimensions differ");
	float* values = alpha.getData();
	const float* other_values = other.alpha.getData();
	for(size_t i = 0; i < alpha.numValues(); ++i)
		values[i] += other_values[i];
}

void MasterBuffer::writeToStream(OutStream& stream) const
{
	stream.writeInt32(CHUNKED_FORM_VERSION);
	stream.writeInt32(CHUNK_MARK);
	stream.writeString("layers");
	stream.writeUInt32((uint32_t)layers.size());
	for(const MasterBufferLayer& layer : layers)
	{
		stream.writeString(layer.name);
		layer.image.writeToStream(stream);
	}
	if(!alpha.isEmpty())
	{
		stream.writeInt32(CHUNK_MARK);
		stream.writeString("alpha");
		alpha.writeToStream(stream);
	}
	stream.writeInt32(END_MARK);
}

void MasterBuffer::readFromStream(InStream& stream)
{
	readChunkedFormVersion(stream);
	alpha = ImageMapFloat();
	int32_t mark = stream.readInt32();
	while(mark == CHUNK_MARK)
	{
		const std::string name = stream.readString();
		if(name == "layers")
			readLayers(stream);
		else if(name == "alpha")
			readAlpha(stream);
		else
			throw Exception("Unknown channel name '" + name + "'");
		mark = stream.readInt32();
	}
	if(mark != END_MARK)
		throw Exception("Unknown chunk type '" + std::to_string(mark) + "'");
}

void MasterBuffer::readLayers(InStream& stream)
{
	const uint32_t count = stream.readUInt32();
	if(count > MAX_NUM_LAYERS)
		throw Exception("Too many layers.");
	checkStreamHolds(stream, {count, MIN_LAYER_BYTES}, "Layer count " + std::to_string(count));
	layers.resize(count);
	for(MasterBufferLayer& layer : layers)
	{
		layer.name = stream.readString();
		layer.image.readFromStream(stream);
		if(layer.image.getWidth() != internal_width || layer.image.getHeight() != internal_height)
			throw Exception("Layer size " + sizeText(layer.image.getWidth(), layer.image.getHeight()) +
				" does not match the buffer size " + sizeText(internal_width, internal_height) + ".");
	}
}

void MasterBuffer::readAlpha(InStream& stream)
{
	alpha.readFromStream(stream);
	if(alpha.getWidth() != internal_width || alpha.getHeight() != internal_height || alpha.getNumComponents() != 1)
		throw Exception("Alpha channel size " + sizeText(alpha.getWidth(), alpha.getHeight()) + " x " +
			std::to_string(alpha.getNumComponents()) + " does not match the buffer size " +
			sizeText(internal_width, internal_height) + " x 1.");
}

} // namespace Velorn
