#include "cli/mesh_commands.h"
#include "cli/sample_scene.h"
#include "cli/scene_commands.h"
#include "mesh/mesh.h"
#include "mesh/mesh_file.h"
#include "support/exceptions.h"
#include "support/failures.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using namespace Velorn;

namespace
{


// The scene text without its renderer_settings element.
std::string withoutSettings(const std::string& text)
{
	const size_t start = text.find("\t<renderer_settings>");
	const size_t end = text.find("</renderer_settings>\n");
	return text.substr(0, start) + text.substr(end);
}

} // namespace

TEST(SceneCommands, CheckCountsNodesAndFormatRewritesTheSameScene)
{
	VelornTest::TempDir dir;
	const std::string path = writeSampleScene(dir.path());
	const std::string counts = "17 nodes: 1 Camera, 1 Render Settings, 4 Material, 1 Mesh, 2 Object, 1 Sphere, 1 Medium, "
							   "1 Tone Mapping, 1 Background Settings, 1 Metadata, 1 Parametric Surface, 1 Scatter, 1 Section Plane";
	EXPECT_EQ(SceneCommands::check(path), path + ": " + counts);

	// Written again in place, the scene keeps its bytes but for the render
	// settings, whose keys the reader inserts in its own order (and whose
	// gpu key it does not read); once rewritten, it stays as it is.
	const std::string original = VelornTest::readFile(path);
	EXPECT_EQ(SceneCommands::format(path, path), "Wrote " + path + " (" + counts + ")");
	const std::string formatted = VelornTest::readFile(path);
	EXPECT_EQ(withoutSettings(formatted), withoutSettings(original));
	EXPECT_EQ(formatted.find("<gpu>"), std::string::npos);
	SceneCommands::format(path, path);
	EXPECT_EQ(VelornTest::readFile(path), formatted);

	VelornTest::writeFile(dir.file("bad.vls"), "<scene>\n\t<camera>\n\t\t<aperture_radius>0</aperture_radius>\n\t</camera>\n</scene>\n");
	EXPECT_EQ(VelornTest::failureOf([&] { SceneCommands::check(dir.file("bad.vls")); }),
		"Aperture_radius must be greater than zero (e.g. 0.001)  (In element 'camera', around line 2, column 5)");
}

TEST(MeshCommands, InfoDescribesAndConvertWritesVlmesh)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("quad.obj"),
		"usemtl red\nv 0 0 0\nv 1 0 0\nv 1 2 0\nv 0 2 0\nvt 0 0\nvn 0 0 1\nf 1/1/1 2/1/1 3/1/1 4/1/1\n");
	const std::string info = MeshCommands::info(dir.file("quad.obj"));
	EXPECT_NE(info.find("vertices: 4\nnormals: 4\nuv pairs: 1\nuv mappings: 1\ntriangles: 0\nquads: 1\n"
						"materials: 1 (red)\nbounds: 0 0 0 to 1 2 0\n"),
		std::string::npos)
		<< info;
	// 4 + name 3 + 4 vertices and normals of 12 + one uv pair of 8 + a quad of 36.
	EXPECT_NE(info.find("byte count: 147\n"), std::string::npos) << info;

	// The OBJ file's counter-clockwise quad is turned to a scene's winding;
	// a .vlmesh file is copied as it is.
	EXPECT_EQ(MeshCommands::convert(dir.file("quad.obj"), dir.file("quad.vlmesh")),
		"Wrote " + dir.file("quad.vlmesh") +
			" (4 vertices, 0 triangles, 1 quads; polygons turned to wind clockwise, as scene meshes do)");
	Mesh converted;
	readMeshFromFile(dir.file("quad.vlmesh"), converted);
	ASSERT_EQ(converted.quads.size(), 1u);
	EXPECT_EQ(std::vector<uint32_t>(converted.quads[0].vertex_indices, converted.quads[0].vertex_indices + 4),
		(std::vector<uint32_t>{0, 3, 2, 1}));
	const std::string turned_info = MeshCommands::info(dir.file("quad.vlmesh"));
	EXPECT_EQ(turned_info.substr(0, turned_info.find("checksum")), info.substr(0, info.find("checksum")));
	EXPECT_EQ(MeshCommands::convert(dir.file("quad.vlmesh"), dir.file("copy.vlmesh")),
		"Wrote " + dir.file("copy.vlmesh") + " (4 vertices, 0 triangles, 1 quads)");
	EXPECT_EQ(MeshCommands::info(dir.file("copy.vlmesh")), turned_info);

	EXPECT_EQ(VelornTest::failureOf([&] { MeshCommands::convert(dir.file("quad.obj"), dir.file("quad.bin")); }),
		"The output file must end in .vlmesh: '" + dir.file("quad.bin") + "'");
	EXPECT_EQ(VelornTest::failureOf([&] { MeshCommands::info(dir.file("x.stl")); }), "key 'stl' not found");
}
