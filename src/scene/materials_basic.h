#pragma once

#include "scene/material.h"
#include "scene/scene_node_medium.h"

namespace Velorn
{

// A matte surface.
class DiffuseMaterial : public SurfaceMaterial
{
public:
	String getTypeName() const override { return "diffuse"; }
	unsigned getType() const override { return MaterialType::Diffuse; }
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	Reference<WavelengthDependentParam> albedo;
	bool random_triangle_colours = false;
};

// A thin matte surface that lets light through, with an optional medium
// inside.
class DiffuseTransmitter : public SurfaceMaterial
{
public:
	// albedo is a constant grey of 0.5 with gamma 2.2.
	DiffuseTransmitter();

	String getTypeName() const override { return "diffuse_transmitter"; }
	unsigned getType() const override { return MaterialType::DiffuseTransmitter; }
	// Binds the medium, but does not shift its UID on OffsetUIDs.
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	bool references(const SceneNode* node) const override;
	Vector<UID> getDependencyUIDs() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	Reference<WavelengthDependentParam> albedo;
	UID internal_medium_uid;
	Reference<SceneNodeMedium> internal_medium;
};

// A rough matte surface; sigma is its roughness.
class OrenNayarMaterial : public SurfaceMaterial
{
public:
	// albedo as DiffuseTransmitter's, sigma a constant 0.
	OrenNayarMaterial();

	String getTypeName() const override { return "oren_nayar"; }
	unsigned getType() const override { return MaterialType::OrenNayar; }
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	Reference<WavelengthDependentParam> albedo;
	Reference<WavelengthIndependentParam> sigma;
};

// A matte base under a glossy coat.
class PhongMaterial : public SurfaceMaterial
{
public:
	// exponent is a constant 5000.
	PhongMaterial();

	String getTypeName() const override { return "phong"; }
	unsigned getType() const override { return MaterialType::Phong; }
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	Reference<WavelengthDependentParam> diffuse_albedo;
	Reference<WavelengthDependentParam> specular_reflectivity;
	Reference<WavelengthIndependentParam> exponent;
	Reference<WavelengthIndependentParam> fresnel_scale;
	double ior = 1.5;
	String nk_data;
};

// A surface that light passes through unchanged.
class NullMaterial : public Material
{
public:
	String getTypeName() const override { return "null_material"; }
	unsigned getType() const override { return MaterialType::Null; }
	void writeXML(OStream&, unsigned, WriteContext&) const override {}
};

// An opening through which the light of the outside enters an interior.
class ExitPortalMaterial : public Material
{
public:
	String getTypeName() const override { return "exit_portal"; }
	unsigned getType() const override { return MaterialType::ExitPortal; }
	void writeXML(OStream&, unsigned, WriteContext&) const override {}
};

} // namespace Velorn
