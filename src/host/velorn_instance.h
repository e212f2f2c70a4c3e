#pragma once

#include "c4d/node_data.h"
#include "c4d/vector_matrix.h"

class BaseDraw;
class BaseDrawHelp;
class BaseObject;

// The instance object: stands for a copy of its target object in the
// renderer's scene, without a copy of its mesh. In the editor it draws its
// target's polygon objects at its own place, as boxes, wires or shaded, and
// makes no geometry; the export turns it into models of the target.
class VelornInstance : public ObjectData
{
public:
	static NodeData* Alloc() { return new VelornInstance(); }

	bool Init(GeListNode* node) override;
	bool GetDDescription(GeListNode* node, Description* description, int32_t& flags) override;
	// The target's box; 0 for a target that holds the instance, and a box
	// of 50 on each side without a target.
	void GetDimension(BaseObject* op, Vector* mp, Vector* rad) override;
	DRAWRESULT Draw(BaseObject* op, DRAWPASS pass, BaseDraw* bd, BaseDrawHelp* bh) override;
	// An empty host object as the cache while a target is set and the host
	// asks for one; no geometry of its own.
	BaseObject* GetVirtualObjects(BaseObject* op, HierarchyHelp* hh) override;
};

// The draw modes of the instance (parameter 10011): 10013 gives wires,
// 10014 shaded, anything else the bounding box.
enum
{
	INSTANCE_DRAW_BOX = 0,
	INSTANCE_DRAW_WIRES = 1,
	INSTANCE_DRAW_SHADED = 2,
};
int32_t instanceDrawMode(const BaseObject* instance);

// The instance's target, or null when the link is empty or the target's
// tree (the target, its children and its following siblings, all the way
// down) holds the instance itself, which would then draw itself.
BaseObject* instanceTarget(const BaseObject* instance);

// Draws op and its following siblings, each with its children, in the
// mode: an instance draws its target, a generator or deformed object its
// cache, and a polygon object its box, edges or shaded polygons in the
// view's colour for it. up is the matrix the objects' local matrices are
// relative to.
void drawInstanceWires(BaseObject* op, BaseDraw* bd, BaseDrawHelp* bh, int32_t mode, const Matrix& up);

bool RegisterVelornInstance();
