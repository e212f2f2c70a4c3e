// The values inside materials and media: spectra, tables, textures, shader
// infos and the channel parameters.

#include "reader/channel_forms.h"
#include "reader/material_parser.h"
#include "reader/scene_parse_utils.h"
#include "support/file_utils.h"
#include "support/string_utils.h"

#include <algorithm>
#include <type_traits>

namespace Velorn
{
namespace MaterialParser
{

using namespace SceneParseUtils;

namespace
{

[[noreturn]] void fail(const std::string& message) { throw SceneParserExcep(message); }

Reference<Spectrum> readRGB(const TiXmlElement& element)
{
	return new RGBSpectrum(parseVec3(element, "rgb"), parseDoubleWithDefault(element, "gamma", 2.2));
}

Reference<Spectrum> readBlackBody(const TiXmlElement& element)
{
	return new BlackBodySpectrum(parseDouble(element, "temperature"), parseDouble(element, "gain"));
}

Reference<Spectrum> readPeak(const TiXmlElement& element)
{
	Reference<PeakSpectrum> spectrum(new PeakSpectrum());
	spectrum->peak_min = parseDouble(element, "peak_min");
	spectrum->peak_width = parseDouble(element, "peak_width");
	spectrum->peak_value = parseDouble(element, "peak_value");
	spectrum->base_value = parseDouble(element, "base_value");
	return spectrum;
}

// The number of samples of a table, from 2 to a million.
void checkCount(int32_t count, const std::string& name)
{
	if(count < 2)
		fail(name + " must be >= 2.");
	if(count > 1000000)
		fail(name + " must be <= 1e6.");
}

// A table must cover the visible range. The message about the end differs
// between the two kinds of table.
void checkWavelengths(double start, double end, const char* end_message)
{
	if(start > 0.4e-6)
		fail("start_wavelength must be <= 0.4e-6 m (400 nm).");
	if(end < 0.7e-6)
		fail(end_message);
}

// Exactly count numbers from the text of the values child. What is
// reserved is bounded by what the text can hold, so that a large count in a
// small file allocates nothing large before it fails.
Vector<double> readValues(const TiXmlElement& element, uint64_t count, const char* exhausted_message)
{
	NumberScanner scanner(parseString(element, "values"));
	Vector<double> values;
	values.reserve((size_t)std::min<uint64_t>(count, scanner.maxRemaining()));
	for(uint64_t i = 0; i < count; ++i)
	{
		double value = 0;
		if(!scanner.next(value))
			fail(scanner.atEnd() ? exhausted_message : "Syntax error while parsing data.");
		values.push_back(value);
	}
	if(!scanner.atEnd())
		fail("Syntax error while parsing data.");
	return values;
}

Reference<Spectrum> readRegular(const TiXmlElement& element)
{
	Reference<RegularSpectrum> spectrum(new RegularSpectrum());
	spectrum->start_wavelength = parseDouble(element, "start_wavelength");
	spectrum->end_wavelength = parseDouble(element, "end_wavelength");
	spectrum->num_values = parseInt(element, "num_values");
	checkCount(spectrum->num_values, "num_values");
	// The wording names the start for the end too, as it always has.
	checkWavelengths(spectrum->start_wavelength, spectrum->end_wavelength, "start_wavelength must be <= 0.7e-6 m (700 nm).");
	spectrum->values = readValues(element, (uint64_t)spectrum->num_values, "Syntax error while parsing data.");
	return spectrum;
}

Reference<Spectrum> readSpectrum(const TiXmlElement& element)
{
	static const char* const forms[] = {"rgb", "blackbody", "peak", "uniform", "regular_tabulated", nullptr};
	const TiXmlElement& form = checkMutuallyExclusive(element, forms);
	switch(nameIndex(forms, form.Value()))
	{
	case 0:
		return readRGB(form);
	case 1:
		return readBlackBody(form);
	case 2:
		return readPeak(form);
	case 3:
		return new UniformSpectrum(parseDouble(form, "value"));
	case 4:
		return readRegular(form);
	}
	fail("Internal Error.");
}

Reference<TabulatedSpectralData> readTable(const TiXmlElement& element)
{
	Reference<TabulatedSpectralData> data(new TabulatedSpectralData());
	data->start_wavelength = parseDouble(element, "start_wavelength");
	data->end_wavelength = parseDouble(element, "end_wavelength");
	data->num_rows = parseInt(element, "num_rows");
	checkCount(data->num_rows, "num_rows");
	data->num_columns = parseInt(element, "num_columns");
	checkCount(data->num_columns, "num_columns");
	checkWavelengths(data->start_wavelength, data->end_wavelength, "end_wavelength must be >= 0.7e-6 m (700 nm).");
	data->values =
		readValues(element, (uint64_t)data->num_rows * (uint64_t)data->num_columns, "Reached end of string while parsing data.");
	return data;
}

Reference<TexCoordGenerator> readUV(const TiXmlElement& element)
{
	static const char* const allowed[] = {"matrix", "translation", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<UVTexCoordGenerator> generator(new UVTexCoordGenerator());
	if(element.FirstChildElement("matrix"))
		generator->matrix = parseMatrix2(element, "matrix");
	if(element.FirstChildElement("translation"))
		generator->translation = parseVec2(element, "translation");
	return generator;
}

template <class Projection>
Reference<TexCoordGenerator> readProjection(const TiXmlElement& element)
{
	Reference<Projection> generator(new Projection());
	if(element.FirstChildElement("rotation"))
		generator->rotation = parseRotation(element, "rotation");
	return generator;
}

Reference<TexCoordGenerator> readTexCoordGenerator(const TiXmlElement& element)
{
	static const char* const forms[] = {"uv", "spherical", "spherical_environment", nullptr};
	const TiXmlElement& form = checkMutuallyExclusive(element, forms);
	switch(nameIndex(forms, form.Value()))
	{
	case 0:
		return readUV(form);
	case 1:
		return readProjection<SphericalTexCoordGenerator>(form);
	case 2:
		return readProjection<SphericalEnvTexCoordGenerator>(form);
	}
	fail("Internal Error.");
}

Texture readTexture(const TiXmlElement& element, const std::string& dir)
{
	Texture texture;
	texture.path = FileUtils::join(dir, parseString(element, "path"));
	texture.a = parseDoubleWithDefault(element, "a", 0);
	texture.b = parseDoubleWithDefault(element, "b", 1);
	texture.c = parseDoubleWithDefault(element, "c", 0);
	texture.uv_set_index = parseIntWithDefault(element, "uv_set_index", 0);
	// A texture written without an exponent is linear.
	texture.exponent = parseDoubleWithDefault(element, "exponent", 1);
	if(const TiXmlElement* generation = element.FirstChildElement("tex_coord_generation"))
		texture.tex_coord_generation = readTexCoordGenerator(*generation);
	texture.smooth = parseBoolWithDefault(element, "smooth", false);
	return texture;
}

// What every kind of shader parameter has.
void readNaming(const TiXmlElement& element, ShaderParam& param)
{
	param.description = parseString(element, "description");
	param.name = parseString(element, "name");
}

// The kinds with a range, whose numbers are read by parse.
template <class Param, class Number>
Reference<ShaderParam> readRangedParam(const TiXmlElement& element, Number (*parse)(const TiXmlElement&, const char*))
{
	Reference<Param> param(new Param());
	readNaming(element, *param);
	param->min = parse(element, "min");
	param->max = parse(element, "max");
	param->value = parse(element, "value");
	return param;
}

Reference<ShaderParam> readColour3Param(const TiXmlElement& element)
{
	Reference<Colour3ShaderParam> param(new Colour3ShaderParam());
	readNaming(element, *param);
	param->value = parseVec3(element, "value");
	return param;
}

Reference<ShaderParam> readShaderParam(const TiXmlElement& element)
{
	if(const TiXmlElement* real = element.FirstChildElement("real"))
		return readRangedParam<RealShaderParam>(*real, parseDouble);
	if(const TiXmlElement* integer = element.FirstChildElement("int"))
		return readRangedParam<IntShaderParam>(*integer, parseInt);
	if(const TiXmlElement* colour = element.FirstChildElement("colour3"))
		return readColour3Param(*colour);
	fail("No suitable child element found for param element.");
}

Reference<ShaderInfo> readShaderInfo(const TiXmlElement& element, const std::string& dir)
{
	Reference<ShaderInfo> info(new ShaderInfo());
	forEachChildElement(element, "param", [&](const TiXmlElement& param) { info->params.push_back(readShaderParam(param)); });
	forEachChildElement(element, "include",
		[&](const TiXmlElement& include) { info->includes.push_back(FileUtils::join(dir, elementText(include))); });
	forEachChildElement(
		element, "texture", [&](const TiXmlElement& texture) { info->textures.push_back(readTexture(texture, dir)); });
	info->shader = parseString(element, "shader");
	return info;
}

// The index of the texture form, which must name one of the material's
// textures.
int32_t readTextureIndex(const TiXmlElement& form, size_t num_textures)
{
	const int32_t index = parseInt(form, "texture_index");
	if(index < 0 || (size_t)index >= num_textures)
		fail("Texture index '" + toString(index) + "' is out of bounds: this material has " + toString((uint64_t)num_textures) +
			 " textures." + errorContext(form));
	return index;
}

// The constant form of a family that has one: a spectrum in the constant
// element, or the number that is its text.
template <class Family>
Reference<Family> readConstant(const TiXmlElement& element, const TiXmlElement& form)
{
	typedef typename ChannelForms<Family>::Constant Constant;
	if constexpr(std::is_same<Family, WavelengthDependentParam>::value)
		return new Constant(readSpectrum(form));
	else
		return new Constant(parseDouble(element, "constant"));
}

template <class Family>
Reference<Family> readParam(const TiXmlElement& element, const std::string& dir, size_t num_textures)
{
	typedef ChannelForms<Family> Forms;
	const TiXmlElement& form = checkMutuallyExclusive(element, Forms::names);
	const std::string kind = form.Value();
	if(kind == "texture")
		return new typename Forms::Texture(readTextureIndex(form, num_textures));
	if(kind == "shader")
		return new typename Forms::Shader(readShaderInfo(form, dir));
	if constexpr(!std::is_same<Family, Vec3Param>::value)
		if(kind == "constant")
			return readConstant<Family>(element, form);
	fail("Internal Error.");
}

Reference<VolumeParam> readVoxel(const TiXmlElement& form)
{
	Reference<VoxelVolumeParam> voxel(new VoxelVolumeParam());
	voxel->voxeldata_path = parseString(form, "voxeldata_path");
	voxel->wavelength_dependent = parseBool(form, "wavelength_dependent");
	return voxel;
}

Reference<VolumeParam> readVolumeParam(const TiXmlElement& element, const std::string& dir)
{
	static const char* const forms[] = {"constant", "shader", "voxel", nullptr};
	const TiXmlElement& form = checkMutuallyExclusive(element, forms);
	switch(nameIndex(forms, form.Value()))
	{
	case 0:
		return new ConstantVolumeParam(readSpectrum(form));
	case 1:
		return new ShaderVolumeParam(readShaderInfo(form, dir), parseBool(form, "wavelength_dependent"));
	case 2:
		return readVoxel(form);
	}
	fail("invalid volume parameter type.");
}

} // namespace

Reference<Spectrum> parseSpectrum(const TiXmlElement& element)
{
	return parserCall([&] { return readSpectrum(element); });
}

Reference<TabulatedSpectralData> parseTabulatedSpectralData(const TiXmlElement& element)
{
	return parserCall([&] { return readTable(element); });
}

Texture parseTexture(const TiXmlElement& element, const std::string& dir)
{
	return parserCall([&] { return readTexture(element, dir); });
}

Reference<ShaderInfo> parseShaderInfo(const TiXmlElement& element, const std::string& dir)
{
	return parserCall([&] { return readShaderInfo(element, dir); });
}

Reference<ShaderParam> parseShaderParam(const TiXmlElement& element)
{
	return parserCall([&] { return readShaderParam(element); });
}

template <class Family>
Reference<Family> parseParam(const TiXmlElement& element, const std::string& dir, size_t num_textures)
{
	return parserCall([&] { return readParam<Family>(element, dir, num_textures); });
}

template Reference<WavelengthDependentParam> parseParam(const TiXmlElement&, const std::string&, size_t);
template Reference<WavelengthIndependentParam> parseParam(const TiXmlElement&, const std::string&, size_t);
template Reference<DisplacementParam> parseParam(const TiXmlElement&, const std::string&, size_t);
template Reference<Vec3Param> parseParam(const TiXmlElement&, const std::string&, size_t);

Reference<WavelengthDependentParam> parseWavelengthDependentParam(
	const TiXmlElement& element, const std::string& dir, size_t num_textures)
{
	return parseParam<WavelengthDependentParam>(element, dir, num_textures);
}

Reference<WavelengthIndependentParam> parseWavelengthIndependentParam(
	const TiXmlElement& element, const std::string& dir, size_t num_textures)
{
	return parseParam<WavelengthIndependentParam>(element, dir, num_textures);
}

Reference<DisplacementParam> parseDisplacementParam(const TiXmlElement& element, const std::string& dir, size_t num_textures)
{
	return parseParam<DisplacementParam>(element, dir, num_textures);
}

Reference<Vec3Param> parseVec3Param(const TiXmlElement& element, const std::string& dir, size_t num_textures)
{
	return parseParam<Vec3Param>(element, dir, num_textures);
}

Reference<VolumeParam> parseVolumeParam(const TiXmlElement& element, const std::string& dir)
{
	return parserCall([&] { return readVolumeParam(element, dir); });
}

} // namespace MaterialParser
} // namespace Velorn
