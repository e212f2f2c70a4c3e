#include "cli/sample_scene.h"

#include "mesh/mesh.h"
#include "mesh/mesh_file.h"
#include "scene/scene_node.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace Velorn;

// Its node kinds are counted in commands_test.cpp, through "scene check".
TEST(SampleScene, WritesItsMeshBesideItAndTheSameBytesAgain)
{
	Reference<SceneNodeRoot> root = buildSampleScene();

	VelornTest::TempDir dir;
	const std::string path = writeSampleScene(dir.file("out"));
	EXPECT_EQ(path, dir.file("out/sample.vls"));
	const std::string first = VelornTest::readFile(path);
	EXPECT_EQ(first.rfind("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<scene>\n", 0), 0u);

	std::vector<std::string> mesh_files;
	for(const auto& entry : std::filesystem::directory_iterator(dir.file("out/sample_meshes")))
		mesh_files.push_back(entry.path().string());
	ASSERT_EQ(mesh_files.size(), 1u); // one box, placed twice and scattered
	EXPECT_NE(first.find("<path>" + mesh_files[0] + "</path>"), std::string::npos);
	Mesh box;
	readMeshFromFile(mesh_files[0], box);
	EXPECT_EQ(box.quads.size(), 6u);
	EXPECT_EQ(box.verts.size(), 24u);
	EXPECT_EQ(box.aabb_max, (Vec3f{0.5f, 0.5f, 0.5f}));

	// The same scene written again gives the same bytes.
	root->finalise(path);
	root->writeToFile(path, false, nullptr);
	const std::string again = VelornTest::readFile(path);
	root->writeToFile(path, false, nullptr);
	EXPECT_EQ(VelornTest::readFile(path), again);
}
