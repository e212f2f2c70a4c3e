#include "mesh/mesh.h"
#include "scene/materials_other.h"
#include "scene/rotation.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_model.h"
#include "standin/standin_test_helpers.h"
#include "standin/image_files.h"
#include "standin/tracer_scene.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Velorn
{
namespace Standin
{
namespace
{

using namespace StandinTest;

// A white floor 200 wide at z = 0 under a sun and sky, looked at straight
// down from z = 1.
struct SunScene
{
	explicit SunScene(const Vec3d& sundir, bool extra_atmospheric, bool enable_sky, int sun_layer, int sky_layer)
	{
		root = makeRoot(4, 4, Vec3d(0, 0, 1), Vec3d(0, 0, -1));
		static_cast<SceneNodeCamera&>(*root->getCameraNode()).up = Vec3d(0, 1, 0);
		Reference<SunSkyMaterial> sunsky = new SunSkyMaterial();
		sunsky->sundir = sundir;
		sunsky->extra_atmospheric = extra_atmospheric;
		sunsky->enable_sky = enable_sky;
		sunsky->sun_layer = sun_layer;
		sunsky->sky_layer = sky_layer;
		Reference<SceneNodeBackgroundSettings> background = new SceneNodeBackgroundSettings();
		background->background_material = sunsky;
		root->addChildNode(background);

		addFloor(*root, 100, addMaterial(*root, diffuse(1)));
	}

	// Mean radiance per layer of the floor's point under the camera.
	std::vector<V3> floorRadiance(int paths = 2000)
	{
		return meanLayers(TracerScene(*root, "."), Ray{V3(0, 0, 1), V3(0, 0, -1)}, paths, 3);
	}

	Reference<SceneNodeRoot> root;
};

TEST(Background, SunLightsTheFloorByTheCosineOfItsAngle)
{
	// Above the atmosphere the sun's irradiance does not depend on its
	// height: a white floor's radiance E cos(theta) / pi halves from the
	// zenith to 60 degrees from it, and is 0 below the horizon.
	const double zenith = SunScene(Vec3d(0, 0, 1), true, false, 0, 0).floorRadiance()[0].y;
	ASSERT_GT(zenith, 0);
	const double sixty = SunScene(Vec3d(std::sin(M_PI / 3), 0, 0.5), true, false, 0, 0).floorRadiance()[0].y;
	EXPECT_NEAR(sixty / zenith, 0.5, 0.01);
	EXPECT_EQ(SunScene(Vec3d(0, 1, -0.2), true, false, 0, 0).floorRadiance()[0].y, 0);
}

TEST(Background, SphereInFrontOfTheSunCastsAShadow)
{
	SunScene scene(Vec3d(0, 0, 1), true, false, 0, 0);
	addSphere(*scene.root, Vec3d(0, 0, 10), 1, addMaterial(*scene.root, diffuse(0)));
	// The shadow ray starts at the floor and meets the sphere; the sphere is
	// black and the floor sees no sky.
	const V3 shaded = scene.floorRadiance(200)[0];
	EXPECT_EQ(shaded.x, 0);
	EXPECT_EQ(shaded.y, 0);
}

TEST(Background, SunAndSkyGoToTheirLayers)
{
	// Through the atmosphere the sun is redder than blue and the sky bluer
	// than red; each is in its own layer.
	const std::vector<V3> layers = SunScene(Vec3d(0.5, -0.5, 0.707107), false, true, 1, 0).floorRadiance();
	ASSERT_EQ(layers.size(), 2u);
	const V3 sky = layers[0], sun = layers[1];
	EXPECT_GT(sun.x, sun.z);
	EXPECT_GT(sky.z, sky.x);
	EXPECT_GT(sky.average(), 0);
	// Without the sky only the sun's layer has light.
	const std::vector<V3> no_sky = SunScene(Vec3d(0.5, -0.5, 0.707107), false, false, 1, 0).floorRadiance(100);
	EXPECT_EQ(no_sky[0].average(), 0);
	EXPECT_GT(no_sky[1].average(), 0);
}

TEST(Background, EnvironmentMapAroundTheScene)
{
	// A picture of two pixels, red then blue, wrapped about z: longitude
	// atan2(y, x) / 2 pi + 0.5 is the u coordinate, so +x looks at u = 0.5,
	// the second pixel's start, and -x at u = 1, which wraps to the first.
	VelornTest::TempDir dir;
	Bitmap bitmap(2, 1, 3);
	bitmap.getPixel(0, 0)[0] = 255;
	bitmap.getPixel(1, 0)[2] = 255;
	writePNG(dir.file("env.png"), bitmap);

	Reference<SceneNodeRoot> root = makeRoot(4, 4, Vec3d(0, 0, 0), Vec3d(0, 1, 0));
	Reference<DiffuseMaterial> env = diffuse(0);
	Texture texture;
	texture.path = dir.file("env.png");
	texture.exponent = 1;
	env->textures.push_back(texture);
	env->emission = new TextureWavelengthDependentParam(0);
	Reference<SceneNodeBackgroundSettings> background = new SceneNodeBackgroundSettings();
	background->background_material = env;
	root->addChildNode(background);
	TracerScene scene(*root, ".");

	const struct
	{
		V3 dir, expected;
	} cases[] = {{V3(1, 0, 0), V3(0, 0, 1)}, {V3(-1, 0, 0), V3(1, 0, 0)}};
	for(const auto& c : cases)
	{
		std::vector<V3> layers(1);
		Rng rng(1, 1);
		bool hit = true;
		scene.radiance(Ray{V3(0, 0, 0), c.dir}, rng, layers, hit);
		EXPECT_FALSE(hit);
		expectNear(layers[0], c.expected, 1e-5f);
	}
}

} // namespace
} // namespace Standin
} // namespace Velorn
