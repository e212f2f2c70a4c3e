#include "mesh/mesh.h"

#include "mesh/mesh_test_helpers.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cmath>
#include <limits>

using namespace Velorn;
using VelornTest::Bytes;
using VelornTest::expectVelornError;

namespace
{

const float INF = std::numeric_limits<float>::infinity();
const float NaN = std::numeric_limits<float>::quiet_NaN();

// The unit square in the z = 0 plane, without normals.
void addUnitSquare(Mesh& mesh)
{
	mesh.addVertex(Vec3f{0, 0, 0});
	mesh.addVertex(Vec3f{1, 0, 0});
	mesh.addVertex(Vec3f{1, 1, 0});
	mesh.addVertex(Vec3f{0, 1, 0});
}

void expectVec3f(const Vec3f& actual, const Vec3f& expected)
{
	EXPECT_FLOAT_EQ(actual.x, expected.x);
	EXPECT_FLOAT_EQ(actual.y, expected.y);
	EXPECT_FLOAT_EQ(actual.z, expected.z);
}

} // namespace

TEST(Mesh, EmptyMeshFinalisesWithOneMaterialAndAnInfiniteBox)
{
	Mesh mesh;
	mesh.endOfModel();
	Vec3f min, max;
	float radius = -1;
	mesh.getBounds(min, max, radius);
	EXPECT_EQ(min, (Vec3f{INF, INF, INF}));
	EXPECT_EQ(max, (Vec3f{-INF, -INF, -INF}));
	EXPECT_EQ(radius, 0.0f);
	EXPECT_EQ(mesh.num_materials_referenced, 1u);
}

TEST(Mesh, UVMappingsOnlyGrowAndMaterialNamesStayUnique)
{
	Mesh mesh;
	mesh.setMaxNumUVMappings(2);
	mesh.setMaxNumUVMappings(1);
	EXPECT_EQ(mesh.num_uv_mappings, 2u);
	mesh.setMaxNumUVMappings(3);
	EXPECT_EQ(mesh.num_uv_mappings, 3u);

	mesh.addMaterialUsed("wood");
	mesh.addMaterialUsed("metal");
	mesh.addMaterialUsed("wood");
	EXPECT_EQ(mesh.used_materials, (Vector<String>{"wood", "metal"}));
}

TEST(Mesh, AddVertexScalesNormalsToUnitLengthAndRefusesNonFiniteOnes)
{
	Mesh mesh;
	mesh.addVertex(Vec3f{1, 2, 3});
	EXPECT_EQ(mesh.verts, (Vector<Vec3f>{{1, 2, 3}}));
	EXPECT_TRUE(mesh.normals.empty());

	Mesh with_normals;
	with_normals.addVertex(Vec3f{1, 2, 3}, Vec3f{3, 0, -4});
	ASSERT_EQ(with_normals.normals.size(), 1u);
	expectVec3f(with_normals.normals[0], Vec3f{0.6f, 0, -0.8f});

	// A zero normal passes the test and is stored as it comes out: 0 * inf.
	with_normals.addVertex(Vec3f{0, 0, 0}, Vec3f{0, 0, 0});
	ASSERT_EQ(with_normals.normals.size(), 2u);
	EXPECT_TRUE(std::isnan(with_normals.normals[1].x));

	for(const Vec3f& normal : {Vec3f{INF, 0, 1}, Vec3f{0, -INF, 1}, Vec3f{0, 1, NaN}})
	{
		SCOPED_TRACE(testing::Message() << normal.x << " " << normal.y << " " << normal.z);
		expectVelornError([&] { with_normals.addVertex(Vec3f{5, 5, 5}, normal); }, "Invalid normal");
		EXPECT_EQ(with_normals.verts.size(), 2u);
		EXPECT_EQ(with_normals.normals.size(), 2u);
	}
}

TEST(Mesh, AddUVsPadsAndTruncatesToTheMappingCount)
{
	Mesh mesh;
	mesh.addUVs(Vector<Vec2f>{{1, 2}});
	EXPECT_TRUE(mesh.uv_pairs.empty());

	mesh.setMaxNumUVMappings(3);
	mesh.addUVs(Vector<Vec2f>{{1, 2}});
	mesh.addUVs(Vector<Vec2f>{{3, 4}, {5, 6}, {7, 8}, {9, 10}});
	EXPECT_EQ(mesh.uv_pairs, (Vector<Vec2f>{{1, 2}, {0, 0}, {0, 0}, {3, 4}, {5, 6}, {7, 8}}));
	EXPECT_EQ(mesh.numUVRecords(), 2u);
}

TEST(Mesh, PolygonIndicesAreCheckedInOrderAndLeaveTheMeshUnchanged)
{
	Mesh mesh;
	addUnitSquare(mesh);
	mesh.setMaxNumUVMappings(2);
	mesh.addUVs(Vector<Vec2f>{{0, 0}, {1, 1}});
	mesh.addUVs(Vector<Vec2f>{{1, 0}, {0, 1}});

	const struct
	{
		uint32_t vertex_indices[3];
		uint32_t uv_indices[3];
		const char* message;
	} triangle_cases[] = {
		{{0, 1, 4}, {0, 0, 0}, "Triangle vertex index is out of bounds. (vertex index=4)"},
		{{7, 1, 9}, {5, 0, 0}, "Triangle vertex index is out of bounds. (vertex index=7)"},
		{{0, 1, 2}, {0, 2, 3}, "Triangle uv index is out of bounds. (uv index=2)"},
	};
	for(const auto& c : triangle_cases)
	{
		SCOPED_TRACE(c.message);
		expectVelornError([&] { mesh.addTriangle(c.vertex_indices, c.uv_indices, 0); }, c.message);
	}
	const struct
	{
		uint32_t vertex_indices[4];
		uint32_t uv_indices[4];
		const char* message;
	} quad_cases[] = {
		{{0, 1, 2, 4294967295u}, {0, 0, 0, 0}, "Quad vertex index is out of bounds. (vertex index=4294967295)"},
		{{0, 9, 2, 7}, {5, 0, 0, 0}, "Quad vertex index is out of bounds. (vertex index=9)"},
		{{0, 1, 2, 3}, {0, 1, 1, 6}, "Quad uv index is out of bounds. (uv index=6)"},
	};
	for(const auto& c : quad_cases)
	{
		SCOPED_TRACE(c.message);
		expectVelornError([&] { mesh.addQuad(c.vertex_indices, c.uv_indices, 0); }, c.message);
	}
	EXPECT_TRUE(mesh.triangles.empty());
	EXPECT_TRUE(mesh.quads.empty());

	// Without UV mappings the UV indices are stored unchecked.
	Mesh no_uvs;
	addUnitSquare(no_uvs);
	no_uvs.addTriangle({0, 1, 2}, {99, 98, 97}, 4);
	no_uvs.addQuad({0, 1, 2, 3}, {96, 95, 94, 93}, 5);
	ASSERT_EQ(no_uvs.triangles.size(), 1u);
	ASSERT_EQ(no_uvs.quads.size(), 1u);
	EXPECT_EQ(no_uvs.triangles[0].uv_indices[2], 97u);
	EXPECT_EQ(no_uvs.quads[0].uv_indices[3], 93u);
}

TEST(Mesh, TrianglesBelowTheAreaThresholdAreDroppedQuadsAreKept)
{
	Mesh mesh;
	for(int i = 0; i < 4; ++i)
		mesh.addVertex(Vec3f{2, 3, 4});
	mesh.addTriangle({0, 1, 2}, {0, 0, 0}, 0);
	mesh.addQuad({0, 1, 2, 3}, {0, 0, 0, 0}, 0);
	EXPECT_TRUE(mesh.triangles.empty());
	EXPECT_EQ(mesh.quads.size(), 1u);

	// Triangles (0,0,0), (1,0,0), (0,2a,0) of area a, against the threshold
	// 1e-20 on half the cross product length; a NaN area is kept.
	const struct
	{
		float area;
		bool kept;
	} cases[] = {{0.5e-20f, false}, {0.75e-20f, false}, {1.5e-20f, true}, {3e-20f, true}, {INF, true}};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(testing::Message() << "area " << c.area);
		Mesh thin;
		thin.addVertex(Vec3f{0, 0, 0});
		thin.addVertex(Vec3f{1, 0, 0});
		thin.addVertex(Vec3f{0, 2 * c.area, 0});
		thin.addTriangle({0, 1, 2}, {0, 0, 0}, 0);
		EXPECT_EQ(thin.triangles.size(), c.kept ? 1u : 0u);
	}
}

TEST(Mesh, EndOfModelChecksSizesThenComputesBoundsAndMaterialCount)
{
	Mesh mesh;
	mesh.addVertex(Vec3f{1, -2, 3}, Vec3f{0, 0, 1});
	mesh.addVertex(Vec3f{-4, 5, 0.5f}, Vec3f{0, 0, 1});
	mesh.addVertex(Vec3f{0, 0, 0}, Vec3f{0, 0, 1});
	mesh.setMaxNumUVMappings(2);
	mesh.uv_pairs.resize(3);
	mesh.normals.resize(2);

	expectVelornError([&] { mesh.endOfModel(); }, "Mesh uv_pairs.size() must be a multiple of mesh.num_uv_mappings");
	mesh.uv_pairs.resize(4);
	expectVelornError([&] { mesh.endOfModel(); }, "Must be zero normals, or normals.size() must equal verts.size()");
	EXPECT_EQ(mesh.num_materials_referenced, 0u);
	EXPECT_EQ(mesh.aabb_max.x, -INF);

	mesh.normals.clear();
	mesh.addTriangle({0, 1, 2}, {0, 1, 0}, 2);
	mesh.addQuad({0, 1, 2, 0}, {0, 0, 1, 1}, 5);
	mesh.addTriangle({2, 1, 0}, {0, 1, 0}, 3);
	mesh.endOfModel();
	Vec3f min, max;
	float radius;
	mesh.getBounds(min, max, radius);
	EXPECT_EQ(min, (Vec3f{-4, -2, 0}));
	EXPECT_EQ(max, (Vec3f{1, 5, 3}));
	EXPECT_FLOAT_EQ(radius, std::sqrt(41.25f));
	EXPECT_EQ(mesh.num_materials_referenced, 6u);
}

TEST(Mesh, GetMaterialIndexCountsEachQuadAsTwoPolygons)
{
	Mesh mesh;
	addUnitSquare(mesh);
	mesh.addTriangle({0, 1, 2}, {0, 0, 0}, 7);
	mesh.addTriangle({0, 2, 3}, {0, 0, 0}, 8);
	for(uint32_t material : {10u, 11u, 12u})
		mesh.addQuad({0, 1, 2, 3}, {0, 0, 0, 0}, material);

	const uint32_t expected[] = {7, 8, 10, 10, 11, 11, 12, 12};
	for(size_t i = 0; i < 8; ++i)
		EXPECT_EQ(mesh.getMaterialIndex(i), expected[i]) << "polygon " << i;
	EXPECT_EQ(mesh.getMaterialIndex(mesh.triangles.size() + 3), 11u);
}

TEST(Mesh, ChecksumRunsOverTheContentInFileOrder)
{
	Mesh mesh;
	mesh.num_uv_mappings = 1;
	mesh.used_materials = Vector<String>{"wood", "", "metal"};
	mesh.verts = Vector<Vec3f>{{1, 2, 3}, {4, 5, 6}};
	mesh.normals = Vector<Vec3f>{{0, 0, 1}, {0, 1, 0}};
	mesh.uv_layout = 1;
	mesh.uv_pairs = Vector<Vec2f>{{0.5f, 0.25f}, {1, 0}};
	mesh.triangles = Vector<MeshTriangle>{{{0, 1, 0}, {1, 0, 1}, 3}};
	mesh.quads = Vector<MeshQuad>{{{1, 0, 1, 0}, {0, 1, 1, 0}, 9}};

	// Names without length or separator (the empty one adds nothing), raw
	// vectors, and uv_layout between normals and uv_pairs.
	const std::string content = Bytes()
									.u32(1)
									.raw("woodmetal")
									.f32(1).f32(2).f32(3).f32(4).f32(5).f32(6)
									.f32(0).f32(0).f32(1).f32(0).f32(1).f32(0)
									.u32(1)
									.f32(0.5f).f32(0.25f).f32(1).f32(0)
									.u32(0).u32(1).u32(0).u32(1).u32(0).u32(1).u32(3)
									.u32(1).u32(0).u32(1).u32(0).u32(0).u32(1).u32(1).u32(0).u32(9)
									.bytes();
	const uint32_t expected_crc = (uint32_t)crc32(0, reinterpret_cast<const Bytef*>(content.data()), (uInt)content.size());

	uint64_t byte_count = 0;
	EXPECT_EQ(mesh.checksum(byte_count), expected_crc);
	// 4 + 9 name bytes + 2 * 12 + 2 * 12 + 2 * 8 + 28 + 36; uv_layout is not counted.
	EXPECT_EQ(byte_count, 141u);

	mesh.uv_layout = 0;
	uint64_t byte_count_layout_0 = 0;
	EXPECT_NE(mesh.checksum(byte_count_layout_0), expected_crc);
	EXPECT_EQ(byte_count_layout_0, 141u);

	const std::string empty_content = Bytes().u32(0).u32(0).bytes();
	Mesh empty;
	EXPECT_EQ(empty.checksum(byte_count),
		(uint32_t)crc32(0, reinterpret_cast<const Bytef*>(empty_content.data()), (uInt)empty_content.size()));
	EXPECT_EQ(byte_count, 4u);
}
