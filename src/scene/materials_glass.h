#pragma once

#include "scene/material.h"
#include "scene/scene_node_medium.h"
#include "scene/wavelength_values.h"

namespace Velorn
{

// The glass-like surfaces, which hold an internal medium.

// A smooth boundary that reflects and, when transparent, refracts into the
// internal medium. Its maker always gives it a medium, bound or set before
// writing; without one the medium's element is left out.
class SpecularMaterial : public SurfaceMaterial
{
public:
	String getTypeName() const override { return "specular"; }
	unsigned getType() const override { return MaterialType::Specular; }
	// Throws VelornException when binding needs a root that the owner does
	// not have.
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	bool references(const SceneNode* node) const override;
	Vector<UID> getDependencyUIDs() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	UID internal_medium_uid;
	Reference<SceneNodeMedium> internal_medium;
	bool transparent = false;
	Reference<WavelengthDependentParam> absorption_layer_transmittance;
	// Measured coefficients, passed through to the renderer.
	Reference<TabulatedSpectralData> tabulated_external_reflection_coefficient;
	Reference<TabulatedSpectralData> tabulated_internal_reflection_coefficient;
	Reference<TabulatedSpectralData> tabulated_transmission_coefficient;
	// Written only when not empty.
	String private_data;
};

// A rough boundary into the internal medium, which is bound or set before
// writing as for SpecularMaterial.
class GlossyTransparent : public SurfaceMaterial
{
public:
	// exponent is a constant 5000.
	GlossyTransparent();

	String getTypeName() const override { return "glossy_transparent"; }
	unsigned getType() const override { return MaterialType::GlossyTransparent; }
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	bool references(const SceneNode* node) const override;
	Vector<UID> getDependencyUIDs() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	Reference<WavelengthIndependentParam> exponent;
	UID internal_medium_uid;
	Reference<SceneNodeMedium> internal_medium;
	Reference<WavelengthDependentParam> absorption_layer_transmittance;
};

} // namespace Velorn
