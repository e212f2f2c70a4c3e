#include "materials/material_import_fill.h"

#include "c4d/base_shader.h"
#include "c4d/console.h"
#include "materials/material_ids.h"
#include "shaders/shader_ids.h"

#include "support/file_utils.h"
#include "support/platform.h"
#include "support/string_utils.h"

#include <algorithm>

using Velorn::Reference;

void MaterialFill::unsupported(const std::string& what)
{
	warnings.push_back(String(what) + String(" in Material \"") + name + String("\" not supported."));
}

ChannelIds importChannelIds(const ChannelIds& ids)
{
	ChannelIds result = ids;
	// The exponent channel's texture smoothing has always been read into
	// the bump channel's flag; files and documents made since expect it.
	if(ids.link == MAT_EXPONENT_LINK)
		result.smooth = MAT_BUMP_SMOOTH;
	return result;
}

namespace
{

// A path with a drive colon or a backslash is a full path of the system the
// file was written on. Any other is relative to the material file's folder;
// joining leaves an absolute path of this system as it is.
std::string texturePath(const std::string& path, const std::string& directory)
{
	if(path.find(':') != std::string::npos || path.find('\\') != std::string::npos)
		return path;
	return Velorn::FileUtils::join(directory, path);
}

// Links shader into the channel and sets the channel's switch. The material
// owns the shader.
void linkShader(MaterialFill& fill, BaseShader* shader, const ChannelIds& ids)
{
	fill.host.InsertShader(shader);
	fill.data.SetLink(ids.link, shader);
	fill.data.SetBool(ids.use, true);
}

// A shader parameter becomes the plug-in's free-text shader holding the
// program's text.
void importShader(MaterialFill& fill, const Reference<Velorn::ShaderInfo>& info, const ChannelIds& ids)
{
	BaseShader* shader = BaseShader::Alloc(ID_VSL_SHADER);
	if(!shader)
		return;
	shader->GetDataInstance()->SetString(VSLSHADER_TEXT, String(info.nonNull() ? info->shader.str() : std::string()));
	linkShader(fill, shader, ids);
}

// The base id of a generic channel from its link (B + 16).
int32_t genericBase(const ChannelIds& ids)
{
	return ids.link - MAT_CH_LINK;
}

// The colour parameters of the albedo and the absorption layer.
struct ColourIds
{
	int32_t colour, scale, gamma;
};

void storeColour(MaterialFill& fill, const ChannelIds& ids, const ColourIds& colour, const Velorn::Spectrum& spectrum,
	const char* blackbody, const char* tabulated, const char* peak)
{
	if(const auto* rgb = dynamic_cast<const Velorn::RGBSpectrum*>(&spectrum))
	{
		// The colour as it stands, even above 1: the scale stays 1.
		fill.data.SetVector(colour.colour, Vector(rgb->rgb.x, rgb->rgb.y, rgb->rgb.z));
		fill.data.SetFloat(colour.scale, 1.0);
		fill.data.SetFloat(colour.gamma, rgb->gamma);
	}
	else if(const auto* uniform = dynamic_cast<const Velorn::UniformSpectrum*>(&spectrum))
	{
		fill.data.SetVector(colour.colour, Vector(uniform->value, uniform->value, uniform->value));
		fill.data.SetFloat(colour.scale, 1.0);
		fill.data.SetFloat(colour.gamma, 1.0);
	}
	else
	{
		if(dynamic_cast<const Velorn::BlackBodySpectrum*>(&spectrum))
			fill.unsupported(blackbody);
		else if(dynamic_cast<const Velorn::RegularSpectrum*>(&spectrum))
			fill.unsupported(tabulated);
		else if(dynamic_cast<const Velorn::PeakSpectrum*>(&spectrum))
			fill.unsupported(peak);
		return;
	}
	// The file has the member, so the channel is on.
	fill.data.SetBool(ids.use, true);
}

// A generic spectrum channel's constant by the spectrum's kind; a table has
// no parameters in these channels and is left out.
void storeGenericSpectrum(MaterialFill& fill, const ChannelIds& ids, const Velorn::Spectrum& spectrum)
{
	const int32_t base = genericBase(ids);
	BaseContainer& data = fill.data;
	if(const auto* rgb = dynamic_cast<const Velorn::RGBSpectrum*>(&spectrum))
	{
		Vector colour;
		double scale = 1.0;
		unitColour(rgb->rgb, colour, scale);
		data.SetVector(base + MAT_CH_COLOUR, colour);
		data.SetFloat(base + MAT_CH_SCALE, scale);
		data.SetFloat(base + MAT_CH_GAMMA, rgb->gamma);
		data.SetInt32(base + MAT_CH_MODE, MAT_SPECTRUM_RGB);
	}
	else if(const auto* uniform = dynamic_cast<const Velorn::UniformSpectrum*>(&spectrum))
	{
		data.SetFloat(base + MAT_CH_UNIFORM, uniform->value);
		data.SetInt32(base + MAT_CH_MODE, MAT_SPECTRUM_UNIFORM);
	}
	else if(const auto* blackbody = dynamic_cast<const Velorn::BlackBodySpectrum*>(&spectrum))
	{
		data.SetFloat(base + MAT_CH_TEMPERATURE, blackbody->temperature);
		data.SetFloat(base + MAT_CH_GAIN, blackbody->gain);
		data.SetInt32(base + MAT_CH_MODE, MAT_SPECTRUM_BLACKBODY);
	}
	else if(const auto* peak = dynamic_cast<const Velorn::PeakSpectrum*>(&spectrum))
	{
		data.SetFloat(base + MAT_CH_PEAK_MIN, peak->peak_min);
		data.SetFloat(base + MAT_CH_PEAK_WIDTH, peak->peak_width);
		data.SetFloat(base + MAT_CH_PEAK_VALUE, peak->peak_value);
		data.SetFloat(base + MAT_CH_BASE_VALUE, peak->base_value);
		data.SetInt32(base + MAT_CH_MODE, MAT_SPECTRUM_PEAK);
	}
	else
		return;
	data.SetBool(ids.use, true);
}

// The word of the emission warning for the spectrum's kind.
const char* emissionKind(const Velorn::Spectrum& spectrum)
{
	if(dynamic_cast<const Velorn::RGBSpectrum*>(&spectrum))
		return "Emission RGB spectrum";
	if(dynamic_cast<const Velorn::BlackBodySpectrum*>(&spectrum))
		return "Emission blackbody spectrum";
	if(dynamic_cast<const Velorn::UniformSpectrum*>(&spectrum))
		return "Emission uniform spectrum";
	if(dynamic_cast<const Velorn::RegularSpectrum*>(&spectrum))
		return "Emission tabulated spectrum";
	if(dynamic_cast<const Velorn::PeakSpectrum*>(&spectrum))
		return "Emission peak spectrum";
	return nullptr;
}

void importConstantSpectrum(
	MaterialFill& fill, const Velorn::Spectrum& spectrum, const ChannelIds& ids, SpectrumTarget target)
{
	switch(target)
	{
	case SpectrumTarget::Albedo:
		storeColour(fill, ids, {MAT_ALBEDO_COLOUR, MAT_ALBEDO_SCALE, MAT_ALBEDO_GAMMA}, spectrum,
			"Albedo blackbody spectrum", "Albedo tabulated spectrum", "Albedo peak spectrum");
		break;
	case SpectrumTarget::AbsorptionLayer:
		storeColour(fill, ids,
			{MAT_ABSORPTION_LAYER_COLOUR, MAT_ABSORPTION_LAYER_SCALE, MAT_ABSORPTION_LAYER_GAMMA}, spectrum,
			"Absorption layer blackbody spectrum", "Absorption layer spectrum", "Absorption layer spectrum");
		break;
	case SpectrumTarget::Emission:
		if(const char* kind = emissionKind(spectrum))
			fill.unsupported(kind);
		break;
	case SpectrumTarget::Generic: storeGenericSpectrum(fill, ids, spectrum); break;
	}
}

std::string joinedValues(const Velorn::RegularSpectrum& table)
{
	std::string text;
	for(size_t i = 0; i < table.values.size(); ++i)
		text += (i ? " " : "") + Velorn::doubleToString(table.values[i]);
	return text;
}

} // namespace

bool importTexture(MaterialFill& fill, int texture_index, const ChannelIds& ids)
{
	// The reader checks the index against the list; a material made in
	// another way may not have been.
	if(texture_index < 0 || (size_t)texture_index >= fill.source.textures.size())
		return false;
	const Velorn::Texture& texture = fill.source.textures[(size_t)texture_index];
	const std::string path = texturePath(texture.path.str(), fill.directory);
	if(!Velorn::Platform::isRegularFile(path))
	{
		GePrint(String("Failed to load texture from: ") + String(path));
		return false;
	}
	GePrint(String("Loaded texture: ") + String(path));
	BaseShader* shader = BaseShader::Alloc(Xbitmap);
	if(!shader)
		return false;
	shader->GetDataInstance()->SetFilename(BITMAPSHADER_FILENAME, Filename(String(path)));
	linkShader(fill, shader, ids);
	fill.data.SetFloat(ids.a, texture.a);
	fill.data.SetFloat(ids.b, texture.b);
	fill.data.SetFloat(ids.c, texture.c);
	fill.data.SetFloat(ids.exponent, texture.exponent);
	if(ids.smooth)
		fill.data.SetBool(ids.smooth, texture.smooth);
	return true;
}

void importSpectrumChannel(MaterialFill& fill, const Reference<Velorn::WavelengthDependentParam>& param,
	const ChannelIds& ids, SpectrumTarget target)
{
	const Velorn::WavelengthDependentParam* value = param.getPointer();
	if(const auto* texture = dynamic_cast<const Velorn::TextureWavelengthDependentParam*>(value))
		importTexture(fill, texture->texture_index, ids);
	else if(const auto* shader = dynamic_cast<const Velorn::ShaderWavelengthDependentParam*>(value))
		importShader(fill, shader->shader_info, ids);
	else if(const auto* constant = dynamic_cast<const Velorn::ConstantWavelengthDependentParam*>(value))
	{
		if(constant->spectrum.nonNull())
			importConstantSpectrum(fill, *constant->spectrum, ids, target);
	}
}

void importRealChannel(MaterialFill& fill, const Reference<Velorn::WavelengthIndependentParam>& param,
	const ChannelIds& ids, int32_t value_id, double scale, bool set_switch)
{
	const Velorn::WavelengthIndependentParam* value = param.getPointer();
	if(const auto* texture = dynamic_cast<const Velorn::TextureWavelengthIndependentParam*>(value))
		importTexture(fill, texture->texture_index, ids);
	else if(const auto* shader = dynamic_cast<const Velorn::ShaderWavelengthIndependentParam*>(value))
		importShader(fill, shader->shader_info, ids);
	else if(const auto* constant = dynamic_cast<const Velorn::ConstantWavelengthIndependentParam*>(value))
	{
		fill.data.SetFloat(value_id, constant->value * scale);
		if(set_switch)
			fill.data.SetBool(ids.use, true);
	}
}

void importDisplacementChannel(MaterialFill& fill, const Reference<Velorn::DisplacementParam>& param,
	const ChannelIds& ids, int32_t value_id, const char* constant_name)
{
	const Velorn::DisplacementParam* value = param.getPointer();
	if(const auto* texture = dynamic_cast<const Velorn::TextureDisplacementParam*>(value))
		importTexture(fill, texture->texture_index, ids);
	else if(const auto* shader = dynamic_cast<const Velorn::ShaderDisplacementParam*>(value))
		importShader(fill, shader->shader_info, ids);
	else if(const auto* constant = dynamic_cast<const Velorn::ConstantDisplacementParam*>(value))
	{
		if(value_id)
			fill.data.SetFloat(value_id, constant->value);
		else
			fill.unsupported(std::string(constant_name) + " constant");
	}
}

void importNormalMap(MaterialFill& fill, const Reference<Velorn::Vec3Param>& param)
{
	const Velorn::Vec3Param* value = param.getPointer();
	if(const auto* texture = dynamic_cast<const Velorn::TextureVec3Param*>(value))
		importTexture(fill, texture->texture_index, normal_map_channel);
	else if(const auto* shader = dynamic_cast<const Velorn::ShaderVec3Param*>(value))
		importShader(fill, shader->shader_info, normal_map_channel);
}

void importBaseEmission(MaterialFill& fill, const Reference<Velorn::WavelengthDependentParam>& param)
{
	// The base emission has no texture form on the host: only a constant
	// carries over.
	const auto* constant = dynamic_cast<const Velorn::ConstantWavelengthDependentParam*>(param.getPointer());
	if(!constant || constant->spectrum.isNull())
		return;
	storeGroupSpectrum(fill.data, emission_group_ids, *constant->spectrum);
	fill.data.SetBool(MAT_USE_EMISSION, true);
}

void unitColour(const Velorn::Vec3d& rgb, Vector& colour, double& scale)
{
	const double largest = std::max(rgb.x, std::max(rgb.y, rgb.z));
	if(largest > 1.0)
	{
		colour = Vector(rgb.x / largest, rgb.y / largest, rgb.z / largest);
		scale = largest;
	}
	else
	{
		colour = Vector(rgb.x, rgb.y, rgb.z);
		scale = 1.0;
	}
}

const SpectrumGroupIds emission_group_ids = {MAT_EMISSION_MODE, MAT_EMISSION_RGB_COLOUR, MAT_EMISSION_RGB_SCALE,
	MAT_EMISSION_RGB_GAMMA, MAT_EMISSION_BLACKBODY_TEMPERATURE, MAT_EMISSION_BLACKBODY_GAIN, MAT_EMISSION_PEAK_MIN,
	MAT_EMISSION_PEAK_WIDTH, MAT_EMISSION_PEAK_BASE, MAT_EMISSION_PEAK_VALUE, MAT_EMISSION_UNIFORM,
	MAT_EMISSION_TABLE_START, MAT_EMISSION_TABLE_END, MAT_EMISSION_TABLE_VALUES};
const SpectrumGroupIds absorption_group_ids = {MAT_ABSORPTION_MODE, MAT_ABSORPTION_RGB_COLOUR,
	MAT_ABSORPTION_RGB_SCALE, MAT_ABSORPTION_RGB_GAMMA, MAT_ABSORPTION_BLACKBODY_TEMPERATURE,
	MAT_ABSORPTION_BLACKBODY_GAIN, MAT_ABSORPTION_PEAK_MIN, MAT_ABSORPTION_PEAK_WIDTH, MAT_ABSORPTION_PEAK_BASE,
	MAT_ABSORPTION_PEAK_VALUE, MAT_ABSORPTION_UNIFORM, MAT_ABSORPTION_TABLE_START, MAT_ABSORPTION_TABLE_END,
	MAT_ABSORPTION_TABLE_VALUES};
const SpectrumGroupIds scattering_group_ids = {MAT_SCATTERING_MODE, MAT_SCATTERING_RGB_COLOUR,
	MAT_SCATTERING_RGB_SCALE, MAT_SCATTERING_RGB_GAMMA, MAT_SCATTERING_BLACKBODY_TEMPERATURE,
	MAT_SCATTERING_BLACKBODY_GAIN, MAT_SCATTERING_PEAK_MIN, MAT_SCATTERING_PEAK_WIDTH, MAT_SCATTERING_PEAK_BASE,
	MAT_SCATTERING_PEAK_VALUE, MAT_SCATTERING_UNIFORM, MAT_SCATTERING_TABLE_START, MAT_SCATTERING_TABLE_END,
	MAT_SCATTERING_TABLE_VALUES};

void storeGroupSpectrum(
	BaseContainer& data, const SpectrumGroupIds& group, const Velorn::Spectrum& spectrum, bool invert_rgb)
{
	if(const auto* rgb = dynamic_cast<const Velorn::RGBSpectrum*>(&spectrum))
	{
		Vector colour;
		double scale = 1.0;
		unitColour(rgb->rgb, colour, scale);
		if(invert_rgb)
			colour = Vector(1.0 - colour.x, 1.0 - colour.y, 1.0 - colour.z);
		data.SetVector(group.colour, colour);
		data.SetFloat(group.scale, scale);
		data.SetFloat(group.gamma, rgb->gamma);
		data.SetInt32(group.mode, MAT_SPECTRUM_RGB);
	}
	else if(const auto* uniform = dynamic_cast<const Velorn::UniformSpectrum*>(&spectrum))
	{
		data.SetFloat(group.uniform, uniform->value);
		data.SetInt32(group.mode, MAT_SPECTRUM_UNIFORM);
	}
	else if(const auto* blackbody = dynamic_cast<const Velorn::BlackBodySpectrum*>(&spectrum))
	{
		data.SetFloat(group.temperature, blackbody->temperature);
		data.SetFloat(group.gain, blackbody->gain);
		data.SetInt32(group.mode, MAT_SPECTRUM_BLACKBODY);
	}
	else if(const auto* table = dynamic_cast<const Velorn::RegularSpectrum*>(&spectrum))
	{
		// The scene counts metres, the host nanometres.
		data.SetFloat(group.table_start, table->start_wavelength * 1e9);
		data.SetFloat(group.table_end, table->end_wavelength * 1e9);
		data.SetString(group.table_values, String(joinedValues(*table)));
		data.SetInt32(group.mode, MAT_SPECTRUM_TABULATED);
	}
	else if(const auto* peak = dynamic_cast<const Velorn::PeakSpectrum*>(&spectrum))
	{
		data.SetFloat(group.peak_min, peak->peak_min);
		data.SetFloat(group.peak_width, peak->peak_width);
		data.SetFloat(group.peak_base, peak->base_value);
		data.SetFloat(group.peak_value, peak->peak_value);
		data.SetInt32(group.mode, MAT_SPECTRUM_PEAK);
	}
}
