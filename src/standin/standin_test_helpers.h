#pragma once

// Small scenes built in code for the stand-in renderer's tests.
#include "mesh/mesh.h"
#include "scene/channel_params.h"
#include "scene/materials_basic.h"
#include "scene/materials_glass.h"
#include "scene/medium.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_medium.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_root.h"
#include "scene/rotation.h"
#include "scene/scene_node_sphere.h"
#include "scene/wavelength_values.h"
#include "standin/tracer_scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace Velorn
{
namespace StandinTest
{

inline Reference<WavelengthDependentParam> grey(double value)
{
	return new ConstantWavelengthDependentParam(new UniformSpectrum(value));
}

// A root with default settings of the given size, super sampling 1, one
// thread, and a pinhole camera at from looking along forwards (z up).
inline Reference<SceneNodeRoot> makeRoot(int width, int height, const Vec3d& from, const Vec3d& forwards,
	double sensor_width = 0.036, double lens_sensor_dist = 0.036)
{
	Reference<SceneNodeRoot> root = new SceneNodeRoot();
	Reference<SceneNodeRenderSettings> settings = SceneNodeRenderSettings::getDefaults();
	settings->setInt("width", width);
	settings->setInt("height", height);
	settings->setInt("super_sample_factor", 1);
	settings->setBool("auto_choose_num_threads", false);
	root->addChildNode(settings);
	Reference<SceneNodeCamera> camera = new SceneNodeCamera();
	camera->keyframes.push_back(KeyFrame{from, 0, Vec3d(0, 0, 1), 0});
	camera->forwards = forwards;
	camera->up = Vec3d(0, 0, 1);
	camera->aperture_radius = 0;
	camera->sensor_width = sensor_width;
	camera->lens_sensor_dist = lens_sensor_dist;
	root->addChildNode(camera);
	return root;
}

inline Reference<SceneNodeMaterial> addMaterial(SceneNodeRoot& root, const Reference<Material>& material)
{
	Reference<SceneNodeMaterial> node = new SceneNodeMaterial(material);
	root.addChildNode(node);
	return node;
}

inline Reference<DiffuseMaterial> diffuse(double albedo)
{
	Reference<DiffuseMaterial> m = new DiffuseMaterial();
	m->albedo = grey(albedo);
	return m;
}

// A black body of luminance "value" in the given layer.
inline Reference<DiffuseMaterial> emitter(double value, unsigned layer)
{
	Reference<DiffuseMaterial> m = diffuse(0);
	m->emission = grey(value);
	m->layer = layer;
	return m;
}

// A smooth specular surface: glass over a medium of the given index, or a
// mirror.
inline Reference<SpecularMaterial> specular(SceneNodeRoot& root, bool transparent, double ior)
{
	Reference<SceneNodeMedium> medium = new SceneNodeMedium();
	static_cast<BasicMedium&>(*medium->medium).ior = ior;
	root.addChildNode(medium);
	Reference<SpecularMaterial> m = new SpecularMaterial();
	m->transparent = transparent;
	m->internal_medium = medium;
	return m;
}

inline void addSphere(SceneNodeRoot& root, const Vec3d& centre, double radius, const Reference<SceneNodeMaterial>& material)
{
	Reference<SceneNodeSphere> sphere = new SceneNodeSphere();
	sphere->keyframes.push_back(KeyFrame{centre, 0, Vec3d(0, 0, 1), 0});
	sphere->radius = radius;
	sphere->material = material;
	root.addChildNode(sphere);
}

// The mesh node and a model that places it where it stands, unturned, with
// the given materials.
inline void addModel(SceneNodeRoot& root, const Reference<SceneNodeMesh>& mesh_node,
	const Vector<Reference<SceneNodeMaterial>>& materials)
{
	root.addChildNode(mesh_node);
	Reference<SceneNodeModel> model = new SceneNodeModel();
	model->rotation = new MatrixRotation();
	model->keyframes.push_back(KeyFrame{Vec3d(0, 0, 0), 0, Vec3d(0, 0, 1), 0});
	model->setGeometry(mesh_node);
	model->setMaterials(materials);
	root.addChildNode(model);
}

// A square floor in the plane z = 0, of the given half side, with a mesh of
// its own and the given material. It faces up: its corners run clockwise
// seen from above, as a scene's polygons do seen from their front.
inline void addFloor(SceneNodeRoot& root, float half_side, const Reference<SceneNodeMaterial>& material)
{
	Reference<Mesh> mesh = new Mesh();
	mesh->addMaterialUsed("floor");
	mesh->addVertex(Vec3f{-half_side, -half_side, 0});
	mesh->addVertex(Vec3f{half_side, -half_side, 0});
	mesh->addVertex(Vec3f{half_side, half_side, 0});
	mesh->addVertex(Vec3f{-half_side, half_side, 0});
	const uint32_t v[4] = {0, 3, 2, 1}, uv[4] = {0, 0, 0, 0};
	mesh->addQuad(v, uv, 0);
	mesh->endOfModel();
	Reference<SceneNodeMesh> mesh_node = new SceneNodeMesh();
	mesh_node->setMesh(mesh);
	addModel(root, mesh_node, {material});
}

// A uniform background of the given radiance in a layer.
inline void addUniformBackground(SceneNodeRoot& root, double value, unsigned layer)
{
	Reference<SceneNodeBackgroundSettings> background = new SceneNodeBackgroundSettings();
	background->background_material = emitter(value, layer);
	root.addChildNode(background);
}

// The mean radiance of each layer over paths along one ray; path i draws
// from stream i of the seed. Summed in doubles: long runs of floats drift.
inline std::vector<Standin::V3> meanLayers(const Standin::TracerScene& scene, const Standin::Ray& ray, int paths,
	uint64_t seed)
{
	const size_t count = scene.getSettings().layer_count;
	std::vector<double> sum(3 * count, 0.0);
	std::vector<Standin::V3> layers(count);
	for(int i = 0; i < paths; ++i)
	{
		Standin::Rng rng(seed, (uint64_t)i);
		std::fill(layers.begin(), layers.end(), Standin::V3(0));
		bool hit = false;
		scene.radiance(ray, rng, layers, hit);
		for(size_t l = 0; l < count; ++l)
			for(int c = 0; c < 3; ++c)
				sum[3 * l + c] += layers[l][c];
	}
	for(size_t l = 0; l < count; ++l)
		layers[l] = Standin::V3((float)(sum[3 * l] / paths), (float)(sum[3 * l + 1] / paths), (float)(sum[3 * l + 2] / paths));
	return layers;
}

inline void expectNear(const Standin::V3& actual, const Standin::V3& expected, float tolerance)
{
	EXPECT_NEAR(actual.x, expected.x, tolerance);
	EXPECT_NEAR(actual.y, expected.y, tolerance);
	EXPECT_NEAR(actual.z, expected.z, tolerance);
}

} // namespace StandinTest
} // namespace Velorn
