#include "mesh/format_decoder_ply.h"

#include "mesh/mesh.h"
#include "mesh/mesh_test_helpers.h"
#include "mesh/ply_test_helpers.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace Velorn;
using VelornTest::expectDecoderError;
using VelornTest::PlyTestElement;
using VelornTest::PlyTestFile;

namespace
{

Mesh decode(const std::string& bytes, float scale = 1)
{
	Mesh mesh;
	FormatDecoderPLY::decodeBytes(bytes.data(), bytes.size(), mesh, scale);
	return mesh;
}

// Four corners of a square in z = 0 with a colour the decoder ignores, a
// triangle and a quad listed with int indices beside a list it ignores.
const std::vector<PlyTestElement> SQUARE = {
	{"vertex", {{"float", "x"}, {"double", "y"}, {"uchar", "red"}, {"float", "z"}},
		{{{0}, {0}, {1}, {0}}, {{1}, {0}, {2}, {0}}, {{1}, {1}, {3}, {0}}, {{0}, {1}, {4}, {0.5}}}},
	{"face", {{"int", "vertex_indices", "uchar"}, {"float", "weights", "ushort"}},
		{{{0, 1, 2}, {0.5, 0.5}}, {{0, 2, 3, 1}, {}}}},
};

void expectSquare(const Mesh& mesh, float scale)
{
	EXPECT_EQ(mesh.verts, (Vector<Vec3f>{{0, 0, 0}, {scale, 0, 0}, {scale, scale, 0}, {0, scale, 0.5f * scale}}));
	ASSERT_EQ(mesh.triangles.size(), 2u);
	// The quad's fourth entry is dropped.
	const uint32_t expected[2][3] = {{0, 1, 2}, {0, 2, 3}};
	for(size_t t = 0; t < 2; ++t)
		for(size_t c = 0; c < 3; ++c)
		{
			EXPECT_EQ(mesh.triangles[t].vertex_indices[c], expected[t][c]);
			EXPECT_EQ(mesh.triangles[t].uv_indices[c], 0u);
		}
	EXPECT_TRUE(mesh.quads.empty());
	EXPECT_TRUE(mesh.normals.empty());
	EXPECT_EQ(mesh.num_uv_mappings, 0u);
	EXPECT_EQ(mesh.used_materials, Vector<String>{"default"});
	EXPECT_EQ(mesh.num_materials_referenced, 1u);
}

} // namespace

TEST(FormatDecoderPLY, SameMeshFromEveryEncoding)
{
	const PlyTestFile file(SQUARE);
	SCOPED_TRACE("ascii");
	expectSquare(decode(file.ascii(), 2), 2);
	SCOPED_TRACE("binary little endian");
	expectSquare(decode(file.binary(false), 2), 2);
	SCOPED_TRACE("binary big endian");
	expectSquare(decode(file.binary(true), 2), 2);
}

TEST(FormatDecoderPLY, DecoderRules)
{
	struct Case
	{
		const char* what;
		std::vector<PlyTestElement> elements;
		size_t vertices, triangles;
	};
	const PlyTestElement three_vertices = {"vertex", {{"float", "x"}, {"float", "y"}, {"float", "z"}},
		{{{0}, {0}, {0}}, {{1}, {0}, {0}}, {{0}, {1}, {0}}}};
	const Case cases[] = {
		{"an empty body", {{"vertex", {{"float", "x"}, {"float", "y"}, {"float", "z"}}, {}},
			{"face", {{"int", "vertex_indices", "uchar"}}, {}}}, 0, 0},
		{"four entries make one triangle", {three_vertices, {"face", {{"uint", "vertex_indices", "uchar"}}, {{{0, 1, 2, 0}}}}}, 3, 1},
		{"entries are rounded", {three_vertices, {"face", {{"double", "vertex_indices", "uint"}}, {{{0.4, 0.6, 1.5}}}}}, 3, 1},
		{"fewer than three entries add nothing", {three_vertices, {"face", {{"int", "vertex_indices", "uchar"}}, {{{0, 1}}, {{}}}}}, 3, 0},
		{"a degenerate triangle is dropped", {three_vertices, {"face", {{"int", "vertex_indices", "uchar"}}, {{{0, 1, 1}}}}}, 3, 0},
		{"other face lists are ignored", {three_vertices, {"face", {{"int", "vertex_index", "uchar"}}, {{{0, 1, 2}}}}}, 3, 0},
		{"no z, no vertex", {{"vertex", {{"float", "x"}, {"float", "y"}}, {{{0}, {0}}}}}, 0, 0},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		const std::string ascii = PlyTestFile(c.elements).ascii();
		const Mesh mesh = decode(ascii);
		EXPECT_EQ(mesh.verts.size(), c.vertices);
		EXPECT_EQ(mesh.triangles.size(), c.triangles);
		EXPECT_EQ(mesh.used_materials, Vector<String>{"default"});
		EXPECT_EQ(mesh.num_materials_referenced, 1u);
	}
}

TEST(FormatDecoderPLY, VertexIsAddedAtZ)
{
	// With z first, each vertex is made of its own z and the x and y of the
	// one before.
	const std::vector<PlyTestElement> elements = {
		{"vertex", {{"float", "z"}, {"float", "x"}, {"float", "y"}}, {{{1}, {2}, {3}}, {{4}, {5}, {6}}}}};
	const Mesh mesh = decode(PlyTestFile(elements).binary(false));
	EXPECT_EQ(mesh.verts, (Vector<Vec3f>{{0, 0, 1}, {2, 3, 4}}));
}

TEST(FormatDecoderPLY, Failures)
{
	struct Case
	{
		const char* what;
		std::string bytes;
		std::string message;
	};
	const PlyTestElement one_vertex = {"vertex", {{"float", "x"}, {"float", "y"}, {"float", "z"}}, {{{0}, {0}, {0}}}};
	const Case cases[] = {
		{"no PLY header", "solid cube\n", "could not read header."},
		{"a header line that is no keyword", "ply\nformat ascii 1.0\nCreated by hand\nend_header\n", "could not read header."},
		{"counts beyond the size", "ply\nformat binary_little_endian 1.0\nelement vertex 4000000000\nproperty float x\nend_header\n",
			"read of body failed."},
		{"a truncated body", PlyTestFile({one_vertex}).header("ascii") + "0 0\n", "read of body failed."},
		{"an index beyond the vertices", PlyTestFile({one_vertex, {"face", {{"int", "vertex_indices", "uchar"}}, {{{0, 0, 1}}}}}).ascii(),
			"Triangle vertex index is out of bounds. (vertex index=1)"},
		{"a negative index", PlyTestFile({one_vertex, {"face", {{"int", "vertex_indices", "uchar"}}, {{{0, 0, -1}}}}}).ascii(),
			"Triangle vertex index is out of bounds. (vertex index=4294967295)"},
		{"an index of NaN",
			PlyTestFile({one_vertex, {"face", {{"double", "vertex_indices", "uchar"}}, {{{0, 0, 0}}}}}).header("binary_little_endian") +
				std::string(12, '\0') + "\x03" + PlyTestFile::encode("double", 0, false) + PlyTestFile::encode("double", 0, false) +
				PlyTestFile::encode("double", std::nan(""), false),
			"Triangle vertex index is out of bounds. (vertex index=4294967295)"},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		expectDecoderError([&] { decode(c.bytes); }, c.message);
	}
}

TEST(FormatDecoderPLY, ReadsFiles)
{
	VelornTest::TempDir dir;
	const std::string path = dir.file("square.ply");
	VelornTest::writeFile(path, PlyTestFile(SQUARE).binary(true));
	Mesh mesh;
	loadModel(path, mesh, 2);
	expectSquare(mesh, 2);

	const std::string missing = dir.file("missing.ply");
	expectDecoderError([&] { FormatDecoderPLY().streamModel(missing, mesh, 1); },
		"could not open file '" + missing + "' for reading.");
}
