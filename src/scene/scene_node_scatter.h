#pragma once

#include "scene/scene_node.h"

namespace Velorn
{

class SceneNodeMaterial;

// Instances of a geometry strewn over the surface of the objects that use a
// material, by a density and a shader. The material lists the scatter, and
// binding tells the scatter which material it grows on.
class SceneNodeScatter : public SceneNode
{
public:
	// Named "Scatter " and a process-wide running number.
	SceneNodeScatter();
	~SceneNodeScatter() override;

	unsigned getType() const override { return SceneNodeType::Scatter; }
	Reference<SceneNode> clone() const override;
	// Every entry of materials must be set: they are written unchecked.
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	Vector<UID> getDependencyUIDs() const override;
	bool doIsEqual(const SceneNode& other) const override;

	String shader;
	double density = 0;
	uint32_t seed = 0;
	UID geometry_uid;
	Vector<UID> material_uids;
	// As given by the exporter or the parser; this is what is written.
	UID target_object_uid;
	// Set when a material that lists this scatter binds.
	UID bound_target_uid;
	Reference<SceneNode> geometry;
	Vector<Reference<SceneNodeMaterial>> materials;

private:
	void bind();
};

} // namespace Velorn
