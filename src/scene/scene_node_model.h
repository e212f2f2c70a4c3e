#pragma once

#include "scene/emission_overrides.h"
#include "scene/keyframe.h"
#include "scene/scene_node.h"

namespace Velorn
{

class Rotation;
class SceneNodeMaterial;

// Places a mesh or a parametric surface in the world: a transform path, a
// list of materials for the geometry's material indices, and optional
// emission overrides per material. Written as model2.
class SceneNodeModel : public SceneNode
{
public:
	SceneNodeModel();

	unsigned getType() const override { return SceneNodeType::Model; }
	Reference<SceneNode> clone() const override;
	void updateReferences(const SceneNodeMap& map) override;
	// rotation must be set: it is written unchecked.
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	Vector<UID> getDependencyUIDs() const override;
	bool doIsEqual(const SceneNode& other) const override;

	void setGeometryUID(UID new_uid) { geometry_uid = new_uid; }
	// Also takes the node's UID as geometry_uid.
	void setGeometry(const Reference<SceneNode>& node);
	void setMaterials(const Vector<Reference<SceneNodeMaterial>>& m) { materials = m; }
	void setIESProfiles(const Vector<Reference<IESProfile>>& p) { ies_profiles = p; }
	void setEmissionScales(const Vector<Reference<EmissionScale>>& s) { emission_scales = s; }
	void setMaterialUIDs(const Vector<UID>& uids) { material_uids = uids; }
	void setMaterial(size_t index, const Reference<SceneNodeMaterial>& material) { materials[index] = material; }

	Vector<KeyFrame> keyframes;
	Reference<Rotation> rotation;
	double scale = 1;
	bool invisible_to_camera = false;
	Vector<Reference<IESProfile>> ies_profiles;
	UID geometry_uid;
	Reference<SceneNode> geometry;
	Vector<Reference<SceneNodeMaterial>> materials;
	Vector<UID> material_uids;
	Vector<Reference<EmissionScale>> emission_scales;

private:
	void bind(VisitOperation& op);
	void bindEmissionOverrideNames();
	UID materialUIDForName(const String& material_name) const;
	Reference<SceneNodeMaterial> materialForUID(UID material_uid) const;
	void checkMaterialCount() const;
	// Hands a walk on to the geometry (once per walk) and the materials.
	void passVisitOn(VisitOperation& op);
	void growBounds(VisitOperation& op) const;
	String failurePrefix() const;
};

} // namespace Velorn
