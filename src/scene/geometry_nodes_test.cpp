// Mesh, sphere, scatter and background settings nodes.
#include "mesh/mesh_file.h"
#include "scene/geometry_test_helpers.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_other.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_parametric_surface.h"
#include "scene/scene_node_sphere.h"
#include "support/file_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

using namespace Velorn;
using VelornTest::classAndFailureOf;
using VelornTest::expectBounds;
using VelornTest::materialNode;
using VelornTest::valuesOf;
using VelornTest::visitNode;

using VelornTest::GeometryScene;

TEST(MeshNode, WithoutAMeshItFailsInsteadOfNamingAFile)
{
	Reference<SceneNodeMesh> mesh(new SceneNodeMesh());
	mesh->setName("Empty");
	VisitOperation computed(VisitOperation::GetDependencies, "/s/a.vls", "/s");
	computed.use_stored_paths = false;
	EXPECT_EQ(classAndFailureOf([&] { mesh->doVisit(computed); }), "VelornException: Mesh node 'Empty' has no mesh to name its file by.");
	EXPECT_EQ(classAndFailureOf([&] { mesh->toXMLString(); }), "VelornException: Mesh node 'Empty' has no mesh to name its file by.");
}

// Finalise loads path-only mesh nodes from beside the scene before binding
// the models, so a model's material count is checked against the loaded
// mesh. Expected paths use the POSIX separator.
#ifndef _WIN32
TEST(MeshNode, FinaliseLoadsTheMeshFileBesideTheSceneWithPosixSeparators)
{
	VelornTest::TempDir dir;
	FileUtils::createDirsForPath(dir.file("meshes"));
	const Reference<Mesh> original = VelornTest::sampleMesh();
	writeMeshToFile(dir.file("meshes/square.vlmesh"), *original);

	// The mesh node as the parser leaves it: a path and no mesh.
	const auto scene = [](const char* mesh_path, const Vector<UID>& material_uids) {
		GeometryScene s;
		s.mesh->mesh = nullptr;
		s.mesh->path = mesh_path;
		Reference<SceneNodeModel> model = s.add<SceneNodeModel>(20, "Model");
		model->setGeometryUID(UID(7));
		model->setMaterialUIDs(material_uids);
		return s;
	};
	const String scene_path(dir.file("scene.vls"));

	GeometryScene loaded = scene("meshes/square.vlmesh", {UID(3), UID(4)});
	loaded.root->finalise(scene_path);
	ASSERT_TRUE(loaded.mesh->mesh.nonNull());
	EXPECT_EQ(loaded.mesh->mesh->verts, original->verts);
	EXPECT_EQ(static_cast<SceneNodeModel*>(loaded.node(20))->geometry, loaded.mesh);

	// A mesh already there is kept, whatever the path says.
	const Mesh* kept = loaded.mesh->mesh.getPointer();
	loaded.mesh->path = "meshes/missing.vlmesh";
	loaded.root->finalise(scene_path);
	EXPECT_EQ(loaded.mesh->mesh.getPointer(), kept);

	EXPECT_NE(classAndFailureOf([&] { scene("meshes/square.vlmesh", {UID(3)}).root->finalise(scene_path); })
				  .find("num materials assigned: 1, geometry num materials referenced: 2."),
		std::string::npos);
	GeometryScene missing = scene("meshes/missing.vlmesh", {UID(3), UID(4)});
	EXPECT_EQ(classAndFailureOf([&] { missing.root->finalise(scene_path); }),
		"SceneParserExcep: CSModelLoaderExcep: Failed to open file '" + dir.path() + "/meshes/missing.vlmesh' for reading.");
	EXPECT_TRUE(missing.mesh->mesh.isNull());
}
#endif

TEST(Sphere, BindsItsMaterialByUID)
{
	struct Case
	{
		const char* what;
		std::function<void(SceneNodeSphere&)> change;
		std::string failure;
		uint32_t bound_uid;
	};
	const Case cases[] = {
		{"by UID", [](SceneNodeSphere& s) { s.material_uid = UID(4); }, "(no failure)", 4},
		{"already bound", [](SceneNodeSphere& s) { s.material = materialNode(new DiffuseMaterial(), "Given", 9); },
			"(no failure)", 9},
		{"missing", [](SceneNodeSphere& s) { s.material_uid = UID(40); }, "VelornException: Failed to find node with UID 40", 0},
		{"a medium", [](SceneNodeSphere& s) { s.material_uid = UID(6); },
			"VelornException: Node with UID 6 was not a material node.", 0},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		GeometryScene scene;
		Reference<SceneNodeSphere> sphere = scene.add<SceneNodeSphere>(20, "Ball");
		sphere->material_uid = UID(40);
		c.change(*sphere);
		EXPECT_EQ(classAndFailureOf([&] { visitNode(*sphere, VisitOperation::Bind); }), c.failure);
		if(c.bound_uid)
		{
			ASSERT_TRUE(sphere->material.nonNull());
			EXPECT_EQ(sphere->material->uid, UID(c.bound_uid));
		}
		else
			EXPECT_TRUE(sphere->material.isNull());
	}

	// The node's own words when it has no root to look in.
	SceneNodeSphere detached;
	detached.material_uid = UID(4);
	EXPECT_EQ(classAndFailureOf([&] { visitNode(detached, VisitOperation::Bind); }),
		"VelornException: While binding sphere material: root node was NULL");
}

TEST(Sphere, ReferencesDependenciesAndReplacement)
{
	GeometryScene scene;
	Reference<SceneNodeSphere> sphere = scene.add<SceneNodeSphere>(20, "Ball");
	sphere->material_uid = UID(3);
	EXPECT_FALSE(sphere->references(scene.node(3)));
	EXPECT_EQ(valuesOf(sphere->getDependencyUIDs()), (std::vector<uint32_t>{3}));
	EXPECT_TRUE(visitNode(*sphere, VisitOperation::GetDependencies).dependency_paths.empty());

	visitNode(*sphere, VisitOperation::Bind);
	EXPECT_TRUE(sphere->references(scene.node(3)));
	EXPECT_FALSE(sphere->references(scene.node(4)));
	EXPECT_EQ(visitNode(*sphere, VisitOperation::GetDependencies).dependency_paths, Vector<String>({"glass.png"}));
	// The bound material's UID counts, not the stored one.
	sphere->material_uid = UID(12);
	EXPECT_EQ(valuesOf(sphere->getDependencyUIDs()), (std::vector<uint32_t>{3}));

	SceneNodeMap wrong_type;
	wrong_type.insert(UID(3), VelornTest::mediumNode("Not a material", 3));
	sphere->updateReferences(wrong_type);
	EXPECT_EQ(sphere->material.getPointer(), scene.node(3));
	Reference<SceneNodeMaterial> replacement = materialNode(new DiffuseMaterial(), "New glass", 3);
	SceneNodeMap map;
	map.insert(UID(3), replacement);
	sphere->updateReferences(map);
	EXPECT_EQ(sphere->material, replacement);

	visitNode(*sphere, VisitOperation::OffsetUIDs, 100);
	EXPECT_EQ(sphere->material_uid, UID(112));
}

TEST(Sphere, CloneBindsAnew)
{
	GeometryScene scene;
	Reference<SceneNodeSphere> sphere = scene.add<SceneNodeSphere>(20, "Ball");
	sphere->keyframes.push_back(KeyFrame{Vec3d(1, 2, 3), 0, Vec3d(0, 0, 1), 0});
	sphere->radius = 0.5;
	// Set directly, as the exporter does, with no UID stored beside it.
	sphere->material = scene.root->findMaterial(UID(4));
	const std::string written = sphere->toXMLString().str();

	Reference<SceneNodeSphere> copy = sphere->clone().downcast<SceneNodeSphere>();
	ASSERT_TRUE(copy.nonNull());
	EXPECT_TRUE(copy->material.isNull());
	EXPECT_EQ(copy->material_uid, UID(4));
	EXPECT_EQ(copy->toXMLString().str(), written);
	scene.root->removeChildNode(sphere);
	scene.root->addChildNode(copy);
	visitNode(*copy, VisitOperation::Bind);
	EXPECT_EQ(copy->material.getPointer(), scene.node(4));
	EXPECT_EQ(copy->toXMLString().str(), written);

	Reference<SceneNodeSphere> unbound(new SceneNodeSphere());
	unbound->material_uid = UID(11);
	EXPECT_EQ(unbound->clone().downcast<SceneNodeSphere>()->material_uid, UID(11));
}

TEST(Sphere, BoundsAreTheRadiusCubeAlongTheKeyframes)
{
	SceneNodeSphere sphere;
	sphere.radius = 0.5;
	expectBounds(visitNode(sphere, VisitOperation::GetBounds), {-0.5f, -0.5f, -0.5f}, {0.5f, 0.5f, 0.5f});

	// A quarter turn leaves the cube as it was; the two positions span the rest.
	sphere.keyframes.push_back(KeyFrame{Vec3d(1, 2, 3), 0, Vec3d(0, 0, 1), 0});
	sphere.keyframes.push_back(KeyFrame{Vec3d(-1, 0, 0), 1, Vec3d(0, 0, 1), 2 * std::atan(1.0)});
	expectBounds(visitNode(sphere, VisitOperation::GetBounds), {-1.5f, -0.5f, -0.5f}, {1.5f, 2.5f, 3.5f});
}

TEST(Scatter, BindingFindsGeometryAndMaterials)
{
	struct Case
	{
		const char* what;
		std::function<void(SceneNodeScatter&)> change;
		std::string failure;
	};
	const Case cases[] = {
		{"on a mesh", [](SceneNodeScatter&) {}, "(no failure)"},
		{"on a surface", [](SceneNodeScatter& s) { s.geometry_uid = UID(8); }, "(no failure)"},
		{"missing geometry", [](SceneNodeScatter& s) { s.geometry_uid = UID(40); },
			"VelornException: While processing node 'Grass', UID 30:  Failed to find geometry for UID 40"},
		{"geometry of a material", [](SceneNodeScatter& s) { s.geometry_uid = UID(3); },
			"VelornException: Referenced node did not have type SceneNodeMesh or SceneNodeParametricSurface"},
		{"missing material", [](SceneNodeScatter& s) { s.material_uids = {UID(3), UID(41)}; },
			"VelornException: Failed to find node with UID 41"},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		GeometryScene scene;
		Reference<SceneNodeScatter> scatter = scene.add<SceneNodeScatter>(30, "Grass");
		scatter->geometry_uid = UID(7);
		scatter->material_uids = {UID(4), UID(3)};
		c.change(*scatter);
		EXPECT_EQ(classAndFailureOf([&] { visitNode(*scatter, VisitOperation::Bind); }), c.failure);
		if(c.failure == "(no failure)")
		{
			EXPECT_EQ(scatter->geometry.getPointer(), scene.node(scatter->geometry_uid.value()));
			ASSERT_EQ(scatter->materials.size(), 2u);
			EXPECT_EQ(scatter->materials[0].getPointer(), scene.node(4));
			EXPECT_EQ(scatter->materials[1].getPointer(), scene.node(3));
		}
	}

	// A bound geometry and a bound material list are kept.
	GeometryScene scene;
	Reference<SceneNodeScatter> scatter = scene.add<SceneNodeScatter>(30, "Grass");
	Reference<SceneNodeMesh> elsewhere(new SceneNodeMesh());
	scatter->geometry = elsewhere;
	scatter->materials = {materialNode(new DiffuseMaterial(), "Given", 9)};
	scatter->material_uids = {UID(40)};
	visitNode(*scatter, VisitOperation::Bind);
	EXPECT_EQ(scatter->geometry, elsewhere);
	ASSERT_EQ(scatter->materials.size(), 1u);
	EXPECT_EQ(scatter->materials[0]->uid, UID(9));

	SceneNodeScatter detached;
	EXPECT_EQ(classAndFailureOf([&] { visitNode(detached, VisitOperation::Bind); }),
		"VelornException: While binding scatter geometry: root node was NULL");
}

TEST(Scatter, OffsetsEveryUIDAndListsItsDependencies)
{
	SceneNodeScatter scatter;
	scatter.target_object_uid = UID(3);
	scatter.bound_target_uid = UID(4);
	scatter.geometry_uid = UID(7);
	scatter.material_uids = {UID(3), UID(), UID(5)};
	EXPECT_EQ(valuesOf(scatter.getDependencyUIDs()), (std::vector<uint32_t>{7, 3, 0xFFFFFFFFu, 5}));

	visitNode(scatter, VisitOperation::OffsetUIDs, 100);
	EXPECT_EQ(scatter.target_object_uid, UID(103));
	EXPECT_EQ(scatter.bound_target_uid, UID(104));
	EXPECT_EQ(scatter.geometry_uid, UID(107));
	EXPECT_EQ(valuesOf(scatter.material_uids), (std::vector<uint32_t>{103, 0xFFFFFFFFu, 105}));
}

TEST(BackgroundSettings, WalksReachTheMaterialAndLayersComeFromIt)
{
	SceneNodeBackgroundSettings background;
	background.uid = UID(5);
	EXPECT_EQ(background.getHighestEmissionLayer(), 0u);
	EXPECT_TRUE(visitNode(background, VisitOperation::GetDependencies).dependency_paths.empty());

	Reference<SunSkyMaterial> sky(new SunSkyMaterial());
	sky->sun_layer = 3;
	sky->sky_layer = 1;
	Texture stars;
	stars.path = "stars.exr";
	sky->textures.push_back(stars);
	background.background_material = sky;
	EXPECT_EQ(background.getHighestEmissionLayer(), 3u);
	EXPECT_EQ(visitNode(background, VisitOperation::GetDependencies).dependency_paths, Vector<String>({"stars.exr"}));

	VisitOperation update(VisitOperation::UpdatePaths, "", "");
	update.path_map.insert("stars.exr", "copy/stars.exr");
	background.doVisit(update);
	EXPECT_EQ(sky->textures[0].path, String("copy/stars.exr"));
}

TEST(BackgroundSettings, CloneKeepsBaseFieldsOnly)
{
	Reference<SceneNodeBackgroundSettings> background(new SceneNodeBackgroundSettings());
	background->uid = UID(5);
	background->setFlags(2);
	background->setChangeStamp(7);
	background->background_material = new SunSkyMaterial();
	background->emission_scale = new EmissionScale();

	testing::internal::CaptureStdout();
	Reference<SceneNodeBackgroundSettings> copy = background->clone().downcast<SceneNodeBackgroundSettings>();
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "SceneNodeBackgroundSettings::clone() not yet implemented");
	ASSERT_TRUE(copy.nonNull());
	EXPECT_EQ(copy->uid, UID(5));
	EXPECT_EQ(copy->getFlags(), 2u);
	EXPECT_EQ(copy->getChangeStamp(), 7u);
	EXPECT_TRUE(copy->background_material.isNull());
}

// The decoder is picked by extension and given the node's scale; its
// failure reaches the caller as a parser failure.
TEST(MeshNode, LoadDecodesModelFilesByExtension)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("tri.obj"), "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
	VelornTest::writeFile(dir.file("bad.obj"), "v 0 0 0\nf 1 1\n");
	VelornTest::writeFile(dir.file("tri.stl"), "solid\n");
	const auto load = [&](const char* path, double scale) {
		Reference<SceneNodeMesh> mesh = new SceneNodeMesh();
		mesh->path = path;
		mesh->scale = scale;
		VisitOperation op(VisitOperation::Load, String(dir.file("scene.vls")), String(dir.path()));
		mesh->doVisit(op);
		return mesh;
	};

	const Reference<SceneNodeMesh> loaded = load("tri.obj", 2.5);
	ASSERT_TRUE(loaded->mesh.nonNull());
	EXPECT_EQ(loaded->mesh->verts[1], (Vec3f{2.5f, 0, 0}));
	EXPECT_EQ(loaded->mesh->triangles.size(), 1u);
	EXPECT_EQ(loaded->mesh->used_materials, Vector<String>{"default"});

	EXPECT_EQ(classAndFailureOf([&] { load("bad.obj", 1); }),
		"SceneParserExcep: CSModelLoaderExcep: Invalid number of vertices in face: 2 (line 2)");
	EXPECT_EQ(classAndFailureOf([&] { load("tri.stl", 1); }), "SceneParserExcep: CSModelLoaderExcep: key 'stl' not found");
}
