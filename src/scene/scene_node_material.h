#pragma once

#include "scene/material.h"
#include "scene/scene_node.h"

namespace Velorn
{

// A material's place in the scene: a UID, the material and the scatter
// nodes that grow on it. Its name is the material's.
class SceneNodeMaterial : public SceneNode
{
public:
	// Holds a new DiffuseMaterial named "Material".
	SceneNodeMaterial();
	explicit SceneNodeMaterial(const Reference<Material>& material_);

	unsigned getType() const override { return SceneNodeType::Material; }
	void setName(const String& new_name) override;
	const String& getName() const override;
	// Base fields only: the copy holds a new DiffuseMaterial with this
	// node's name.
	Reference<SceneNode> clone() const override;
	void updateReferences(const SceneNodeMap& map) override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	unsigned getHighestEmissionLayer() const override;
	bool references(const SceneNode* node) const override;
	// The scatters' dependencies, then the material's.
	Vector<UID> getDependencyUIDs() const override;
	// Compares UID and name only.
	bool doIsEqual(const SceneNode& other) const override;

	Reference<Material> material;
	Vector<UID> scatter_uids;
	// The nodes of scatter_uids, made anew by every binding.
	Vector<SceneNode*> scatters;

private:
	void bindScatters();
};

} // namespace Velorn
