#include "scene/materials_composite.h"
#include "scene/materials_other.h"
#include "scene/shader_info.h"
#include "standin/image_files.h"
#include "standin/standin_test_helpers.h"
#include "standin/tracer_scene.h"
#include "support/exceptions.h"
#include "support/failures.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace Velorn
{
namespace Standin
{
namespace
{

using namespace StandinTest;

// The mean radiance of a sphere of the material under a uniform sky of 1,
// over paths along rays at three points of the sphere.
double furnace(SceneNodeRoot& root, const Reference<SceneNodeMaterial>& material, int paths = 3000)
{
	addUniformBackground(root, 1.0, 0);
	addSphere(root, Vec3d(0, 0, 0), 1, material);
	TracerScene scene(root, ".");
	double sum = 0;
	for(const V3 target : {V3(0, 0, 0), V3(0.6f, 0, 0.2f), V3(-0.3f, 0, -0.7f)})
		sum += meanLayers(scene, Ray{V3(0, -5, 0), normalise(target - V3(0, -5, 0))}, paths, 11)[0].average();
	return sum / 3;
}

// A Phong surface of exponent 100: a dielectric over a diffuse base, or a
// metal where the specular reflectivity is given.
Reference<Material> phong(const Reference<WavelengthDependentParam>& diffuse_albedo,
	const Reference<WavelengthDependentParam>& specular_reflectivity)
{
	Reference<PhongMaterial> m = new PhongMaterial();
	m->diffuse_albedo = diffuse_albedo;
	m->specular_reflectivity = specular_reflectivity;
	m->exponent = new ConstantWavelengthIndependentParam(100);
	return m;
}

Reference<SceneNodeRoot> newRoot() { return makeRoot(4, 4, Vec3d(0, -5, 0), Vec3d(0, 1, 0)); }

TEST(SurfaceMaterials, FurnaceValuesOfEachKind)
{
	// Under a uniform sky a convex object's radiance is the sky's times the
	// share of light its surface sends back: the albedo for diffuse
	// surfaces, all of it for lossless ones.
	const struct
	{
		const char* name;
		std::function<Reference<Material>(SceneNodeRoot&)> make;
		double expected, tolerance;
	} cases[] = {
		{"diffuse", [](SceneNodeRoot&) { return Reference<Material>(diffuse(0.3)); }, 0.3, 0.01},
		{"Oren-Nayar without roughness is Lambertian",
			[](SceneNodeRoot&) {
				Reference<OrenNayarMaterial> m = new OrenNayarMaterial();
				m->albedo = grey(0.6);
				m->sigma = new ConstantWavelengthIndependentParam(0);
				return Reference<Material>(m);
			},
			0.6, 0.015},
		{"Phong dielectric over a white base", [](SceneNodeRoot&) { return phong(grey(1), nullptr); }, 1.0, 0.03},
		{"Phong metal", [](SceneNodeRoot&) { return phong(nullptr, grey(0.8)); }, 0.8, 0.03},
		{"mirror", [](SceneNodeRoot& root) { return Reference<Material>(specular(root, false, 1.5)); }, 1.0, 1e-6},
		{"glass", [](SceneNodeRoot& root) { return Reference<Material>(specular(root, true, 1.5)); }, 1.0, 0.01},
		{"blend of white and black, a quarter black",
			[](SceneNodeRoot& root) {
				Reference<BlendMaterial> m = new BlendMaterial();
				m->a_mat = addMaterial(root, diffuse(1));
				m->b_mat = addMaterial(root, diffuse(0));
				m->blend = new ConstantDisplacementParam(0.25);
				return Reference<Material>(m);
			},
			0.75, 0.02},
		{"sum of white by 0.3 and black by 0.2",
			[](SceneNodeRoot& root) {
				Reference<SumMaterial> m = new SumMaterial();
				m->materials.push_back(addMaterial(root, diffuse(1)));
				m->materials.push_back(addMaterial(root, diffuse(0)));
				m->weights.push_back(new ConstantWavelengthIndependentParam(0.3));
				m->weights.push_back(new ConstantWavelengthIndependentParam(0.2));
				return Reference<Material>(m);
			},
			0.3, 0.01},
		{"clear coating over white",
			[](SceneNodeRoot& root) {
				Reference<CoatingMaterial> m = new CoatingMaterial();
				m->substrate_material = addMaterial(root, diffuse(1));
				m->absorption = grey(0);
				m->thickness = new ConstantWavelengthIndependentParam(1);
				m->roughness = new ConstantWavelengthIndependentParam(0);
				return Reference<Material>(m);
			},
			1.0, 0.02},
		{"double-sided thin, white both sides",
			[](SceneNodeRoot& root) {
				Reference<DoubleSidedThinMaterial> m = new DoubleSidedThinMaterial();
				m->front_material = addMaterial(root, diffuse(1));
				m->back_material = addMaterial(root, diffuse(1));
				m->transmittance = grey(0.5);
				return Reference<Material>(m);
			},
			1.0, 0.02},
		{"null", [](SceneNodeRoot&) { return Reference<Material>(new NullMaterial()); }, 1.0, 1e-6},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		Reference<SceneNodeRoot> root = newRoot();
		const Reference<SceneNodeMaterial> node = addMaterial(*root, c.make(*root));
		EXPECT_NEAR(furnace(*root, node), c.expected, c.tolerance);
	}
}

TEST(SurfaceMaterials, PhongMetalsOfTheRenderersNkFiles)
{
	// A Phong surface with n-k data is a metal of that data's colour; a
	// specular reflectivity given beside it wins.
	const struct
	{
		const char* nk_data;
		Reference<WavelengthDependentParam> specular_reflectivity;
		V3 expected;
	} cases[] = {
		{"nkdata/Au.nk", nullptr, V3(1.0f, 0.782f, 0.344f)},
		{"nkdata/cu.NK", nullptr, V3(0.955f, 0.638f, 0.538f)},
		{"nkdata/Bk7.nk", nullptr, V3(0.9f)},
		{"nkdata/Au.nk", grey(0.5), V3(0.5f)},
	};
	TextureCache textures(".");
	MaterialLibrary library(textures);
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.nk_data);
		Reference<Material> m = phong(grey(0.8), c.specular_reflectivity);
		static_cast<PhongMaterial&>(*m).nk_data = c.nk_data;
		const ShadingMaterial* shading = library.convert(*m, "metal");
		EXPECT_TRUE(shading->has_specular);
		expectNear(shading->specular.constant, c.expected, 1e-6f);
	}
}

TEST(SurfaceMaterials, TextureFromAPNGFile)
{
	// A grey of 128 everywhere: 128 / 255 = 0.50196 with exponent 1, its
	// 2.2th power 0.21952 with exponent 2.2; b and c scale and lift it.
	VelornTest::TempDir dir;
	Bitmap bitmap(2, 2, 3);
	std::fill(bitmap.getPixel(0, 0), bitmap.getPixel(0, 0) + 12, 128);
	writePNG(dir.file("grey.png"), bitmap);
	const struct
	{
		double exponent, b, c, expected;
	} cases[] = {{1, 1, 0, 0.50196}, {2.2, 1, 0, 0.21952}, {1, 0.5, 0.1, 0.35098}};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(std::to_string(c.exponent) + " " + std::to_string(c.b));
		Reference<SceneNodeRoot> root = newRoot();
		Reference<DiffuseMaterial> m = new DiffuseMaterial();
		Texture texture;
		texture.path = dir.file("grey.png");
		texture.exponent = c.exponent;
		texture.b = c.b;
		texture.c = c.c;
		m->textures.push_back(texture);
		m->albedo = new TextureWavelengthDependentParam(0);
		EXPECT_NEAR(furnace(*root, addMaterial(*root, m), 500), c.expected, 1e-4);
	}
}

Reference<ShaderInfo> shaderOf(const std::string& text)
{
	Reference<ShaderInfo> info = new ShaderInfo();
	info->shader = String(text);
	return info;
}

TEST(SurfaceMaterials, BumpAndNormalMapTiltTheNormalTheirWay)
{
	// A surface facing +z at (0.3, 0.2, 0). Its texture's u runs along +x,
	// or along +y where the case turns it; the bumped normal leans away
	// from where the height rises, a normal map's x leans towards u.
	const std::string height = "def eval(vec3 pos) real: ";
	const std::string direction = "def eval() vec3: ";
	const V3 u_along_x[2] = {V3(1, 0, 0), V3(0, 1, 0)}, u_along_y[2] = {V3(0, 1, 0), V3(-1, 0, 0)};
	const struct
	{
		const char* name;
		std::string bump, normal_map;  // shader texts, or empty
		const V3* derivatives;
		V3 expected;
	} cases[] = {
		{"no relief", "", "", u_along_x, V3(0, 0, 1)},
		{"height rising along x", height + "doti(pos) * 0.1", "", u_along_x, V3(-0.1f, 0, 1)},
		{"height rising along y", height + "dotj(pos) * 0.2", "", u_along_x, V3(0, -0.2f, 1)},
		{"along x, u turned", height + "doti(pos) * 0.1", "", u_along_y, V3(-0.1f, 0, 1)},
		{"rising with u, u turned", height + "doti(getTexCoords(0)) * 0.1", "", u_along_y, V3(0, -0.1f, 1)},
		{"normal map towards u", "", direction + "vec3(0.75, 0.5, 1.0)", u_along_x, V3(0.5f, 0, 1)},
		{"normal map towards u, u turned", "", direction + "vec3(0.75, 0.5, 1.0)", u_along_y, V3(0, 0.5f, 1)},
		{"normal map across u", "", direction + "vec3(0.5, 0.75, 1.0)", u_along_x, V3(0, 0.5f, 1)},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		Reference<DiffuseMaterial> material = diffuse(0.5);
		if(!c.bump.empty())
			material->bump = new ShaderDisplacementParam(shaderOf(c.bump));
		if(!c.normal_map.empty())
			material->normal_map = new ShaderVec3Param(shaderOf(c.normal_map));
		TextureCache textures(".");
		MaterialLibrary library(textures);
		const ShadingMaterial* shading = library.convert(*material, "relief");
		ASSERT_TRUE(library.shader_warnings.empty());
		ShadePoint sp;
		sp.position = V3(0.3f, 0.2f, 0);
		expectNear(reliefNormal(*shading, sp, V3(0, 0, 1), c.derivatives[0], c.derivatives[1]), normalise(c.expected), 1e-3f);
	}
}

TEST(SurfaceMaterials, MaterialsItCannotRenderAreRefused)
{
	Reference<SunSkyMaterial> sunsky = new SunSkyMaterial();
	Reference<DiffuseMaterial> textured = new DiffuseMaterial();
	Texture texture;
	texture.path = "/nonexistent/wood.png";
	textured->textures.push_back(texture);
	textured->albedo = new TextureWavelengthDependentParam(0);
	const struct
	{
		Reference<Material> material;
		const char* message;
	} cases[] = {
		{sunsky, "Material 'Sky' is of kind 'sunsky', which this renderer does not support."},
		{textured, "Could not open image file '/nonexistent/wood.png'."},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.message);
		Reference<SceneNodeRoot> root = newRoot();
		Reference<SceneNodeMaterial> node = addMaterial(*root, c.material);
		node->setName("Sky");
		addSphere(*root, Vec3d(0, 0, 0), 1, node);
		EXPECT_EQ(VelornTest::failureOf<Exception>([&] { TracerScene scene(*root, "."); }), c.message);
	}
}

} // namespace
} // namespace Standin
} // namespace Velorn
