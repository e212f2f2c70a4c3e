#include "standin/shading_values.h"

#include "scene/channel_params.h"
#include "scene/shader_info.h"
#include "scene/tex_coord_generator.h"
#include "scene/texture.h"
#include "scene/wavelength_values.h"
#include "standin/image_files.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

#include <cmath>

namespace Velorn
{
namespace Standin
{

namespace
{

// The centres of the bands that stand for red, green and blue, in nm.
const double band_centres[3] = {610, 550, 465};
const double band_half_width = 40;

double planck(double wavelength_nm, double temperature)
{
	const double h = 6.62607015e-34, c = 2.99792458e8, k = 1.380649e-23;
	const double l = wavelength_nm * 1e-9;
	return 2 * h * c * c / (l * l * l * l * l * (std::exp(h * c / (l * k * temperature)) - 1));
}

// The mean of a regular table of values over [start, end] within one band.
double bandMean(double start, double end, const Vector<double>& values, size_t count, double centre)
{
	if(count == 0)
		return 0;
	if(count == 1 || end <= start)
		return values[0];
	double sum = 0;
	int n = 0;
	for(double w = centre - band_half_width; w <= centre + band_half_width; w += 5)
	{
		const double t = std::fmin(std::fmax((w - start) / (end - start), 0.0), 1.0) * (count - 1);
		const size_t i = std::min((size_t)t, count - 2);
		const double f = t - i;
		sum += values[i] * (1 - f) + values[i + 1] * f;
		++n;
	}
	return sum / n;
}

} // namespace

V3 blackBodyColour(double temperature)
{
	if(temperature <= 0)
		return V3(0);
	const V3 c((float)planck(band_centres[0], temperature), (float)planck(band_centres[1], temperature),
		(float)planck(band_centres[2], temperature));
	const float lum = luminance(c);
	return lum > 0 ? c / lum : V3(0);
}

V3 spectrumToRGB(const Spectrum& spectrum)
{
	if(auto* rgb = dynamic_cast<const RGBSpectrum*>(&spectrum))
	{
		const double g = rgb->gamma > 0 ? rgb->gamma : 1.0;
		return V3((float)std::pow(std::fmax(rgb->rgb.x, 0.0), g), (float)std::pow(std::fmax(rgb->rgb.y, 0.0), g),
			(float)std::pow(std::fmax(rgb->rgb.z, 0.0), g));
	}
	if(auto* uniform = dynamic_cast<const UniformSpectrum*>(&spectrum))
		return V3((float)uniform->value);
	if(auto* black_body = dynamic_cast<const BlackBodySpectrum*>(&spectrum))
		return blackBodyColour(black_body->temperature) * (float)black_body->gain;
	if(auto* peak = dynamic_cast<const PeakSpectrum*>(&spectrum))
	{
		V3 out;
		float* c[3] = {&out.x, &out.y, &out.z};
		for(int i = 0; i < 3; ++i)
		{
			// The share of the band that the peak covers.
			const double lo = std::fmax(peak->peak_min, band_centres[i] - band_half_width);
			const double hi = std::fmin(peak->peak_min + peak->peak_width, band_centres[i] + band_half_width);
			const double share = std::fmax(0.0, hi - lo) / (2 * band_half_width);
			*c[i] = (float)(peak->base_value + share * (peak->peak_value - peak->base_value));
		}
		return out;
	}
	if(auto* regular = dynamic_cast<const RegularSpectrum*>(&spectrum))
	{
		const size_t n = regular->values.size();
		return V3((float)bandMean(regular->start_wavelength, regular->end_wavelength, regular->values, n, band_centres[0]),
			(float)bandMean(regular->start_wavelength, regular->end_wavelength, regular->values, n, band_centres[1]),
			(float)bandMean(regular->start_wavelength, regular->end_wavelength, regular->values, n, band_centres[2]));
	}
	throw Exception("Unknown spectrum type " + std::to_string(spectrum.getType()) + ".");
}

V3 TextureMap::eval(float u, float v) const
{
	const double tu = matrix[0] * u + matrix[1] * v + translation[0];
	const double tv = matrix[2] * u + matrix[3] * v + translation[1];
	const Colour3f t = image->vec3SampleTiled(tu, tv);
	const float tt[3] = {t.r, t.g, t.b};
	float out[3];
	for(int i = 0; i < 3; ++i)
		out[i] = (float)(a * tt[i] * tt[i] + b * tt[i] + c);
	return V3(out[0], out[1], out[2]);
}

TextureMap TextureCache::get(const Texture& texture)
{
	std::string path = texture.path.str();
	if(!path.empty() && path[0] != '/' && !FileUtils::fileExists(path))
		path = FileUtils::join(scene_dir, path);
	const auto key = std::make_pair(path, texture.exponent);
	std::shared_ptr<const Image>& image = images[key];
	if(!image)
	{
		auto loaded = std::make_shared<Image>();
		loadImageFile(path, (float)texture.exponent, *loaded);
		image = loaded;
	}
	TextureMap map;
	map.image = image;
	map.a = texture.a;
	map.b = texture.b;
	map.c = texture.c;
	if(auto* uv = dynamic_cast<const UVTexCoordGenerator*>(texture.tex_coord_generation.getPointer()))
	{
		for(int i = 0; i < 4; ++i)
			map.matrix[i] = uv->matrix.e[i];
		map.translation[0] = uv->translation.x;
		map.translation[1] = uv->translation.y;
	}
	return map;
}

TextureMap ChannelReader::textureAt(int index)
{
	if(index < 0 || (size_t)index >= texture_list.size())
		throw Exception("Texture index " + std::to_string(index) + " is out of range.");
	return cache.get(texture_list[index]);
}

std::shared_ptr<const ShaderProgram> ChannelReader::program(const ShaderInfo* info)
{
	if(!info)
	{
		shader_errors.push_back("a shader without a program");
		return nullptr;
	}
	try
	{
		return std::make_shared<const ShaderProgram>(info->shader.str());
	}
	catch(const Exception& e)
	{
		shader_errors.push_back(e.what());
		return nullptr;
	}
}

template <class TextureForm, class ShaderForm, class Param, class Value>
bool ChannelReader::readVarying(const Param* param, Value& value)
{
	if(auto* texture = dynamic_cast<const TextureForm*>(param))
	{
		value.has_texture = true;
		value.texture = textureAt(texture->texture_index);
	}
	else if(auto* shader = dynamic_cast<const ShaderForm*>(param))
		value.shader = program(shader->shader_info.getPointer());
	else
		return false;
	reads_coordinates = true;
	return true;
}

void ChannelReader::unknownForm(bool present)
{
	if(present)
		shader_errors.push_back("a channel of an unknown form");
}

ColourValue ChannelReader::colour(const Reference<WavelengthDependentParam>& param, const V3& fallback)
{
	ColourValue value;
	value.constant = fallback;
	if(auto* constant = dynamic_cast<ConstantWavelengthDependentParam*>(param.getPointer()))
	{
		if(constant->spectrum.nonNull())
			value.constant = spectrumToRGB(*constant->spectrum);
	}
	else if(!readVarying<TextureWavelengthDependentParam, ShaderWavelengthDependentParam>(param.getPointer(), value))
		unknownForm(param.nonNull());
	return value;
}

ScalarValue ChannelReader::scalar(const Reference<WavelengthIndependentParam>& param, float fallback)
{
	ScalarValue value;
	value.constant = fallback;
	if(auto* constant = dynamic_cast<ConstantWavelengthIndependentParam*>(param.getPointer()))
		value.constant = (float)constant->value;
	else if(!readVarying<TextureWavelengthIndependentParam, ShaderWavelengthIndependentParam>(param.getPointer(), value))
		unknownForm(param.nonNull());
	return value;
}

ScalarValue ChannelReader::scalar(const Reference<DisplacementParam>& param, float fallback)
{
	ScalarValue value;
	value.constant = fallback;
	if(auto* constant = dynamic_cast<ConstantDisplacementParam*>(param.getPointer()))
		value.constant = (float)constant->value;
	else if(!readVarying<TextureDisplacementParam, ShaderDisplacementParam>(param.getPointer(), value))
		unknownForm(param.nonNull());
	return value;
}

ColourValue ChannelReader::vec3(const Reference<Vec3Param>& param, const V3& fallback)
{
	ColourValue value;
	value.constant = fallback;
	if(!readVarying<TextureVec3Param, ShaderVec3Param>(param.getPointer(), value))
		unknownForm(param.nonNull());
	return value;
}

} // namespace Standin
} // namespace Velorn
