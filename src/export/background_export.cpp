#include "host/plugin_ids.h"
#include "export/scene_exporter.h"
#include "export/material_hooks.h"

#include "scene/materials_basic.h"
#include "scene/materials_other.h"
#include "scene/scene_node_background_settings.h"
#include "scene/wavelength_values.h"

namespace
{

enum
{
	// The render settings' link to the environment material.
	vp_environment_material = 1384,
};

} // namespace

bool SceneExporter::exportBackground()
{
	Velorn::Reference<Velorn::SceneNodeBackgroundSettings> node = new Velorn::SceneNodeBackgroundSettings();
	root->addChildNode(node);

	const BaseContainer* vp = settings->video_post_container;
	if(!vp)
	{
		// Without render settings the world glows evenly white.
		Velorn::DiffuseMaterial* glow = new Velorn::DiffuseMaterial();
		glow->emission = new Velorn::ConstantWavelengthDependentParam(new Velorn::UniformSpectrum(1.0));
		node->background_material = glow;
		return true;
	}
	switch(vp->GetInt32(vp_background))
	{
	case vp_background_sun_sky:
		exportSunSky(*node, *vp);
		return true;
	case vp_background_environment:
		return exportEnvironment(*node, *vp);
	default:
		return true;
	}
}

// The sun shines along minus the z axis of the sun object. Sun and sky
// share renderer layer 0, or, on their own layers, the sun takes 0 and the
// sky 1; the keys -1 (sky, or both) and -2 (sun) of the layer table say so.
void SceneExporter::exportSunSky(Velorn::SceneNodeBackgroundSettings& node, const BaseContainer& vp)
{
	Velorn::SunSkyMaterial* sunsky = new Velorn::SunSkyMaterial();
	const BaseObject* sun = dynamic_cast<const BaseObject*>(vp.GetLink(vp_sun_object));
	const Vector dir = sun ? -sun->GetMg().v3 : Vector(1, 1, 1);
	sunsky->sundir = Velorn::Vec3d(dir.x, dir.z, dir.y);
	sunsky->turbidity = vp.GetFloat(vp_turbidity);
	if(vp.GetBool(vp_sun_own_layer))
	{
		sunsky->sun_layer = 0;
		sunsky->sky_layer = 1;
		setLayer(0, "Sun");
		setLayer(1, "Sky");
		settings->layers[-2] = 0;
		settings->layers[-1] = 1;
	}
	else
	{
		sunsky->sun_layer = 0;
		sunsky->sky_layer = 0;
		setLayer(0, "Sun/Sky");
		settings->layers[-1] = 0;
	}
	sunsky->model = vp.GetBool(vp_sky_model_captured) ? "captured-simulation" : "original";
	node.background_material = sunsky;
}

// The environment is an emitting material of the plug-in, linked from the
// render settings. Anything else leaves the background without material.
bool SceneExporter::exportEnvironment(Velorn::SceneNodeBackgroundSettings& node, const BaseContainer& vp)
{
	BaseMaterial* material = dynamic_cast<BaseMaterial*>(vp.GetLink(vp_environment_material));
	const MaterialExportHooks* hooks = GetMaterialExportHooks();
	if(!material || !hooks || !hooks->exportBackgroundMaterial)
		return false;
	Velorn::Reference<Velorn::Material> background = hooks->exportBackgroundMaterial(material, *root, *settings);
	if(background.isNull())
		return false;
	node.background_material = background;
	node.emission_scale = hooks->emissionScale(*material);
	return true;
}
