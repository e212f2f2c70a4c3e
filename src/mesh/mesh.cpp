#include "mesh/mesh.h"

#include "support/exceptions.h"
#include "support/string_utils.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Velorn
{

namespace
{

// Half the cross product length below which a triangle counts as degenerate:
// the single-precision value with the bits 0x1E3CE508, that is 1e-20.
const float MIN_TRIANGLE_AREA = 1.0e-20f;

const float INF = std::numeric_limits<float>::infinity();

Vec3f sub(const Vec3f& a, const Vec3f& b) { return Vec3f{a.x - b.x, a.y - b.y, a.z - b.z}; }

Vec3f cross(const Vec3f& a, const Vec3f& b)
{
	return Vec3f{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

float lengthSquared(const Vec3f& v) { return v.x * v.x + v.y * v.y + v.z * v.z; }

bool isFinite(const Vec3f& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

// Adds raw bytes to the running CRC and to the byte count. Empty ranges are
// skipped: zlib's crc32 hands back its initial value when given a null
// pointer, which would restart the CRC.
void checksumBytes(const void* data, size_t n, uLong& crc, uint64_t& byte_count)
{
	if(n == 0)
		return;
	crc = crc32_z(crc, static_cast<const Bytef*>(data), n);
	byte_count += n;
}

template <class T>
void checksumVector(const Vector<T>& v, uLong& crc, uint64_t& byte_count)
{
	checksumBytes(v.data(), v.size() * sizeof(T), crc, byte_count);
}

} // namespace

Mesh::Mesh()
	: num_uv_mappings(0), uv_layout(0), aabb_min{INF, INF, INF}, aabb_max{-INF, -INF, -INF}, bounding_radius(0),
	  num_materials_referenced(0)
{
}

void Mesh::setMaxNumUVMappings(uint32_t n) { num_uv_mappings = std::max(num_uv_mappings, n); }

void Mesh::addMaterialUsed(const String& name)
{
	if(std::find(used_materials.begin(), used_materials.end(), name) == used_materials.end())
		used_materials.push_back(name);
}

void Mesh::addVertex(const Vec3f& position) { verts.push_back(position); }

void Mesh::addVertex(const Vec3f& position, const Vec3f& normal)
{
	if(!isFinite(normal))
		throw VelornException("Invalid normal");
	const float scale = 1.0f / std::sqrt(lengthSquared(normal));
	verts.push_back(position);
	normals.push_back(Vec3f{normal.x * scale, normal.y * scale, normal.z * scale});
}

void Mesh::addUVs(const Vector<Vec2f>& uvs)
{
	for(size_t i = 0; i < num_uv_mappings; ++i)
		uv_pairs.push_back(i < uvs.size() ? uvs[i] : Vec2f{0, 0});
}

template <size_t N>
void Mesh::checkIndices(const uint32_t (&vertex_indices)[N], const uint32_t (&uv_indices)[N], const char* polygon_kind) const
{
	for(uint32_t index : vertex_indices)
		if(index >= verts.size())
			throw VelornException(std::string(polygon_kind) + " vertex index is out of bounds. (vertex index=" + toString(index) + ")");
	if(num_uv_mappings == 0)
		return;
	const size_t num_records = numUVRecords();
	for(uint32_t index : uv_indices)
		if(index >= num_records)
			throw VelornException(std::string(polygon_kind) + " uv index is out of bounds. (uv index=" + toString(index) + ")");
}

void Mesh::addTriangle(const uint32_t (&vertex_indices)[3], const uint32_t (&uv_indices)[3], uint32_t material_index)
{
	checkIndices(vertex_indices, uv_indices, "Triangle");
	const Vec3f& a = verts[vertex_indices[0]];
	const Vec3f normal = cross(sub(verts[vertex_indices[1]], a), sub(verts[vertex_indices[2]], a));
	// A NaN area fails this test too, so non-finite triangles are kept.
	if(MIN_TRIANGLE_AREA > 0.5f * std::sqrt(lengthSquared(normal)))
		return;
	triangles.push_back(MeshTriangle{{vertex_indices[0], vertex_indices[1], vertex_indices[2]},
		{uv_indices[0], uv_indices[1], uv_indices[2]}, material_index});
}

void Mesh::addQuad(const uint32_t (&vertex_indices)[4], const uint32_t (&uv_indices)[4], uint32_t material_index)
{
	checkIndices(vertex_indices, uv_indices, "Quad");
	quads.push_back(MeshQuad{{vertex_indices[0], vertex_indices[1], vertex_indices[2], vertex_indices[3]},
		{uv_indices[0], uv_indices[1], uv_indices[2], uv_indices[3]}, material_index});
}

void Mesh::checkSizes() const
{
	if(num_uv_mappings != 0 && uv_pairs.size() % num_uv_mappings != 0)
		throw VelornException("Mesh uv_pairs.size() must be a multiple of mesh.num_uv_mappings");
	if(!normals.empty() && normals.size() != verts.size())
		throw VelornException("Must be zero normals, or normals.size() must equal verts.size()");
}

void Mesh::endOfModel()
{
	checkSizes();

	aabb_min = Vec3f{INF, INF, INF};
	aabb_max = Vec3f{-INF, -INF, -INF};
	float max_length_squared = 0;
	for(const Vec3f& v : verts)
	{
		aabb_min = Vec3f{std::min(aabb_min.x, v.x), std::min(aabb_min.y, v.y), std::min(aabb_min.z, v.z)};
		aabb_max = Vec3f{std::max(aabb_max.x, v.x), std::max(aabb_max.y, v.y), std::max(aabb_max.z, v.z)};
		max_length_squared = std::max(max_length_squared, lengthSquared(v));
	}
	bounding_radius = std::sqrt(max_length_squared);

	uint32_t max_mat_index = 0;
	for(const MeshTriangle& t : triangles)
		max_mat_index = std::max(max_mat_index, t.tri_mat_index);
	for(const MeshQuad& q : quads)
		max_mat_index = std::max(max_mat_index, q.mat_index);
	num_materials_referenced = max_mat_index + 1;
}

uint32_t Mesh::getMaterialIndex(size_t polygon_index) const
{
	if(polygon_index < triangles.size())
		return triangles[polygon_index].tri_mat_index;
	return quads[(polygon_index - triangles.size()) / 2].mat_index;
}

void Mesh::getBounds(Vec3f& min_out, Vec3f& max_out, float& radius_out) const
{
	min_out = aabb_min;
	max_out = aabb_max;
	radius_out = bounding_radius;
}

uint32_t Mesh::checksum(uint64_t& byte_count_out) const
{
	uLong crc = crc32_z(0, Z_NULL, 0);
	uint64_t byte_count = 0;
	checksumBytes(&num_uv_mappings, sizeof(num_uv_mappings), crc, byte_count);
	for(const String& name : used_materials)
		checksumBytes(name.data(), name.size(), crc, byte_count);
	checksumVector(verts, crc, byte_count);
	checksumVector(normals, crc, byte_count);
	// uv_layout enters the CRC but, unlike every other field, not the count.
	uint64_t uncounted = 0;
	checksumBytes(&uv_layout, sizeof(uv_layout), crc, uncounted);
	checksumVector(uv_pairs, crc, byte_count);
	checksumVector(triangles, crc, byte_count);
	checksumVector(quads, crc, byte_count);
	byte_count_out = byte_count;
	return (uint32_t)crc;
}

} // namespace Velorn
