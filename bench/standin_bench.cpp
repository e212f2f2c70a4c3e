// The stand-in renderer's path tracer against bare Embree ray casting over
// the same kind of rays, with one and with two threads, on two scenes: the
// studio example as the plug-in exports it, and a tessellated sphere of one
// million triangles on a floor under a uniform sky. Items are rays: every
// ray the tracer casts (camera, bounce and shadow rays), and on the bare side
// the rays of one recorded pass cast again with rtcIntersect1, or
// rtcOccluded1 where the tracer asked for occlusion.
//
// Besides items per second of wall time (which shows what two threads
// gain), each reports rays per second of the process's CPU time
// ("rays/cpu_s"), summed over its threads: on a machine shared with other
// work that figure still compares the tracer's cost per ray with Embree's.
//
// The studio scene is read from --studio=PATH, by default the build's
// studio/studio.vls (see bench/README.md for the export command).
#include "mesh/mesh.h"
#include "scene/rotation.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_model.h"
#include "standin/progressive_render.h"
#include "standin/render_session.h"
#include "standin/standin_test_helpers.h"
#include "standin/tracer_scene.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <ctime>
#include <cstring>
#include <thread>

namespace
{

using namespace Velorn;
using namespace Velorn::Standin;

std::string studio_path = VELORN_STUDIO_SCENE;

// Internal pictures are 8 pixels wider and higher than the final ones.
const uint32_t margin = 8;

Reference<Mesh> sphereMesh(int rings, int segments)
{
	Reference<Mesh> mesh = new Mesh();
	mesh->addMaterialUsed("grey");
	for(int r = 0; r <= rings; ++r)
		for(int s = 0; s <= segments; ++s)
		{
			const float theta = 3.14159265f * r / rings, phi = 2 * 3.14159265f * s / segments;
			const Vec3f n{std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi), std::cos(theta)};
			mesh->addVertex(Vec3f{n.x, n.y, n.z + 1}, n);
		}
	const uint32_t uv[3] = {0, 0, 0};
	for(int r = 0; r < rings; ++r)
		for(int s = 0; s < segments; ++s)
		{
			const uint32_t a = r * (segments + 1) + s, b = a + segments + 1;
			const uint32_t t1[3] = {a, b, a + 1}, t2[3] = {a + 1, b, b + 1};
			mesh->addTriangle(t1, uv, 0);
			mesh->addTriangle(t2, uv, 0);
		}
	mesh->endOfModel();
	return mesh;
}

// 500 rings of 1002 segments: 1,002,000 triangles, less the 2,004 of no
// area at the poles that the mesh drops.
std::shared_ptr<TracerScene> makeSphereScene()
{
	const int size = 256;
	Reference<SceneNodeRoot> root = StandinTest::makeRoot(size, size, Vec3d(0, -5, 1.5), Vec3d(0, 0.97, -0.24));
	StandinTest::addUniformBackground(*root, 1.0, 0);
	Reference<SceneNodeMesh> mesh_node = new SceneNodeMesh();
	mesh_node->setMesh(sphereMesh(500, 1002));
	root->addChildNode(mesh_node);
	Reference<SceneNodeModel> model = new SceneNodeModel();
	model->rotation = new MatrixRotation();
	model->setGeometry(mesh_node);
	model->setMaterials({StandinTest::addMaterial(*root, StandinTest::diffuse(0.7))});
	root->addChildNode(model);
	StandinTest::addSphere(*root, Vec3d(0, 0, -1000), 1000, StandinTest::addMaterial(*root, StandinTest::diffuse(0.5)));
	return std::make_shared<TracerScene>(*root, ".");
}

// The studio at half its size (480 x 270), so that a pass takes a fraction
// of a second.
std::shared_ptr<TracerScene> makeStudioScene()
{
	Reference<SceneNodeRoot> root = loadScene(studio_path);
	auto& settings = static_cast<SceneNodeRenderSettings&>(*root->getRenderSettingsNode());
	settings.setInt("width", 480);
	settings.setInt("height", 270);
	settings.setInt("super_sample_factor", 1);
	return std::make_shared<TracerScene>(*root, FileUtils::getDirectory(studio_path));
}

struct Scene
{
	std::shared_ptr<TracerScene> scene;
	std::vector<CastRay> rays;  // one pass, as traced
	std::string error;
};

// Built on first use and kept: building the million-triangle scene takes
// seconds, which no benchmark should time.
Scene& sceneFor(int which)
{
	static Scene scenes[2];
	Scene& s = scenes[which];
	if(s.scene || !s.error.empty())
		return s;
	try
	{
		s.scene = which == 0 ? makeStudioScene() : makeSphereScene();
	}
	catch(const MessageException& e)
	{
		s.error = e.what();
		return s;
	}
	// One path per internal pixel, jittered as a pass does.
	const TraceSettings& ts = s.scene->getSettings();
	const uint32_t w = ts.width + margin, h = ts.height + margin;
	std::vector<V3> layers(ts.layer_count);
	for(uint32_t y = 0; y < h; ++y)
		for(uint32_t x = 0; x < w; ++x)
		{
			Rng rng((uint64_t)y << 32 | x, 0);
			const float film_x = x + rng.uniform() - margin / 2, film_y = y + rng.uniform() - margin / 2;
			const float u1 = rng.uniform(), u2 = rng.uniform();
			const Ray ray = s.scene->getCamera().generateRay(
				film_x, film_y, u1, u2, s.scene->hasMotion() ? rng.uniform() : 0.0f);
			std::fill(layers.begin(), layers.end(), V3(0));
			bool hit = false;
			s.scene->radiance(ray, rng, layers, hit, nullptr, &s.rays);
		}
	return s;
}

// Both scenes, each with one thread and with two, timed by the wall clock.
void eachSceneOnOneAndTwoThreads(benchmark::internal::Benchmark* benchmark)
{
	benchmark->ArgNames({"scene", "threads"})
		->Args({0, 1})
		->Args({0, 2})
		->Args({1, 1})
		->Args({1, 2})
		->Unit(benchmark::kMillisecond)
		->UseRealTime();
}

void BM_PathTracerPass(benchmark::State& state)
{
	Scene& s = sceneFor((int)state.range(0));
	if(!s.scene)
	{
		state.SkipWithError(s.error.c_str());
		return;
	}
	const TraceSettings& ts = s.scene->getSettings();
	MasterBuffer buffer(ts.width + margin, ts.height + margin, ts.layer_count, ts.width, ts.height, {}, false);
	std::mutex mutex;
	RayCounts counts;
	const std::clock_t cpu_start = std::clock();
	for(auto _ : state)
	{
		ProgressiveRender render(s.scene, buffer, mutex, (unsigned)state.range(1), 1);
		render.setHalt(1, -1);
		render.start();
		render.waitUntilDone();
		counts += render.getRayCounts();
	}
	const double cpu_seconds = (double)(std::clock() - cpu_start) / CLOCKS_PER_SEC;
	state.SetItemsProcessed((int64_t)counts.total());
	state.counters["rays/cpu_s"] = counts.total() / cpu_seconds;
	const double paths = (double)state.iterations() * buffer.getInternalWidth() * buffer.getInternalHeight();
	state.counters["rays/path"] = counts.total() / paths;
	state.counters["shadow/path"] = counts.shadow / paths;
}
BENCHMARK(BM_PathTracerPass)->Apply(eachSceneOnOneAndTwoThreads);

void BM_BareEmbreeCast(benchmark::State& state)
{
	Scene& s = sceneFor((int)state.range(0));
	if(!s.scene)
	{
		state.SkipWithError(s.error.c_str());
		return;
	}
	const unsigned threads = (unsigned)state.range(1);
	const std::clock_t cpu_start = std::clock();
	for(auto _ : state)
	{
		// Contiguous shares: each thread's rays are in path order, as the
		// tracer casts them.
		std::vector<std::thread> workers;
		std::vector<uint64_t> hits(threads * 8, 0);
		const size_t share = (s.rays.size() + threads - 1) / threads;
		for(unsigned t = 0; t < threads; ++t)
			workers.emplace_back([&, t] {
				uint64_t found = 0;
				const size_t end = std::min(s.rays.size(), (t + 1) * share);
				for(size_t i = t * share; i < end; ++i)
				{
					const CastRay& r = s.rays[i];
					if(r.shadow)
						found += s.scene->occluded(r.origin, r.dir, r.t_near, r.t_far, r.time);
					else
					{
						RTCRayHit hit;
						found += s.scene->intersect(r.origin, r.dir, r.t_near, r.t_far, r.time, hit);
					}
				}
				hits[t * 8] = found;
			});
		for(std::thread& w : workers)
			w.join();
		benchmark::DoNotOptimize(hits.data());
	}
	const double cpu_seconds = (double)(std::clock() - cpu_start) / CLOCKS_PER_SEC;
	state.SetItemsProcessed((int64_t)(state.iterations() * s.rays.size()));
	state.counters["rays/cpu_s"] = state.iterations() * s.rays.size() / cpu_seconds;
}
BENCHMARK(BM_BareEmbreeCast)->Apply(eachSceneOnOneAndTwoThreads);

} // namespace

int main(int argc, char** argv)
{
	// --studio=PATH is ours; the rest goes to the benchmark library.
	std::vector<char*> rest;
	for(int i = 0; i < argc; ++i)
		if(std::strncmp(argv[i], "--studio=", 9) == 0)
			studio_path = argv[i] + 9;
		else
			rest.push_back(argv[i]);
	int rest_count = (int)rest.size();
	benchmark::Initialize(&rest_count, rest.data());
	benchmark::RunSpecifiedBenchmarks();
	benchmark::Shutdown();
	return 0;
}
