#pragma once

#include "c4d/node_data.h"

// The light tag: the emission of a host light as the renderer sees it (its
// spectrum, photometric scale, IES profile and layer). The export reads its
// parameters; Init gives a new tag its defaults.
class LightTag : public TagData
{
public:
	static NodeData* Alloc() { return new LightTag(); }

	bool Init(GeListNode* node) override;
};

bool RegisterLightTag();
