#pragma once

#include "c4d/node_data.h"

// The tags that only carry settings of one object for the export: its
// subdivision, whether it is an exit portal, and its compositing flags.
// Their descriptions are their files as they are (NodeData loads them).

// The subdivision tag: how the renderer subdivides and displaces the
// object's mesh.
class SubdivisionTag : public TagData
{
public:
	static NodeData* Alloc() { return new SubdivisionTag(); }

	bool Init(GeListNode* node) override;
	// The pixel threshold only applies with smoothing on.
	bool GetDEnabling(GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags,
		const BaseContainer* itemdesc) override;
};

// The exit portal tag: the object becomes a portal through which the
// background lights an interior. It has no defaults of its own.
class ExitPortalTag : public TagData
{
public:
	static NodeData* Alloc() { return new ExitPortalTag(); }
};

// The compositing and animation tag: hides the object and its children from
// the camera. It has no defaults of its own.
class CompositingTag : public TagData
{
public:
	static NodeData* Alloc() { return new CompositingTag(); }
};

bool RegisterSubdivisionTag();
bool RegisterExitPortalTag();
bool RegisterCompositingTag();
