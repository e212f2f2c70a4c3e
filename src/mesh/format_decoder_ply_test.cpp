#include "mesh/format_decoder_ply.h"

#include "mesh/mesh.h"
#include "mesh/mesh_test_helpers.h"
#include "mesh/ply_reader.h"
#include "mesh/ply_test_helpers.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

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
	for(const bool binary : {false, true})
	{
		SCOPED_TRACE(binary ? "binary little endian" : "ascii");
		expectSquare(decode(binary ? file.binary(false) : file.ascii(), 2), 2);
	}
	// Big-endian, from a file through the decoder table.
	VelornTest::TempDir dir;
	const std::string path = dir.file("square.ply");
	VelornTest::writeFile(path, file.binary(true));
	Mesh mesh;
	loadModel(path, mesh, 2);
	expectSquare(mesh, 2);

	const std::string missing = dir.file("missing.ply");
	expectDecoderError([&] { FormatDecoderPLY().streamModel(missing, mesh, 1); },
		"could not open file '" + missing + "' for reading.");
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

namespace
{

// What a decoding left: the mesh as far as it got, and the error, if any.
struct Outcome
{
	Vector<Vec3f> verts;
	std::vector<std::vector<uint32_t>> triangles;
	std::string error;
};

Outcome decodeOutcome(const std::string& bytes)
{
	Outcome outcome;
	Mesh mesh;
	try
	{
		FormatDecoderPLY::decodeBytes(bytes.data(), bytes.size(), mesh, 3);
	}
	catch(const ModelFormatDecoderExcep& e)
	{
		outcome.error = e.what();
	}
	outcome.verts = mesh.verts;
	for(const MeshTriangle& t : mesh.triangles)
		outcome.triangles.push_back({t.vertex_indices[0], t.vertex_indices[1], t.vertex_indices[2], t.uv_indices[0],
			t.uv_indices[1], t.uv_indices[2], t.tri_mat_index});
	return outcome;
}

bool readsInBulk(const std::string& bytes)
{
	PlyReader reader;
	reader.openMemory(bytes.data(), bytes.size());
	return reader.readHeader() && FormatDecoderPLY::readsInBulk(reader);
}

} // namespace

// The bulk read of a binary body must leave the mesh the value-by-value
// read leaves, also where it fails. The general path reads the same body
// bytes under a header with one more, empty, element, which takes the file
// out of the bulk layout.
TEST(FormatDecoderPLY, BulkReadMatchesValueByValue)
{
	const PlyTestElement vertices = {"vertex", {{"float", "x"}, {"float", "y"}, {"float", "z"}},
		{{{0}, {0}, {0}}, {{1}, {0}, {0}}, {{1}, {1}, {0.25}}, {{0}, {1}, {-2}}, {{0.5}, {0.5}, {1e30}}}};
	const std::vector<std::vector<double>> faces = {{0, 1, 2}, {0, 2, 3, 1}, {3, 4}, {}, {1, 1, 2}, {4, 3, 2, 1, 0}, {2, 3, 0}};
	const PlyTestElement empty = {"extra", {{"uchar", "flag"}}, {}};
	for(const char* entries : {"int", "uint"})
		for(const bool big_endian : {false, true})
		{
			PlyTestElement face = {"face", {{entries, "vertex_indices", "uchar"}}, {}};
			for(const std::vector<double>& f : faces)
				face.instances.push_back({f});
			const std::string bulk = PlyTestFile({vertices, face}).binary(big_endian);
			const std::string general = PlyTestFile({vertices, face, empty}).binary(big_endian);
			const std::string format = big_endian ? "binary_big_endian" : "binary_little_endian";
			const size_t bulk_header = PlyTestFile({vertices, face}).header(format).size();
			const size_t general_header = PlyTestFile({vertices, face, empty}).header(format).size();
			ASSERT_TRUE(readsInBulk(bulk));
			ASSERT_FALSE(readsInBulk(general));
			// Every length of the body, from none to all of it.
			for(size_t body = 0; bulk_header + body <= bulk.size(); ++body)
			{
				SCOPED_TRACE(std::string(entries) + (big_endian ? ", big endian" : ", little endian") + ", body bytes " +
					std::to_string(body));
				const Outcome expected = decodeOutcome(general.substr(0, general_header + body));
				const Outcome actual = decodeOutcome(bulk.substr(0, bulk_header + body));
				EXPECT_EQ(actual.error, expected.error);
				EXPECT_EQ(actual.verts, expected.verts);
				EXPECT_EQ(actual.triangles, expected.triangles);
			}
			const Outcome whole = decodeOutcome(bulk);
			EXPECT_EQ(whole.error, "");
			EXPECT_EQ(whole.verts.size(), 5u);
			EXPECT_EQ(whole.triangles.size(), 4u);
		}
}

TEST(FormatDecoderPLY, BulkReadFailsAtTheSameIndex)
{
	const PlyTestElement vertex = {"vertex", {{"float", "x"}, {"float", "y"}, {"float", "z"}},
		{{{0}, {0}, {0}}, {{1}, {0}, {0}}, {{0}, {1}, {0}}}};
	const PlyTestElement empty = {"extra", {{"uchar", "flag"}}, {}};
	struct Case
	{
		const char* entries;
		double index;
		const char* message;
	};
	const Case cases[] = {
		{"int", 3, "Triangle vertex index is out of bounds. (vertex index=3)"},
		{"int", -2, "Triangle vertex index is out of bounds. (vertex index=4294967295)"},
		{"uint", 4294967295.0, "Triangle vertex index is out of bounds. (vertex index=4294967295)"},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(std::string(c.entries) + " " + std::to_string(c.index));
		const PlyTestElement face = {"face", {{c.entries, "vertex_indices", "uchar"}}, {{{0, 1, 2}}, {{0, c.index, 1}}}};
		const std::string bulk = PlyTestFile({vertex, face}).binary(true);
		ASSERT_TRUE(readsInBulk(bulk));
		const Outcome actual = decodeOutcome(bulk);
		const Outcome expected = decodeOutcome(PlyTestFile({vertex, face, empty}).binary(true));
		EXPECT_EQ(actual.error, c.message);
		EXPECT_EQ(expected.error, c.message);
		EXPECT_EQ(actual.triangles, expected.triangles);
	}
}
