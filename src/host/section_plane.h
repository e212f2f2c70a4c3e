#pragma once

#include "c4d/node_data.h"

// The section plane object: a plane that cuts the scene at render time. In
// the editor it draws a large square; the export turns it into a section
// plane node.
class SectionPlane : public ObjectData
{
public:
	static NodeData* Alloc() { return new SectionPlane(); }

	bool Init(GeListNode* node) override;
	// The realtime edition has no object list: it hides the list, its mode
	// and its switch.
	bool GetDDescription(GeListNode* node, Description* description, int32_t& flags) override;
	// The object list, its mode and its switch only apply with culling on.
	bool GetDEnabling(GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags,
		const BaseContainer* itemdesc) override;
	DRAWRESULT Draw(BaseObject* op, DRAWPASS pass, BaseDraw* bd, BaseDrawHelp* bh) override;
};

bool RegisterSectionPlane();
