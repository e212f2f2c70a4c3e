#include "cli/sample_scene.h"

#include "mesh/mesh.h"
#include "mesh/mesh_file.h"
#include "scene/scene_node.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

using namespace Velorn;

TEST(SampleScene, HoldsEveryNodeKindAndWritesItsMeshBesideIt)
{
	Reference<SceneNodeRoot> root = buildSampleScene();
	std::set<unsigned> kinds;
	for(const Reference<SceneNode>& child : root->getChildren())
		kinds.insert(child->getType());
	// Every kind but the root itself and the rectangle light, which has no
	// class in this library.
	EXPECT_EQ(kinds, (std::set<unsigned>{1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12, 13, 14}));

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
