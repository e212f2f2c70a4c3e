#pragma once

#include "scene/material.h"
#include "scene/scene_node_material.h"

namespace Velorn
{

// Materials made of other material nodes. A target is held as a stored UID
// and a reference; binding fills the reference from the UID. Their walks go
// on to their targets, except OffsetUIDs, which the tree's own walk gives
// the targets (SumMaterial passes that on too).

// Two materials mixed by a blend factor, or one of them chosen by it when
// step_blend is set.
class BlendMaterial : public Material
{
public:
	// blend is a constant 0.5.
	BlendMaterial();

	String getTypeName() const override { return "blend"; }
	unsigned getType() const override { return MaterialType::Blend; }
	// The higher of the targets' emission layers.
	unsigned getLayer() const override;
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	bool references(const SceneNode* node) const override;
	Vector<UID> getDependencyUIDs() const override;
	// True when a target's material is displaced.
	bool hasDisplacement() const override;
	// Targets are written only when bound: an unbound blend loses its UIDs.
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	UID a_mat_uid;
	UID b_mat_uid;
	Reference<SceneNodeMaterial> a_mat;
	Reference<SceneNodeMaterial> b_mat;
	Reference<DisplacementParam> blend;
	bool step_blend = false;
};

// A weighted sum of materials, one weight each.
class SumMaterial : public Material
{
public:
	String getTypeName() const override { return "sum"; }
	unsigned getType() const override { return MaterialType::Sum; }
	unsigned getLayer() const override;
	// Binds each null entry of materials by the UID of the same index and
	// throws VelornException when there is none. Every walk, OffsetUIDs
	// included, goes on to the materials; the weights take no part.
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	bool references(const SceneNode* node) const override;
	Vector<UID> getDependencyUIDs() const override;
	bool hasDisplacement() const override;
	// Throws VelornException when the counts of materials and weights
	// differ or a weight is null.
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	Vector<UID> mat_uids;
	Vector<Reference<SceneNodeMaterial>> materials;
	Vector<Reference<WavelengthIndependentParam>> weights;
};

// A thin absorbing coat over a substrate material.
class CoatingMaterial : public SurfaceMaterial
{
public:
	// roughness is a constant of the float 0.3, widened.
	CoatingMaterial();

	String getTypeName() const override { return "coating"; }
	unsigned getType() const override { return MaterialType::Coating; }
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	bool references(const SceneNode* node) const override;
	Vector<UID> getDependencyUIDs() const override;
	// An unbound substrate is written by its stored UID.
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	Reference<WavelengthDependentParam> absorption;
	Reference<WavelengthIndependentParam> thickness;
	Reference<WavelengthIndependentParam> roughness;
	Reference<WavelengthIndependentParam> fresnel_scale;
	double ior = 1.5;
	bool interference = false;
	UID substrate_material_uid;
	Reference<SceneNodeMaterial> substrate_material;
};

// A thin sheet with a material on each side, such as a leaf.
class DoubleSidedThinMaterial : public SurfaceMaterial
{
public:
	String getTypeName() const override { return "double_sided_thin"; }
	unsigned getType() const override { return MaterialType::DoubleSidedThin; }
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	bool references(const SceneNode* node) const override;
	Vector<UID> getDependencyUIDs() const override;
	// Unbound sides are written by their stored UIDs.
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	UID front_material_uid;
	UID back_material_uid;
	Reference<SceneNodeMaterial> front_material;
	Reference<SceneNodeMaterial> back_material;
	Reference<WavelengthIndependentParam> r_f;
	Reference<WavelengthDependentParam> transmittance;
	Reference<WavelengthIndependentParam> front_roughness;
	Reference<WavelengthIndependentParam> back_roughness;
	Reference<WavelengthIndependentParam> front_fresnel_scale;
	Reference<WavelengthIndependentParam> back_fresnel_scale;
	double ior = 1.5;
};

} // namespace Velorn
