#include "materials/channel_export.h"

#include "c4d/base_shader.h"
#include "materials/channel_bake.h"
#include "c4d/console.h"
#include "host/plugin_globals.h"
#include "materials/material_export.h"
#include "materials/material_ids.h"
#include "shaders/shader_ids.h"
#include "shaders/shader_translation.h"

#include "scene/tex_coord_generator.h"
#include "scene/texture.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>

namespace
{

const char* const vector_header = "def eval(vec3 pos) vec3: ";
const char* const real_header = "def eval(vec3 pos) real: ";
const char* const plain_header = "def eval() real: ";

// What a channel turns out to be before its class is chosen.
struct ChannelForm
{
	enum Kind
	{
		Off,
		Constant,
		Texture,
		Shader,
	} kind = Off;
	int texture_index = -1;
	Velorn::Reference<Velorn::ShaderInfo> shader;
};

// Appends the texture of a bitmap file with the channel's settings; its
// index in the material's list.
int addTexture(const ChannelIds& ids, ChannelBuild& build, const String& file)
{
	Velorn::Texture texture;
	texture.path = Velorn::String(file.GetStdString());
	texture.a = build.data.GetFloat(ids.a);
	texture.b = build.data.GetFloat(ids.b);
	texture.c = build.data.GetFloat(ids.c);
	texture.exponent = build.data.GetFloat(ids.exponent);
	texture.uv_set_index = 0;
	texture.smooth = ids.smooth != 0 && build.data.GetBool(ids.smooth);
	texture.tex_coord_generation = new Velorn::UVTexCoordGenerator();
	build.target.textures.push_back(texture);
	return (int)build.target.textures.size() - 1;
}

// The decision all channels share, on the switch and the linked shader.
ChannelForm channelForm(const ChannelIds& ids, ChannelBuild& build)
{
	ChannelForm form;
	if(!build.data.GetBool(ids.use))
		return form;
	form.kind = ChannelForm::Constant;
	BaseShader* shader = dynamic_cast<BaseShader*>(build.data.GetLink(ids.link, build.settings.document, Xbase));
	if(!shader)
		return form;
	if(shader->GetType() == Xbitmap)
	{
		const String name = shader->GetDataInstance()->GetFilename(BITMAPSHADER_FILENAME).GetString();
		const String file = resolveTextureName(name, build.settings);
		// The texture keeps the name: the renderer reports the file
		// missing, and the user may still put it in place.
		if(!Velorn::FileUtils::fileExists(file.GetStdString()))
			GePrint(materialSubject(build.material_name) + String(": the texture file '") + name +
				String("' was not found; the scene names it as it stands."));
		form.kind = ChannelForm::Texture;
		form.texture_index = addTexture(ids, build, file);
		return form;
	}
	if(isVslShaderType(shader->GetType()))
	{
		const String header(ids.header);
		const int32_t output_kind = header.GetStdString() == vector_header ? 1 : 0;
		form.shader = translateShader(shader, build.target.textures, header, output_kind);
		if(form.shader.nonNull())
			form.kind = ChannelForm::Shader;
		return form;
	}
	// Any other shader is baked into a JPEG beside the textures; after a
	// failed bake the channel keeps its constant form.
	const String baked = bakeChannelShader(shader, build.data, ids.suffix, build.material_name, build.settings);
	if(baked.Content())
	{
		form.kind = ChannelForm::Texture;
		form.texture_index = addTexture(ids, build, baked);
	}
	return form;
}

} // namespace

const ChannelIds albedo_channel = {MAT_USE_ALBEDO, MAT_ALBEDO_LINK, MAT_ALBEDO_EXPONENT, MAT_ALBEDO_A, MAT_ALBEDO_B,
	MAT_ALBEDO_C, 0, "_albedo.jpg", vector_header};
const ChannelIds exponent_channel = {MAT_USE_EXPONENT, MAT_EXPONENT_LINK, MAT_EXPONENT_EXPONENT, MAT_EXPONENT_A,
	MAT_EXPONENT_B, MAT_EXPONENT_C, MAT_EXPONENT_SMOOTH, "_exponent.jpg", real_header};
const ChannelIds sigma_channel = {MAT_USE_SIGMA, MAT_SIGMA_LINK, MAT_SIGMA_EXPONENT, MAT_SIGMA_A, MAT_SIGMA_B,
	MAT_SIGMA_C, MAT_SIGMA_SMOOTH, "_sigma.jpg", real_header};
const ChannelIds blend_factor_channel = {MAT_USE_ALPHA, MAT_ALPHA_LINK, MAT_ALPHA_EXPONENT, MAT_ALPHA_A, MAT_ALPHA_B,
	MAT_ALPHA_C, MAT_ALPHA_SMOOTH, "_alpha.jpg", plain_header};
const ChannelIds absorption_layer_channel = {MAT_USE_ABSORPTION_LAYER, MAT_ABSORPTION_LAYER_LINK,
	MAT_ABSORPTION_LAYER_EXPONENT, MAT_ABSORPTION_LAYER_A, MAT_ABSORPTION_LAYER_B, MAT_ABSORPTION_LAYER_C, 0,
	"_absorption_layer.jpg", vector_header};
const ChannelIds bump_channel = {MAT_USE_BUMP, MAT_BUMP_LINK, MAT_BUMP_EXPONENT, MAT_BUMP_A, MAT_BUMP_B, MAT_BUMP_C,
	MAT_BUMP_SMOOTH, "_bump.jpg", plain_header};
const ChannelIds displacement_channel = {MAT_USE_DISPLACEMENT, MAT_DISPLACEMENT_LINK, MAT_DISPLACEMENT_EXPONENT,
	MAT_DISPLACEMENT_A, MAT_DISPLACEMENT_B, MAT_DISPLACEMENT_C, MAT_DISPLACEMENT_SMOOTH, "_displacement.jpg",
	plain_header};
const ChannelIds normal_map_channel = {MAT_USE_NORMAL_MAP, MAT_NORMAL_MAP_LINK, MAT_NORMAL_MAP_EXPONENT,
	MAT_NORMAL_MAP_A, MAT_NORMAL_MAP_B, MAT_NORMAL_MAP_C, 0, "_normal.jpg", vector_header};
const ChannelIds emission_channel = {MAT_USE_EMISSION, MAT_EMISSION_LINK, MAT_EMISSION_EXPONENT, MAT_EMISSION_A,
	MAT_EMISSION_B, MAT_EMISSION_C, 0, "_emission.jpg", vector_header};

// The switch of each generic channel.
static int32_t genericSwitch(int32_t base)
{
	switch(base)
	{
	case 10000: return MAT_USE_COAT_ABSORPTION;
	case 11000: return MAT_USE_COAT_THICKNESS;
	case 12000: return MAT_USE_ROUGHNESS;
	case 13000: return MAT_USE_FRESNEL_SCALE;
	case 14000: return MAT_USE_BACK_FRESNEL_SCALE;
	case 15000: return MAT_USE_BACK_ROUGHNESS;
	case 16000: return MAT_USE_TRANSMITTANCE;
	default: return MAT_USE_R_F;
	}
}

// The generic rows reuse the suffixes of albedo and sigma; the timer value
// in a baked file's name keeps the files apart.
ChannelIds genericSpectrumChannel(int32_t base)
{
	return {genericSwitch(base), base + 16, base + 17, base + 18, base + 19, base + 20, 0, "_albedo.jpg", vector_header};
}

ChannelIds genericRealChannel(int32_t base)
{
	return {genericSwitch(base), base + 16, base + 17, base + 18, base + 19, base + 20, base + 22, "_sigma.jpg",
		real_header};
}

Velorn::Reference<Velorn::WavelengthDependentParam> spectrumChannel(
	const ChannelIds& ids, ChannelBuild& build, const Velorn::Reference<Velorn::Spectrum>& constant)
{
	const ChannelForm form = channelForm(ids, build);
	switch(form.kind)
	{
	case ChannelForm::Texture: return new Velorn::TextureWavelengthDependentParam(form.texture_index);
	case ChannelForm::Shader: return new Velorn::ShaderWavelengthDependentParam(form.shader);
	case ChannelForm::Constant:
		if(constant.nonNull())
			return new Velorn::ConstantWavelengthDependentParam(constant);
		return nullptr;
	default: return nullptr;
	}
}

Velorn::Reference<Velorn::WavelengthIndependentParam> realChannel(const ChannelIds& ids, ChannelBuild& build,
	double constant)
{
	const ChannelForm form = channelForm(ids, build);
	switch(form.kind)
	{
	case ChannelForm::Texture: return new Velorn::TextureWavelengthIndependentParam(form.texture_index);
	case ChannelForm::Shader: return new Velorn::ShaderWavelengthIndependentParam(form.shader);
	case ChannelForm::Constant: return new Velorn::ConstantWavelengthIndependentParam(constant);
	default: return nullptr;
	}
}

Velorn::Reference<Velorn::DisplacementParam> displacementChannel(const ChannelIds& ids, ChannelBuild& build,
	const double* constant)
{
	const ChannelForm form = channelForm(ids, build);
	switch(form.kind)
	{
	case ChannelForm::Texture: return new Velorn::TextureDisplacementParam(form.texture_index);
	case ChannelForm::Shader: return new Velorn::ShaderDisplacementParam(form.shader);
	case ChannelForm::Constant:
		if(constant)
			return new Velorn::ConstantDisplacementParam(*constant);
		return nullptr;
	default: return nullptr;
	}
}

Velorn::Reference<Velorn::Vec3Param> normalMapChannel(ChannelBuild& build)
{
	const ChannelForm form = channelForm(normal_map_channel, build);
	switch(form.kind)
	{
	case ChannelForm::Texture: return new Velorn::TextureVec3Param(form.texture_index);
	case ChannelForm::Shader: return new Velorn::ShaderVec3Param(form.shader);
	default: return nullptr;
	}
}

Velorn::Reference<Velorn::Spectrum> rgbSpectrum(const Vector& colour, double scale, double gamma)
{
	return new Velorn::RGBSpectrum(Velorn::Vec3d(colour.x * scale, colour.y * scale, colour.z * scale), gamma);
}

static Velorn::Reference<Velorn::Spectrum> peakSpectrum(double min, double width, double peak, double base)
{
	Velorn::PeakSpectrum* spectrum = new Velorn::PeakSpectrum();
	// The wavelengths stay in the parameter's unit, as the renderer reads them.
	spectrum->peak_min = min;
	spectrum->peak_width = width;
	spectrum->peak_value = peak;
	spectrum->base_value = base;
	return spectrum;
}

Velorn::Reference<Velorn::Spectrum> genericChannelSpectrum(const BaseContainer& data, int32_t base)
{
	switch(data.GetInt32(base + 1))
	{
	case MAT_SPECTRUM_BLACKBODY: return new Velorn::BlackBodySpectrum(data.GetFloat(base + 7), data.GetFloat(base + 8));
	case MAT_SPECTRUM_PEAK:
		return peakSpectrum(
			data.GetFloat(base + 10), data.GetFloat(base + 11), data.GetFloat(base + 12), data.GetFloat(base + 13));
	case MAT_SPECTRUM_UNIFORM: return new Velorn::UniformSpectrum(data.GetFloat(base + 15));
	default: return rgbSpectrum(data.GetVector(base + 3), data.GetFloat(base + 4), data.GetFloat(base + 5));
	}
}

String materialSubject(const String& name)
{
	return String("Material '") + name + String("'");
}

BaseMaterial* materialLink(const BaseContainer& data, int32_t id, const String& owner, const ExportSettings& settings)
{
	BaseList2D* target = data.GetLink(id, settings.document, 0);
	BaseMaterial* material = dynamic_cast<BaseMaterial*>(target);
	if(target && !material)
		GePrint(materialSubject(owner) + String(" links to '") + target->GetName() +
			String("', which is not a material; the link was replaced by the default for an empty link."));
	return material;
}

static std::string nanometres(double value)
{
	std::ostringstream text;
	text << value;
	return text.str();
}

Velorn::Reference<Velorn::Spectrum> tabulatedSpectrum(double start, double end, const String& values, const String& owner)
{
	// The reader refuses a table that starts after 400 nm or ends before
	// 700 nm.
	const double covered_start = std::min(start, 400.0), covered_end = std::max(end, 700.0);
	if((covered_start != start || covered_end != end) && owner.Content())
		GePrint(owner + String(": the tabulated spectrum from " + nanometres(start) + " nm to " + nanometres(end) +
							" nm does not cover 400 nm to 700 nm, which the reader needs; it now runs from " +
							nanometres(covered_start) + " nm to " + nanometres(covered_end) + " nm."));
	start = covered_start;
	end = covered_end;
	Velorn::RegularSpectrum* spectrum = new Velorn::RegularSpectrum();
	// Nanometres to metres, divided rather than multiplied by 1e-9 so that the
	// ends come out correctly rounded: 400 nm is exactly the reader's lower
	// bound of 0.4e-6 m, which 400 * 1e-9 overshoots by one ulp.
	spectrum->start_wavelength = start / 1e9;
	spectrum->end_wavelength = end / 1e9;
	std::istringstream tokens(values.GetStdString());
	std::string token;
	while(tokens >> token)
	{
		char* end_of_number = nullptr;
		const double value = std::strtod(token.c_str(), &end_of_number);
		spectrum->values.push_back(*end_of_number == '\0' ? value : 0.0);
	}
	if(spectrum->values.size() < 2)
	{
		spectrum->values.clear();
		spectrum->values.push_back(0.1);
		spectrum->values.push_back(0.1);
	}
	spectrum->num_values = (int32_t)spectrum->values.size();
	return spectrum;
}

Velorn::Reference<Velorn::WavelengthDependentParam> baseEmission(const BaseContainer& data, const String& owner)
{
	if(!data.GetBool(MAT_USE_EMISSION))
		return nullptr;
	Velorn::Reference<Velorn::Spectrum> spectrum;
	switch(data.GetInt32(MAT_EMISSION_MODE))
	{
	case MAT_SPECTRUM_RGB:
		spectrum = rgbSpectrum(data.GetVector(MAT_EMISSION_RGB_COLOUR), data.GetFloat(MAT_EMISSION_RGB_SCALE),
			data.GetFloat(MAT_EMISSION_RGB_GAMMA));
		break;
	case MAT_SPECTRUM_BLACKBODY:
		spectrum = new Velorn::BlackBodySpectrum(
			data.GetFloat(MAT_EMISSION_BLACKBODY_TEMPERATURE), data.GetFloat(MAT_EMISSION_BLACKBODY_GAIN));
		break;
	case MAT_SPECTRUM_PEAK:
		spectrum = peakSpectrum(data.GetFloat(MAT_EMISSION_PEAK_MIN), data.GetFloat(MAT_EMISSION_PEAK_WIDTH),
			data.GetFloat(MAT_EMISSION_PEAK_VALUE), data.GetFloat(MAT_EMISSION_PEAK_BASE));
		break;
	case MAT_SPECTRUM_UNIFORM: spectrum = new Velorn::UniformSpectrum(data.GetFloat(MAT_EMISSION_UNIFORM)); break;
	case MAT_SPECTRUM_TABULATED:
		// Init leaves the table's ends unset: the reader's defaults hold.
		spectrum = tabulatedSpectrum(data.GetFloat(MAT_EMISSION_TABLE_START, 400.0),
			data.GetFloat(MAT_EMISSION_TABLE_END, 700.0), data.GetString(MAT_EMISSION_TABLE_VALUES), owner);
		break;
	default:
		// A parameter without spectrum is no scene the reader takes.
		GePrint(owner + String(" has an unknown emission spectrum mode ") +
			String::IntToString(data.GetInt32(MAT_EMISSION_MODE)) + String("; its base emission was left out."));
		return nullptr;
	}
	return new Velorn::ConstantWavelengthDependentParam(spectrum);
}

// The host's texture search: name in dir, or in its "tex" folder; empty when
// neither holds the file.
static std::string searchTexture(const std::string& dir, const std::string& name)
{
	for(const std::string& candidate : {Velorn::FileUtils::join(dir, name),
			Velorn::FileUtils::join(Velorn::FileUtils::join(dir, "tex"), name)})
		if(Velorn::FileUtils::fileExists(candidate))
			return candidate;
	return std::string();
}

static bool isAbsoluteName(const std::string& name)
{
	return (!name.empty() && (name[0] == '/' || name[0] == '\\')) || (name.size() > 1 && name[1] == ':');
}

String resolveTextureName(const String& name, ExportSettings& settings)
{
	const std::string text = name.GetStdString();
	const std::string preset_mark = "preset://";
	const size_t preset = text.find(preset_mark);
	if(preset != std::string::npos)
	{
		std::string local;
		for(size_t i = 0; i < text.size(); ++i)
		{
			if(text.compare(i, 3, "://") == 0)
			{
				local += '_';
				i += 2;
			}
			else
				local += (text[i] == '/' || text[i] == '\\') ? '_' : text[i];
		}
		const std::string target = Velorn::FileUtils::join(settings.textures_dir.GetString().GetStdString(), local);
		if(!Velorn::FileUtils::fileExists(target) && plugin_path)
		{
			// The preset library is the plug-in's "presets" folder.
			const std::string source = Velorn::FileUtils::join(
				Velorn::FileUtils::join(plugin_path->GetString().GetStdString(), "presets"),
				text.substr(preset + preset_mark.size()));
			if(Velorn::FileUtils::fileExists(source))
			{
				try
				{
					Velorn::FileUtils::copyFile(source, target);
					if(settings.temp_files)
						settings.temp_files->push_back(Filename(String(target)));
				}
				catch(const Velorn::FileUtilsExcep&)
				{
					// The texture names the target; the renderer reports it missing.
				}
			}
		}
		return String(target);
	}
	if(isAbsoluteName(text))
		return name;
	if(settings.preview && plugin_path)
	{
		const std::string found = searchTexture(
			Velorn::FileUtils::join(Velorn::FileUtils::join(plugin_path->GetString().GetStdString(), "res"),
				"materialpreview"),
			text);
		if(!found.empty())
			return String(found);
	}
	if(settings.document)
	{
		const std::string found = searchTexture(settings.document->GetDocumentPath().GetString().GetStdString(), text);
		if(!found.empty())
			return String(found);
	}
	return name;
}
