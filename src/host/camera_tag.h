#pragma once

#include "c4d/node_data.h"

// The camera tag: the renderer's camera settings (exposure, aperture,
// filters, white point, tone mapping, render region) on a host camera. The
// export reads its parameters; Init gives a new tag its defaults.
class CameraTag : public TagData
{
public:
	static NodeData* Alloc() { return new CameraTag(); }

	bool Init(GeListNode* node) override;
};

// Registers the tag under its resource name; a missing name skips it, which
// counts as success.
bool RegisterCameraTag();
