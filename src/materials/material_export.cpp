#include "materials/material_export.h"

#include "c4d/auto_free.h"
#include "c4d/base_material.h"
#include "c4d/console.h"
#include "export/material_hooks.h"
#include "host/plugin_ids.h"
#include "materials/channel_export.h"
#include "materials/material_conversion.h"
#include "materials/material_ids.h"
#include "materials/nk_table.h"
#include "support/file_utils.h"

#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_glass.h"
#include "scene/scene_node_material.h"

namespace
{

using Velorn::Reference;

Velorn::String sceneText(const String& text)
{
	return Velorn::String(text.GetStdString());
}

// One plug-in material on its way into the scene.
struct KindBuild
{
	BaseMaterial* host;
	const BaseContainer& data;
	Velorn::SceneNodeRoot& root;
	ExportSettings& settings;
	String name;

	ChannelBuild channels(Velorn::Material& target) { return ChannelBuild{data, target, settings, name}; }

	// The UID of a linked material, or fallback when the link is empty.
	Velorn::UID linked(int32_t id, Velorn::UID fallback)
	{
		BaseMaterial* material = materialLink(data, id, name, settings);
		if(!material)
			return fallback;
		const Velorn::UID uid = exportLinkedMaterial(material, root, settings);
		return uid.valid() ? uid : fallback;
	}
};

// A channel that comes out null (switched off, or no constant form) leaves
// the member at its class default, which is also what the scene reader
// gives for a member the file leaves out.
template <class T>
void setChannel(Reference<T>& member, const Reference<T>& value)
{
	if(value.nonNull())
		member = value;
}

Reference<Velorn::Spectrum> albedoSpectrum(const BaseContainer& data)
{
	return rgbSpectrum(
		data.GetVector(MAT_ALBEDO_COLOUR), data.GetFloat(MAT_ALBEDO_SCALE), data.GetFloat(MAT_ALBEDO_GAMMA));
}

// Bump, normal map and displacement, the surface's own geometry, in that
// order.
void buildGeometry(Velorn::SurfaceMaterial& material, ChannelBuild& channels)
{
	setChannel(material.bump, displacementChannel(bump_channel, channels, nullptr));
	setChannel(material.normal_map, normalMapChannel(channels));
	setChannel(material.displacement, displacementChannel(displacement_channel, channels, nullptr));
}

void buildEmission(Velorn::SurfaceMaterial& material, ChannelBuild& channels)
{
	setChannel(material.base_emission, baseEmission(channels.data, materialSubject(channels.material_name)));
	setChannel(material.emission, spectrumChannel(emission_channel, channels, nullptr));
}

// The emission layer (only while emission is on) and backface emission,
// last of every surface kind.
void buildLayer(Velorn::SurfaceMaterial& material, KindBuild& build)
{
	if(build.data.GetBool(MAT_USE_EMISSION))
		material.layer = (unsigned)build.settings.lightLayer(build.data.GetInt32(MAT_EMISSION_LAYER));
	material.backface_emit = build.data.GetBool(MAT_BACKFACE_EMIT);
}

void buildSurface(Velorn::SurfaceMaterial& material, ChannelBuild& channels, KindBuild& build)
{
	buildGeometry(material, channels);
	buildEmission(material, channels);
	buildLayer(material, build);
}

Reference<Velorn::WavelengthIndependentParam> genericReal(int32_t base, ChannelBuild& channels)
{
	double value = channels.data.GetFloat(base + 21);
	// The thickness is given in micrometres, the scene counts metres.
	if(base == 11000)
		value *= 1e-06;
	return realChannel(genericRealChannel(base), channels, value);
}

Reference<Velorn::WavelengthDependentParam> genericSpectrum(int32_t base, ChannelBuild& channels)
{
	return spectrumChannel(genericSpectrumChannel(base), channels, genericChannelSpectrum(channels.data, base));
}

Reference<Velorn::Material> buildDiffuse(KindBuild& build)
{
	Reference<Velorn::DiffuseMaterial> material = new Velorn::DiffuseMaterial();
	ChannelBuild channels = build.channels(*material);
	setChannel(material->albedo, spectrumChannel(albedo_channel, channels, albedoSpectrum(build.data)));
	buildSurface(*material, channels, build);
	return material;
}

Reference<Velorn::Material> buildOrenNayar(KindBuild& build)
{
	Reference<Velorn::OrenNayarMaterial> material = new Velorn::OrenNayarMaterial();
	ChannelBuild channels = build.channels(*material);
	setChannel(material->sigma, realChannel(sigma_channel, channels, build.data.GetFloat(MAT_SIGMA_VALUE)));
	setChannel(material->albedo, spectrumChannel(albedo_channel, channels, albedoSpectrum(build.data)));
	buildSurface(*material, channels, build);
	return material;
}

Reference<Velorn::Material> buildPhong(KindBuild& build)
{
	Reference<Velorn::PhongMaterial> material = new Velorn::PhongMaterial();
	ChannelBuild channels = build.channels(*material);
	if(build.data.GetBool(MAT_PHONG_USE_NK))
	{
		const char* file = NkFileName(build.data.GetInt32(MAT_PHONG_NK_FILE));
		material->nk_data = Velorn::String("nkdata/") + (file ? file : "");
	}
	material->ior = build.data.GetFloat(MAT_PHONG_IOR);
	Reference<Velorn::WavelengthDependentParam> albedo =
		spectrumChannel(albedo_channel, channels, albedoSpectrum(build.data));
	(build.data.GetBool(MAT_PHONG_SPECULAR_MODE) ? material->specular_reflectivity : material->diffuse_albedo) = albedo;
	setChannel(
		material->exponent, realChannel(exponent_channel, channels, build.data.GetFloat(MAT_EXPONENT_VALUE)));
	buildGeometry(*material, channels);
	buildEmission(*material, channels);
	setChannel(material->fresnel_scale, genericReal(MAT_CH_FRESNEL_SCALE, channels));
	buildLayer(*material, build);
	return material;
}

Reference<Velorn::Material> buildTransmitter(KindBuild& build)
{
	Reference<Velorn::DiffuseTransmitter> material = new Velorn::DiffuseTransmitter();
	// The medium switch counts as on while a document leaves it unset.
	if(build.data.GetBool(MAT_USE_MEDIUM, true))
		material->internal_medium_uid = exportMedium(build.host, build.name, build.root, build.settings);
	ChannelBuild channels = build.channels(*material);
	setChannel(material->albedo, spectrumChannel(albedo_channel, channels, albedoSpectrum(build.data)));
	buildSurface(*material, channels, build);
	return material;
}

Reference<Velorn::Spectrum> absorptionLayerSpectrum(const BaseContainer& data)
{
	return rgbSpectrum(data.GetVector(MAT_ABSORPTION_LAYER_COLOUR), data.GetFloat(MAT_ABSORPTION_LAYER_SCALE),
		data.GetFloat(MAT_ABSORPTION_LAYER_GAMMA));
}

Reference<Velorn::Material> buildSpecular(KindBuild& build)
{
	Reference<Velorn::SpecularMaterial> material = new Velorn::SpecularMaterial();
	material->internal_medium_uid = exportMedium(build.host, build.name, build.root, build.settings);
	material->transparent = build.data.GetBool(MAT_TRANSPARENT);
	ChannelBuild channels = build.channels(*material);
	buildGeometry(*material, channels);
	buildEmission(*material, channels);
	setChannel(material->absorption_layer_transmittance,
		spectrumChannel(absorption_layer_channel, channels, absorptionLayerSpectrum(build.data)));
	material->private_data = sceneText(build.data.GetString(MAT_PRIVATE_DATA));
	buildLayer(*material, build);
	return material;
}

Reference<Velorn::Material> buildGlossyTransparent(KindBuild& build)
{
	Reference<Velorn::GlossyTransparent> material = new Velorn::GlossyTransparent();
	material->internal_medium_uid = exportMedium(build.host, build.name, build.root, build.settings);
	ChannelBuild channels = build.channels(*material);
	buildGeometry(*material, channels);
	setChannel(
		material->exponent, realChannel(exponent_channel, channels, build.data.GetFloat(MAT_EXPONENT_VALUE)));
	buildEmission(*material, channels);
	setChannel(material->absorption_layer_transmittance,
		spectrumChannel(absorption_layer_channel, channels, absorptionLayerSpectrum(build.data)));
	buildLayer(*material, build);
	return material;
}

Reference<Velorn::DisplacementParam> blendFactor(ChannelBuild& channels)
{
	const double constant = channels.data.GetFloat(MAT_ALPHA_VALUE);
	return displacementChannel(blend_factor_channel, channels, &constant);
}

Reference<Velorn::Material> buildBlend(KindBuild& build)
{
	Reference<Velorn::BlendMaterial> material = new Velorn::BlendMaterial();
	material->a_mat_uid = build.linked(MAT_BLEND_A, build.settings.null_material);
	material->b_mat_uid = build.linked(MAT_BLEND_B, build.settings.null_material);
	material->step_blend = build.data.GetBool(MAT_BLEND_STEP);
	ChannelBuild channels = build.channels(*material);
	setChannel(material->blend, blendFactor(channels));
	return material;
}

Reference<Velorn::Material> buildCoating(KindBuild& build)
{
	Reference<Velorn::CoatingMaterial> material = new Velorn::CoatingMaterial();
	material->substrate_material_uid = build.linked(MAT_COAT_SUBSTRATE, build.settings.default_material);
	material->ior = build.data.GetFloat(MAT_COAT_IOR);
	material->interference = build.data.GetBool(MAT_COAT_INTERFERENCE);
	ChannelBuild channels = build.channels(*material);
	buildGeometry(*material, channels);
	buildEmission(*material, channels);
	setChannel(material->absorption, genericSpectrum(MAT_CH_COAT_ABSORPTION, channels));
	setChannel(material->fresnel_scale, genericReal(MAT_CH_FRESNEL_SCALE, channels));
	setChannel(material->roughness, genericReal(MAT_CH_ROUGHNESS, channels));
	setChannel(material->thickness, genericReal(MAT_CH_COAT_THICKNESS, channels));
	buildLayer(*material, build);
	return material;
}

Reference<Velorn::Material> buildDoubleSided(KindBuild& build)
{
	Reference<Velorn::DoubleSidedThinMaterial> material = new Velorn::DoubleSidedThinMaterial();
	material->front_material_uid = build.linked(MAT_THIN_FRONT, build.settings.default_material);
	material->back_material_uid = build.linked(MAT_THIN_BACK, build.settings.default_material);
	material->ior = build.data.GetFloat(MAT_THIN_IOR, 1.5);
	ChannelBuild channels = build.channels(*material);
	buildGeometry(*material, channels);
	buildEmission(*material, channels);
	setChannel(material->transmittance, genericSpectrum(MAT_CH_TRANSMITTANCE, channels));
	setChannel(material->front_fresnel_scale, genericReal(MAT_CH_FRESNEL_SCALE, channels));
	setChannel(material->back_fresnel_scale, genericReal(MAT_CH_BACK_FRESNEL_SCALE, channels));
	setChannel(material->front_roughness, genericReal(MAT_CH_ROUGHNESS, channels));
	setChannel(material->back_roughness, genericReal(MAT_CH_BACK_ROUGHNESS, channels));
	setChannel(material->r_f, genericReal(MAT_CH_R_F, channels));
	buildLayer(*material, build);
	return material;
}

// The plain look of clay rendering, which keeps the material's geometry and
// lights.
Reference<Velorn::Material> buildClay(KindBuild& build)
{
	Reference<Velorn::OrenNayarMaterial> material = new Velorn::OrenNayarMaterial();
	const auto& ambient = build.settings.ambient;
	material->albedo = new Velorn::ConstantWavelengthDependentParam(
		new Velorn::RGBSpectrum(Velorn::Vec3d(ambient[0], ambient[1], ambient[2]), 2.2));
	material->sigma = new Velorn::ConstantWavelengthIndependentParam(0.3);
	ChannelBuild channels = build.channels(*material);
	buildSurface(*material, channels, build);
	return material;
}

// The node's material by the kind; the class's plain diffuse material for a
// kind the plug-in does not know.
Reference<Velorn::Material> buildKind(int32_t kind, KindBuild& build, Velorn::SceneNodeMaterial& node)
{
	const bool clay = build.settings.clay_render && !build.data.GetBool(MAT_KEEP_IN_CLAY) && kind != MAT_TYPE_BLEND;
	if(clay)
		return buildClay(build);
	switch(kind)
	{
	case MAT_TYPE_DIFFUSE: return buildDiffuse(build);
	case MAT_TYPE_OREN_NAYAR: return buildOrenNayar(build);
	case MAT_TYPE_PHONG: return buildPhong(build);
	case MAT_TYPE_DIFFUSE_TRANSMITTER: return buildTransmitter(build);
	case MAT_TYPE_SPECULAR: return buildSpecular(build);
	case MAT_TYPE_BLEND: return buildBlend(build);
	case MAT_TYPE_GLOSSY_TRANSPARENT: return buildGlossyTransparent(build);
	case MAT_TYPE_COATING: return buildCoating(build);
	case MAT_TYPE_DOUBLE_SIDED_THIN: return buildDoubleSided(build);
	case MAT_TYPE_NULL:
		node.setName("nullMat");
		return new Velorn::NullMaterial();
	default:
		// A node without a material is no scene the reader takes.
		GePrint(materialSubject(build.name) + String(" is of unknown kind ") + String::IntToString(kind) +
			String("; it was exported as a plain diffuse material."));
		return new Velorn::DiffuseMaterial();
	}
}

Reference<Velorn::SceneNodeMaterial> addMaterialNode(const String& name, Velorn::SceneNodeRoot& root)
{
	Reference<Velorn::SceneNodeMaterial> node = new Velorn::SceneNodeMaterial(nullptr);
	node->setName(sceneText(name));
	root.addChildNode(node);
	return node;
}

// Gives the node its material; the name the node held moves into it.
// Marks a material as being built for as long as it lives.
class InProgress
{
public:
	InProgress(ExportSettings& settings_, BaseMaterial* material_) : settings(settings_), material(material_)
	{
		settings.materials_in_progress.insert(material);
	}
	~InProgress() { settings.materials_in_progress.erase(material); }
	InProgress(const InProgress&) = delete;
	InProgress& operator=(const InProgress&) = delete;

private:
	ExportSettings& settings;
	BaseMaterial* material;
};

void setMaterial(Velorn::SceneNodeMaterial& node, const Reference<Velorn::Material>& material)
{
	const Velorn::String name = node.getName();
	node.material = material;
	node.setName(name);
}

} // namespace

Velorn::UID exportLinkedMaterial(BaseMaterial* material, Velorn::SceneNodeRoot& root, ExportSettings& settings)
{
	if(!material || !settings.document)
		return Velorn::UID();
	const auto found = settings.material_map.find(material);
	if(found != settings.material_map.end())
	{
		// The map holds a node before its kind is built, so a material
		// that leads back to itself ends here. The link itself cannot
		// stay: the scene's walks would follow it for ever. The caller
		// puts its fallback in its place.
		if(settings.materials_in_progress.count(material))
		{
			GePrint(String("Material '") + material->GetName() +
				String("' links back to itself; the link was replaced by the default for an empty link."));
			return Velorn::UID();
		}
		return found->second;
	}
	if(material->GetType() == ID_VELORN_MATERIAL)
		return exportPluginMaterial(material, material->GetName(), root, settings);

	// A foreign material goes through a temporary plug-in material. Its
	// nodes are entered under the source, so that the map never keeps the
	// temporary's address once it is freed.
	AutoFree<BaseMaterial> temporary(BaseMaterial::Alloc(ID_VELORN_MATERIAL));
	if(!temporary || !convertMaterial(material, temporary.Get()))
		return Velorn::UID();
	const Velorn::UID uid = exportPluginMaterial(temporary.Get(), material->GetName(), root, settings);
	for(auto* map : {&settings.material_map, &settings.medium_map})
	{
		const auto entry = map->find(temporary.Get());
		if(entry == map->end())
			continue;
		const Velorn::UID exported = entry->second;
		map->erase(entry);
		map->emplace(material, exported);
	}
	return uid;
}

Velorn::UID exportPluginMaterial(
	BaseMaterial* material, const String& name, Velorn::SceneNodeRoot& root, ExportSettings& settings)
{
	if(!material || !name.Content() || !settings.document)
		return Velorn::UID();
	const BaseContainer& data = *material->GetDataInstance();
	const int32_t kind = data.GetInt32(MAT_TYPE);
	const bool wrapped = kind != MAT_TYPE_BLEND && data.GetBool(MAT_USE_ALPHA);

	// The node is in the map before the kind is built, so that a material
	// that links itself, directly or through others, finds it there.
	Reference<Velorn::SceneNodeMaterial> node = addMaterialNode(wrapped ? name + "_blendA" : name, root);
	settings.material_map[material] = node->uid;
	const InProgress building(settings, material);

	KindBuild build{material, data, root, settings, name};
	const Reference<Velorn::Material> built = buildKind(kind, build, *node);
	setMaterial(*node, built);

	const bool shadow_catcher = data.GetBool(MAT_SHADOW_CATCHER);
	if(!wrapped)
	{
		if(built.nonNull())
			built->shadow_catcher = shadow_catcher;
		return node->uid;
	}

	// Alpha: a blend of the material and the second input by the blend
	// factor, under the material's own name.
	KindBuild outer_build{material, data, root, settings, name};
	const Velorn::UID second = outer_build.linked(MAT_BLEND_A, settings.null_material);
	Reference<Velorn::BlendMaterial> blend = new Velorn::BlendMaterial();
	Reference<Velorn::SceneNodeMaterial> outer = addMaterialNode(name, root);
	blend->a_mat_uid = node->uid;
	blend->b_mat_uid = second;
	blend->step_blend = data.GetBool(MAT_BLEND_STEP);
	ChannelBuild channels{data, *blend, settings, name};
	setChannel(blend->blend, blendFactor(channels));
	blend->shadow_catcher = shadow_catcher;
	setMaterial(*outer, blend);
	// Objects refer to the outer node.
	settings.material_map[material] = outer->uid;
	return outer->uid;
}

Velorn::Reference<Velorn::Material> exportBackgroundMaterial(
	BaseMaterial* material, Velorn::SceneNodeRoot& root, ExportSettings& settings)
{
	if(!material || material->GetType() != ID_VELORN_MATERIAL || !settings.document)
		return nullptr;
	const BaseContainer& data = *material->GetDataInstance();
	KindBuild build{material, data, root, settings, String("background_material")};
	Reference<Velorn::DiffuseMaterial> diffuse = new Velorn::DiffuseMaterial();
	diffuse->name = "background_material";
	// The background has no surface: no albedo, geometry or backface.
	diffuse->albedo = nullptr;
	ChannelBuild channels = build.channels(*diffuse);
	buildEmission(*diffuse, channels);
	if(data.GetBool(MAT_USE_EMISSION))
		diffuse->layer = (unsigned)settings.lightLayer(data.GetInt32(MAT_EMISSION_LAYER));
	return diffuse;
}

Velorn::Reference<Velorn::EmissionScale> materialEmissionScale(const BaseMaterial& material)
{
	const BaseContainer& data = *material.GetDataInstance();
	if(material.GetType() != ID_VELORN_MATERIAL || !data.GetBool(MAT_EMISSION_SCALE_ON))
		return nullptr;
	Velorn::Reference<Velorn::EmissionScale> scale = new Velorn::EmissionScale();
	switch(data.GetInt32(MAT_EMISSION_SCALE_MEASURE))
	{
	case MAT_EMISSION_SCALE_LUMINOUS_FLUX: scale->measure = Velorn::EmissionScale::LuminousFlux; break;
	case MAT_EMISSION_SCALE_LUMINOUS_INTENSITY: scale->measure = Velorn::EmissionScale::LuminousIntensity; break;
	case MAT_EMISSION_SCALE_LUMINANCE: scale->measure = Velorn::EmissionScale::Luminance; break;
	case MAT_EMISSION_SCALE_LUMINOUS_EMITTANCE: scale->measure = Velorn::EmissionScale::LuminousEmittance; break;
	default: break;
	}
	scale->value = data.GetFloat(MAT_EMISSION_SCALE_VALUE);
	return scale;
}

Velorn::Reference<Velorn::IESProfile> materialIESProfile(const BaseMaterial& material, const Filename& export_dir)
{
	const BaseContainer& data = *material.GetDataInstance();
	if(material.GetType() != ID_VELORN_MATERIAL || data.GetInt32(MAT_IES_ON) != 1)
		return nullptr;
	const String file = data.GetFilename(MAT_IES_FILE).GetString();
	if(!file.Content())
		return nullptr;
	// A relative path keeps the scene and its profile movable together.
	return iesProfile(Velorn::UID(),
		String(Velorn::FileUtils::relativePath(export_dir.GetString().GetStdString(), file.GetStdString())));
}

namespace
{

const MaterialExportHooks material_export_hooks = {
	[](BaseMaterial* material, Velorn::SceneNodeRoot& root, ExportSettings& settings) {
		return exportLinkedMaterial(material, root, settings);
	},
	// The environment takes a material of the plug-in only while it emits.
	[](BaseMaterial* material, Velorn::SceneNodeRoot& root, ExportSettings& settings) {
		return material && material->GetDataInstance()->GetBool(MAT_USE_EMISSION) ?
			exportBackgroundMaterial(material, root, settings) :
			nullptr;
	},
	materialEmissionScale,
	materialIESProfile,
};

// Clears the export's hooks when this library is unloaded with the module.
struct HookGuard
{
	~HookGuard()
	{
		if(GetMaterialExportHooks() == &material_export_hooks)
			SetMaterialExportHooks(nullptr);
	}
} hook_guard;

} // namespace

void InstallMaterialExport()
{
	SetMaterialExportHooks(&material_export_hooks);
}
