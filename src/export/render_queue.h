#pragma once

#include "c4d/filename.h"

#include <cstdint>
#include <memory>

class TiXmlDocument;

// The render queue of an animation: one item a frame, in frame order, each
// naming the frame's scene, its image, when to halt and the seed. The
// renderer renders the items one after the other.
class RenderQueue
{
public:
	RenderQueue();
	~RenderQueue();

	// output, when it has content, names the frame's image.
	void addItem(const Filename& scene, const Filename& output, double halt_time, double halt_spp, int32_t seed);
	// Writes the queue as a .vlq file; false when the file cannot be written.
	bool save(const Filename& file) const;

private:
	std::unique_ptr<TiXmlDocument> xml;
};
