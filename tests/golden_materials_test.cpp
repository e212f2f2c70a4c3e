// The scene text of material and medium nodes, compared byte for byte with
// hand-written files.

#include "scene/geometry_test_helpers.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_other.h"
#include "scene/materials_glass.h"
#include "scene/scene_node_root.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Velorn;
using VelornTest::materialNode;
using VelornTest::mediumNode;
using VelornTest::plainNode;

namespace
{

struct GoldenCase
{
	const char* golden;
	bool write_uids;
	std::function<Reference<SceneNode>()> make;
};

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

Reference<SceneNode> diffuseFull()
{
	Reference<DiffuseMaterial> m(new DiffuseMaterial());
	Texture wood;
	wood.path = "wood.png";
	m->textures.push_back(wood);
	m->shared_shader_info = program("def shared() real : 1");
	m->backface_emit = true;
	m->shadow_catcher = true;
	m->albedo = new TextureWavelengthDependentParam(0);
	m->bump = new ConstantDisplacementParam(0.001);
	m->displacement = new ShaderDisplacementParam(program("def disp() real : 0.5"));
	m->base_emission = new ConstantWavelengthDependentParam(new BlackBodySpectrum(6500, 1));
	m->emission = uniform(2);
	m->normal_map = new TextureVec3Param(0);
	m->random_triangle_colours = true;
	m->layer = 2;
	return materialNode(m.getPointer(), "Wood & Oak", 12);
}

Reference<SceneNode> transmitter()
{
	Reference<DiffuseTransmitter> m(new DiffuseTransmitter());
	m->layer = 1;
	m->internal_medium = mediumNode("Glass inside", 3);
	return materialNode(m.getPointer(), "Leaf", 5);
}

Reference<SceneNode> orenNayar()
{
	Reference<OrenNayarMaterial> m(new OrenNayarMaterial());
	m->bump = new TextureDisplacementParam(1);
	return materialNode(m.getPointer(), "Clay", 6);
}

Reference<SceneNode> phong()
{
	Reference<PhongMaterial> m(new PhongMaterial());
	m->diffuse_albedo = new ConstantWavelengthDependentParam(new RGBSpectrum(Vec3d(0.8, 0.1, 0.1), 2.2));
	m->fresnel_scale = constant(1);
	m->layer = 3;
	m->ior = 1.45;
	m->nk_data = "data/nk/au.nk";
	return materialNode(m.getPointer(), "Red plastic", 7);
}

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

Reference<SceneNode> specular()
{
	Reference<SpecularMaterial> m(new SpecularMaterial());
	m->internal_medium = mediumNode("Water", 3);
	m->transparent = true;
	m->absorption_layer_transmittance = uniform(0.9);
	m->tabulated_external_reflection_coefficient = coefficients();
	m->tabulated_internal_reflection_coefficient = coefficients();
	m->tabulated_transmission_coefficient = coefficients();
	m->private_data = "opaque-blob";
	return materialNode(m.getPointer(), "Glass", 20);
}

Reference<SceneNode> specularByName()
{
	Reference<SpecularMaterial> m(new SpecularMaterial());
	m->internal_medium = mediumNode("Water", 3);
	return materialNode(m.getPointer(), "Water surface", 20);
}

Reference<SceneNode> glossy()
{
	Reference<GlossyTransparent> m(new GlossyTransparent());
	m->internal_medium = mediumNode("Water", 3);
	return materialNode(m.getPointer(), "Frosted", 21);
}

Reference<SceneNode> glossyByName()
{
	Reference<GlossyTransparent> m(new GlossyTransparent());
	m->internal_medium = mediumNode("Water", 3);
	m->exponent = new TextureWavelengthIndependentParam(0);
	m->absorption_layer_transmittance = uniform(0.5);
	m->layer = 1;
	return materialNode(m.getPointer(), "Frosted", 21);
}

Reference<SceneNode> blend(bool bound)
{
	Reference<BlendMaterial> m(new BlendMaterial());
	m->a_mat_uid = UID(2);
	m->b_mat_uid = UID(3);
	if(bound)
	{
		m->a_mat = plainNode("Red", 2);
		m->b_mat = plainNode("Blue", 3);
	}
	return materialNode(m.getPointer(), "Mix", 4);
}

Reference<SceneNode> blendByName()
{
	Reference<BlendMaterial> m(new BlendMaterial());
	m->a_mat = plainNode("Red", 2);
	m->b_mat = plainNode("Blue  Velvet", 3);
	m->blend = new TextureDisplacementParam(0);
	m->step_blend = true;
	return materialNode(m.getPointer(), "Mix", 4);
}

Reference<SceneNode> coating()
{
	Reference<CoatingMaterial> m(new CoatingMaterial());
	m->absorption = uniform(0.5);
	m->thickness = constant(1e-6);
	m->interference = true;
	m->substrate_material_uid = UID(7);
	m->substrate_material = plainNode("Base", 2);
	return materialNode(m.getPointer(), "Lacquer", 10);
}

Reference<SceneNode> coatingUnbound()
{
	Reference<CoatingMaterial> m(new CoatingMaterial());
	m->substrate_material_uid = UID(9);
	return materialNode(m.getPointer(), "Lacquer", 10);
}

Reference<SceneNode> coatingByName()
{
	Reference<CoatingMaterial> m(new CoatingMaterial());
	m->emission = uniform(3);
	m->layer = 5;
	m->fresnel_scale = constant(0.5);
	m->ior = 1.7;
	m->substrate_material = plainNode("Base", 2);
	return materialNode(m.getPointer(), "Lacquer", 10);
}

Reference<SceneNode> doubleSided()
{
	Reference<DoubleSidedThinMaterial> m(new DoubleSidedThinMaterial());
	m->normal_map = new ShaderVec3Param(program("def n() vec3 : vec3(0, 0, 1)"));
	m->front_material = plainNode("Front", 2);
	m->back_material_uid = UID(3);
	m->r_f = constant(0.5);
	m->transmittance = uniform(0.4);
	m->front_roughness = constant(0.2);
	m->back_fresnel_scale = constant(1);
	return materialNode(m.getPointer(), "Leaf sheet", 11);
}

Reference<SceneNode> doubleSidedByName()
{
	Reference<DoubleSidedThinMaterial> m(new DoubleSidedThinMaterial());
	m->front_material = plainNode("Front", 2);
	m->back_material_uid = UID(3);
	m->back_roughness = constant(0.7);
	m->front_fresnel_scale = constant(2);
	m->ior = 1.3;
	return materialNode(m.getPointer(), "Leaf sheet", 11);
}

Reference<SceneNode> sum()
{
	Reference<SumMaterial> m(new SumMaterial());
	m->mat_uids = {UID(2), UID(6)};
	m->materials = {plainNode("Red", 2), Reference<SceneNodeMaterial>()};
	m->weights = {constant(0.25), new TextureWavelengthIndependentParam(1)};
	return materialNode(m.getPointer(), "Sum", 13);
}

Reference<SceneNode> sunsky(bool defaults)
{
	Reference<SunSkyMaterial> m(new SunSkyMaterial());
	if(!defaults)
	{
		m->sundir = Vec3d(0.6, 0.8, 0);
		m->turbidity = 3.5;
		m->extra_atmospheric = true;
		m->enable_sky = false;
		m->sun_layer = 1;
		m->sky_layer = 2;
		m->model = "hosek";
	}
	return materialNode(m.getPointer(), "Sky", 14);
}

Reference<SceneNode> plugin()
{
	Reference<PluginMaterial> m(new PluginMaterial());
	m->plugin_name = "velvet";
	m->material_name = "Crushed velvet";
	m->layer = 4;
	m->wavelength_dependent.push_back({"sheen", uniform(1)});
	return materialNode(m.getPointer(), "Velvet", 15);
}

Reference<SceneNode> basicWithScattering()
{
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
	return new SceneNodeMedium(m.getPointer());
}

// A node of the medium, which takes the node's name and UID.
Reference<SceneNode> mediumOf(Medium* medium, const char* name, uint32_t uid, int32_t precedence)
{
	Reference<SceneNodeMedium> node(new SceneNodeMedium(medium));
	node->setName(name);
	node->uid = UID(uid);
	medium->precedence = precedence;
	return node;
}

Reference<SceneNode> dermis()
{
	Dermis* m = new Dermis();
	m->hemoglobin_fraction = 0.02;
	return mediumOf(m, "Dermis", 9, 10);
}

Reference<SceneNode> epidermis()
{
	Epidermis* m = new Epidermis();
	m->melanin_fraction = 0.15;
	m->melanin_type_blend = 0.5;
	return mediumOf(m, "Epidermis", 10, 11);
}

Reference<SceneNode> atmosphere()
{
	Atmosphere* m = new Atmosphere();
	m->center = Vec3d(0, -6371000, 0);
	m->turbidity = 2;
	return mediumOf(m, "Air", 11, -1);
}

const GoldenCase cases[] = {
	{"material_diffuse_default.xml", true, [] { return plainNode("Material", 1); }},
	{"material_diffuse_full.xml", true, diffuseFull},
	{"material_diffuse_transmitter.xml", true, transmitter},
	{"material_diffuse_transmitter_names.xml", false, transmitter},
	{"material_oren_nayar.xml", true, orenNayar},
	{"material_phong.xml", true, phong},
	{"material_phong_default.xml", true, [] { return materialNode(new PhongMaterial(), "Phong", 8); }},
	{"material_glass_smooth.xml", true, specular},
	{"material_glass_smooth_names.xml", false, specularByName},
	{"material_glossy_transparent.xml", true, glossy},
	{"material_glossy_transparent_names.xml", false, glossyByName},
	{"material_null.xml", true, [] { return materialNode(new NullMaterial(), "Hole", 2); }},
	{"material_exit_portal.xml", true, [] { return materialNode(new ExitPortalMaterial(), "Window", 3); }},
	{"material_blend.xml", true, [] { return blend(true); }},
	{"material_blend_names.xml", false, blendByName},
	{"material_blend_unbound.xml", true, [] { return blend(false); }},
	{"material_coating.xml", true, coating},
	{"material_coating_unbound.xml", true, coatingUnbound},
	{"material_coating_names.xml", false, coatingByName},
	{"material_double_sided_thin.xml", true, doubleSided},
	{"material_double_sided_thin_names.xml", false, doubleSidedByName},
	{"material_sum.xml", true, sum},
	{"material_sum_names.xml", false, sum},
	{"material_sunsky_default.xml", true, [] { return sunsky(true); }},
	{"material_sunsky.xml", true, [] { return sunsky(false); }},
	{"material_plugin.xml", true, plugin},
	{"medium_basic.xml", true, [] { return Reference<SceneNode>(mediumNode("Medium", 4)); }},
	{"medium_basic_scattering.xml", false, basicWithScattering},
	{"medium_dermis.xml", true, dermis},
	{"medium_epidermis.xml", true, epidermis},
	{"medium_atmosphere.xml", true, atmosphere},
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
