#include "scene/scene_node_model.h"

#include "scene/rotation.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_root.h"
#include "scene/transform_bounds.h"
#include "scene/xml_write.h"
#include "support/exceptions.h"

namespace Velorn
{

SceneNodeModel::SceneNodeModel() { name = "Model"; }

void SceneNodeModel::setGeometry(const Reference<SceneNode>& node)
{
	geometry = node;
	geometry_uid = node->uid;
}

namespace
{

template <class T>
Vector<Reference<T>> copiesOf(const Vector<Reference<T>>& values)
{
	Vector<Reference<T>> copies;
	for(const Reference<T>& v : values)
		copies.push_back(Reference<T>(new T(*v)));
	return copies;
}

} // namespace

Reference<SceneNode> SceneNodeModel::clone() const
{
	Reference<SceneNodeModel> copy(new SceneNodeModel());
	copyBaseFieldsTo(*copy);
	copy->keyframes = keyframes;
	copy->rotation = rotation.nonNull() ? rotation->clone() : Reference<Rotation>();
	copy->scale = scale;
	copy->invisible_to_camera = invisible_to_camera;
	copy->ies_profiles = copiesOf(ies_profiles);
	copy->emission_scales = copiesOf(emission_scales);
	copy->materials = materials;
	copy->geometry = geometry;
	copy->geometry_uid = geometry_uid;
	copy->material_uids = material_uids;
	return copy;
}

void SceneNodeModel::updateReferences(const SceneNodeMap& map)
{
	for(Reference<SceneNodeMaterial>& material : materials)
	{
		if(material.isNull())
			continue;
		const Reference<SceneNode>* replacement = map.find(material->uid);
		if(replacement && (*replacement)->getType() == SceneNodeType::Material)
			material = replacement->downcast<SceneNodeMaterial>();
	}
}

void SceneNodeModel::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	using namespace XMLWrite;
	const unsigned d = depth + 1;
	writeOpenTag(stream, depth, "model2");
	writeUIDAndName(stream, d);
	writeUID(stream, d, "geometry_uid", geometry.nonNull() ? geometry->uid : geometry_uid);
	writeDouble(stream, d, "scale", scale);
	if(invisible_to_camera)
		writeBool(stream, d, "invisible_to_camera", true);
	writeOpenTag(stream, d, "rotation");
	rotation->writeXML(stream, d + 1);
	writeCloseTag(stream, d, "rotation");
	for(const KeyFrame& keyframe : keyframes)
		keyframe.writeXML(stream, d);
	// Only bound materials are written: a model that holds just UIDs writes
	// an empty list.
	writeOpenTag(stream, d, "materials");
	for(const Reference<SceneNodeMaterial>& material : materials)
		writeUID(stream, d + 1, "material_uid", material->uid);
	writeCloseTag(stream, d, "materials");
	for(const Reference<IESProfile>& profile : ies_profiles)
		profile->writeXML(stream, d, context);
	for(const Reference<EmissionScale>& emission_scale : emission_scales)
		emission_scale->writeXML(stream, d);
	writeCloseTag(stream, depth, "model2");
}

void SceneNodeModel::doVisit(VisitOperation& op)
{
	switch(op.type)
	{
	case VisitOperation::Bind:
		bind(op);
		passVisitOn(op);
		break;
	case VisitOperation::GetDependencies:
		passVisitOn(op);
		break;
	case VisitOperation::UpdatePaths:
		for(const Reference<IESProfile>& profile : ies_profiles)
			profile->path = op.mappedPath(profile->path);
		break;
	case VisitOperation::GetBounds:
		growBounds(op);
		break;
	case VisitOperation::OffsetUIDs:
		uid = uid + op.uid_offset;
		geometry_uid = geometry_uid + op.uid_offset;
		for(UID& material_uid : material_uids)
			material_uid = material_uid + op.uid_offset;
		break;
	case VisitOperation::Load:
		break;
	}
}

String SceneNodeModel::failurePrefix() const
{
	return "While processing node '" + getName() + "', UID " + uid.toString().c_str();
}

void SceneNodeModel::bind(VisitOperation&)
{
	SceneNodeRoot* root = getRoot();
	if(!root)
		throw VelornException("While binding geometry: root node was NULL");

	if(geometry.isNull())
	{
		SceneNode* found = root->findChild(geometry_uid);
		if(!found)
			throw VelornException((failurePrefix() + ":  Failed to find geometry for UID " + geometry_uid.toString().c_str()).str());
		if(found->getType() != SceneNodeType::Mesh && found->getType() != SceneNodeType::ParametricSurface)
			throw VelornException("Referenced node did not have type SceneNodeMesh or SceneNodeParametricSurface");
		geometry = found;
	}

	if(geometry->getType() == SceneNodeType::Mesh)
		bindEmissionOverrideNames();

	for(const Reference<EmissionScale>& emission_scale : emission_scales)
		if(emission_scale->material.isNull())
		{
			if(!emission_scale->material_uid.valid())
				throw SceneParserExcep("Failed binding material to Emission scale in model " + getName().str() + ": Invalid UID.");
			emission_scale->material = materialForUID(emission_scale->material_uid);
		}
	for(const Reference<IESProfile>& profile : ies_profiles)
		if(profile->material.isNull())
		{
			if(!profile->material_uid.valid())
				throw SceneParserExcep("Failed binding material to IES profile in model " + getName().str() + ": Invalid UID.");
			profile->material = materialForUID(profile->material_uid);
		}

	if(materials.empty())
	{
		materials.resize(material_uids.size());
		for(size_t i = 0; i < materials.size(); ++i)
			materials[i] = materialForUID(material_uids[i]);
	}

	checkMaterialCount();
}

void SceneNodeModel::bindEmissionOverrideNames()
{
	for(const Reference<EmissionScale>& emission_scale : emission_scales)
		if(emission_scale->material.isNull() && !emission_scale->material_uid.valid())
			emission_scale->material_uid = materialUIDForName(emission_scale->material_name);
	for(const Reference<IESProfile>& profile : ies_profiles)
		if(profile->material.isNull() && !profile->material_uid.valid())
			profile->material_uid = materialUIDForName(profile->material_name);
}

UID SceneNodeModel::materialUIDForName(const String& material_name) const
{
	const SceneNodeMesh* mesh_node = static_cast<const SceneNodeMesh*>(geometry.getPointer());
	size_t index = 0;
	bool found = false;
	if(mesh_node->mesh.nonNull())
		for(; index < mesh_node->mesh->used_materials.size(); ++index)
			if(mesh_node->mesh->used_materials[index] == material_name)
			{
				found = true;
				break;
			}
	if(!found)
		throw SceneParserExcep("Material '" + material_name.str() + "' is not defined on mesh " + mesh_node->getName().str() + ".");

	// The words of the last message do not fit its case; files and tools
	// know it in this form.
	if(!materials.empty() && !material_uids.empty())
		throw SceneParserExcep("No materials assigned to model " + getName().str() + ".");
	const bool by_uid = materials.empty();
	const size_t available = by_uid ? material_uids.size() : materials.size();
	if(index >= available || (!by_uid && materials[index].isNull()))
		throw SceneParserExcep("Model " + getName().str() + " has no material for '" + material_name.str() + "' (material index " +
							   toString((uint64_t)index) + ").");
	return by_uid ? material_uids[index] : materials[index]->uid;
}

Reference<SceneNodeMaterial> SceneNodeModel::materialForUID(UID material_uid) const
{
	SceneNode* found = getRoot()->findChild(material_uid);
	if(!found)
		throw VelornException((failurePrefix() + ":  Failed to find material for UID " + material_uid.toString().c_str()).str());
	if(found->getType() != SceneNodeType::Material)
		throw VelornException((failurePrefix() + ":  Referenced node (UID " + material_uid.toString().c_str() +
							   ") did not have type SceneNodeMaterial")
								  .str());
	return Reference<SceneNodeMaterial>(static_cast<SceneNodeMaterial*>(found));
}

void SceneNodeModel::checkMaterialCount() const
{
	if(geometry->getType() != SceneNodeType::Mesh)
		return;
	const SceneNodeMesh* mesh_node = static_cast<const SceneNodeMesh*>(geometry.getPointer());
	if(mesh_node->mesh.isNull() || materials.size() >= mesh_node->mesh->num_materials_referenced)
		return;
	throw VelornException("Model (UID " + uid.toString() + ", name '" + getName().str() +
						  "') has a different number of materials assigned than the geometry references.\n" +
						  "num materials assigned: " + toString((uint64_t)materials.size()) +
						  ", geometry num materials referenced: " + toString(mesh_node->mesh->num_materials_referenced) +
						  ".  SDK Users: make sure you call endOfModel() on VelornMesh objects");
}

void SceneNodeModel::passVisitOn(VisitOperation& op)
{
	if(geometry.nonNull() && !op.visited.contains(geometry->uid))
	{
		geometry->doVisit(op);
		op.visited.insert(geometry->uid, true);
	}
	for(const Reference<IESProfile>& profile : ies_profiles)
		op.dependency_paths.push_back(profile->path);
	for(const Reference<SceneNodeMaterial>& material : materials)
		if(material.nonNull())
			material->doVisit(op);
}

void SceneNodeModel::growBounds(VisitOperation& op) const
{
	if(geometry.isNull() || geometry->getType() != SceneNodeType::Mesh)
	{
		// A parametric surface has an empty box at the origin.
		op.growBounds(0, 0, 0);
		return;
	}
	const SceneNodeMesh* mesh_node = static_cast<const SceneNodeMesh*>(geometry.getPointer());
	if(mesh_node->mesh.isNull() || mesh_node->mesh->verts.empty())
		return;
	Matrix3d m = rotation.nonNull() ? rotation->getMatrix() : Matrix3d();
	m = m * scale;
	const Vec3f& lo = mesh_node->mesh->aabb_min;
	const Vec3f& hi = mesh_node->mesh->aabb_max;
	growBoundsByMovingBox(op, Vec3d(lo.x, lo.y, lo.z), Vec3d(hi.x, hi.y, hi.z), m, keyframes);
}

Vector<UID> SceneNodeModel::getDependencyUIDs() const
{
	Vector<UID> uids;
	uids.push_back(geometry.nonNull() ? geometry->uid : geometry_uid);
	for(const Reference<SceneNodeMaterial>& material : materials)
		if(material.nonNull())
			uids.push_back(material->uid);
	return uids;
}

bool SceneNodeModel::doIsEqual(const SceneNode& other) const
{
	if(!baseFieldsEqual(other) || other.getType() != SceneNodeType::Model)
		return false;
	const SceneNodeModel& o = static_cast<const SceneNodeModel&>(other);
	if(geometry.isNull() != o.geometry.isNull())
		return false;
	if(geometry.nonNull() && !geometry->isEqual(*o.geometry))
		return false;
	if(scale != o.scale || keyframes != o.keyframes || materials.size() != o.materials.size())
		return false;
	for(size_t i = 0; i < materials.size(); ++i)
		if(!materials[i]->doIsEqual(*o.materials[i]))
			return false;
	return true;
}

} // namespace Velorn
