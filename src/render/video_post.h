#pragma once

#include "c4d/node_data.h"

// The renderer's video post: its parameters are the render settings of a
// document, which the export reads. Init gives a new one its defaults.
class VelornVideoPost : public VideoPostData
{
public:
	static NodeData* Alloc() { return new VelornVideoPost(); }

	bool Init(GeListNode* node) override;
};

// Registers the video post under its resource name.
bool RegisterVelornVideoPost();
