#include "scene/materials_composite.h"

#include "scene/material_channels.h"
#include "scene/scene_node_root.h"
#include "support/exceptions.h"

#include <algorithm>
#include <initializer_list>

namespace Velorn
{

using namespace XMLWrite;

namespace
{

typedef Vector<Reference<SceneNodeMaterial>> TargetList;

// A stored UID with its reference, as a class holds each target.
struct TargetSlot
{
	UID& uid;
	Reference<SceneNodeMaterial>& node;
};

// Binds or shifts every target first, then hands the walk on to each.
void visitTargets(std::initializer_list<TargetSlot> targets, VisitOperation& op, SceneNode* owner)
{
	for(const TargetSlot& target : targets)
	{
		bindTarget(target.node, target.uid, op, owner);
		shiftUID(target.uid, op);
	}
	for(const TargetSlot& target : targets)
		handWalkOn(target.node, op);
}

// A null target counts as layer 0.
unsigned highestLayer(const TargetList& targets)
{
	unsigned highest = 0;
	for(const Reference<SceneNodeMaterial>& target : targets)
		if(target.nonNull())
			highest = std::max(highest, target->getHighestEmissionLayer());
	return highest;
}

// A null target, or one without a material, counts as not displaced.
bool anyDisplaced(const TargetList& targets)
{
	return std::any_of(targets.begin(), targets.end(), [](const Reference<SceneNodeMaterial>& target) {
		return target.nonNull() && target->material.nonNull() && target->material->hasDisplacement();
	});
}

bool anyReferences(const TargetList& targets, const SceneNode* node)
{
	return std::any_of(targets.begin(), targets.end(),
		[node](const Reference<SceneNodeMaterial>& target) { return targetReferences(target.getPointer(), node); });
}

// The tables: fields in the order of each class's element.

const auto blend_channels = [](const BlendMaterial& m, auto& f) {
	f("blend", m.blend);
	f("step_blend", m.step_blend);
};

const auto coating_channels = [](const CoatingMaterial& m, auto& f) {
	f("absorption", m.absorption);
	f("thickness", m.thickness);
	f("roughness", m.roughness);
	surfaceChannels(m, f);
	f("layer", m.layer);
	f("fresnel_scale", m.fresnel_scale);
	f("ior", m.ior);
	f("interference", m.interference);
	f("substrate_material", m.substrate_material_uid, m.substrate_material);
};

const auto double_sided_channels = [](const DoubleSidedThinMaterial& m, auto& f) {
	surfaceChannels(m, f);
	f("layer", m.layer);
	f("front_material", m.front_material_uid, m.front_material);
	f("back_material", m.back_material_uid, m.back_material);
	f("r_f", m.r_f);
	f("transmittance", m.transmittance);
	f("front_roughness", m.front_roughness);
	f("back_roughness", m.back_roughness);
	f("front_fresnel_scale", m.front_fresnel_scale);
	f("back_fresnel_scale", m.back_fresnel_scale);
	f("ior", m.ior);
};

} // namespace

BlendMaterial::BlendMaterial() : blend(new ConstantDisplacementParam(0.5)) {}

unsigned BlendMaterial::getLayer() const { return highestLayer({a_mat, b_mat}); }

void BlendMaterial::doVisit(VisitOperation& op, SceneNode* owner)
{
	visitTargets({{a_mat_uid, a_mat}, {b_mat_uid, b_mat}}, op, owner);
	visitChannels(blend_channels, *this, op, owner);
}

bool BlendMaterial::references(const SceneNode* node) const { return anyReferences({a_mat, b_mat}, node); }

Vector<UID> BlendMaterial::getDependencyUIDs() const
{
	Vector<UID> uids;
	appendTargetDependencies(uids, a_mat_uid, a_mat.getPointer());
	appendTargetDependencies(uids, b_mat_uid, b_mat.getPointer());
	return uids;
}

bool BlendMaterial::hasDisplacement() const { return anyDisplaced({a_mat, b_mat}); }

void BlendMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeBoundReference(stream, depth + 1, "a_mat_uid", "a_name", a_mat.getPointer(), context);
	writeBoundReference(stream, depth + 1, "b_mat_uid", "b_name", b_mat.getPointer(), context);
	writeChannels(blend_channels, *this, stream, depth, context);
}

unsigned SumMaterial::getLayer() const { return highestLayer(materials); }

void SumMaterial::doVisit(VisitOperation& op, SceneNode* owner)
{
	if(op.type == VisitOperation::Bind)
		for(size_t i = 0; i < materials.size(); ++i)
			if(materials[i].isNull())
			{
				if(i >= mat_uids.size())
					throw VelornException("Material was NULL and no mat_uid with same index.");
				materials[i] = owner->getRoot()->findMaterial(mat_uids[i]);
			}
	for(const Reference<SceneNodeMaterial>& material : materials)
		if(material.nonNull())
			material->doVisit(op);
}

bool SumMaterial::references(const SceneNode* node) const { return anyReferences(materials, node); }

Vector<UID> SumMaterial::getDependencyUIDs() const
{
	Vector<UID> uids;
	for(const Reference<SceneNodeMaterial>& material : materials)
		if(material.nonNull())
			appendTargetDependencies(uids, UID(), material.getPointer());
	return uids;
}

bool SumMaterial::hasDisplacement() const { return anyDisplaced(materials); }

void SumMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	if(materials.size() != weights.size())
		throw VelornException("num materials != num weights.");
	for(size_t i = 0; i < materials.size(); ++i)
	{
		writeOpenTag(stream, depth + 1, "mat");
		if(materials[i].isNull())
			writeUID(stream, depth + 2, "mat_uid", i < mat_uids.size() ? mat_uids[i] : UID());
		else
			writeBoundReference(stream, depth + 2, "mat_uid", "mat_name", materials[i].getPointer(), context);
		if(weights[i].isNull())
			throw VelornException("Weight was null.");
		writeWrapped(stream, depth, "weight", weights[i], context);
		writeCloseTag(stream, depth + 1, "mat");
	}
}

CoatingMaterial::CoatingMaterial() : roughness(new ConstantWavelengthIndependentParam((double)0.3f)) {}

void CoatingMaterial::doVisit(VisitOperation& op, SceneNode* owner)
{
	visitTargets({{substrate_material_uid, substrate_material}}, op, owner);
	visitChannels(coating_channels, *this, op, owner);
}

bool CoatingMaterial::references(const SceneNode* node) const
{
	return targetReferences(substrate_material.getPointer(), node);
}

Vector<UID> CoatingMaterial::getDependencyUIDs() const
{
	return targetDependencies(substrate_material_uid, substrate_material.getPointer());
}

void CoatingMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeChannels(coating_channels, *this, stream, depth, context);
}

void DoubleSidedThinMaterial::doVisit(VisitOperation& op, SceneNode* owner)
{
	visitTargets({{front_material_uid, front_material}, {back_material_uid, back_material}}, op, owner);
	visitChannels(double_sided_channels, *this, op, owner);
}

bool DoubleSidedThinMaterial::references(const SceneNode* node) const
{
	return anyReferences({front_material, back_material}, node);
}

Vector<UID> DoubleSidedThinMaterial::getDependencyUIDs() const
{
	Vector<UID> uids;
	appendTargetDependencies(uids, front_material_uid, front_material.getPointer());
	appendTargetDependencies(uids, back_material_uid, back_material.getPointer());
	return uids;
}

void DoubleSidedThinMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeChannels(double_sided_channels, *this, stream, depth, context);
}

} // namespace Velorn
