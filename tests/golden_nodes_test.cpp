// Scene node elements (camera, tone mapping, section plane, parametric
// surface, render settings, mesh, model, sphere, scatter and background
// settings), compared byte for byte with hand-written files.
#include "scene/geometry_test_helpers.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_other.h"
#include "scene/rotation.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_parametric_surface.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_root.h"
#include "scene/scene_node_section_plane.h"
#include "scene/scene_node_sphere.h"
#include "scene/scene_node_tonemapping.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Velorn;
using VelornTest::plainNode;

namespace
{

typedef Reference<SceneNode> Node;

// A new node of the class, which set fills in.
template <class N>
std::function<Node()> node(std::function<void(N&)> set = nullptr)
{
	return [set] {
		N* n = new N();
		if(set)
			set(*n);
		return Node(n);
	};
}

void unknownType(SceneNodeCamera& cam) { cam.camera_type = (SceneNodeCamera::CameraType)7; }

void imageAperture(SceneNodeCamera& cam)
{
	cam.camera_type = SceneNodeCamera::Spherical;
	cam.uid = UID(42);
	cam.aperture_radius = (double)0.3f;
	cam.focus_distance = 1e21;
	cam.aperture_shape = new ApertureImage("apertures/hex.png");
}

// Every optional part of a camera, inside a scene.
Node generatedApertureScene()
{
	Reference<SceneNodeCamera> cam(new SceneNodeCamera());
	cam->camera_type = SceneNodeCamera::Orthographic;
	cam->setName("Main Camera");
	cam->aperture_radius = 0.005;
	cam->focus_distance = 3.5;
	cam->lens_sensor_dist = 0.05;
	cam->exposure_duration = 0.01;
	cam->lens_shift_up_distance = 0.001;
	cam->lens_shift_right_distance = -0.002;
	cam->autofocus = true;
	cam->obstacle_map_path = "maps/dust.png";
	cam->aperture_shape = new ApertureGenerated(6, 0.1, 0.333, 0);
	cam->keyframes.push_back(KeyFrame{Vec3d(1, 2, 3), 0, Vec3d(0, 0, 1), 0});
	cam->keyframes.push_back(KeyFrame{Vec3d(1.5, 2, 3), 1, Vec3d(0, 1, 0), 0.5});
	cam->up = Vec3d(0, 1, 0);
	cam->forwards = Vec3d(0, 0, -1);
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	root->addChildNode(cam);
	return root;
}

void includeList(SceneNodeSectionPlane& plane)
{
	plane.uid = UID(3);
	plane.setName("Cut");
	plane.point = Vec3d(1, 2.5, -3);
	plane.normal = Vec3d(0, 0, -1);
	plane.enabled = false;
	plane.object_list_type = SceneNodeSectionPlane::Include;
	plane.object_list = {UID(5), UID(6)};
}

void waves(SceneNodeParametricSurface& s)
{
	s.uid = UID(12);
	s.setName("Waves");
	s.shader = "def height(real u, real v) real : u * v";
	s.num_u = 64;
	s.num_v = 32;
}

typedef Reference<SceneNodeRenderSettings> Settings;

Settings empty() { return Settings(new SceneNodeRenderSettings()); }

Settings withFilters(SplatFilter* splat, DownsizeFilter* downsize)
{
	Settings s = empty();
	s->setSplatFilter(splat);
	s->setDownsizeFilter(downsize);
	return s;
}

Settings withGPU(const char* device_name, int subsystem)
{
	Settings s = empty();
	s->setGPUDevice(new GPUDeviceSettings(device_name, subsystem));
	return s;
}

// Every kind of value and every structured value at once, with keys that
// fall in different buckets and the key that is never written.
Settings everything()
{
	Settings s = empty();
	s->uid = UID(7);
	s->setName("Final Render");
	s->setInt("b", -5);
	s->setInt("width", 1920);
	s->setDouble("x", 1e21);
	s->setBool("gpu_path_tracing", true);
	s->setDouble("a", 0.333);
	s->setDouble("halt_time", (double)0.3f);
	s->setBool("e", false);
	s->setGPUDevice(new GPUDeviceSettings("Card & Co", GPUDeviceSettings::CUDA));
	s->setWhitePoint(0.31273, 0.329);
	s->setDownsizeFilter(new DownsizeFilterMNCubic(0.5, 0.001, 2.5));
	s->setSplatFilter(new SplatFilterBox());
	s->setRenderRegion(new RenderRegion(10, 200, 20, 100));
	SceneNodeRenderSettings::LayerVector layers;
	layers.push_back(nullptr);
	layers.push_back(new LayerSetting("Key  light", Vec3d(0.5, 0.333, 1e21), (double)0.3f));
	s->setLayers(layers);
	return s;
}

Reference<EmissionScale> emissionScale(int32_t measure, double value, const Reference<SceneNodeMaterial>& material, UID stored)
{
	Reference<EmissionScale> scale(new EmissionScale());
	scale->measure = measure;
	scale->value = value;
	scale->material = material;
	scale->material_uid = stored;
	return scale;
}

Reference<IESProfile> iesProfile(const char* path, const Reference<SceneNodeMaterial>& material, UID stored)
{
	Reference<IESProfile> profile(new IESProfile());
	profile->path = path;
	profile->material = material;
	profile->material_uid = stored;
	return profile;
}

// Everything a model can hold. Bound references win over the UIDs stored
// beside them.
Node fullModel()
{
	Reference<SceneNodeMesh> mesh(new SceneNodeMesh());
	mesh->uid = UID(7);
	Reference<SceneNodeMaterial> glass = plainNode("Glass", 3);
	Reference<SceneNodeMaterial> bulb = plainNode("Bulb", 4);

	Reference<SceneNodeModel> model(new SceneNodeModel());
	model->uid = UID(20);
	model->setName("Lamp");
	model->setGeometry(mesh);
	model->geometry_uid = UID(99);
	model->scale = (double)0.3f;
	model->invisible_to_camera = true;
	model->rotation = new MatrixRotation(Matrix3d{{0, -1, 0, 1, 0, 0, 0, 0, 2.5}});
	model->keyframes.push_back(KeyFrame{Vec3d(1, 2, 3), 0, Vec3d(0, 0, 1), 0});
	model->keyframes.push_back(KeyFrame{Vec3d(-1.5, 0, 1e21), 1, Vec3d(0, 1, 0), 0.5});
	model->setMaterials({glass, bulb});
	model->setIESProfiles({iesProfile("ies/spot light.ies", bulb, UID(99)), iesProfile("ies/  wide.ies", nullptr, UID(3))});
	model->setEmissionScales({
		emissionScale(EmissionScale::LuminousFlux, 1500, bulb, UID(99)),
		emissionScale(EmissionScale::LuminousIntensity, 2.5, nullptr, UID(3)),
		emissionScale(EmissionScale::Luminance, -0.0, bulb, UID()),
		emissionScale(EmissionScale::LuminousEmittance, 0.125, nullptr, UID()),
		emissionScale(EmissionScale::NoMeasure, 9, bulb, UID(3)),
	});
	return model;
}

// A model as the parser leaves it before binding: stored UIDs only, so its
// material list is written empty.
Node unboundModel()
{
	Reference<SceneNodeModel> model(new SceneNodeModel());
	model->uid = UID(21);
	model->geometry_uid = UID(12);
	model->rotation = new AxisRotation(Vec3d(1, 0, 0), 1.5707963267948966);
	model->setMaterialUIDs({UID(3), UID(4)});
	model->setIESProfiles({iesProfile("a.ies", nullptr, UID())});
	model->setEmissionScales({
		emissionScale(EmissionScale::NoMeasure, 9, nullptr, UID(3)),
		emissionScale(EmissionScale::LuminousIntensity, 2.5, nullptr, UID(3)),
	});
	return model;
}

Node movingSphere()
{
	Reference<SceneNodeSphere> sphere(new SceneNodeSphere());
	sphere->uid = UID(9);
	sphere->setName("Ball");
	sphere->keyframes.push_back(KeyFrame{Vec3d(0, 0, 0.5), 0, Vec3d(0, 0, 1), 0});
	sphere->keyframes.push_back(KeyFrame{Vec3d(2, -3, 0.5), 0.25, Vec3d(1, 0, 0), 3.5});
	sphere->radius = (double)0.3f;
	sphere->material = plainNode("Rubber", 3);
	sphere->material_uid = UID(8);
	return sphere;
}

Node unboundSphere()
{
	Reference<SceneNodeSphere> sphere(new SceneNodeSphere());
	sphere->uid = UID(10);
	sphere->material_uid = UID(11);
	return sphere;
}

Node geometryScene()
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	root->addChildNode(unboundSphere());
	root->addChildNode(unboundModel());
	return root;
}

Reference<SceneNodeScatter> scatter(uint32_t uid, const char* name, const char* shader)
{
	Reference<SceneNodeScatter> s(new SceneNodeScatter());
	s->uid = UID(uid);
	s->setName(name);
	s->shader = shader;
	return s;
}

// Its shader text has a newline and a tab side by side, so it needs CDATA.
// The seed has its top bit set and is written as a signed number.
Node cdataScatter()
{
	Reference<SceneNodeScatter> s = scatter(30, "Grass", "def density(vec3 pos) real :\n\t0.5 < 1");
	s->density = 0.5;
	s->seed = 3000000000u;
	s->geometry_uid = UID(7);
	s->materials = {plainNode("Soil", 3), plainNode("Moss", 4)};
	s->material_uids = {UID(5)};
	s->target_object_uid = UID(3);
	s->bound_target_uid = UID(4);
	return s;
}

// Unbound: the stored material UIDs and the bound target are not written.
Node plainScatter()
{
	Reference<SceneNodeScatter> s = scatter(31, "Scatter rocks", "def density(vec3 pos) real : if pos.z < 1.0 then 1.0 else 0.0");
	s->density = 1e-7;
	s->material_uids = {UID(5)};
	s->bound_target_uid = UID(3);
	return s;
}

Reference<SceneNodeBackgroundSettings> background(uint32_t uid, const Reference<EmissionScale>& scale)
{
	Reference<SceneNodeBackgroundSettings> b(new SceneNodeBackgroundSettings());
	b->uid = UID(uid);
	b->emission_scale = scale;
	return b;
}

Node skyBackground()
{
	Reference<SunSkyMaterial> sky(new SunSkyMaterial());
	sky->name = "Sky";
	sky->sundir = Vec3d(0.6, 0.8, 0);
	sky->turbidity = 3.5;
	sky->sky_layer = 2;
	sky->backface_emit = true;
	Reference<SceneNodeBackgroundSettings> b = background(6, emissionScale(EmissionScale::Luminance, 1e-7, nullptr, UID()));
	b->background_material = sky;
	return b;
}

struct GoldenCase
{
	const char* golden;
	std::function<Node()> make;
};

} // namespace

TEST(GoldenNodes, NodesMatchTheirFiles)
{
	const GoldenCase cases[] = {
		{"camera_default.xml", node<SceneNodeCamera>()},
		{"camera_unknown_type.xml", node<SceneNodeCamera>(unknownType)},
		{"camera_image_spherical.xml", node<SceneNodeCamera>(imageAperture)},
		{"camera_generated_in_scene.xml", generatedApertureScene},
		{"tonemapping_linear.xml", [] { return Node(new SceneNodeTonemapping(0.333)); }},
		{"tonemapping_reinhard.xml", [] { return Node(new SceneNodeTonemapping(2, 0.5, 6)); }},
		{"tonemapping_camera.xml",
			[] { return Node(new SceneNodeTonemapping(String("data/camera_response_functions/dscs315.txt"), -1, 100)); }},
		{"tonemapping_unknown.xml",
			[] {
				Reference<SceneNodeTonemapping> t(new SceneNodeTonemapping(2.0));
				t->tone_mapping_type = 999;
				return Node(t);
			}},
		{"section_plane_default.xml", node<SceneNodeSectionPlane>()},
		{"section_plane_exclude_list.xml",
			node<SceneNodeSectionPlane>([](SceneNodeSectionPlane& plane) { plane.object_list.push_back(UID(9)); })},
		{"section_plane_include.xml", node<SceneNodeSectionPlane>(includeList)},
		{"parametric_surface.xml", node<SceneNodeParametricSurface>(waves)},
		{"render_settings_defaults.xml", [] { return Node(SceneNodeRenderSettings::getDefaults()); }},
		{"render_settings_empty.xml", [] { return Node(empty()); }},
		{"render_settings_radial_gaussian.xml",
			[] { return Node(withFilters(new SplatFilterRadial(), new DownsizeFilterGaussian())); }},
		{"render_settings_mn_cubic_sharp.xml",
			[] { return Node(withFilters(new SplatFilterMNCubic(0.25, 0.75), new DownsizeFilterSharp())); }},
		{"render_settings_box.xml", [] { return Node(withFilters(new SplatFilterBox(), nullptr)); }},
		{"render_settings_everything.xml", [] { return Node(everything()); }},
		{"render_settings_gpu_cuda.xml", [] { return Node(withGPU("GeForce 1080", GPUDeviceSettings::CUDA)); }},
		{"render_settings_gpu_opencl.xml", [] { return Node(withGPU("Radeon Pro", GPUDeviceSettings::OpenCL)); }},
		{"render_settings_gpu_other.xml", [] { return Node(withGPU("", 0)); }},
		{"model2_full.xml", fullModel},
		{"model2_unbound.xml", unboundModel},
		{"sphere_moving.xml", movingSphere},
		{"sphere_unbound.xml", unboundSphere},
		{"geometry_in_scene.xml", geometryScene},
		{"scatter_cdata.xml", cdataScatter},
		{"scatter_plain.xml", plainScatter},
		{"background_empty.xml", [] { return Node(background(5, nullptr)); }},
		{"background_empty.xml", [] { return Node(background(5, emissionScale(EmissionScale::NoMeasure, 2, nullptr, UID(12)))); }},
		{"background_scale.xml",
			[] { return Node(background(5, emissionScale(EmissionScale::LuminousEmittance, 0.5, nullptr, UID(12)))); }},
		{"background_sunsky.xml", skyBackground},
	};
	for(const GoldenCase& c : cases)
	{
		SCOPED_TRACE(c.golden);
		VelornTest::expectMatchesGolden(c.make()->toXMLString().str(), c.golden);
	}
}

TEST(GoldenNodes, DefaultSettingsAndTheirCopiesWriteTheSameOrder)
{
	// Merged with an empty node or cloned, the defaults keep their order.
	Settings defaults = SceneNodeRenderSettings::getDefaults();
	VelornTest::expectMatchesGolden(defaults->clone()->toXMLString().str(), "render_settings_defaults.xml");
	VelornTest::expectMatchesGolden(SceneNodeRenderSettings::merge(*empty(), *defaults)->toXMLString().str(),
		"render_settings_defaults.xml");
}

TEST(GoldenNodes, AFileTakesTheWhitePointInTheStreamsOwnFormat)
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	Settings s = empty();
	s->setDouble("max_change", 0.01);
	s->setWhitePoint(1.0 / 3.0, 0.329);
	root->addChildNode(s);

	VelornTest::TempDir dir;
	root->writeToFile(dir.file("settings.vls"), false, nullptr);
	VelornTest::expectMatchesGolden(VelornTest::readFile(dir.file("settings.vls")), "render_settings_file.xml");
}

// The mesh element points at the mesh file that writing it makes beside the
// scene. The test's temporary directory and the checksum, which the test
// computes itself from bytes laid out by hand, are replaced by fixed tokens
// before the comparison.
TEST(GoldenNodes, MeshElementPointsAtTheFileItWrites)
{
	Reference<SceneNodeMesh> node(new SceneNodeMesh());
	node->uid = UID(7);
	node->setName("Rock");
	node->setMesh(VelornTest::sampleMesh());
	node->max_num_subdivisions = 3;
	node->subdivide_pixel_threshold = 2.5;
	node->subdivide_curvature_threshold = 0.1;
	node->displacement_error_threshold = (double)0.3f;
	node->view_dependent_subdivision = false;
	node->subdivision_smoothing = false;
	node->normal_smoothing = true;
	node->merge_vertices_with_same_pos_and_normal = false;
	node->wrap_u = true;
	node->scale = 0.01;

	VelornTest::TempDir dir;
	WriteContext context;
	context.scene_path = dir.file("geometry.vls");
	context.scene_dir = dir.path();
	BufferOStream stream;
	node->writeXML(stream, 0, context);

	VelornTest::expectMatchesGolden(
		VelornTest::replacedAll(stream.str(), dir.file("geometry_meshes/mesh_" + std::to_string(VelornTest::sampleMeshCRC()) + "_"),
			"SCENE_DIR/geometry_meshes/mesh_CRC_"),
		"mesh.xml");
	EXPECT_EQ(VelornTest::readFile(dir.file("geometry_meshes/" + VelornTest::sampleMeshFileName())),
		VelornTest::sampleMeshFileBytes());
}
