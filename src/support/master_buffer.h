#pragma once

#include "support/image.h"
#include "support/image_map.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Velorn
{

class InStream;
class OutStream;

// One light layer of a render buffer: its picture and its name.
struct MasterBufferLayer
{
	Image image;
	std::string name;
};

// The renderer's accumulation buffer: one RGB float picture per light layer
// at the internal size (the final size plus a margin for the filter, times
// the supersampling factor), and an alpha channel when foreground alpha is
// rendered. Failures throw Exception.
class MasterBuffer
{
public:
	// layer_count pictures of the internal size; layer i takes names[i], or
	// an empty name when there are fewer names.
	MasterBuffer(uint32_t internal_width, uint32_t internal_height, size_t layer_count, uint32_t final_width,
		uint32_t final_height, const std::vector<std::string>& names, bool render_foreground_alpha);
	virtual ~MasterBuffer() = default;

	uint32_t getInternalWidth() const { return internal_width; }
	uint32_t getInternalHeight() const { return internal_height; }
	uint32_t getFinalWidth() const { return final_width; }
	uint32_t getFinalHeight() const { return final_height; }
	bool rendersForegroundAlpha() const { return render_foreground_alpha; }

	// Adds another buffer layer by layer, then its alpha.
	void addBuffer(const MasterBuffer& other);

	// The chunked form: version 1, a "layers" chunk, an "alpha" chunk when
	// there is alpha, the end mark.
	void writeToStream(OutStream& stream) const;
	// Reads the chunked form into this buffer. Each picture must have the
	// internal size; alpha is empty unless the stream has an "alpha" chunk.
	void readFromStream(InStream& stream);

	std::vector<MasterBufferLayer> layers;
	// One channel; empty when the buffer has no alpha.
	ImageMapFloat alpha;

private:
	void readLayers(InStream& stream);
	void readAlpha(InStream& stream);

	uint32_t internal_width;
	uint32_t internal_height;
	uint32_t final_width;
	uint32_t final_height;
	bool render_foreground_alpha;
};

} // namespace Velorn
