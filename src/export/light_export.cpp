#include "export/scene_exporter.h"

#include "c4d/auto_free.h"
#include "c4d/base_document.h"
#include "c4d/light_object.h"
#include "c4d/polygon_object.h"
#include "c4d/primitives.h"
#include "export/material_hooks.h"
#include "export/mesh_exporter.h"
#include "export/motion_blur_export.h"
#include "host/plugin_globals.h"
#include "host/plugin_ids.h"
#include "scene/emission_overrides.h"
#include "scene/materials_basic.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_sphere.h"
#include "scene/wavelength_values.h"

#include <functional>

namespace
{

// How a shape model takes the light tag's settings.
enum
{
	SHAPE_SPOT = 1,
	SHAPE_AREA = 2,
};

Velorn::Vec3d vec3(const Vector& v)
{
	return Velorn::Vec3d(v.x, v.y, v.z);
}

// The emission spectrum that the light tag's type selects.
Velorn::Spectrum* tagSpectrum(const BaseContainer& tag)
{
	switch(tag.GetInt32(lt_type))
	{
	case lt_type_peak:
	{
		Velorn::PeakSpectrum* peak = new Velorn::PeakSpectrum();
		peak->peak_min = tag.GetFloat(lt_peak_min);
		peak->peak_width = tag.GetFloat(lt_peak_width);
		peak->peak_value = tag.GetFloat(lt_peak_value);
		peak->base_value = tag.GetFloat(lt_base_value);
		return peak;
	}
	case lt_type_black_body:
		return new Velorn::BlackBodySpectrum(tag.GetFloat(lt_black_body_temperature), tag.GetFloat(lt_black_body_gain));
	case lt_type_uniform:
		return new Velorn::UniformSpectrum(tag.GetFloat(lt_uniform_value));
	default:
		// The tag's colour with its gain in the spectrum's gamma.
		return new Velorn::RGBSpectrum(vec3(tag.GetVector(lt_rgb_colour)), tag.GetFloat(lt_rgb_gain));
	}
}

int32_t emissionMeasure(int32_t cycle)
{
	switch(cycle)
	{
	case lt_measure_luminous_flux:
		return Velorn::EmissionScale::LuminousFlux;
	case lt_measure_luminous_intensity:
		return Velorn::EmissionScale::LuminousIntensity;
	case lt_measure_luminance:
		return Velorn::EmissionScale::Luminance;
	case lt_measure_luminous_emittance:
		return Velorn::EmissionScale::LuminousEmittance;
	default:
		return Velorn::EmissionScale().measure;
	}
}

// The IES profile that spot lights without one of their own get.
String defaultIESFile()
{
	const Filename dir = plugin_path ? *plugin_path : Filename();
	return (dir + Filename("presets") + Filename("default.ies")).GetString();
}

// A primitive of the given type and parameters, made polygonal as the host's
// current-state conversion does: the primitive builds its cache in a
// document of its own. Named after the light it stands for.
PolygonObject* makeShape(int32_t type, const BaseObject& light, const std::function<void(BaseContainer&)>& setParameters)
{
	AutoFree<BaseDocument> doc(BaseDocument::Alloc());
	BaseObject* primitive = BaseObject::Alloc(type);
	if(!primitive)
		return nullptr;
	primitive->SetName(light.GetName());
	setParameters(*primitive->GetDataInstance());
	doc->InsertObject(primitive, nullptr, nullptr);
	doc->ExecutePasses(nullptr, false, false, true, 0);
	return CurrentStateToObject(*primitive);
}

// A flat rectangle of width by height facing the light's z axis.
PolygonObject* planeShape(const BaseObject& light, double width, double height)
{
	return makeShape(Oplane, light, [=](BaseContainer& plane) {
		plane.SetFloat(PRIM_PLANE_WIDTH, width);
		plane.SetFloat(PRIM_PLANE_HEIGHT, height);
		plane.SetInt32(PRIM_PLANE_SUBW, 1);
		plane.SetInt32(PRIM_PLANE_SUBH, 1);
		plane.SetInt32(PRIM_AXIS, PRIM_AXIS_ZP);
	});
}

} // namespace

void SceneExporter::makeLightMaterial(BaseObject* light)
{
	Velorn::DiffuseMaterial* material = new Velorn::DiffuseMaterial();
	Velorn::Spectrum* spectrum = nullptr;
	if(const BaseTag* tag = light->GetTag(ID_LIGHT_TAG))
	{
		const BaseContainer& data = *tag->GetDataInstance();
		material->layer = (unsigned)settings->lightLayer(data.GetInt32(lt_layer));
		spectrum = tagSpectrum(data);
	}
	else
	{
		const BaseContainer& data = *light->GetDataInstance();
		spectrum = new Velorn::RGBSpectrum(vec3(data.GetVector(LIGHT_COLOR) * data.GetFloat(LIGHT_BRIGHTNESS)), 2.2);
	}
	material->emission = new Velorn::ConstantWavelengthDependentParam(spectrum);
	settings->light_material = addMaterial("defaultLight", material);
}

bool SceneExporter::exportLight(BaseObject* light, const Matrix& mg, bool invisible_to_camera)
{
	const BaseContainer& data = *light->GetDataInstance();
	switch(data.GetInt32(LIGHT_TYPE))
	{
	case LIGHT_TYPE_OMNI:
		// A small sphere of one centimetre, whatever the host's unit.
		makeLightMaterial(light);
		return exportSphere(light, mg, true, 0.01 / settings->scale);
	case LIGHT_TYPE_SPOT:
	{
		const double side = 0.001 / settings->scale;
		AutoFree<PolygonObject> shape(planeShape(*light, side, side));
		return shape && exportShapeMesh(shape.Get(), SHAPE_SPOT, light, mg, invisible_to_camera);
	}
	case LIGHT_TYPE_AREA:
		return exportAreaLight(light, mg, invisible_to_camera);
	default:
		return false;
	}
}

bool SceneExporter::exportAreaLight(BaseObject* light, const Matrix& mg, bool invisible_to_camera)
{
	const BaseContainer& data = *light->GetDataInstance();
	const double x = data.GetFloat(LIGHT_AREADEFINITION_SIZEX);
	const double y = data.GetFloat(LIGHT_AREADEFINITION_SIZEY);
	const double z = data.GetFloat(LIGHT_AREADEFINITION_SIZEZ);
	const double sphere_radius = (x + y + z) * 0.33333334f * 0.5;
	AutoFree<PolygonObject> made;
	switch(data.GetInt32(LIGHT_AREADEFINITION_SHAPE))
	{
	case LIGHT_AREADEFINITION_SHAPE_DISC:
		made.Set(makeShape(Odisc, *light, [&](BaseContainer& disc) {
			disc.SetFloat(PRIM_DISC_ORAD, (x + y) * 0.5 * 0.5);
			disc.SetInt32(PRIM_DISC_SUB, 1);
			disc.SetInt32(PRIM_DISC_CSUB, 50);
			disc.SetInt32(PRIM_AXIS, PRIM_AXIS_ZP);
		}));
		break;
	case LIGHT_AREADEFINITION_SHAPE_RECTANGLE:
		made.Set(planeShape(*light, x, y));
		break;
	case LIGHT_AREADEFINITION_SHAPE_SPHERE:
	case LIGHT_AREADEFINITION_SHAPE_HEMISPHERE:
	{
		const int32_t type = data.GetInt32(LIGHT_AREADEFINITION_SHAPE) == LIGHT_AREADEFINITION_SHAPE_HEMISPHERE
			? PRIM_SPHERE_TYPE_HEMISPHERE
			: PRIM_SPHERE_TYPE_STANDARD;
		made.Set(makeShape(Osphere, *light, [&](BaseContainer& sphere) {
			sphere.SetFloat(PRIM_SPHERE_RAD, sphere_radius);
			sphere.SetInt32(PRIM_SPHERE_SUB, 50);
			sphere.SetInt32(PRIM_SPHERE_TYPE, type);
		}));
		break;
	}
	case LIGHT_AREADEFINITION_SHAPE_CYLINDER:
		made.Set(makeShape(Ocylinder, *light, [&](BaseContainer& cylinder) {
			cylinder.SetFloat(PRIM_CYLINDER_RADIUS, (x + y) * 0.5 * 0.5);
			cylinder.SetFloat(PRIM_CYLINDER_HEIGHT, z);
			cylinder.SetInt32(PRIM_CYLINDER_SEG, 50);
			cylinder.SetInt32(PRIM_AXIS, PRIM_AXIS_ZP);
		}));
		break;
	case LIGHT_AREADEFINITION_SHAPE_CUBE:
		made.Set(makeShape(Ocube, *light, [&](BaseContainer& cube) {
			cube.SetVector(PRIM_CUBE_LEN, Vector(x, y, z));
			cube.SetInt32(PRIM_AXIS, PRIM_AXIS_ZP);
		}));
		break;
	case LIGHT_AREADEFINITION_SHAPE_OBJECT:
	{
		BaseObject* linked = dynamic_cast<BaseObject*>(data.GetLink(LIGHT_AREADEFINITION_OBJECT));
		if(!linked || linked->GetType() != Opolygon)
			return false;
		return exportShapeMesh(static_cast<PolygonObject*>(linked), SHAPE_AREA, light, linked->GetMg(),
			invisible_to_camera);
	}
	default:
		return false;
	}
	return made && exportShapeMesh(made.Get(), SHAPE_AREA, light, mg, invisible_to_camera);
}

bool SceneExporter::exportShapeMesh(
	PolygonObject* shape, int32_t mode, BaseObject* light, const Matrix& mg, bool invisible_to_camera)
{
	makeLightMaterial(light);
	MaterialContext context(*settings);
	const Velorn::UID mesh = meshNodeOf(shape, true, context);
	exportShapeModel(shape, mesh, mode, light, context.material_uids.size(), invisible_to_camera, mg);
	return true;
}

void SceneExporter::exportShapeModel(PolygonObject* shape, Velorn::UID mesh, int32_t mode, BaseObject* light,
	size_t material_count, bool invisible_to_camera, const Matrix& mg)
{
	if(!light)
		return;
	const std::vector<Velorn::UID> materials(material_count, settings->light_material);
	Velorn::Reference<Velorn::SceneNodeModel> model = makeModel(shape, mesh, materials, invisible_to_camera);
	// The made shape has no place in the document: motion blur is the light's.
	placeModel(*model, light, mg, true);
	const BaseTag* tag = light->GetTag(ID_LIGHT_TAG);
	if(tag)
		addLightTagEmission(*model, *tag);
	if(mode == SHAPE_SPOT && (!tag || !tag->GetDataInstance()->GetBool(lt_ies)))
		model->ies_profiles.push_back(iesProfile(settings->light_material, defaultIESFile()));
	addModel(light, model);
}

void SceneExporter::addLightTagEmission(Velorn::SceneNodeModel& model, const BaseTag& tag)
{
	const BaseContainer& data = *tag.GetDataInstance();
	if(data.GetBool(lt_emission_scale))
	{
		Velorn::Reference<Velorn::EmissionScale> scale = new Velorn::EmissionScale();
		scale->material_uid = settings->light_material;
		scale->measure = emissionMeasure(data.GetInt32(lt_emission_measure));
		scale->value = data.GetFloat(lt_emission_value, 100.0);
		model.emission_scales.push_back(scale);
	}
	if(data.GetInt32(lt_ies) == 1)
		model.ies_profiles.push_back(iesProfile(settings->light_material, data.GetFilename(lt_ies_file).GetString()));
}

bool SceneExporter::exportSphere(BaseObject* object, const Matrix& mg, bool is_light, double radius)
{
	Velorn::Reference<Velorn::SceneNodeSphere> sphere = new Velorn::SceneNodeSphere();
	if(!exportMotionBlur(sphere->keyframes, object, mg, *settings, object_stack, Vector()))
	{
		Velorn::KeyFrame key;
		const double scale = settings->scale;
		key.pos = Velorn::Vec3d(mg.off.x * scale, mg.off.z * scale, mg.off.y * scale);
		key.rotation_axis = Velorn::Vec3d(0, 1, 0);
		sphere->keyframes.push_back(key);
	}
	sphere->radius = radius * settings->scale * mg.v1.GetLength();
	if(is_light)
		sphere->material_uid = settings->light_material;
	else
	{
		const TextureTag* tag = findTextureTag(object, nullptr);
		exportMaterial(tag ? tag->GetMaterial() : nullptr);
		sphere->material_uid = materialOf(tag);
	}
	root->addChildNode(sphere);
	return true;
}
