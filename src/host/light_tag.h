#pragma once

#include "c4d/base_bitmap.h"
#include "c4d/node_data.h"
#include "host/ies_preview.h"

#include <memory>

// The light tag: the emission of a host light as the renderer sees it (its
// spectrum, photometric scale, IES profile and layer). The export reads its
// parameters; Init gives a new tag its defaults. Its button renders a
// preview of the IES profile, which its gadget shows.
class LightTag : public TagData
{
public:
	static NodeData* Alloc() { return new LightTag(); }

	bool Init(GeListNode* node) override;
	// Fills the layer cycle and shows the spectrum's group and the entries
	// that the switches call for; the realtime edition has no layers.
	bool GetDDescription(GeListNode* node, Description* description, int32_t& flags) override;
	// The preview button renders the preview and shows it; the gadget's
	// refresh loads the preview's picture.
	bool Message(GeListNode* node, int32_t type, void* data) override;
	// The gadget's value is its picture, which is not stored in the tag's
	// parameters.
	bool GetDParameter(GeListNode* node, const DescID& id, GeData& t_data, int32_t& flags) override;
	bool SetDParameter(GeListNode* node, const DescID& id, const GeData& t_data, int32_t& flags) override;

	// How the last press of the preview button went.
	IesPreviewOutcome lastPreview() const { return last_preview; }

private:
	// Loads the preview file (1311) into the gadget when the file exists.
	void loadPreview(GeListNode* node);

	std::shared_ptr<const BaseBitmap> preview;
	IesPreviewOutcome last_preview = IesPreviewOutcome::NoProfile;
};

bool RegisterLightTag();
