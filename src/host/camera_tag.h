#pragma once

#include "c4d/node_data.h"

// The camera tag: the renderer's camera settings (exposure, aperture,
// filters, white point, tone mapping, render region) on a host camera. The
// export reads its parameters; Init gives a new tag its defaults. In the
// editor it draws the render region over the view of its camera.
class CameraTag : public TagData
{
public:
	static NodeData* Alloc() { return new CameraTag(); }

	bool Init(GeListNode* node) override;
	// A camera keeps no scale once its tag goes.
	void Free(GeListNode* node) override;
	// Shows the groups that the tone mapping, the aperture, the filters and
	// the region switch call for.
	bool GetDDescription(GeListNode* node, Description* description, int32_t& flags) override;
	bool GetDEnabling(GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags,
		const BaseContainer* itemdesc) override;
	// Keeps the exposure time and the f-number of each read.
	bool GetDParameter(GeListNode* node, const DescID& id, GeData& t_data, int32_t& flags) override;
	// The render region as a red rectangle over the view, when the region
	// is on and the view looks through the tag's camera.
	bool Draw(BaseTag* tag, BaseObject* op, BaseDraw* bd, BaseDrawHelp* bh) override;

	// The exposure divisor (1926) and f-number (1927) as the last parameter
	// read found them.
	double exposureDivisor() const { return exposure_divisor; }
	double fNumber() const { return f_number; }

private:
	double exposure_divisor = 0;
	double f_number = 0;
};

// Registers the tag under its resource name; a missing name skips it, which
// counts as success.
bool RegisterCameraTag();
