#include "mesh/mesh_file.h"

#include "mesh/mesh.h"
#include "mesh/mesh_test_helpers.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

using namespace Velorn;
using VelornTest::Bytes;
using VelornTest::expectVelornError;
using VelornTest::readFile;
using VelornTest::TempDir;
using VelornTest::writeFile;

namespace
{

const uint32_t MAGIC = 0x0053436F;

// The sample mesh in file form, laid out by hand field by field: two
// materials, the unit square in z = 0 with normals and one UV set, one
// triangle and one quad. Tests replace single fields to make bad files.
struct SampleFile
{
	uint32_t magic = MAGIC;
	uint32_t version = 3;
	uint32_t num_uv_mappings = 1;
	std::string materials = Bytes().u32(2).str("red").str("green").bytes();
	std::string uv_set_records = Bytes().u32(0).bytes();
	std::string verts = Bytes().u32(4).f32(0).f32(0).f32(0).f32(1).f32(0).f32(0).f32(1).f32(1).f32(0).f32(0).f32(1).f32(0).bytes();
	std::string normals = Bytes().u32(4).f32(0).f32(0).f32(1).f32(0).f32(0).f32(1).f32(0).f32(0).f32(1).f32(0).f32(0).f32(1).bytes();
	uint32_t uv_layout = 0;
	std::string uv_pairs = Bytes().u32(4).f32(0).f32(0).f32(1).f32(0).f32(1).f32(1).f32(0).f32(1).bytes();
	std::string triangles = Bytes().u32(1).u32(0).u32(1).u32(2).u32(0).u32(1).u32(2).u32(0).bytes();
	std::string quads = Bytes().u32(1).u32(0).u32(1).u32(2).u32(3).u32(0).u32(1).u32(2).u32(3).u32(1).bytes();

	// Version 1 files end before the quads, and only version 3 has uv_layout.
	std::string bytes() const
	{
		Bytes b;
		b.u32(magic).u32(version).u32(num_uv_mappings).raw(materials).raw(uv_set_records).raw(verts).raw(normals);
		if(version >= 3)
			b.u32(uv_layout);
		b.raw(uv_pairs).raw(triangles);
		if(version >= 2)
			b.raw(quads);
		return b.bytes();
	}
};

const std::string NO_QUADS = Bytes().u32(0).bytes();

// The sample mesh, built through the mesh's own operations.
Mesh makeSampleMesh()
{
	Mesh mesh;
	mesh.setMaxNumUVMappings(1);
	mesh.addMaterialUsed("red");
	mesh.addMaterialUsed("green");
	const Vec3f square[] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
	for(const Vec3f& p : square)
	{
		mesh.addVertex(p, Vec3f{0, 0, 2});
		mesh.addUVs(Vector<Vec2f>{{p.x, p.y}});
	}
	mesh.addTriangle({0, 1, 2}, {0, 1, 2}, 0);
	mesh.addQuad({0, 1, 2, 3}, {0, 1, 2, 3}, 1);
	mesh.endOfModel();
	return mesh;
}

void expectSameContent(const Mesh& actual, const Mesh& expected)
{
	EXPECT_EQ(actual.num_uv_mappings, expected.num_uv_mappings);
	EXPECT_EQ(actual.used_materials, expected.used_materials);
	EXPECT_EQ(actual.verts, expected.verts);
	EXPECT_EQ(actual.normals, expected.normals);
	EXPECT_EQ(actual.uv_layout, expected.uv_layout);
	EXPECT_EQ(actual.uv_pairs, expected.uv_pairs);
	uint64_t actual_count = 0, expected_count = 0;
	EXPECT_EQ(actual.checksum(actual_count), expected.checksum(expected_count)) << "triangles or quads differ";
	EXPECT_EQ(actual.aabb_min, expected.aabb_min);
	EXPECT_EQ(actual.aabb_max, expected.aabb_max);
	EXPECT_EQ(actual.bounding_radius, expected.bounding_radius);
	EXPECT_EQ(actual.num_materials_referenced, expected.num_materials_referenced);
}

// Writes bytes to a scratch file and reads it into mesh.
void readBytes(const std::string& bytes, Mesh& mesh)
{
	TempDir dir;
	const std::string path = dir.file("in.vlmesh");
	writeFile(path, bytes);
	readMeshFromFile(path, mesh);
}

void expectReadError(const std::string& bytes, const std::string& message)
{
	Mesh mesh;
	expectVelornError([&] { readBytes(bytes, mesh); }, message);
}

std::string writtenBytes(const Mesh& mesh)
{
	TempDir dir;
	const std::string path = dir.file("out.vlmesh");
	writeMeshToFile(path, mesh);
	return readFile(path);
}

} // namespace

TEST(MeshFile, EmptyMeshIsFortyFourBytesOfHeaderAndCountWords)
{
	const std::string expected("\x6F\x43\x53\x00" "\x03\x00\x00\x00" "\x00\x00\x00\x00" // magic, version, num_uv_mappings
							   "\x00\x00\x00\x00" "\x00\x00\x00\x00" // used_materials, UV set records
							   "\x00\x00\x00\x00" "\x00\x00\x00\x00" // verts, normals
							   "\x00\x00\x00\x00" // uv_layout
							   "\x00\x00\x00\x00" "\x00\x00\x00\x00" "\x00\x00\x00\x00", // uv_pairs, triangles, quads
		44);
	EXPECT_EQ(writtenBytes(Mesh()), expected);
}

TEST(MeshFile, WritesTheSampleByteForByteAndReadsItBack)
{
	for(uint32_t uv_layout : {0u, 1u})
	{
		SCOPED_TRACE(testing::Message() << "uv_layout " << uv_layout);
		Mesh mesh = makeSampleMesh();
		mesh.uv_layout = uv_layout;
		SampleFile file;
		file.uv_layout = uv_layout;
		EXPECT_EQ(writtenBytes(mesh), file.bytes());

		// Bytes after the last field are not looked at.
		Mesh read;
		readBytes(file.bytes() + "trailing", read);
		expectSameContent(read, mesh);
	}
}

TEST(MeshFile, OlderVersionsReadAndWriteBackAsVersionThree)
{
	SampleFile version_1;
	version_1.version = 1;
	Mesh from_version_1;
	readBytes(version_1.bytes(), from_version_1);
	Mesh expected = makeSampleMesh();
	expected.quads.clear();
	expected.endOfModel();
	expectSameContent(from_version_1, expected);
	SampleFile written_1;
	written_1.quads = NO_QUADS;
	EXPECT_EQ(writtenBytes(from_version_1), written_1.bytes());

	// Version 1 has no quads to read, so the mesh keeps those it had.
	Mesh with_quad = makeSampleMesh();
	readBytes(version_1.bytes(), with_quad);
	EXPECT_EQ(with_quad.quads.size(), 1u);

	SampleFile version_2;
	version_2.version = 2;
	Mesh from_version_2;
	from_version_2.uv_layout = 1;
	readBytes(version_2.bytes(), from_version_2);
	expectSameContent(from_version_2, makeSampleMesh());
	EXPECT_EQ(writtenBytes(from_version_2), SampleFile().bytes());
}

TEST(MeshFile, BadHeadersAreRefused)
{
	const struct
	{
		uint32_t magic, version, uv_layout;
		const char* message;
	} cases[] = {
		{0x0153436F, 3, 0, "Invalid magic number."},
		{0x6F435300, 3, 0, "Invalid magic number."},
		{MAGIC, 0, 0, "Unsupported format version."},
		{MAGIC, 4, 0, "Unsupported format version."},
		{MAGIC, 3, 2, "Invalid uv_layout value 2"},
		{MAGIC, 3, 4294967295u, "Invalid uv_layout value 4294967295"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.message);
		SampleFile file;
		file.magic = c.magic;
		file.version = c.version;
		file.uv_layout = c.uv_layout;
		expectReadError(file.bytes(), c.message);
	}
}

TEST(MeshFile, StringsUpTo1024BytesPassBothWays)
{
	const std::string longest(1024, 'x');
	const std::string too_long(1025, 'y');

	Mesh mesh;
	mesh.addMaterialUsed(longest);
	mesh.endOfModel();
	Mesh read;
	readBytes(writtenBytes(mesh), read);
	EXPECT_EQ(read.used_materials, (Vector<String>{longest}));

	mesh.addMaterialUsed(too_long);
	TempDir dir;
	expectVelornError([&] { writeMeshToFile(dir.file("long.vlmesh"), mesh); }, "String too long.");

	// The length is refused before its bytes are read, so a file that ends
	// right after it still reports the length.
	SampleFile file;
	file.materials = Bytes().u32(1).u32(1025).bytes();
	expectReadError(file.bytes(), "String too long.");
	file.materials = Bytes().u32(1).str(too_long).bytes();
	expectReadError(file.bytes(), "String too long.");
}

TEST(MeshFile, UVSetRecordsAreReadAndDropped)
{
	const std::string longest(1024, 'u');
	SampleFile file;
	file.uv_set_records = Bytes().u32(2).str("uv_main").u32(0).str(longest).u32(1).bytes();
	Mesh read;
	readBytes(file.bytes(), read);
	expectSameContent(read, makeSampleMesh());

	file.uv_set_records = Bytes().u32(1).str(longest + "u").u32(0).bytes();
	expectReadError(file.bytes(), "String too long.");
}

TEST(MeshFile, CountsAreCheckedBeforeAnyVectorIsSized)
{
	// Each vector field of the file with the capacity of the mesh vector it
	// fills (none for the UV set records, which are not kept).
	const struct
	{
		const char* name;
		std::string SampleFile::*field;
		std::function<size_t(const Mesh&)> capacity;
	} fields[] = {
		{"used_materials", &SampleFile::materials, [](const Mesh& m) { return m.used_materials.capacity(); }},
		{"uv set records", &SampleFile::uv_set_records, [](const Mesh&) { return size_t(0); }},
		{"verts", &SampleFile::verts, [](const Mesh& m) { return m.verts.capacity(); }},
		{"normals", &SampleFile::normals, [](const Mesh& m) { return m.normals.capacity(); }},
		{"uv_pairs", &SampleFile::uv_pairs, [](const Mesh& m) { return m.uv_pairs.capacity(); }},
		{"triangles", &SampleFile::triangles, [](const Mesh& m) { return m.triangles.capacity(); }},
		{"quads", &SampleFile::quads, [](const Mesh& m) { return m.quads.capacity(); }},
	};
	for(const auto& f : fields)
	{
		SCOPED_TRACE(f.name);
		SampleFile file;
		file.*f.field = Bytes().u32(0x80000000).bytes();
		expectReadError(file.bytes(), "Vector too long.");

		// The largest count allowed, in a file far too short for it: refused
		// as a short read, with nothing allocated for it.
		file.*f.field = Bytes().u32(0x7FFFFFFF).bytes();
		Mesh mesh;
		expectVelornError([&] { readBytes(file.bytes(), mesh); }, "Read failed.");
		EXPECT_EQ(f.capacity(mesh), 0u);
	}
}

TEST(MeshFile, EveryTruncationOfAFileFailsAsAShortRead)
{
	const std::string whole = SampleFile().bytes();
	for(size_t length = 0; length < whole.size(); ++length)
	{
		SCOPED_TRACE(testing::Message() << "length " << length);
		expectReadError(whole.substr(0, length), "Read failed.");
	}
}

TEST(MeshFile, SizeChecksApplyOnWriteAndOnRead)
{
	const struct
	{
		uint32_t num_uv_pairs, num_normals;
		const char* message;
	} cases[] = {
		{3, 4, "Mesh uv_pairs.size() must be a multiple of mesh.num_uv_mappings"},
		{4, 1, "Must be zero normals, or normals.size() must equal verts.size()"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.message);
		Mesh mesh = makeSampleMesh();
		mesh.setMaxNumUVMappings(2);
		mesh.uv_pairs.resize(c.num_uv_pairs);
		mesh.normals.resize(c.num_normals);
		TempDir dir;
		const std::string path = dir.file("bad.vlmesh");
		expectVelornError([&] { writeMeshToFile(path, mesh); }, c.message);
		EXPECT_FALSE(std::filesystem::exists(path));

		SampleFile file;
		file.num_uv_mappings = 2;
		file.uv_pairs = Bytes().u32(c.num_uv_pairs).raw(std::string(c.num_uv_pairs * 8, '\0')).bytes();
		file.normals = Bytes().u32(c.num_normals).raw(std::string(c.num_normals * 12, '\0')).bytes();
		expectReadError(file.bytes(), c.message);
	}
}

TEST(MeshFile, OpenAndStreamFailuresNameThePath)
{
	TempDir dir;
	const std::string missing = dir.file("n\xC3\xB6/mesh.vlmesh");
	expectVelornError([&] { writeMeshToFile(missing, makeSampleMesh()); }, "Failed to open file '" + missing + "' for writing.");
	Mesh mesh;
	expectVelornError([&] { readMeshFromFile(missing, mesh); }, "Failed to open file '" + missing + "' for reading.");

#ifndef _WIN32
	// Linux devices, which Wine shows to a Windows program too, through
	// other calls than the ones these failures need.
	// A device that takes no data fails when the buffered bytes go out.
	if(std::filesystem::exists("/dev/full"))
		expectVelornError([&] { writeMeshToFile("/dev/full", makeSampleMesh()); }, "Error while writing to '/dev/full'.");
	// A file whose size cannot be found cannot be checked against its counts.
	if(std::filesystem::exists("/proc/self/status"))
		expectVelornError([&] { readMeshFromFile("/proc/self/status", mesh); }, "Error while reading from '/proc/self/status'.");
#endif
}
