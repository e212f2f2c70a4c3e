#pragma once

#include "scene/keyframe.h"
#include "scene/scene_node.h"

namespace Velorn
{

class SceneNodeMaterial;

// An analytic sphere on a transform path, with one material.
class SceneNodeSphere : public SceneNode
{
public:
	SceneNodeSphere();
	~SceneNodeSphere() override;

	unsigned getType() const override { return SceneNodeType::Sphere; }
	// Copies everything but the bound material; the copy binds anew by UID.
	Reference<SceneNode> clone() const override;
	void updateReferences(const SceneNodeMap& map) override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	bool references(const SceneNode* node) const override;
	Vector<UID> getDependencyUIDs() const override;
	bool doIsEqual(const SceneNode& other) const override;

	// The UID of the bound material, else the stored one.
	UID materialUID() const;

	Vector<KeyFrame> keyframes;
	double radius = 1;
	Reference<SceneNodeMaterial> material;
	UID material_uid;
};

} // namespace Velorn
