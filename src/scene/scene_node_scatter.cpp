#include "scene/scene_node_scatter.h"

#include "scene/scene_node_material.h"
#include "scene/scene_node_root.h"
#include "scene/xml_write.h"
#include "support/exceptions.h"
#include "support/string_utils.h"

#include <atomic>

namespace Velorn
{

namespace
{

std::atomic<uint32_t> scatter_counter(0);

} // namespace

SceneNodeScatter::SceneNodeScatter() { name = "Scatter " + toString(scatter_counter++); }

SceneNodeScatter::~SceneNodeScatter() = default;

Reference<SceneNode> SceneNodeScatter::clone() const
{
	printNotImplemented("SceneNodeScatter::clone() not yet implemented");
	return Reference<SceneNode>();
}

void SceneNodeScatter::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	using namespace XMLWrite;
	const unsigned d = depth + 1;
	writeOpenTag(stream, depth, "scatter");
	writeUIDAndName(stream, d);
	writeWrappedString(stream, d, "shader", shader);
	writeDouble(stream, d, "density", density);
	writeInt(stream, d, "seed", (int32_t)seed);
	writeUID(stream, d, "geometry_uid", geometry_uid);
	writeOpenTag(stream, d, "materials");
	for(const Reference<SceneNodeMaterial>& material : materials)
		writeUID(stream, d + 1, "material_uid", material->uid);
	writeCloseTag(stream, d, "materials");
	writeUID(stream, d, "target_object_uid", target_object_uid);
	writeCloseTag(stream, depth, "scatter");
}

void SceneNodeScatter::bind()
{
	SceneNodeRoot* root = getRoot();
	if(!root)
		throw VelornException("While binding scatter geometry: root node was NULL");
	if(geometry.isNull())
	{
		SceneNode* found = root->findChild(geometry_uid);
		if(!found)
			throw VelornException("While processing node '" + getName().str() + "', UID " + uid.toString() +
								  ":  Failed to find geometry for UID " + geometry_uid.toString());
		if(found->getType() != SceneNodeType::Mesh && found->getType() != SceneNodeType::ParametricSurface)
			throw VelornException("Referenced node did not have type SceneNodeMesh or SceneNodeParametricSurface");
		geometry = found;
	}
	if(materials.empty())
	{
		materials.resize(material_uids.size());
		for(size_t i = 0; i < materials.size(); ++i)
			materials[i] = root->findMaterial(material_uids[i]);
	}
}

void SceneNodeScatter::doVisit(VisitOperation& op)
{
	if(op.type == VisitOperation::Bind)
		bind();
	else if(op.type == VisitOperation::OffsetUIDs)
	{
		uid = uid + op.uid_offset;
		target_object_uid = target_object_uid + op.uid_offset;
		bound_target_uid = bound_target_uid + op.uid_offset;
		geometry_uid = geometry_uid + op.uid_offset;
		for(UID& material_uid : material_uids)
			material_uid = material_uid + op.uid_offset;
	}
}

Vector<UID> SceneNodeScatter::getDependencyUIDs() const
{
	Vector<UID> uids;
	uids.push_back(geometry_uid);
	for(const UID& material_uid : material_uids)
		uids.push_back(material_uid);
	return uids;
}

bool SceneNodeScatter::doIsEqual(const SceneNode& other) const
{
	return equalByBaseFieldsOnly(other, "TODO: IMPLEMENT SceneNodeScatter::doIsEqual()\n");
}

} // namespace Velorn
