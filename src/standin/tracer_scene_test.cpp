#include "mesh/mesh_file.h"
#include "scene/materials_other.h"
#include "scene/scene_node_section_plane.h"
#include "standin/progressive_render.h"
#include "standin/standin_test_helpers.h"
#include "standin/tracer_scene.h"
#include "support/exceptions.h"
#include "support/failures.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace Velorn
{
namespace Standin
{
namespace
{

using namespace StandinTest;

double meanRadiance(const TracerScene& scene, const Ray& ray, int n) { return meanLayers(scene, ray, n, 7)[0].average(); }

TEST(TracerScene, WhiteFurnaceGivesAlbedoTimesBackground)
{
	// A convex diffuse sphere under a uniform sky reflects light only once:
	// its radiance is albedo times the sky's, whatever the direction.
	const struct
	{
		double albedo;
		double expected;
	} cases[] = {{1.0, 2.0}, {0.5, 1.0}, {0.0, 0.0}};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.albedo);
		Reference<SceneNodeRoot> root = makeRoot(4, 4, Vec3d(0, -5, 0), Vec3d(0, 1, 0));
		addUniformBackground(*root, 2.0, 0);
		addSphere(*root, Vec3d(0, 0, 0), 1, addMaterial(*root, diffuse(c.albedo)));
		TracerScene scene(*root, ".");
		// Rays at several points of the sphere, not only its centre.
		for(const V3 target : {V3(0, 0, 0), V3(0.5f, 0, 0.3f), V3(-0.2f, 0, -0.8f)})
		{
			const Ray ray{V3(0, -5, 0), normalise(target - V3(0, -5, 0))};
			EXPECT_NEAR(meanRadiance(scene, ray, 4000), c.expected, 0.02 * 2.0);
		}
		// A ray that misses sees the sky itself.
		EXPECT_NEAR(meanRadiance(scene, Ray{V3(0, -5, 0), V3(0, 0, 1)}, 10), 2.0, 1e-6);
	}
}

TEST(TracerScene, SpecularSpheresAlongTheAxis)
{
	// Along the axis of a smooth sphere every bounce stays on the axis. With
	// F0 = ((n - 1) / (n + 1))^2 = 0.04 for n = 1.5, glass passes
	// (1 - F0)^2 / (1 - F0^2) = (1 - F0) / (1 + F0) of the light from behind
	// and returns F0 + (1 - F0)^2 F0 / (1 - F0^2) = 2 F0 / (1 + F0) of the
	// light from the camera's side; a mirror returns all of the latter.
	const double f0 = 0.04;
	const struct
	{
		const char* name;
		bool transparent;
		double emitter_y;  // an emitting sphere behind the target (10) or behind the camera (-12)
		double expected;
	} cases[] = {
		{"glass, light behind", true, 10, (1 - f0) / (1 + f0)},
		{"glass, light in front", true, -12, 2 * f0 / (1 + f0)},
		{"mirror, light in front", false, -12, 1.0},
		{"mirror, light behind", false, 10, 0.0},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		Reference<SceneNodeRoot> root = makeRoot(4, 4, Vec3d(0, -5, 0), Vec3d(0, 1, 0));
		addSphere(*root, Vec3d(0, 0, 0), 1, addMaterial(*root, specular(*root, c.transparent, 1.5)));
		addSphere(*root, Vec3d(0, c.emitter_y, 0), 3, addMaterial(*root, emitter(1.0, 0)));
		TracerScene scene(*root, ".");
		const double mean = meanRadiance(scene, Ray{V3(0, -5, 0), V3(0, 1, 0)}, 100000);
		EXPECT_NEAR(mean, c.expected, std::max(0.04 * c.expected, 0.002));
	}
}

TEST(TracerScene, LightLayersSumToTheWhole)
{
	// The same paths with the two lights in layers of their own and in one
	// layer: the layers must add up to the single layer, pixel by pixel.
	auto render = [](unsigned emitter_layer, unsigned threads) {
		Reference<SceneNodeRoot> root = makeRoot(6, 5, Vec3d(0, -5, 1), Vec3d(0, 0.98, -0.2));
		addUniformBackground(*root, 0.7, 0);
		addSphere(*root, Vec3d(0, 0, 0), 1, addMaterial(*root, diffuse(0.6)));
		addSphere(*root, Vec3d(1.5, -1, 2), 0.7, addMaterial(*root, emitter(4.0, emitter_layer)));
		auto scene = std::make_shared<TracerScene>(*root, ".");
		const uint32_t w = (6 + 8), h = (5 + 8);
		auto buffer = std::make_unique<MasterBuffer>(w, h, scene->getSettings().layer_count, 6, 5,
			std::vector<std::string>(), false);
		std::mutex mutex;
		ProgressiveRender r(scene, *buffer, mutex, threads, 99);
		r.setHalt(3, -1);
		r.start();
		r.waitUntilDone();
		EXPECT_EQ(r.getSamplesPerPixel(), 3);
		return buffer;
	};
	const auto separate = render(1, 1);
	const auto joined = render(0, 1);
	const auto joined_two_threads = render(0, 2);
	ASSERT_EQ(separate->layers.size(), 2u);
	ASSERT_EQ(joined->layers.size(), 1u);
	double layer1_total = 0;
	for(uint32_t y = 0; y < 13; ++y)
		for(uint32_t x = 0; x < 14; ++x)
			for(int c = 0; c < 3; ++c)
			{
				const float a = separate->layers[0].image.getPixel(x, y)[c];
				const float b = separate->layers[1].image.getPixel(x, y)[c];
				const float whole = joined->layers[0].image.getPixel(x, y)[c];
				EXPECT_NEAR(a + b, whole, 1e-4f * (1 + whole));
				// The picture does not depend on how rows were shared out.
				EXPECT_EQ(whole, joined_two_threads->layers[0].image.getPixel(x, y)[c]);
				layer1_total += b;
			}
	// The emitter's layer holds light of its own.
	EXPECT_GT(layer1_total, 0);
}

// A ray straight down from origin meets the scene expected away, or
// nothing where expected is negative; occlusion queries, never camera rays,
// agree with the rays that are not either.
void expectDownwardHit(const TracerScene& scene, const V3& origin, float time, float expected, bool camera_ray = false)
{
	RTCRayHit hit;
	const V3 down(0, 0, -1);
	const bool found = scene.intersect(origin, down, 0, 100, time, hit, camera_ray);
	EXPECT_EQ(found, expected >= 0) << hit.ray.tfar;
	if(found && expected >= 0)
	{
		EXPECT_NEAR(hit.ray.tfar, expected, 1e-4f);
	}
	if(!camera_ray)
	{
		EXPECT_EQ(scene.occluded(origin, down, 0, 100, time), expected >= 0);
	}
}

// The UID of the root's first child of this type.
UID uidOfFirst(const SceneNodeRoot& root, unsigned type)
{
	for(const Reference<SceneNode>& child : root.getChildren())
		if(child->getType() == type)
			return child->uid;
	return UID::invalidUID();
}

TEST(TracerScene, SectionPlanesCutAwayTheirFrontSide)
{
	// A sphere of radius 1 at (0, 0, 2) over a floor at z = 0; rays go
	// straight down from z = 5. At x = 0 the sphere's top is 2 away, its
	// inside bottom 4; at x = 0.5 its top is 5 - (2 + sqrt(0.75)) away; at
	// x = 1.5 the ray misses the sphere and meets the floor 5 away.
	const float top_at_half = 3 - std::sqrt(0.75f);
	enum Listed
	{
		NoList,
		IncludeSphere
	};
	const struct
	{
		const char* name;
		V3 point, normal;
		bool cull, enabled;
		Listed list;
		float x;
		bool camera_ray;
		float expected;  // the hit's distance, or -1 for none
	} cases[] = {
		{"top cut off", V3(0, 0, 2.5f), V3(0, 0, 1), true, true, NoList, 0, false, 4},
		{"bottom cut off", V3(0, 0, 2.5f), V3(0, 0, -1), true, true, NoList, 0, false, 2},
		{"disabled", V3(0, 0, 2.5f), V3(0, 0, 1), true, false, NoList, 0, false, 2},
		{"half along x", V3(0, 0, 0), V3(1, 0, 0), true, true, NoList, 0.5f, false, -1},
		{"behind a plane along x", V3(1, 0, 0), V3(1, 0, 0), true, true, NoList, 0.5f, false, top_at_half},
		{"unnormalised y axis", V3(0, -1, 0), V3(0, 3, 0), true, true, NoList, 0.5f, false, -1},
		{"floor cut", V3(0, 0, 1), V3(0, 0, -1), true, true, NoList, 1.5f, false, -1},
		{"floor kept", V3(0, 0, 1), V3(0, 0, 1), true, true, NoList, 1.5f, false, 5},
		{"listed sphere cut", V3(0, 0, 2.5f), V3(0, 0, 1), true, true, IncludeSphere, 0, false, 4},
		{"floor not listed", V3(0, 0, 1), V3(0, 0, -1), true, true, IncludeSphere, 1.5f, false, 5},
		{"no culling: camera ray cut", V3(0, 0, 2.5f), V3(0, 0, 1), false, true, NoList, 0, true, 4},
		{"no culling: other ray not", V3(0, 0, 2.5f), V3(0, 0, 1), false, true, NoList, 0, false, 2},
		{"no culling: floor hidden from the camera", V3(0, 0, 1), V3(0, 0, -1), false, true, NoList, 1.5f, true, -1},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		Reference<SceneNodeRoot> root = makeRoot(4, 4, Vec3d(0, -5, 0), Vec3d(0, 1, 0));
		addUniformBackground(*root, 1.0, 0);
		addSphere(*root, Vec3d(0, 0, 2), 1, addMaterial(*root, diffuse(0.5)));
		addFloor(*root, 2, addMaterial(*root, diffuse(0.5)));
		Reference<SceneNodeSectionPlane> plane = new SceneNodeSectionPlane();
		plane->point = Vec3d(c.point.x, c.point.y, c.point.z);
		plane->normal = Vec3d(c.normal.x, c.normal.y, c.normal.z);
		plane->cull_geometry = c.cull;
		plane->enabled = c.enabled;
		if(c.list == IncludeSphere)
		{
			plane->object_list_type = SceneNodeSectionPlane::Include;
			plane->object_list.push_back(uidOfFirst(*root, SceneNodeType::Sphere));
		}
		root->addChildNode(plane);
		expectDownwardHit(TracerScene(*root, "."), V3(c.x, 0, 5), 0, c.expected, c.camera_ray);
	}
}

TEST(TracerScene, MovingGeometryStandsWhereItsKeyframesPutItAtTheRaysTime)
{
	// A sphere of radius 0.5 moving from (-2, -1.5, 3) to (2, -1.5, 3), and
	// the floor (z = 0, 4 m square) turning a quarter about +x, which takes
	// +y up to +z. Embree moves the floor's corners in straight lines, so
	// halfway the floor is the plane z = y. Rays go straight down from z = 5.
	Reference<SceneNodeRoot> root = makeRoot(4, 4, Vec3d(0, -5, 0), Vec3d(0, 1, 0));
	addUniformBackground(*root, 1.0, 0);
	Reference<SceneNodeMaterial> grey = addMaterial(*root, diffuse(0.5));
	addSphere(*root, Vec3d(-2, -1.5, 3), 0.5, grey);
	addFloor(*root, 2, grey);
	for(const Reference<SceneNode>& child : root->getChildren())
		if(child->getType() == SceneNodeType::Sphere)
			static_cast<SceneNodeSphere&>(*child).keyframes.push_back(KeyFrame{Vec3d(2, -1.5, 3), 1, Vec3d(0, 0, 1), 0});
		else if(child->getType() == SceneNodeType::Model)
			static_cast<SceneNodeModel&>(*child).keyframes.push_back(
				KeyFrame{Vec3d(0, 0, 0), 1, Vec3d(1, 0, 0), 3.14159265358979 / 2});
	TracerScene scene(*root, ".");
	EXPECT_TRUE(scene.hasMotion());

	const struct
	{
		const char* name;
		float x, y, time;
		float expected;  // the hit's distance, or -1 for none
	} cases[] = {
		{"sphere at the start", -2, -1.5f, 0, 1.5f},
		{"sphere gone from the start", -2, -1.5f, 1, -1},
		{"sphere halfway", 0, -1.5f, 0.5f, 1.5f},
		{"sphere at the end", 2, -1.5f, 1, 1.5f},
		{"floor flat", 0, 0.5f, 0, 5},
		{"floor half turned", 0, 0.5f, 0.5f, 4.5f},
		{"floor upright", 0, 0.5f, 1, -1},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		expectDownwardHit(scene, V3(c.x, c.y, 5), c.time, c.expected);
	}
}

TEST(TracerScene, ModelFilesShowTheFrontThatTheirFormatWinds)
{
	// A quad (a triangle of it in PLY) in the plane z = 0 whose corners run
	// counter-clockwise seen from above, glowing from its front only, seen by
	// a ray straight down: OBJ and PLY files wind their fronts that way, a
	// scene's mesh files the other way.
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("quad.obj"), "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\nf 1 2 3 4\n");
	VelornTest::writeFile(dir.file("quad.PLY"),
		"ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty float y\nproperty float z\n"
		"element face 1\nproperty list uchar int vertex_indices\nend_header\n"
		"-1 -1 0\n1 -1 0\n1 1 0\n-1 1 0\n3 0 1 2\n");
	Mesh quad;
	for(const Vec3f& corner : {Vec3f{-1, -1, 0}, Vec3f{1, -1, 0}, Vec3f{1, 1, 0}, Vec3f{-1, 1, 0}})
		quad.addVertex(corner);
	quad.addQuad({0, 1, 2, 3}, {0, 0, 0, 0}, 0);
	quad.endOfModel();
	writeMeshToFile(dir.file("quad.vlmesh"), quad);

	const struct
	{
		const char* file;
		double seen_from_above;
	} cases[] = {{"quad.obj", 1}, {"quad.PLY", 1}, {"quad.vlmesh", 0}};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.file);
		Reference<SceneNodeRoot> root = makeRoot(4, 4, Vec3d(0, 0, 5), Vec3d(0, 0, -1));
		Reference<SceneNodeMesh> mesh_node = new SceneNodeMesh();
		mesh_node->path = c.file;
		addModel(*root, mesh_node, {addMaterial(*root, emitter(1.0, 0))});
		root->finalise(String(dir.file("scene.vls")));
		const TracerScene scene(*root, dir.path());
		EXPECT_NEAR(meanRadiance(scene, Ray{V3(0.4f, -0.3f, 5), V3(0, 0, -1)}, 1), c.seen_from_above, 1e-6);
	}
}

// Widths out of range are refused through the library and the executable.
TEST(TracerScene, RejectsWhatItCannotRender)
{
	Reference<SceneNodeRoot> root = makeRoot(10, 20000, Vec3d(0, -5, 0), Vec3d(0, 1, 0));
	EXPECT_EQ(VelornTest::failureOf<Exception>([&] { TracerScene scene(*root, "."); }),
		"Image size 10 x 20000 is out of range (1 to 16384 pixels a side).");
}

TEST(ProgressiveRender, CountsEveryRayCast)
{
	// Looking down at a huge diffuse sphere from just above it: every
	// camera ray hits, casts one shadow ray towards a sun overhead, and
	// bounces once into the sky (the surface is convex, roulette starts
	// later). So each of the 6 x 5 internal pixels of a 3 pass render adds
	// one ray of each role, whichever thread traced it; without a sun there
	// are no shadow rays.
	const struct
	{
		bool sun;
		uint64_t shadow_per_path;
	} cases[] = {{true, 1}, {false, 0}};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.sun);
		Reference<SceneNodeRoot> root = makeRoot(2, 1, Vec3d(0, 0, 1), Vec3d(0, 0.2, -1));
		if(c.sun)
		{
			Reference<SunSkyMaterial> sunsky = new SunSkyMaterial();
			sunsky->sundir = Vec3d(0, 0, 1);
			Reference<SceneNodeBackgroundSettings> background = new SceneNodeBackgroundSettings();
			background->background_material = sunsky;
			root->addChildNode(background);
		}
		else
			addUniformBackground(*root, 1.0, 0);
		addSphere(*root, Vec3d(0, 0, -1000), 1000, addMaterial(*root, diffuse(0.5)));
		auto scene = std::make_shared<TracerScene>(*root, ".");
		MasterBuffer buffer(10, 9, 1, 2, 1, {}, false);
		std::mutex mutex;
		ProgressiveRender r(scene, buffer, mutex, 2, 3);
		r.setHalt(3, -1);
		r.start();
		r.waitUntilDone();
		const uint64_t paths = 3 * 10 * 9;
		const RayCounts counts = r.getRayCounts();
		EXPECT_EQ(counts.camera, paths);
		EXPECT_EQ(counts.bounce, paths);
		EXPECT_EQ(counts.shadow, c.shadow_per_path * paths);

		// The record holds the same rays in the order cast: the camera ray
		// first, shadow rays marked.
		std::vector<CastRay> record;
		RayCounts one;
		std::vector<V3> layers(scene->getSettings().layer_count);
		Rng rng(5, 0);
		bool hit = false;
		const Ray ray{V3(0, 0, 1), normalise(V3(0.1f, 0.2f, -1))};
		scene->radiance(ray, rng, layers, hit, &one, &record);
		ASSERT_EQ(record.size(), 2 + c.shadow_per_path);
		EXPECT_EQ(one.total(), record.size());
		EXPECT_EQ(record[0].dir.z, ray.dir.z);
		EXPECT_FALSE(record[0].shadow);
		EXPECT_EQ(record[1].shadow, c.sun);
	}
}

TEST(ProgressiveRender, PausesAndStopsPromptly)
{
	Reference<SceneNodeRoot> root = makeRoot(64, 64, Vec3d(0, -5, 0), Vec3d(0, 1, 0));
	addUniformBackground(*root, 1.0, 0);
	addSphere(*root, Vec3d(0, 0, 0), 1, addMaterial(*root, diffuse(0.8)));
	auto scene = std::make_shared<TracerScene>(*root, ".");
	MasterBuffer buffer(72, 72, 1, 64, 64, {}, false);
	std::mutex mutex;
	ProgressiveRender r(scene, buffer, mutex, 2, 1);
	r.start();
	while(r.getSamplesPerPixel() < 1)
		std::this_thread::sleep_for(std::chrono::milliseconds(5));
	r.pause();
	std::this_thread::sleep_for(std::chrono::milliseconds(50));
	const double paused_spp = r.getSamplesPerPixel();
	const double paused_time = r.getElapsedTime();
	std::this_thread::sleep_for(std::chrono::milliseconds(150));
	EXPECT_EQ(r.getSamplesPerPixel(), paused_spp);
	EXPECT_NEAR(r.getElapsedTime(), paused_time, 0.02);
	r.resume();
	while(r.getSamplesPerPixel() <= paused_spp)
		std::this_thread::sleep_for(std::chrono::milliseconds(5));
	const auto before = std::chrono::steady_clock::now();
	r.stop();
	const double stop_ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - before).count();
	EXPECT_LT(stop_ms, 100);
	EXPECT_TRUE(r.isDone());
}

} // namespace
} // namespace Standin
} // namespace Velorn
