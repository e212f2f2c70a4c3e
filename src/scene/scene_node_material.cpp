#include "scene/scene_node_material.h"

#include "scene/material_channels.h"
#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_glass.h"
#include "scene/scene_node_root.h"
#include "scene/scene_node_scatter.h"
#include "scene/value_helpers.h"
#include "scene/xml_write.h"
#include "support/exceptions.h"

namespace Velorn
{

using namespace XMLWrite;

namespace
{

// Takes the node of the map that stands under the target's UID, if it has
// the right type.
template <class Node>
void retarget(Reference<Node>& target, UID stored, const SceneNodeMap& map, unsigned type)
{
	const Reference<SceneNode>* replacement = map.find(targetUID(stored, target.getPointer()));
	if(replacement && (*replacement)->getType() == type)
		target = static_cast<Node*>(replacement->getPointer());
}

void retargetMaterial(Reference<SceneNodeMaterial>& target, UID stored, const SceneNodeMap& map)
{
	retarget(target, stored, map, SceneNodeType::Material);
}

// For the classes with an internal medium.
template <class M>
void retargetInternalMedium(Material& material, const SceneNodeMap& map)
{
	M& m = static_cast<M&>(material);
	retarget(m.internal_medium, m.internal_medium_uid, map, SceneNodeType::Medium);
}

} // namespace

SceneNodeMaterial::SceneNodeMaterial() : material(new DiffuseMaterial()) { material->name = "Material"; }

SceneNodeMaterial::SceneNodeMaterial(const Reference<Material>& material_) : material(material_) {}

void SceneNodeMaterial::setName(const String& new_name) { setHeldName(material, name, new_name); }

const String& SceneNodeMaterial::getName() const { return heldName(material, name); }

Reference<SceneNode> SceneNodeMaterial::clone() const
{
	Reference<SceneNodeMaterial> copy(new SceneNodeMaterial());
	copyBaseFieldsTo(*copy);
	return copy;
}

void SceneNodeMaterial::updateReferences(const SceneNodeMap& map)
{
	if(material.isNull())
		return;
	switch(material->getType())
	{
	case MaterialType::Blend:
	{
		BlendMaterial& blend = static_cast<BlendMaterial&>(*material);
		retargetMaterial(blend.a_mat, blend.a_mat_uid, map);
		retargetMaterial(blend.b_mat, blend.b_mat_uid, map);
		break;
	}
	case MaterialType::Coating:
	{
		CoatingMaterial& coating = static_cast<CoatingMaterial&>(*material);
		retargetMaterial(coating.substrate_material, coating.substrate_material_uid, map);
		break;
	}
	case MaterialType::DoubleSidedThin:
	{
		DoubleSidedThinMaterial& sides = static_cast<DoubleSidedThinMaterial&>(*material);
		retargetMaterial(sides.front_material, sides.front_material_uid, map);
		retargetMaterial(sides.back_material, sides.back_material_uid, map);
		break;
	}
	case MaterialType::DiffuseTransmitter:
		retargetInternalMedium<DiffuseTransmitter>(*material, map);
		break;
	case MaterialType::Specular:
		retargetInternalMedium<SpecularMaterial>(*material, map);
		break;
	case MaterialType::GlossyTransparent:
		retargetInternalMedium<GlossyTransparent>(*material, map);
		break;
	default:
		break;
	}
}

void SceneNodeMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeOpenTag(stream, depth, "material");
	if(context.write_uids)
		writeUID(stream, depth + 1, "uid", uid);
	writeString(stream, depth + 1, "name", getName());
	if(material.nonNull())
		writeMaterialBody(*material, stream, depth, context);
	for(const SceneNode* scatter : scatters)
	{
		writeOpenTag(stream, depth + 1, "scatter_uids");
		writeUID(stream, depth + 2, "uid", scatter->uid);
		writeCloseTag(stream, depth + 1, "scatter_uids");
	}
	writeCloseTag(stream, depth, "material");
}

void SceneNodeMaterial::doVisit(VisitOperation& op)
{
	if(op.type == VisitOperation::OffsetUIDs)
	{
		uid = uid + op.uid_offset;
		for(UID& scatter_uid : scatter_uids)
			scatter_uid = scatter_uid + op.uid_offset;
	}
	else if(op.type == VisitOperation::Bind)
		bindScatters();
	if(material.nonNull())
		visitMaterial(*material, op, this);
}

// The list is made anew, so that a node bound twice (a second finalise, or
// a blend handing its walk to this node) lists each scatter once.
void SceneNodeMaterial::bindScatters()
{
	scatters.clear();
	for(const UID& scatter_uid : scatter_uids)
	{
		SceneNodeRoot* root = getRoot();
		if(!root)
			throw VelornException("While binding scatter node: root node was NULL");
		SceneNode* scatter = root->findChild(scatter_uid);
		if(!scatter)
			throw VelornException("While processing node '" + getName().str() + "', UID " + uid.toString() +
								  ":  Failed to find scatter node for UID " + scatter_uid.toString());
		if(scatter->getType() != SceneNodeType::Scatter)
			throw VelornException("Referenced node did not have type SceneNodeScatter");
		static_cast<SceneNodeScatter*>(scatter)->bound_target_uid = uid;
		scatters.push_back(scatter);
	}
}

unsigned SceneNodeMaterial::getHighestEmissionLayer() const { return material.nonNull() ? material->getLayer() : 0; }

bool SceneNodeMaterial::references(const SceneNode* node) const { return material.nonNull() && material->references(node); }

Vector<UID> SceneNodeMaterial::getDependencyUIDs() const
{
	Vector<UID> uids;
	for(const SceneNode* scatter : scatters)
		for(const UID& dependency : scatter->getDependencyUIDs())
			uids.push_back(dependency);
	if(material.nonNull())
		for(const UID& dependency : material->getDependencyUIDs())
			uids.push_back(dependency);
	return uids;
}

bool SceneNodeMaterial::doIsEqual(const SceneNode& other) const
{
	return equalByBaseFieldsOnly(other, "TODO: IMPLEMENT SceneNodeMaterial::doIsEqual()\n");
}

} // namespace Velorn
