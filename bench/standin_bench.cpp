// The stand-in renderer's path tracer against bare Embree intersection over
// the same camera rays, with one and with two threads. A scene of a
// tessellated sphere of 80,000 triangles on a floor, under a uniform sky,
// 256 by 256 pixels, one sample each; items are camera rays.
#include "mesh/mesh.h"
#include "scene/rotation.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_model.h"
#include "standin/progressive_render.h"
#include "standin/standin_test_helpers.h"
#include "standin/tracer_scene.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <thread>

namespace
{

using namespace Velorn;
using namespace Velorn::Standin;

const int image_size = 256;

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

std::shared_ptr<TracerScene> makeScene()
{
	Reference<SceneNodeRoot> root = StandinTest::makeRoot(image_size, image_size, Vec3d(0, -5, 1.5), Vec3d(0, 0.97, -0.24));
	StandinTest::addUniformBackground(*root, 1.0, 0);
	Reference<SceneNodeMesh> mesh_node = new SceneNodeMesh();
	mesh_node->setMesh(sphereMesh(200, 200));
	root->addChildNode(mesh_node);
	Reference<SceneNodeModel> model = new SceneNodeModel();
	model->rotation = new MatrixRotation();
	model->setGeometry(mesh_node);
	model->setMaterials({StandinTest::addMaterial(*root, StandinTest::diffuse(0.7))});
	root->addChildNode(model);
	StandinTest::addSphere(*root, Vec3d(0, 0, -1000), 1000, StandinTest::addMaterial(*root, StandinTest::diffuse(0.5)));
	return std::make_shared<TracerScene>(*root, ".");
}

void BM_PathTracerPass(benchmark::State& state)
{
	auto scene = makeScene();
	const uint32_t internal = image_size + 8;
	MasterBuffer buffer(internal, internal, 1, image_size, image_size, {}, false);
	std::mutex mutex;
	for(auto _ : state)
	{
		ProgressiveRender render(scene, buffer, mutex, (unsigned)state.range(0), 1);
		render.setHalt(1, -1);
		render.start();
		render.waitUntilDone();
	}
	state.SetItemsProcessed(state.iterations() * internal * internal);
}
BENCHMARK(BM_PathTracerPass)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_BareIntersect(benchmark::State& state)
{
	auto scene = makeScene();
	const uint32_t internal = image_size + 8;
	const unsigned threads = (unsigned)state.range(0);
	for(auto _ : state)
	{
		std::vector<std::thread> workers;
		std::vector<int> hits(threads, 0);
		for(unsigned t = 0; t < threads; ++t)
			workers.emplace_back([&, t] {
				for(uint32_t y = t; y < internal; y += threads)
					for(uint32_t x = 0; x < internal; ++x)
					{
						const Ray ray = scene->getCamera().generateRay(x + 0.5f - 4, y + 0.5f - 4, 0.5f, 0.5f);
						RTCRayHit hit;
						hits[t] += scene->intersect(ray.origin, ray.dir, 0, 1e30f, hit);
					}
			});
		for(std::thread& w : workers)
			w.join();
		benchmark::DoNotOptimize(hits);
	}
	state.SetItemsProcessed(state.iterations() * internal * internal);
}
BENCHMARK(BM_BareIntersect)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
