// Whole scenes: finishing, checking and writing a scene with every kind of
// node, and the mesh files that writing puts beside it.
#include "mesh/mesh_file.h"
#include "scene/geometry_test_helpers.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_other.h"
#include "scene/rotation.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_metadata.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_parametric_surface.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_section_plane.h"
#include "scene/scene_node_sphere.h"
#include "scene/scene_node_tonemapping.h"
#include "support/file_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

using namespace Velorn;
using VelornTest::materialNode;

namespace
{

template <class Node>
Reference<Node> withUID(Node* node, uint32_t uid)
{
	node->uid = UID(uid);
	return Reference<Node>(node);
}

Reference<SceneNodeModel> modelOver(uint32_t uid, const Reference<SceneNode>& geometry, const Vector<UID>& material_uids)
{
	Reference<SceneNodeModel> model = withUID(new SceneNodeModel(), uid);
	model->setGeometry(geometry);
	model->setMaterialUIDs(material_uids);
	model->rotation = new MatrixRotation();
	model->keyframes.push_back(KeyFrame{Vec3d(uid, 0, 0), 0, Vec3d(0, 0, 1), 0});
	return model;
}

// A scene with a node of every kind. The sample mesh is used by three
// models through one mesh node, and a second mesh node holds a mesh of the
// same content. Materials, the sphere's material, the scatter's geometry and
// materials and the section plane's list are given by UID, as the parser
// gives them.
Reference<SceneNodeRoot> everyKindScene()
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	Reference<SceneNodeMetaData> metadata = withUID(new SceneNodeMetaData(), 1);
	metadata->exporter = "scene test";
	metadata->created_date = "2024-01-01";
	root->addChildNode(metadata);
	root->addChildNode(withUID(new SceneNodeRenderSettings(), 2));
	Reference<SceneNodeCamera> camera = withUID(new SceneNodeCamera(), 10);
	camera->keyframes.push_back(KeyFrame{Vec3d(0, -5, 1), 0, Vec3d(0, 0, 1), 0});
	root->addChildNode(camera);
	root->addChildNode(withUID(new SceneNodeTonemapping(2, 0.5, 6), 11));
	Reference<SceneNodeBackgroundSettings> background = withUID(new SceneNodeBackgroundSettings(), 12);
	background->background_material = new SunSkyMaterial();
	root->addChildNode(background);

	root->addChildNode(materialNode(new DiffuseMaterial(), "Red", 3));
	Reference<SceneNodeMaterial> blue = materialNode(new DiffuseMaterial(), "Blue", 4);
	blue->scatter_uids = {UID(30)};
	root->addChildNode(blue);
	root->addChildNode(VelornTest::mediumNode("Water", 6));

	Reference<SceneNodeMesh> square = withUID(new SceneNodeMesh(), 7);
	square->setMesh(VelornTest::sampleMesh());
	root->addChildNode(square);
	Reference<SceneNodeMesh> same_square = withUID(new SceneNodeMesh(), 17);
	same_square->setMesh(VelornTest::sampleMesh());
	root->addChildNode(same_square);
	Reference<SceneNodeParametricSurface> surface = withUID(new SceneNodeParametricSurface(), 8);
	surface->shader = "def height(real u, real v) real : u * v";
	root->addChildNode(surface);

	for(uint32_t uid : {20, 21, 22})
		root->addChildNode(modelOver(uid, square, {UID(3), UID(4)}));
	root->addChildNode(modelOver(23, same_square, {UID(4), UID(3)}));
	root->addChildNode(modelOver(24, surface, {}));

	Reference<SceneNodeSphere> sphere = withUID(new SceneNodeSphere(), 25);
	sphere->material_uid = UID(3);
	root->addChildNode(sphere);
	Reference<SceneNodeScatter> scatter = withUID(new SceneNodeScatter(), 30);
	scatter->shader = "def density(vec3 pos) real : 0.5";
	scatter->geometry_uid = UID(7);
	scatter->material_uids = {UID(4)};
	scatter->target_object_uid = UID(4);
	root->addChildNode(scatter);
	Reference<SceneNodeSectionPlane> plane = withUID(new SceneNodeSectionPlane(), 40);
	plane->object_list = {UID(20)};
	root->addChildNode(plane);
	return root;
}

// The names of the files in a directory, sorted.
std::vector<std::string> filesIn(const std::string& dir)
{
	std::vector<std::string> names;
	for(const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(dir))
		names.push_back(entry.path().filename().string());
	std::sort(names.begin(), names.end());
	return names;
}

size_t occurrences(const std::string& text, const std::string& part)
{
	size_t count = 0;
	for(size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
		++count;
	return count;
}

template <size_t N>
std::vector<uint32_t> wordsOf(const uint32_t (&words)[N])
{
	return std::vector<uint32_t>(words, words + N);
}

// The text of a scene file with its directory replaced by a fixed token.
std::string sceneTextIn(const VelornTest::TempDir& dir, const std::string& name)
{
	std::string text = VelornTest::readFile(dir.file(name));
	for(size_t at = text.find(dir.path()); at != std::string::npos; at = text.find(dir.path(), at))
		text.replace(at, dir.path().size(), "SCENE_DIR");
	return text;
}

} // namespace

TEST(SceneWrite, AFullSceneFinalisesAndValidates)
{
	VelornTest::TempDir dir;
	Reference<SceneNodeRoot> root = everyKindScene();
	ASSERT_NO_THROW(root->finalise(dir.file("city.vls")));
	EXPECT_NO_THROW(root->validate());
	EXPECT_TRUE(root->finalised);

	SceneNode* red = root->findChild(UID(3));
	SceneNode* blue = root->findChild(UID(4));
	const Reference<SceneNodeModel> model = Reference<SceneNode>(root->findChild(UID(23))).downcast<SceneNodeModel>();
	EXPECT_EQ(model->geometry.getPointer(), root->findChild(UID(17)));
	ASSERT_EQ(model->materials.size(), 2u);
	EXPECT_EQ(model->materials[0].getPointer(), blue);
	EXPECT_EQ(model->materials[1].getPointer(), red);
	EXPECT_EQ(Reference<SceneNode>(root->findChild(UID(25))).downcast<SceneNodeSphere>()->material.getPointer(), red);
	const Reference<SceneNodeScatter> scatter = Reference<SceneNode>(root->findChild(UID(30))).downcast<SceneNodeScatter>();
	EXPECT_EQ(scatter->geometry.getPointer(), root->findChild(UID(7)));
	ASSERT_EQ(scatter->materials.size(), 1u);
	EXPECT_EQ(scatter->materials[0].getPointer(), blue);
	EXPECT_EQ(scatter->bound_target_uid, UID(4));
}

TEST(SceneWrite, WritingTwiceGivesTheSameBytes)
{
	Reference<SceneNodeRoot> root = everyKindScene();
	VelornTest::TempDir first_dir, second_dir;
	root->finalise(first_dir.file("city.vls"));
	root->writeToFile(first_dir.file("city.vls"), false, nullptr);
	root->writeToFile(second_dir.file("city.vls"), false, nullptr);
	const std::string first = VelornTest::readFile(first_dir.file("city.vls"));

	const std::string prologue = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<scene>\n";
	EXPECT_EQ(first.compare(0, prologue.size(), prologue), 0);
	EXPECT_EQ(first.substr(first.size() - 9), "</scene>\n");
	// The two files differ only in the directory of the mesh paths.
	EXPECT_EQ(sceneTextIn(first_dir, "city.vls"), sceneTextIn(second_dir, "city.vls"));
	const std::string mesh_file = "city_meshes/" + VelornTest::sampleMeshFileName();
	EXPECT_EQ(VelornTest::readFile(first_dir.file(mesh_file)), VelornTest::readFile(second_dir.file(mesh_file)));

	// Written again over the first file, not a byte changes.
	root->writeToFile(first_dir.file("city.vls"), false, nullptr);
	EXPECT_EQ(VelornTest::readFile(first_dir.file("city.vls")), first);
}

TEST(SceneWrite, MeshesOfOneContentShareOneFileNamedByIt)
{
	VelornTest::TempDir dir;
	Reference<SceneNodeRoot> root = everyKindScene();
	root->writeToFile(dir.file("city.vls"), false, nullptr);

	const std::string name = VelornTest::sampleMeshFileName();
	EXPECT_EQ(filesIn(dir.file("city_meshes")), std::vector<std::string>{name});
	EXPECT_EQ(VelornTest::readFile(dir.file("city_meshes/" + name)), VelornTest::sampleMeshFileBytes());
	// Both mesh nodes point at it; the three models of the first name it by UID.
	const std::string text = VelornTest::readFile(dir.file("city.vls"));
	EXPECT_EQ(occurrences(text, "\t\t\t<path>" + dir.file("city_meshes/" + name) + "</path>\n"), 2u);
	EXPECT_EQ(occurrences(text, "\t\t<geometry_uid>7</geometry_uid>\n"), 4u); // three models and the scatter
	EXPECT_EQ(occurrences(text, "\t\t<geometry_uid>17</geometry_uid>\n"), 1u);
}

TEST(SceneWrite, MeshDirectoryIsNamedAfterTheSceneFile)
{
	VelornTest::TempDir dir;
	FileUtils::createDirsForPath(dir.file("out"));
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	Reference<SceneNodeMesh> mesh(new SceneNodeMesh());
	mesh->setMesh(VelornTest::sampleMesh());
	root->addChildNode(mesh);
	// Only the last extension goes from the name.
	root->writeToFile(dir.file("out/harbour.scene.vls"), false, nullptr);
	EXPECT_EQ(filesIn(dir.file("out")), (std::vector<std::string>{"harbour.scene.vls", "harbour.scene_meshes"}));
	EXPECT_EQ(filesIn(dir.file("out/harbour.scene_meshes")), std::vector<std::string>{VelornTest::sampleMeshFileName()});
}

TEST(SceneWrite, AWrittenMeshFileReadsBackAsTheMesh)
{
	// Two UV sets per vertex, normals, a triangle and a quad.
	Reference<Mesh> mesh(new Mesh());
	mesh->setMaxNumUVMappings(2);
	mesh->addMaterialUsed("Stone");
	mesh->addMaterialUsed("Moss");
	const Vec3f corners[] = {{0, 0, 0}, {2, 0, 0}, {2, 1, 0.5f}, {0, 1, 0.5f}};
	for(uint32_t i = 0; i < 4; ++i)
	{
		mesh->addVertex(corners[i], Vec3f{0, 0, 1});
		mesh->addUVs({Vec2f{(float)i, 0.25f}, Vec2f{0.5f, (float)i}});
	}
	mesh->addTriangle({0, 1, 2}, {0, 1, 2}, 1);
	mesh->addQuad({0, 1, 2, 3}, {0, 1, 2, 3}, 0);
	mesh->endOfModel();

	VelornTest::TempDir dir;
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	Reference<SceneNodeMesh> node(new SceneNodeMesh());
	node->setMesh(mesh);
	root->addChildNode(node);
	root->writeToFile(dir.file("rocks.vls"), false, nullptr);

	const std::vector<std::string> files = filesIn(dir.file("rocks_meshes"));
	ASSERT_EQ(files.size(), 1u);
	// 4, the names (5 + 4), 4 vertices and 4 normals of 12, 8 UV pairs of
	// 8, one triangle of 28 and one quad of 36.
	const std::string count_part = "_" + std::to_string(4 + 9 + 48 + 48 + 64 + 28 + 36) + ".vlmesh";
	EXPECT_EQ(files[0].compare(0, 5, "mesh_"), 0) << files[0];
	EXPECT_EQ(files[0].substr(files[0].size() - count_part.size()), count_part);

	Mesh read;
	readMeshFromFile(dir.file("rocks_meshes/" + files[0]), read);
	EXPECT_EQ(read.num_uv_mappings, 2u);
	EXPECT_EQ(read.used_materials, mesh->used_materials);
	EXPECT_EQ(read.verts, mesh->verts);
	EXPECT_EQ(read.normals, mesh->normals);
	EXPECT_EQ(read.uv_layout, mesh->uv_layout);
	EXPECT_EQ(read.uv_pairs, mesh->uv_pairs);
	ASSERT_EQ(read.triangles.size(), 1u);
	ASSERT_EQ(read.quads.size(), 1u);
	const MeshTriangle& triangle = read.triangles[0];
	const MeshQuad& quad = read.quads[0];
	EXPECT_EQ(wordsOf(triangle.vertex_indices), (std::vector<uint32_t>{0, 1, 2}));
	EXPECT_EQ(wordsOf(triangle.uv_indices), (std::vector<uint32_t>{0, 1, 2}));
	EXPECT_EQ(triangle.tri_mat_index, 1u);
	EXPECT_EQ(wordsOf(quad.vertex_indices), (std::vector<uint32_t>{0, 1, 2, 3}));
	EXPECT_EQ(wordsOf(quad.uv_indices), (std::vector<uint32_t>{0, 1, 2, 3}));
	EXPECT_EQ(quad.mat_index, 0u);
	EXPECT_EQ(read.num_materials_referenced, 2u);
}
