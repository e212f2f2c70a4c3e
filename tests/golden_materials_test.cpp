// The scene text of material and medium nodes and of the values they hold
// (spectra, channel parameters, textures, shader infos, phase functions),
// compared byte for byte with hand-written files.

#include "scene/channel_params.h"
#include "scene/geometry_test_helpers.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_glass.h"
#include "scene/materials_other.h"
#include "scene/medium.h"
#include "scene/scene_node_root.h"
#include "scene/shader_info.h"
#include "scene/tex_coord_generator.h"
#include "scene/texture.h"
#include "scene/wavelength_values.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace Velorn;
using VelornTest::materialNode;
using VelornTest::mediumNode;
using VelornTest::plainNode;

namespace
{

typedef std::function<Reference<SceneNode>()> Maker;

struct GoldenCase
{
	const char* golden;
	bool write_uids;
	Maker make;
};

// A node around a new material of the kind, which set fills in.
template <class M>
Maker material(const char* name, uint32_t uid, std::function<void(M&)> set = nullptr)
{
	return [=] {
		M* m = new M();
		if(set)
			set(*m);
		return Reference<SceneNode>(materialNode(m, name, uid));
	};
}

// A node of the medium, which takes the node's name and UID.
template <class M>
Maker medium(const char* name, uint32_t uid, int32_t precedence, std::function<void(M&)> set)
{
	return [=] {
		M* m = new M();
		m->precedence = precedence;
		set(*m);
		Reference<SceneNodeMedium> node(new SceneNodeMedium(m));
		node->setName(name);
		node->uid = UID(uid);
		return Reference<SceneNode>(node);
	};
}

Reference<ShaderInfo> program(const char* text)
{
	Reference<ShaderInfo> info(new ShaderInfo());
	info->shader = text;
	return info;
}

Reference<WavelengthDependentParam> uniform(double value)
{
	return new ConstantWavelengthDependentParam(new UniformSpectrum(value));
}

Reference<WavelengthIndependentParam> constant(double value) { return new ConstantWavelengthIndependentParam(value); }

Reference<TabulatedSpectralData> coefficients()
{
	Reference<TabulatedSpectralData> data(new TabulatedSpectralData());
	data->start_wavelength = 4e-7;
	data->end_wavelength = 7e-7;
	data->num_rows = 2;
	data->num_columns = 2;
	data->values = {0.1, 0.2, 0.3, 0.4};
	return data;
}

typedef std::function<void(OStream&, WriteContext&)> Writer;

struct ValueCase
{
	const char* golden;
	Writer write;
};

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
	Texture texture = VelornTest::textureAt("sky.hdr");
	texture.tex_coord_generation = generator;
	return texture;
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
	info->textures.push_back(VelornTest::textureAt("tex/t.png"));
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

const ValueCase values[] = {
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
	{"wavelength_uniform.xml", spectrum(new UniformSpectrum(-0.0))},
	{"tabulated_data.xml", [](OStream& s, WriteContext&) { table(2, {1, 2, 3, 4, 5, 6})->writeXML(s, 0); }},
	{"tabulated_data_partial_row.xml",
		[](OStream& s, WriteContext&) { table(3, {1, 2, 3, 4, 5, 6, 7})->writeXML(s, 0); }},
	{"params_wavelength_dependent.xml",
		params<WavelengthDependentParam>({new ConstantWavelengthDependentParam(new UniformSpectrum(0.75)),
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
			params<VolumeParam>({new ConstantVolumeParam(new UniformSpectrum(2)), new ShaderVolumeParam(program("v"), true),
				new ShaderVolumeParam(program("w"), false), voxel})(s, c);
		}},
	{"params_vec3.xml", params<Vec3Param>({new ShaderVec3Param(program("n")), new TextureVec3Param(1)})},
	{"texture_plain.xml", texture(VelornTest::textureAt("maps/wood.png"))},
	{"texture_uv.xml",
		[](OStream& s, WriteContext& c) {
			Reference<UVTexCoordGenerator> uv(new UVTexCoordGenerator());
			uv->matrix = Matrix2d(2, 0, 0, 0.5);
			uv->translation = Vec2d(0.25, -1);
			Texture value = VelornTest::textureAt("a.png");
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
		[](OStream& s, WriteContext& c) {
			Reference<SphericalTexCoordGenerator> generator(new SphericalTexCoordGenerator());
			generator->rotation = new MatrixRotation(Matrix3d{{0, 1, 0, -1, 0, 0, 0, 0, 1}});
			skyTexture(generator.getPointer()).writeXML(s, 0, c);
		}},
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
			HenyeyGreensteinPhaseFunction(new UniformSpectrum(0.8)).writeXML(s, 1);
			HenyeyGreensteinPhaseFunction().writeXML(s, 1);
		}},
	{"subsurface_scattering.xml",
		[](OStream& s, WriteContext& c) {
			Reference<SubsurfaceScattering> scattering(new SubsurfaceScattering());
			scattering->scattering_coefficient = new ConstantVolumeParam(new UniformSpectrum(20));
			scattering->phase_function = new UniformPhaseFunction();
			scattering->writeXML(s, 0, c);
		}},
};

const Maker transmitter = material<DiffuseTransmitter>("Leaf", 5, [](DiffuseTransmitter& m) {
	m.layer = 1;
	m.internal_medium = mediumNode("Glass inside", 3);
});

const Maker sum = material<SumMaterial>("Sum", 13, [](SumMaterial& m) {
	m.mat_uids = {UID(2), UID(6)};
	m.materials = {plainNode("Red", 2), Reference<SceneNodeMaterial>()};
	m.weights = {constant(0.25), new TextureWavelengthIndependentParam(1)};
});

// A blend with stored UIDs, bound to its targets or not.
Maker blend(bool bound)
{
	return material<BlendMaterial>("Mix", 4, [bound](BlendMaterial& m) {
		m.a_mat_uid = UID(2);
		m.b_mat_uid = UID(3);
		if(bound)
		{
			m.a_mat = plainNode("Red", 2);
			m.b_mat = plainNode("Blue", 3);
		}
	});
}

const GoldenCase cases[] = {
	{"material_diffuse_default.xml", true, [] { return Reference<SceneNode>(plainNode("Material", 1)); }},
	{"material_diffuse_full.xml", true, material<DiffuseMaterial>("Wood & Oak", 12, [](DiffuseMaterial& m) {
		m.textures.push_back(VelornTest::textureAt("wood.png"));
		m.shared_shader_info = program("def shared() real : 1");
		m.backface_emit = true;
		m.shadow_catcher = true;
		m.albedo = new TextureWavelengthDependentParam(0);
		m.bump = new ConstantDisplacementParam(0.001);
		m.displacement = new ShaderDisplacementParam(program("def disp() real : 0.5"));
		m.base_emission = new ConstantWavelengthDependentParam(new BlackBodySpectrum(6500, 1));
		m.emission = uniform(2);
		m.normal_map = new TextureVec3Param(0);
		m.random_triangle_colours = true;
		m.layer = 2;
	})},
	{"material_diffuse_transmitter.xml", true, transmitter},
	{"material_diffuse_transmitter_names.xml", false, transmitter},
	{"material_oren_nayar.xml", true,
		material<OrenNayarMaterial>("Clay", 6, [](OrenNayarMaterial& m) { m.bump = new TextureDisplacementParam(1); })},
	{"material_phong.xml", true, material<PhongMaterial>("Red plastic", 7, [](PhongMaterial& m) {
		m.diffuse_albedo = new ConstantWavelengthDependentParam(new RGBSpectrum(Vec3d(0.8, 0.1, 0.1), 2.2));
		m.fresnel_scale = constant(1);
		m.layer = 3;
		m.ior = 1.45;
		m.nk_data = "data/nk/au.nk";
	})},
	{"material_phong_default.xml", true, material<PhongMaterial>("Phong", 8)},
	{"material_glass_smooth.xml", true, material<SpecularMaterial>("Glass", 20, [](SpecularMaterial& m) {
		m.internal_medium = mediumNode("Water", 3);
		m.transparent = true;
		m.absorption_layer_transmittance = uniform(0.9);
		m.tabulated_external_reflection_coefficient = coefficients();
		m.tabulated_internal_reflection_coefficient = coefficients();
		m.tabulated_transmission_coefficient = coefficients();
		m.private_data = "opaque-blob";
	})},
	{"material_glass_smooth_names.xml", false, material<SpecularMaterial>("Water surface", 20, [](SpecularMaterial& m) {
		m.internal_medium = mediumNode("Water", 3);
	})},
	{"material_glossy_transparent.xml", true, material<GlossyTransparent>("Frosted", 21, [](GlossyTransparent& m) {
		m.internal_medium = mediumNode("Water", 3);
	})},
	{"material_glossy_transparent_names.xml", false, material<GlossyTransparent>("Frosted", 21, [](GlossyTransparent& m) {
		m.internal_medium = mediumNode("Water", 3);
		m.exponent = new TextureWavelengthIndependentParam(0);
		m.absorption_layer_transmittance = uniform(0.5);
		m.layer = 1;
	})},
	{"material_null.xml", true, material<NullMaterial>("Hole", 2)},
	{"material_exit_portal.xml", true, material<ExitPortalMaterial>("Window", 3)},
	{"material_blend.xml", true, blend(true)},
	{"material_blend_names.xml", false, material<BlendMaterial>("Mix", 4, [](BlendMaterial& m) {
		m.a_mat = plainNode("Red", 2);
		m.b_mat = plainNode("Blue  Velvet", 3);
		m.blend = new TextureDisplacementParam(0);
		m.step_blend = true;
	})},
	{"material_blend_unbound.xml", true, blend(false)},
	{"material_coating.xml", true, material<CoatingMaterial>("Lacquer", 10, [](CoatingMaterial& m) {
		m.absorption = uniform(0.5);
		m.thickness = constant(1e-6);
		m.interference = true;
		m.substrate_material_uid = UID(7);
		m.substrate_material = plainNode("Base", 2);
	})},
	{"material_coating_unbound.xml", true,
		material<CoatingMaterial>("Lacquer", 10, [](CoatingMaterial& m) { m.substrate_material_uid = UID(9); })},
	{"material_coating_names.xml", false, material<CoatingMaterial>("Lacquer", 10, [](CoatingMaterial& m) {
		m.emission = uniform(3);
		m.layer = 5;
		m.fresnel_scale = constant(0.5);
		m.ior = 1.7;
		m.substrate_material = plainNode("Base", 2);
	})},
	{"material_double_sided_thin.xml", true, material<DoubleSidedThinMaterial>("Leaf sheet", 11, [](DoubleSidedThinMaterial& m) {
		m.normal_map = new ShaderVec3Param(program("def n() vec3 : vec3(0, 0, 1)"));
		m.front_material = plainNode("Front", 2);
		m.back_material_uid = UID(3);
		m.r_f = constant(0.5);
		m.transmittance = uniform(0.4);
		m.front_roughness = constant(0.2);
		m.back_fresnel_scale = constant(1);
	})},
	{"material_double_sided_thin_names.xml", false,
		material<DoubleSidedThinMaterial>("Leaf sheet", 11, [](DoubleSidedThinMaterial& m) {
			m.front_material = plainNode("Front", 2);
			m.back_material_uid = UID(3);
			m.back_roughness = constant(0.7);
			m.front_fresnel_scale = constant(2);
			m.ior = 1.3;
		})},
	{"material_sum.xml", true, sum},
	{"material_sum_names.xml", false, sum},
	{"material_sunsky_default.xml", true, material<SunSkyMaterial>("Sky", 14)},
	{"material_sunsky.xml", true, material<SunSkyMaterial>("Sky", 14, [](SunSkyMaterial& m) {
		m.sundir = Vec3d(0.6, 0.8, 0);
		m.turbidity = 3.5;
		m.extra_atmospheric = true;
		m.enable_sky = false;
		m.sun_layer = 1;
		m.sky_layer = 2;
		m.model = "hosek";
	})},
	{"material_plugin.xml", true, material<PluginMaterial>("Velvet", 15, [](PluginMaterial& m) {
		m.plugin_name = "velvet";
		m.material_name = "Crushed velvet";
		m.layer = 4;
		m.wavelength_dependent.push_back({"sheen", uniform(1)});
	})},
	{"medium_basic.xml", true, [] { return Reference<SceneNode>(mediumNode("Medium", 4)); }},
	{"medium_basic_scattering.xml", false,
		[] {
			Reference<BasicMedium> m(new BasicMedium());
			m->name = "Skin  oil";
			m->precedence = 3;
			m->ior = 1.33;
			m->cauchy_b_coeff = 0.01;
			m->step_size = 0.05;
			Reference<VoxelVolumeParam> voxel(new VoxelVolumeParam());
			voxel->voxeldata_path = "fog.vox";
			voxel->wavelength_dependent = true;
			m->absorption_coefficient = voxel;
			m->subsurface_scattering = new SubsurfaceScattering();
			m->subsurface_scattering->scattering_coefficient = new ConstantVolumeParam(new UniformSpectrum(20));
			m->subsurface_scattering->phase_function = new HenyeyGreensteinPhaseFunction(new UniformSpectrum(0.8));
			return Reference<SceneNode>(new SceneNodeMedium(m.getPointer()));
		}},
	{"medium_dermis.xml", true, medium<Dermis>("Dermis", 9, 10, [](Dermis& m) { m.hemoglobin_fraction = 0.02; })},
	{"medium_epidermis.xml", true, medium<Epidermis>("Epidermis", 10, 11, [](Epidermis& m) {
		m.melanin_fraction = 0.15;
		m.melanin_type_blend = 0.5;
	})},
	{"medium_atmosphere.xml", true, medium<Atmosphere>("Air", 11, -1, [](Atmosphere& m) {
		m.center = Vec3d(0, -6371000, 0);
		m.turbidity = 2;
	})},
};

} // namespace

TEST(GoldenMaterials, WriteTheBytesOfTheirFiles)
{
	for(const GoldenCase& golden_case : cases)
	{
		SCOPED_TRACE(golden_case.golden);
		Reference<SceneNode> node = golden_case.make();
		VelornTest::expectMatchesGolden(VelornTest::textOf(*node, golden_case.write_uids), golden_case.golden);
	}
}

// One scatter_uids element for each scatter bound through the root.
TEST(GoldenMaterials, ScattersAreWrittenAsBound)
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	Reference<SceneNodeMaterial> node = plainNode("Grass ground", 1);
	node->scatter_uids = {UID(30), UID(31)};
	root->addChildNode(node);
	VelornTest::addScatter(*root, 30, 40);
	VelornTest::addScatter(*root, 31, 40);
	VisitOperation bind(VisitOperation::Bind, "", "");
	root->visitTree(bind);
	VelornTest::expectMatchesGolden(VelornTest::textOf(*node, true, 1), "material_scatter.xml");
}

TEST(GoldenValues, WriteTheBytesOfTheirFiles)
{
	for(const ValueCase& golden_case : values)
	{
		SCOPED_TRACE(golden_case.golden);
		BufferOStream stream;
		WriteContext context;
		golden_case.write(stream, context);
		VelornTest::expectMatchesGolden(stream.str(), golden_case.golden);
	}
}
