#pragma once

#include "scene/material.h"
#include "scene/math_types.h"

namespace Velorn
{

// The sun and the sky of a physical daylight model, for the background.
class SunSkyMaterial : public Material
{
public:
	String getTypeName() const override { return "sunsky"; }
	unsigned getType() const override { return MaterialType::SunSky; }
	// The higher of sun_layer and sky_layer.
	unsigned getLayer() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	Vec3d sundir = Vec3d(0, 0, 1);
	double turbidity = 2;
	bool extra_atmospheric = false;
	bool enable_sky = true;
	int sun_layer = 0;
	int sky_layer = 0;
	// Which sky model the renderer uses; any text is taken.
	String model = "original";
};

// A named parameter of a plugin material.
template <class Param>
struct NamedParam
{
	String name;
	Reference<Param> param;
};

// A material implemented by a plugin of the renderer. Only layer,
// plugin_name and material_name reach the file; the parameter lists are
// filled by the reader and walked.
class PluginMaterial : public Material
{
public:
	String getTypeName() const override { return "plugin"; }
	unsigned getType() const override { return MaterialType::Plugin; }
	unsigned getLayer() const override { return layer; }
	void doVisit(VisitOperation& op, SceneNode* owner) override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;

	String plugin_name;
	String material_name;
	unsigned layer = 0;
	Vector<NamedParam<WavelengthDependentParam>> wavelength_dependent;
	Vector<NamedParam<WavelengthIndependentParam>> wavelength_independent;
	Vector<NamedParam<DisplacementParam>> displacement;
	Vector<NamedParam<VolumeParam>> volume;
	Vector<NamedParam<Vec3Param>> vec3;
};

} // namespace Velorn
