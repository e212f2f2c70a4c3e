#pragma once

#include "scene/math_types.h"
#include "scene/scene_node.h"

namespace Velorn
{

// A plane that cuts away the geometry on its front side, for all objects or
// only for those of a list.
class SceneNodeSectionPlane : public SceneNode
{
public:
	enum ObjectListType : int
	{
		Include = 0,
		Exclude = 1
	};

	unsigned getType() const override { return SceneNodeType::SectionPlane; }
	Reference<SceneNode> clone() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	// Only OffsetUIDs acts, on the node's own UID: the UIDs of object_list
	// stay as they are.
	void doVisit(VisitOperation& op) override;
	bool doIsEqual(const SceneNode& other) const override;

	Vec3d point;
	Vec3d normal = Vec3d(0, 0, 1);
	bool enabled = true;
	bool cull_geometry = true;
	// Exclude, the default, is not written; any other value is written as
	// "include".
	ObjectListType object_list_type = Exclude;
	Vector<UID> object_list;

private:
	void writeObjectList(OStream& stream, unsigned depth) const;
};

} // namespace Velorn
