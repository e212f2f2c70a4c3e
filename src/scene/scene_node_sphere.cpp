#include "scene/scene_node_sphere.h"

#include "scene/scene_node_material.h"
#include "scene/scene_node_root.h"
#include "scene/transform_bounds.h"
#include "scene/xml_write.h"
#include "support/exceptions.h"

namespace Velorn
{

SceneNodeSphere::SceneNodeSphere() { name = "Sphere"; }

SceneNodeSphere::~SceneNodeSphere() = default;

UID SceneNodeSphere::materialUID() const { return material.nonNull() ? material->uid : material_uid; }

Reference<SceneNode> SceneNodeSphere::clone() const
{
	Reference<SceneNodeSphere> copy(new SceneNodeSphere());
	copyBaseFieldsTo(*copy);
	copy->keyframes = keyframes;
	copy->radius = radius;
	copy->material_uid = materialUID();
	return copy;
}

void SceneNodeSphere::updateReferences(const SceneNodeMap& map)
{
	if(material.isNull())
		return;
	const Reference<SceneNode>* replacement = map.find(material->uid);
	if(replacement && (*replacement)->getType() == SceneNodeType::Material)
		material = replacement->downcast<SceneNodeMaterial>();
}

void SceneNodeSphere::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	using namespace XMLWrite;
	const unsigned d = depth + 1;
	writeOpenTag(stream, depth, "sphere");
	writeUIDAndName(stream, d);
	for(const KeyFrame& keyframe : keyframes)
		keyframe.writeXML(stream, d);
	writeDouble(stream, d, "radius", radius);
	writeUID(stream, d, "material_uid", materialUID());
	writeCloseTag(stream, depth, "sphere");
}

void SceneNodeSphere::doVisit(VisitOperation& op)
{
	switch(op.type)
	{
	case VisitOperation::Bind:
		if(material.isNull())
		{
			SceneNodeRoot* root = getRoot();
			if(!root)
				throw VelornException("While binding sphere material: root node was NULL");
			material = root->findMaterial(material_uid);
		}
		break;
	case VisitOperation::GetDependencies:
		if(material.nonNull())
			material->doVisit(op);
		break;
	case VisitOperation::GetBounds:
		growBoundsByMovingBox(op, Vec3d(-radius, -radius, -radius), Vec3d(radius, radius, radius), Matrix3d(), keyframes);
		break;
	case VisitOperation::OffsetUIDs:
		uid = uid + op.uid_offset;
		material_uid = material_uid + op.uid_offset;
		break;
	default:
		break;
	}
}

bool SceneNodeSphere::references(const SceneNode* node) const { return material.getPointer() == node; }

Vector<UID> SceneNodeSphere::getDependencyUIDs() const
{
	Vector<UID> uids;
	uids.push_back(materialUID());
	return uids;
}

bool SceneNodeSphere::doIsEqual(const SceneNode& other) const
{
	return equalByBaseFieldsOnly(other, "TODO: IMPLEMENT SceneNodeSphere::doIsEqual()\n");
}

} // namespace Velorn
