// Mesh, model, sphere, scatter and background settings elements, compared
// byte for byte with hand-written files.
#include "mesh/mesh_file.h"
#include "scene/geometry_test_helpers.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_other.h"
#include "scene/rotation.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_root.h"
#include "scene/scene_node_sphere.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Velorn;
using VelornTest::materialNode;

namespace
{

typedef Reference<SceneNode> Node;

Reference<SceneNodeMaterial> plainNode(const char* name, uint32_t uid) { return materialNode(new DiffuseMaterial(), name, uid); }

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

void replaceAll(std::string& text, const std::string& from, const std::string& to)
{
	for(size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
		text.replace(at, from.size(), to);
}

} // namespace

TEST(GoldenGeometry, NodesMatchTheirFiles)
{
	const GoldenCase cases[] = {
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

// The mesh element points at the mesh file that writing it makes beside the
// scene. The test's temporary directory and the checksum, which the test
// computes itself from bytes laid out by hand, are replaced by fixed tokens
// before the comparison.
TEST(GoldenGeometry, MeshElementPointsAtTheFileItWrites)
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

	std::string text = stream.str();
	replaceAll(text, dir.file("geometry_meshes/mesh_" + std::to_string(VelornTest::sampleMeshCRC()) + "_"),
		"SCENE_DIR/geometry_meshes/mesh_CRC_");
	VelornTest::expectMatchesGolden(text, "mesh.xml");
	EXPECT_EQ(VelornTest::readFile(dir.file("geometry_meshes/" + VelornTest::sampleMeshFileName())),
		VelornTest::sampleMeshFileBytes());
}
