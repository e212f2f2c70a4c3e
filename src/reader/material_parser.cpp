// Reading material and medium elements, with the old element forms that
// files still hold.

#include "reader/material_parser.h"

#include "reader/channel_forms.h"
#include "reader/scene_parse_utils.h"
#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_glass.h"
#include "scene/materials_other.h"

#include <initializer_list>
#include <vector>

namespace Velorn
{
namespace MaterialParser
{

using namespace SceneParseUtils;

namespace
{

[[noreturn]] void fail(const std::string& message) { throw SceneParserExcep(message); }

// The element of a material's type, with what its reader needs besides.
struct TypeElement
{
	const TiXmlElement& element;
	const std::string& dir;
	const ParseNames& names;
};

class MaterialReading;

// One element from which a channel can be read, and how.
template <class Family>
struct Source
{
	const char* name;
	Reference<Family> (*read)(MaterialReading& reading, const TiXmlElement& element);
};

// The reading of a type element into its material.
class MaterialReading : public TypeElement
{
public:
	// Checks that the element holds nothing but own_names and what every
	// type (and every surface) holds, then reads the textures, the shared
	// shader info and, for a surface, the surface channels.
	MaterialReading(const TypeElement& type, Material& material_, std::initializer_list<const char*> own_names,
		std::initializer_list<const char*> more_names = {});

	// Sets target from the first of sources whose element is present, old
	// forms listed before new ones; without any, target keeps its default.
	template <class Family>
	void channel(Reference<Family>& target, std::initializer_list<Source<Family>> sources);
	// A channel that has only the element name, in the family's forms.
	template <class Family>
	void channel(Reference<Family>& target, const char* name);

	Material& material;

private:
	void readSurface(SurfaceMaterial& surface);
};

const char* const surface_names[] = {
	"bump", "bump_map", "displacement", "displacement_map", "base_emission", "emission", "normal_map", "layer"};

// The family's forms in a channel element.
template <class Family>
Reference<Family> paramSource(MaterialReading& reading, const TiXmlElement& element)
{
	return parseParam<Family>(element, reading.dir, reading.material.textures.size());
}

// The old form that holds a texture in place of an index: the texture joins
// the material's textures.
template <class Family>
Reference<Family> textureSource(MaterialReading& reading, const TiXmlElement& element)
{
	reading.material.textures.push_back(parseTexture(element, reading.dir));
	return new typename ChannelForms<Family>::Texture((int)reading.material.textures.size() - 1);
}

// A plain number as the constant.
template <class Family>
Reference<Family> numberSource(MaterialReading& reading, const TiXmlElement& element)
{
	return new typename ChannelForms<Family>::Constant(parseDouble(reading.element, element.Value()));
}

// A plain number is taken as the constant; otherwise the family's forms.
template <class Family>
Reference<Family> numberOrParamSource(MaterialReading& reading, const TiXmlElement& element)
{
	return element.FirstChildElement() ? paramSource<Family>(reading, element) : numberSource<Family>(reading, element);
}

// The old colour form: three numbers of an RGB colour with gamma 2.2.
Reference<WavelengthDependentParam> colourSource(MaterialReading& reading, const TiXmlElement& element)
{
	return new ConstantWavelengthDependentParam(new RGBSpectrum(parseVec3(reading.element, element.Value()), 2.2));
}

// The old form that holds a spectrum directly.
Reference<WavelengthDependentParam> spectrumSource(MaterialReading&, const TiXmlElement& element)
{
	return new ConstantWavelengthDependentParam(parseSpectrum(element));
}

MaterialReading::MaterialReading(const TypeElement& type, Material& material_, std::initializer_list<const char*> own_names,
	std::initializer_list<const char*> more_names)
	: TypeElement(type), material(material_)
{
	SurfaceMaterial* surface = dynamic_cast<SurfaceMaterial*>(&material);
	std::vector<const char*> allowed = {"texture", "shared_shader_info"};
	allowed.insert(allowed.end(), own_names);
	allowed.insert(allowed.end(), more_names);
	if(surface)
		allowed.insert(allowed.end(), std::begin(surface_names), std::end(surface_names));
	allowed.push_back(nullptr);
	checkForUnexpectedElements(element, allowed.data());

	forEachChildElement(
		element, "texture", [&](const TiXmlElement& texture) { material.textures.push_back(parseTexture(texture, dir)); });
	if(const TiXmlElement* shared = element.FirstChildElement("shared_shader_info"))
		material.shared_shader_info = parseShaderInfo(*shared, dir);
	if(surface)
		readSurface(*surface);
}

template <class Family>
void MaterialReading::channel(Reference<Family>& target, std::initializer_list<Source<Family>> sources)
{
	for(const Source<Family>& source : sources)
		if(const TiXmlElement* child = element.FirstChildElement(source.name))
		{
			target = source.read(*this, *child);
			return;
		}
}

template <class Family>
void MaterialReading::channel(Reference<Family>& target, const char* name)
{
	channel(target, {{name, paramSource<Family>}});
}

void MaterialReading::readSurface(SurfaceMaterial& surface)
{
	channel(surface.bump, {{"bump_map", textureSource<DisplacementParam>}, {"bump", paramSource<DisplacementParam>}});
	channel(surface.displacement,
		{{"displacement_map", textureSource<DisplacementParam>}, {"displacement", paramSource<DisplacementParam>}});
	channel(surface.base_emission, "base_emission");
	channel(surface.emission, "emission");
	channel(surface.normal_map, "normal_map");
	surface.layer = parseUIntWithDefault(element, "layer", 0);
}

// The albedo of the matte materials, old forms first.
const std::initializer_list<const char*> albedo_names = {"albedo", "colour", "albedo_spectrum", "albedo_texture"};

void readAlbedo(MaterialReading& reading, Reference<WavelengthDependentParam>& albedo)
{
	reading.channel(albedo,
		{{"colour", colourSource}, {"albedo_spectrum", spectrumSource},
			{"albedo_texture", textureSource<WavelengthDependentParam>}, {"albedo", paramSource<WavelengthDependentParam>}});
}

// The exponent of the glossy materials, old form first.
void readExponent(MaterialReading& reading, Reference<WavelengthIndependentParam>& exponent)
{
	reading.channel(exponent, {{"exponent_map", textureSource<WavelengthIndependentParam>},
								  {"exponent", numberOrParamSource<WavelengthIndependentParam>}});
}

// The internal medium of the glass-like materials: by UID, or by the name of
// a medium that stands before in the file. Only diffuse_transmitter may have
// none, as its writer leaves an absent medium out.
void readMedium(const TypeElement& type, UID& uid, Reference<SceneNodeMedium>& medium, bool required)
{
	const TiXmlElement& element = type.element;
	if(element.FirstChildElement("internal_medium_uid"))
	{
		uid = UID(parseUInt(element, "internal_medium_uid"));
		return;
	}
	if(!required && !element.FirstChildElement("internal_medium_name"))
		return;
	const std::string name = parseString(element, "internal_medium_name");
	const Reference<SceneNodeMedium>* found = type.names.medium_names.find(String(name));
	// The words are those of the specular reader for every type.
	if(!found)
		fail("Error while loading specular: medium with name '" + name + "' not already defined in scene file." +
			 errorContext(element));
	medium = *found;
}

// A material that holder refers to: by UID in uid_name, or by the name in
// name_name of a material that stands before in the file.
void readTarget(const TiXmlElement& holder, const ParseNames& names, const char* uid_name, const char* name_name, UID& uid,
	Reference<SceneNodeMaterial>& target)
{
	if(holder.FirstChildElement(uid_name))
	{
		uid = UID(parseUInt(holder, uid_name));
		return;
	}
	const std::string name = parseString(holder, name_name);
	const Reference<SceneNodeMaterial>* found = names.material_names.find(String(name));
	if(!found)
		fail("Material '" + name + "' is not defined. " + errorContext(holder));
	target = *found;
}

Reference<Material> readDiffuse(const TypeElement& type)
{
	Reference<DiffuseMaterial> material(new DiffuseMaterial());
	MaterialReading reading(type, *material, albedo_names, {"random_triangle_colours"});
	readAlbedo(reading, material->albedo);
	material->random_triangle_colours = parseBoolWithDefault(type.element, "random_triangle_colours", false);
	return material;
}

Reference<Material> readDiffuseTransmitter(const TypeElement& type)
{
	Reference<DiffuseTransmitter> material(new DiffuseTransmitter());
	MaterialReading reading(type, *material, albedo_names, {"internal_medium_uid", "internal_medium_name"});
	readAlbedo(reading, material->albedo);
	readMedium(type, material->internal_medium_uid, material->internal_medium, false);
	return material;
}

Reference<Material> readOrenNayar(const TypeElement& type)
{
	Reference<OrenNayarMaterial> material(new OrenNayarMaterial());
	MaterialReading reading(type, *material, albedo_names, {"sigma"});
	readAlbedo(reading, material->albedo);
	reading.channel(material->sigma, "sigma");
	return material;
}

Reference<Material> readPhong(const TypeElement& type)
{
	Reference<PhongMaterial> material(new PhongMaterial());
	MaterialReading reading(type, *material,
		{"exponent", "exponent_map", "nk_data", "fresnel_scale", "ior", "diffuse_albedo", "diffuse", "diffuse_albedo_spectrum",
			"specular_reflectivity", "specular_reflectivity_spectrum"});
	readExponent(reading, material->exponent);
	material->nk_data = parseStringWithDefault(type.element, "nk_data", "");
	reading.channel(material->fresnel_scale, {{"fresnel_scale", numberOrParamSource<WavelengthIndependentParam>}});
	material->ior = parseDoubleWithDefault(type.element, "ior", material->ior);
	reading.channel(material->diffuse_albedo, {{"diffuse", colourSource}, {"diffuse_albedo_spectrum", spectrumSource},
												  {"diffuse_albedo", paramSource<WavelengthDependentParam>}});
	reading.channel(material->specular_reflectivity,
		{{"specular_reflectivity_spectrum", spectrumSource}, {"specular_reflectivity", paramSource<WavelengthDependentParam>}});
	return material;
}

// The measured coefficients of specular, each optional.
void readCoefficientTable(const TiXmlElement& element, const char* name, Reference<TabulatedSpectralData>& table)
{
	if(const TiXmlElement* child = element.FirstChildElement(name))
		table = parseTabulatedSpectralData(*child);
}

Reference<Material> readSpecular(const TypeElement& type)
{
	Reference<SpecularMaterial> material(new SpecularMaterial());
	MaterialReading reading(type, *material,
		{"internal_medium_uid", "internal_medium_name", "transparent", "absorption_layer_transmittance", "arch_glass",
			"tabulated_external_reflection_coefficient", "tabulated_internal_reflection_coefficient",
			"tabulated_transmission_coefficient", "private_data"});
	readMedium(type, material->internal_medium_uid, material->internal_medium, true);
	material->transparent = parseBool(type.element, "transparent");
	reading.channel(material->absorption_layer_transmittance, "absorption_layer_transmittance");
	readCoefficientTable(
		type.element, "tabulated_external_reflection_coefficient", material->tabulated_external_reflection_coefficient);
	readCoefficientTable(
		type.element, "tabulated_internal_reflection_coefficient", material->tabulated_internal_reflection_coefficient);
	readCoefficientTable(type.element, "tabulated_transmission_coefficient", material->tabulated_transmission_coefficient);
	material->private_data = parseStringWithDefault(type.element, "private_data", "");
	return material;
}

Reference<Material> readGlossyTransparent(const TypeElement& type)
{
	Reference<GlossyTransparent> material(new GlossyTransparent());
	MaterialReading reading(type, *material,
		{"internal_medium_uid", "internal_medium_name", "exponent", "exponent_map", "absorption_layer_transmittance"});
	readMedium(type, material->internal_medium_uid, material->internal_medium, true);
	readExponent(reading, material->exponent);
	reading.channel(material->absorption_layer_transmittance, "absorption_layer_transmittance");
	return material;
}

// null_material and exit_portal: nothing of their own.
template <class Plain>
Reference<Material> readPlain(const TypeElement& type)
{
	Reference<Plain> material(new Plain());
	MaterialReading reading(type, *material, {});
	return material;
}

Reference<Material> readBlend(const TypeElement& type)
{
	Reference<BlendMaterial> material(new BlendMaterial());
	MaterialReading reading(
		type, *material, {"a_mat_uid", "a_name", "b_mat_uid", "b_name", "blend", "blend_factor", "blend_map", "step_blend"});
	readTarget(type.element, type.names, "a_mat_uid", "a_name", material->a_mat_uid, material->a_mat);
	readTarget(type.element, type.names, "b_mat_uid", "b_name", material->b_mat_uid, material->b_mat);
	reading.channel(
		material->blend, {{"blend_factor", numberSource<DisplacementParam>}, {"blend_map", textureSource<DisplacementParam>},
							 {"blend", paramSource<DisplacementParam>}});
	material->step_blend = parseBoolWithDefault(type.element, "step_blend", false);
	return material;
}

Reference<Material> readSum(const TypeElement& type)
{
	Reference<SumMaterial> material(new SumMaterial());
	MaterialReading reading(type, *material, {"mat"});
	forEachChildElement(type.element, "mat", [&](const TiXmlElement& mat) {
		static const char* const allowed[] = {"mat_uid", "mat_name", "weight", nullptr};
		checkForUnexpectedElements(mat, allowed);
		UID uid;
		Reference<SceneNodeMaterial> target;
		readTarget(mat, type.names, "mat_uid", "mat_name", uid, target);
		material->mat_uids.push_back(uid);
		material->materials.push_back(target);
		// The weight has the forms of a displacement; the forms of the
		// wavelength independent family are the same, so it is read as one.
		material->weights.push_back(
			parseWavelengthIndependentParam(*getFirstChildElement(mat, "weight"), type.dir, material->textures.size()));
	});
	return material;
}

Reference<Material> readSunSky(const TypeElement& type)
{
	Reference<SunSkyMaterial> material(new SunSkyMaterial());
	const TiXmlElement& element = type.element;
	MaterialReading reading(
		type, *material, {"sundir", "turbidity", "extra_atmospheric", "enable_sky", "sun_layer", "sky_layer", "model"});
	material->sundir = parseVec3(element, "sundir");
	material->turbidity = parseDouble(element, "turbidity");
	material->extra_atmospheric = parseBoolWithDefault(element, "extra_atmospheric", false);
	material->enable_sky = parseBoolWithDefault(element, "enable_sky", true);
	material->sun_layer = parseIntWithDefault(element, "sun_layer", 0);
	material->sky_layer = parseIntWithDefault(element, "sky_layer", 0);
	material->model = parseStringWithDefault(element, "model", "original");
	return material;
}

// A named parameter into the list of its family.
template <class Family>
void addPluginParam(Vector<NamedParam<Family>>& list, const String& name, const Reference<Family>& param)
{
	list.push_back(NamedParam<Family>{name, param});
}

void readPluginParam(const TypeElement& type, PluginMaterial& material, const TiXmlElement& param)
{
	const String name = parseString(param, "name");
	const size_t num_textures = material.textures.size();
	if(const TiXmlElement* value = param.FirstChildElement("wavelength_dependent"))
		addPluginParam(material.wavelength_dependent, name, parseWavelengthDependentParam(*value, type.dir, num_textures));
	else if(const TiXmlElement* value = param.FirstChildElement("wavelength_independent"))
		addPluginParam(material.wavelength_independent, name, parseWavelengthIndependentParam(*value, type.dir, num_textures));
	else if(const TiXmlElement* value = param.FirstChildElement("displacement"))
		addPluginParam(material.displacement, name, parseDisplacementParam(*value, type.dir, num_textures));
	else if(const TiXmlElement* value = param.FirstChildElement("volume"))
		addPluginParam(material.volume, name, parseVolumeParam(*value, type.dir));
	else if(const TiXmlElement* value = param.FirstChildElement("vec3"))
		addPluginParam(material.vec3, name, parseVec3Param(*value, type.dir, num_textures));
	else
		fail("failed to find valid param type." + errorContext(param));
}

Reference<Material> readPlugin(const TypeElement& type)
{
	Reference<PluginMaterial> material(new PluginMaterial());
	MaterialReading reading(type, *material, {"plugin_name", "material_name", "layer", "param"});
	material->plugin_name = parseString(type.element, "plugin_name");
	material->material_name = parseString(type.element, "material_name");
	material->layer = parseUIntWithDefault(type.element, "layer", 0);
	forEachChildElement(type.element, "param", [&](const TiXmlElement& param) { readPluginParam(type, *material, param); });
	return material;
}

Reference<Material> readCoating(const TypeElement& type)
{
	Reference<CoatingMaterial> material(new CoatingMaterial());
	MaterialReading reading(type, *material,
		{"absorption", "thickness", "roughness", "fresnel_scale", "ior", "interference", "substrate_material_uid",
			"substrate_material_name"});
	reading.channel(material->absorption, "absorption");
	reading.channel(material->thickness, "thickness");
	reading.channel(material->roughness, "roughness");
	reading.channel(material->fresnel_scale, "fresnel_scale");
	material->ior = parseDoubleWithDefault(type.element, "ior", material->ior);
	material->interference = parseBoolWithDefault(type.element, "interference", false);
	readTarget(type.element, type.names, "substrate_material_uid", "substrate_material_name", material->substrate_material_uid,
		material->substrate_material);
	return material;
}

Reference<Material> readDoubleSidedThin(const TypeElement& type)
{
	Reference<DoubleSidedThinMaterial> material(new DoubleSidedThinMaterial());
	MaterialReading reading(type, *material,
		{"front_material_uid", "front_material_name", "back_material_uid", "back_material_name", "transmittance",
			"front_roughness", "back_roughness", "front_fresnel_scale", "back_fresnel_scale", "r_f", "ior"});
	readTarget(type.element, type.names, "front_material_uid", "front_material_name", material->front_material_uid,
		material->front_material);
	readTarget(type.element, type.names, "back_material_uid", "back_material_name", material->back_material_uid,
		material->back_material);
	reading.channel(material->transmittance, "transmittance");
	reading.channel(material->front_roughness, "front_roughness");
	reading.channel(material->back_roughness, "back_roughness");
	reading.channel(material->front_fresnel_scale, "front_fresnel_scale");
	reading.channel(material->back_fresnel_scale, "back_fresnel_scale");
	reading.channel(material->r_f, "r_f");
	material->ior = parseDoubleWithDefault(type.element, "ior", material->ior);
	return material;
}

struct MaterialTypeReader
{
	const char* name;
	Reference<Material> (*read)(const TypeElement& type);
};

// In the order in which a material element is searched for its type: the
// first one present is read and any other is ignored.
const MaterialTypeReader material_types[] = {
	{"diffuse", readDiffuse},
	{"diffuse_transmitter", readDiffuseTransmitter},
	{"phong", readPhong},
	{"specular", readSpecular},
	{"null_material", readPlain<NullMaterial>},
	{"blend", readBlend},
	{"glossy_transparent", readGlossyTransparent},
	{"oren_nayar", readOrenNayar},
	{"exit_portal", readPlain<ExitPortalMaterial>},
	{"sum", readSum},
	{"sunsky", readSunSky},
	{"plugin", readPlugin},
	{"coating", readCoating},
	{"double_sided_thin", readDoubleSidedThin},
};

UID readUID(const TiXmlElement& element) { return element.FirstChildElement("uid") ? UID(parseUInt(element, "uid")) : UID(); }

Reference<Material> readMaterial(const TiXmlElement& element, const std::string& dir, UID& uid_out, const ParseNames& names)
{
	// fast_sss, ABg and measured are still accepted, but nothing reads them.
	static const char* const allowed[] = {"name", "diffuse", "diffuse_transmitter", "phong", "specular", "null_material", "blend",
		"glossy_transparent", "fast_sss", "ABg", "oren_nayar", "measured", "exit_portal", "sum", "sunsky", "uid",
		"shared_shader_info", "plugin", "coating", "double_sided_thin", "scatter_uids", "shadow_catcher", "backface_emit",
		nullptr};
	checkForUnexpectedElements(element, allowed);
	const std::string name = parseString(element, "name");
	uid_out = readUID(element);
	Reference<Material> material;
	for(const MaterialTypeReader& type : material_types)
		if(const TiXmlElement* type_element = element.FirstChildElement(type.name))
		{
			material = type.read(TypeElement{*type_element, dir, names});
			break;
		}
	if(material.isNull())
		fail("no material element of any type found " + errorContext(element));
	material->name = name;
	material->shadow_catcher = parseBoolWithDefault(element, "shadow_catcher", false);
	material->backface_emit = parseBoolWithDefault(element, "backface_emit", false);
	return material;
}

// A spectrum in the element name + "_spectrum", or else the volume
// parameter in name, which is then required.
Reference<VolumeParam> readCoefficient(const TiXmlElement& element, const char* name, const std::string& dir)
{
	const std::string spectrum_name = std::string(name) + "_spectrum";
	if(const TiXmlElement* spectrum = element.FirstChildElement(spectrum_name.c_str()))
		return new ConstantVolumeParam(parseSpectrum(*spectrum));
	return parseVolumeParam(*getFirstChildElement(element, name), dir);
}

Reference<PhaseFunction> readPhaseFunction(const TiXmlElement& scattering)
{
	// A missing phase_function element is reported as one that holds no
	// phase function.
	const TiXmlElement* phase_function = scattering.FirstChildElement("phase_function");
	if(phase_function && phase_function->FirstChildElement("uniform"))
		return new UniformPhaseFunction();
	if(const TiXmlElement* henyey_greenstein = phase_function ? phase_function->FirstChildElement("henyey_greenstein") : nullptr)
		return new HenyeyGreensteinPhaseFunction(parseSpectrum(*getFirstChildElement(*henyey_greenstein, "g_spectrum")));
	fail("No phase function defined for medium." + errorContext(scattering));
}

Reference<SubsurfaceScattering> readSubsurfaceScattering(const TiXmlElement& element, const std::string& dir)
{
	static const char* const allowed[] = {"scattering_coefficient_spectrum", "scattering_coefficient", "phase_function", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<SubsurfaceScattering> scattering(new SubsurfaceScattering());
	scattering->scattering_coefficient = readCoefficient(element, "scattering_coefficient", dir);
	scattering->phase_function = readPhaseFunction(element);
	return scattering;
}

Reference<Medium> readBasic(const TiXmlElement& element, const std::string& dir)
{
	static const char* const allowed[] = {"ior", "cauchy_b_coeff", "absorption_coefficient_spectrum", "absorption_coefficient",
		"subsurface_scattering", "step_size", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<BasicMedium> medium(new BasicMedium());
	medium->ior = parseDouble(element, "ior");
	medium->cauchy_b_coeff = parseDouble(element, "cauchy_b_coeff");
	medium->step_size = parseDoubleWithDefault(element, "step_size", 0.1);
	medium->absorption_coefficient = readCoefficient(element, "absorption_coefficient", dir);
	if(const TiXmlElement* scattering = element.FirstChildElement("subsurface_scattering"))
		medium->subsurface_scattering = readSubsurfaceScattering(*scattering, dir);
	return medium;
}

Reference<Medium> readDermis(const TiXmlElement& element, const std::string&)
{
	Reference<Dermis> medium(new Dermis());
	medium->hemoglobin_fraction = parseDouble(element, "hemoglobin_fraction");
	return medium;
}

Reference<Medium> readEpidermis(const TiXmlElement& element, const std::string&)
{
	Reference<Epidermis> medium(new Epidermis());
	medium->melanin_fraction = parseDouble(element, "melanin_fraction");
	medium->melanin_type_blend = parseDouble(element, "melanin_type_blend");
	return medium;
}

Reference<Medium> readAtmosphere(const TiXmlElement& element, const std::string&)
{
	Reference<Atmosphere> medium(new Atmosphere());
	medium->center = parseVec3(element, "center");
	medium->turbidity = parseDouble(element, "turbidity");
	return medium;
}

struct MediumTypeReader
{
	const char* name;
	Reference<Medium> (*read)(const TiXmlElement& element, const std::string& dir);
};

// In the order in which a medium element is searched for its type.
const MediumTypeReader medium_types[] = {
	{"basic", readBasic},
	{"dermis", readDermis},
	{"epidermis", readEpidermis},
	{"atmosphere", readAtmosphere},
};

Reference<Medium> readMediumElement(const TiXmlElement& element, const std::string& dir, UID& uid_out)
{
	static const char* const allowed[] = {"name", "precedence", "basic", "dermis", "epidermis", "atmosphere", "uid", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<Medium> medium;
	for(const MediumTypeReader& type : medium_types)
		if(const TiXmlElement* type_element = element.FirstChildElement(type.name))
		{
			medium = type.read(*type_element, dir);
			break;
		}
	if(medium.isNull())
		fail("Medium type not found. " + errorContext(element));
	medium->name = parseString(element, "name");
	// Files without a precedence have always meant 2, whatever the class's
	// own default.
	medium->precedence = parseIntWithDefault(element, "precedence", 2);
	uid_out = readUID(element);
	return medium;
}

} // namespace

Reference<Material> parseMaterial(const TiXmlElement& element, const std::string& dir, UID& uid_out, const ParseNames& names)
{
	return parserCall([&] { return readMaterial(element, dir, uid_out, names); });
}

Reference<Medium> parseMedium(const TiXmlElement& element, const std::string& dir, UID& uid_out)
{
	return parserCall([&] { return readMediumElement(element, dir, uid_out); });
}

} // namespace MaterialParser
} // namespace Velorn
