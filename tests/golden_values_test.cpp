// The scene text of spectra, channel parameters, textures, shader infos and
// the parts of media, compared byte for byte with hand-written files.

#include "scene/channel_params.h"
#include "scene/medium.h"
#include "scene/shader_info.h"
#include "scene/wavelength_values.h"
#include "scene/tex_coord_generator.h"
#include "scene/texture.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace Velorn;

namespace
{

typedef std::function<void(OStream&, WriteContext&)> Writer;

struct GoldenCase
{
	const char* golden;
	Writer write;
};

Reference<ShaderInfo> program(const char* text)
{
	Reference<ShaderInfo> info(new ShaderInfo());
	info->shader = text;
	return info;
}

Reference<Spectrum> uniform(double value) { return new UniformSpectrum(value); }

Reference<Spectrum> regular(const Vector<double>& values)
{
	Reference<RegularSpectrum> spectrum(new RegularSpectrum());
	spectrum->start_wavelength = 4e-7;
	spectrum->end_wavelength = 7e-7;
	spectrum->num_values = (int32_t)values.size();
	spectrum->values = values;
	return spectrum;
}

Reference<TabulatedSpectralData> table(int32_t rows, const Vector<double>& values)
{
	Reference<TabulatedSpectralData> data(new TabulatedSpectralData());
	data->start_wavelength = 3.8e-7;
	data->end_wavelength = 7.8e-7;
	data->num_rows = rows;
	data->num_columns = 3;
	data->values = values;
	return data;
}

Texture skyTexture(TexCoordGenerator* generator)
{
	Texture texture;
	texture.path = "sky.hdr";
	texture.tex_coord_generation = generator;
	return texture;
}

Reference<TexCoordGenerator> sphericalWith(Rotation* rotation)
{
	Reference<SphericalTexCoordGenerator> generator(new SphericalTexCoordGenerator());
	generator->rotation = rotation;
	return generator;
}

Reference<ShaderInfo> fullShaderInfo()
{
	Reference<RealShaderParam> gain(new RealShaderParam());
	gain->name = "gain";
	gain->description = "Gain & offset";
	gain->max = 10;
	gain->value = 2.5;
	Reference<IntShaderParam> steps(new IntShaderParam());
	steps->name = "steps";
	steps->min = -3;
	steps->max = 8;
	steps->value = 4;
	Reference<Colour3ShaderParam> tint(new Colour3ShaderParam());
	tint->name = "tint";
	tint->description = "  padded";
	tint->value = Vec3d(1, 0.5, 0);
	Reference<ShaderInfo> info = program("def eval(vec3 pos) real : noise(pos) * paramgain()");
	info->params = {gain, steps, tint};
	info->includes = {"lib/noise.vsl", "lib/a  b.vsl"};
	Texture texture;
	texture.path = "tex/t.png";
	info->textures.push_back(texture);
	return info;
}

// Writers of one value at a depth.
Writer spectrum(Reference<Spectrum> value, unsigned depth = 0)
{
	return [value, depth](OStream& s, WriteContext&) { value->writeXML(s, depth); };
}

template <class Param>
Writer params(const Vector<Reference<Param>>& values)
{
	return [values](OStream& s, WriteContext& c) {
		for(const Reference<Param>& value : values)
			value->writeXML(s, 0, c);
	};
}

Writer texture(const Texture& value)
{
	return [value](OStream& s, WriteContext& c) { value.writeXML(s, 0, c); };
}

const GoldenCase cases[] = {
	{"wavelength_blackbody.xml", spectrum(new BlackBodySpectrum(5000, 1.5))},
	{"wavelength_peak.xml",
		[](OStream& s, WriteContext&) {
			PeakSpectrum peak;
			peak.peak_min = 4e-7;
			peak.peak_width = 5e-8;
			peak.peak_value = 2;
			peak.writeXML(s, 0);
		}},
	{"wavelength_rgb.xml", spectrum(new RGBSpectrum(Vec3d(0.5, 0.25, 1), 2.2), 1)},
	{"wavelength_regular.xml", spectrum(regular({0.1, 0.5, 1e21}))},
	{"wavelength_regular_empty.xml", spectrum(regular({}))},
	{"wavelength_uniform.xml", spectrum(uniform(-0.0))},
	{"tabulated_data.xml", [](OStream& s, WriteContext&) { table(2, {1, 2, 3, 4, 5, 6})->writeXML(s, 0); }},
	{"tabulated_data_partial_row.xml",
		[](OStream& s, WriteContext&) { table(3, {1, 2, 3, 4, 5, 6, 7})->writeXML(s, 0); }},
	{"params_wavelength_dependent.xml",
		params<WavelengthDependentParam>({new ConstantWavelengthDependentParam(uniform(0.75)),
			new ConstantWavelengthDependentParam(), new ShaderWavelengthDependentParam(program("return 1.0;")),
			new TextureWavelengthDependentParam(3)})},
	{"params_wavelength_independent.xml",
		params<WavelengthIndependentParam>({new ConstantWavelengthIndependentParam((double)0.3f),
			new ShaderWavelengthIndependentParam(program("a < b && c\n  d")), new TextureWavelengthIndependentParam(0)})},
	{"params_displacement.xml",
		params<DisplacementParam>({new ConstantDisplacementParam(0.5), new ShaderDisplacementParam(program("disp")),
			new TextureDisplacementParam(2)})},
	{"params_volume.xml",
		[](OStream& s, WriteContext& c) {
			Reference<VoxelVolumeParam> voxel(new VoxelVolumeParam());
			voxel->voxeldata_path = "smoke & fire.vox";
			params<VolumeParam>({new ConstantVolumeParam(uniform(2)), new ShaderVolumeParam(program("v"), true),
				new ShaderVolumeParam(program("w"), false), voxel})(s, c);
		}},
	{"params_vec3.xml", params<Vec3Param>({new ShaderVec3Param(program("n")), new TextureVec3Param(1)})},
	{"texture_plain.xml",
		[](OStream& s, WriteContext& c) {
			Texture plain;
			plain.path = "maps/wood.png";
			plain.writeXML(s, 0, c);
		}},
	{"texture_uv.xml",
		[](OStream& s, WriteContext& c) {
			Reference<UVTexCoordGenerator> uv(new UVTexCoordGenerator());
			uv->matrix = Matrix2d(2, 0, 0, 0.5);
			uv->translation = Vec2d(0.25, -1);
			Texture value;
			value.path = "a.png";
			value.a = 0.1;
			value.b = 0.9;
			value.c = -0.5;
			value.uv_set_index = 2;
			value.exponent = 1;
			value.tex_coord_generation = uv;
			value.smooth = true;
			value.writeXML(s, 0, c);
		}},
	{"texture_spherical.xml", texture(skyTexture(new SphericalTexCoordGenerator()))},
	{"texture_spherical_matrix.xml",
		texture(skyTexture(sphericalWith(new MatrixRotation(Matrix3d{{0, 1, 0, -1, 0, 0, 0, 0, 1}})).getPointer()))},
	{"texture_spherical_env_axis.xml",
		[](OStream& s, WriteContext& c) {
			Reference<SphericalEnvTexCoordGenerator> generator(new SphericalEnvTexCoordGenerator());
			generator->rotation = new AxisRotation(Vec3d(0, 1, 0), std::acos(0.0));
			skyTexture(generator.getPointer()).writeXML(s, 0, c);
		}},
	{"shader_info.xml", [](OStream& s, WriteContext& c) { fullShaderInfo()->writeXML(s, 0, c); }},
	{"phase_functions.xml",
		[](OStream& s, WriteContext&) {
			UniformPhaseFunction().writeXML(s, 1);
			HenyeyGreensteinPhaseFunction(uniform(0.8)).writeXML(s, 1);
			HenyeyGreensteinPhaseFunction().writeXML(s, 1);
		}},
	{"subsurface_scattering.xml",
		[](OStream& s, WriteContext& c) {
			Reference<SubsurfaceScattering> scattering(new SubsurfaceScattering());
			scattering->scattering_coefficient = new ConstantVolumeParam(uniform(20));
			scattering->phase_function = new UniformPhaseFunction();
			scattering->writeXML(s, 0, c);
		}},
};

} // namespace

TEST(GoldenValues, WriteTheBytesOfTheirFiles)
{
	for(const GoldenCase& golden_case : cases)
	{
		SCOPED_TRACE(golden_case.golden);
		BufferOStream stream;
		WriteContext context;
		golden_case.write(stream, context);
		VelornTest::expectMatchesGolden(stream.str(), golden_case.golden);
	}
}
