#include "mesh/format_decoder_obj.h"

#include "mesh/mesh.h"
#include "mesh/mesh_test_helpers.h"
#include "support/platform.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <string>

using namespace Velorn;
using VelornTest::expectDecoderError;

namespace
{

// The unit square's corners in z = 0, then two normals.
const std::string SQUARE = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvn 0 0 2\nvn 0 0 -1\n";

Mesh decode(const std::string& text, float scale = 1)
{
	Mesh mesh;
	FormatDecoderObj::decodeText(text.data(), text.size(), mesh, scale);
	return mesh;
}

std::vector<uint32_t> uvIndicesOf(const Mesh& mesh)
{
	std::vector<uint32_t> indices;
	for(const MeshTriangle& t : mesh.triangles)
		indices.insert(indices.end(), t.uv_indices, t.uv_indices + 3);
	for(const MeshQuad& q : mesh.quads)
		indices.insert(indices.end(), q.uv_indices, q.uv_indices + 4);
	return indices;
}

} // namespace

TEST(FormatDecoderObj, EveryFailureHasItsMessage)
{
	struct Case
	{
		std::string text;
		std::string message;
	};
	const Case cases[] = {
		{"v 1 2\n", "Parse error while reading position on line 1"},
		{"# c\nv 1 2 x\n", "Parse error while reading position on line 2"},
		{"\n\nvt 0.5\n", "Parse error while reading tex coord on line 3"},
		{"vn 1 , 2 3", "Parse error while reading normal on line 1"},
		{SQUARE + "f 1 2 -3\n", "syntax error: no integer following 'f' (line 7)"},
		{SQUARE + "f 1 2 3 # a comment\n", "syntax error: no integer following 'f' (line 7)"},
		{SQUARE + "f 0 1 2\n", "Position index invalid. (index '0' out of bounds, on line 7)"},
		{SQUARE + "f 1 2 5\n", "Position index invalid. (index '5' out of bounds, on line 7)"},
		{SQUARE + "f 1 2 99999999999999999999999\n",
			"Position index invalid. (index '18446744073709551615' out of bounds, on line 7)"},
		{SQUARE + "f 1/0 2 3\n", "Invalid tex coord index. (index '0' out of bounds, on line 7)"},
		{SQUARE + "f 1/1/ 2 3\n", "syntax error: no integer following '/' (line 7)"},
		{SQUARE + "f 1//0 2 3\n", "Invalid normal index. (index '0' out of bounds, on line 7)"},
		{SQUARE + "f 1//3 2 3\n", "Normal index invalid. (index '3' out of bounds, on line 7)"},
		// The position is checked before the normal.
		{SQUARE + "f 9//9 2 3\n", "Position index invalid. (index '9' out of bounds, on line 7)"},
		{SQUARE + "f 1 2\n", "Invalid number of vertices in face: 2 (line 7)"},
		{SQUARE + "f\r\n", "Invalid number of vertices in face: 0 (line 7)"},
		// Failures of the mesh come with the mesh's text.
		{SQUARE + "vt 0 0\nf 1/1 2/2 3/1\n", "Triangle uv index is out of bounds. (uv index=1)"},
		{SQUARE + "vt 0 0\nf 1/1 2/1 3/1 4/7\n", "Quad uv index is out of bounds. (uv index=6)"},
		{SQUARE + "vn 1e39 0 0\nf 1//3 2 3\n", "Invalid normal"},
		{SQUARE + "f 1//1 2 3\n", "Must be zero normals, or normals.size() must equal verts.size()"},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.text);
		expectDecoderError([&] { decode(c.text); }, c.message);
	}
}

TEST(FormatDecoderObj, FacesBecomeTrianglesQuadsAndFans)
{
	struct Case
	{
		const char* what;
		std::string text;
		size_t vertices, triangles, quads;
	};
	const Case cases[] = {
		{"corners are never shared", SQUARE + "f 1 2 3\nf 1 3 4\n", 6, 2, 0},
		{"a degenerate triangle is dropped, its vertices stay", SQUARE + "f 1 1 2\n", 3, 0, 0},
		{"last line without line end", SQUARE + "f 1 2 3 4", 4, 0, 1},
		{"lines ending in CR LF", "v 0 0 0\r\nv 1 0 0\r\nv 0 1 0\r\nf 1 2 3 \r\n", 3, 1, 0},
		{"blanks and tabs before statements", " \tv 0 0 0\n\tv 1 0 0\n v 0 1 0\n  f\t1 2\t3\n", 3, 1, 0},
		{"other statements are skipped", SQUARE + "o obj\ng grp\ns 1\nl 1 2\np 1\nvp 1 2\nvertex 1\n#f 1 2\nf 1 2 3\n", 3, 1, 0},
		{"extra values after a position", "v 0 0 0 1 0 0\nv 1 0 0 1\nv 0 1 0\nf 1 2 3\n", 3, 1, 0},
		{"empty text", "", 0, 0, 0},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		const Mesh mesh = decode(c.text);
		EXPECT_EQ(mesh.verts.size(), c.vertices);
		EXPECT_EQ(mesh.triangles.size(), c.triangles);
		EXPECT_EQ(mesh.quads.size(), c.quads);
	}
}

TEST(FormatDecoderObj, FanTrianglesAndCornerVertices)
{
	const Mesh mesh = decode(SQUARE + "v 0.5 2 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0.5 2\nvt 0 1\nf 1/1 2/2 3/3 5/4 4/5\n", 2);
	ASSERT_EQ(mesh.verts.size(), 5u);
	const Vec3f expected_positions[] = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {1, 4, 0}, {0, 2, 0}};
	for(size_t i = 0; i < 5; ++i)
		EXPECT_EQ(mesh.verts[i], expected_positions[i]) << i;
	ASSERT_EQ(mesh.triangles.size(), 3u);
	for(uint32_t i = 0; i < 3; ++i)
	{
		const MeshTriangle& t = mesh.triangles[i];
		EXPECT_EQ(t.vertex_indices[0], 0u);
		EXPECT_EQ(t.vertex_indices[1], i + 1);
		EXPECT_EQ(t.vertex_indices[2], i + 2);
		EXPECT_EQ(t.uv_indices[0], 0u);
		EXPECT_EQ(t.uv_indices[1], i + 1);
		EXPECT_EQ(t.uv_indices[2], i + 2);
		EXPECT_EQ(t.tri_mat_index, 0u);
	}
	EXPECT_EQ(mesh.num_uv_mappings, 1u);
	EXPECT_EQ(mesh.uv_pairs, (Vector<Vec2f>{{0, 0}, {1, 0}, {1, 1}, {0.5f, 2}, {0, 1}}));
	EXPECT_TRUE(mesh.normals.empty());
}

TEST(FormatDecoderObj, TextureIndicesPointAtUVRecordsAndStayWhenLeftOut)
{
	struct Case
	{
		const char* what;
		std::string faces;
		std::vector<uint32_t> uv_indices;
	};
	const std::string uvs = "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";
	const Case cases[] = {
		{"index i is record i - 1", "f 1/4 2/3 3/2 4/1\n", {3, 2, 1, 0}},
		{"no texture index at the start leaves 0", "f 1 2 3\n", {0, 0, 0}},
		{"a corner without one keeps the earlier face's", "f 1/2 2/3 3/4\nf 1 2/ 3/1\n", {1, 2, 3, 1, 2, 0}},
		{"a slot beyond the earlier face starts at 0", "f 1/2 2/3 3/4\nf 1 2 3 4\n", {1, 2, 3, 1, 2, 3, 0}},
		{"with p/t/n", "f 1/2/1 2/3/1 3/4/1\n", {1, 2, 3}},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		const Mesh mesh = decode(SQUARE + uvs + c.faces);
		EXPECT_EQ(uvIndicesOf(mesh), c.uv_indices);
		EXPECT_EQ(mesh.numUVRecords(), 4u);
	}
}

TEST(FormatDecoderObj, MaterialsByName)
{
	struct Case
	{
		const char* what;
		std::string text;
		Vector<String> materials;
		std::vector<uint32_t> face_materials;
		uint32_t referenced;
	};
	const std::string tri = "f 1 2 3\n";
	const Case cases[] = {
		{"no usemtl gives one material \"default\"", SQUARE + tri + tri, {"default"}, {0, 0}, 1},
		{"names in order of first use", SQUARE + "usemtl red\n" + tri + "usemtl green\n" + tri + "usemtl red\n" + tri,
			{"red", "green"}, {0, 1, 0}, 2},
		{"\"default\" comes first when faces come before usemtl", SQUARE + tri + "usemtl red\n" + tri + "usemtl default\n" + tri,
			{"default", "red"}, {0, 1, 0}, 2},
		{"a name is one token", SQUARE + "usemtl  Hard Shiny Plastic \n" + tri, {"Hard"}, {0}, 1},
		{"an empty name is a name", SQUARE + "usemtl\n" + tri, {""}, {0}, 1},
		{"usemtl without faces still names a material", SQUARE + "usemtl lonely\n", {"lonely"}, {}, 1},
		{"a name may end the text", SQUARE + tri + "usemtl last", {"default", "last"}, {0}, 1},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		const Mesh mesh = decode(c.text);
		EXPECT_EQ(mesh.used_materials, c.materials);
		std::vector<uint32_t> face_materials;
		for(const MeshTriangle& t : mesh.triangles)
			face_materials.push_back(t.tri_mat_index);
		EXPECT_EQ(face_materials, c.face_materials);
		EXPECT_EQ(mesh.num_materials_referenced, c.referenced);
	}
}

TEST(FormatDecoderObj, NormalsArePerCornerAndPositionsScaled)
{
	const Mesh mesh = decode(SQUARE + "f 1//1 2//2 3//1 4//1\n", 0.5f);
	ASSERT_EQ(mesh.normals.size(), 4u);
	EXPECT_EQ(mesh.normals[0], (Vec3f{0, 0, 1}));
	EXPECT_EQ(mesh.normals[1], (Vec3f{0, 0, -1}));
	EXPECT_EQ(mesh.verts[2], (Vec3f{0.5f, 0.5f, 0}));
	EXPECT_EQ(mesh.quads.size(), 1u);
	EXPECT_EQ(mesh.aabb_max, (Vec3f{0.5f, 0.5f, 0}));
}

TEST(FormatDecoderObj, CornersBeyond256AreSkipped)
{
	std::string text = SQUARE;
	for(int line = 0; line < 2; ++line)
	{
		text += "f";
		for(int i = 0; i < 300; ++i)
			text += " " + std::to_string(i % 4 + 1);
		// Past the 256th corner nothing is read, not even a bad index.
		text += " 0 x\n";
	}
	const Mesh mesh = decode(text);
	EXPECT_EQ(mesh.verts.size(), 512u);
	// Fan triangles touching a corner at the first corner's position are
	// degenerate: of i = 2..255 only those with i % 4 of 2 or 3 remain.
	EXPECT_EQ(mesh.triangles.size(), 256u);
}

TEST(FormatDecoderObj, ReadsFilesThroughTheDecoderTable)
{
	VelornTest::TempDir dir;
	const std::string path = dir.file("square.OBJ");
	VelornTest::writeFile(path, SQUARE + "usemtl a\nf 1 2 3 4\n");
	Mesh mesh;
	loadModel(path, mesh, 3);
	EXPECT_EQ(mesh.quads.size(), 1u);
	EXPECT_EQ(mesh.verts[2], (Vec3f{3, 3, 0}));
	EXPECT_EQ(mesh.used_materials, Vector<String>{"a"});

	const std::string missing = dir.file("missing.obj");
	expectDecoderError([&] { FormatDecoderObj().streamModel(missing, mesh, 1); },
		"CreateFile failed for path '" + missing + "': " + Platform::errorString(2));
}
