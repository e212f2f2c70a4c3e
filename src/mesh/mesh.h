#pragma once

#include "support/reference.h"
#include "support/velorn_string.h"
#include "support/velorn_vector.h"

#include <cstddef>
#include <cstdint>

namespace Velorn
{

struct Vec3f
{
	float x, y, z;

	bool operator==(const Vec3f& other) const { return x == other.x && y == other.y && z == other.z; }
	bool operator!=(const Vec3f& other) const { return !(*this == other); }
};

struct Vec2f
{
	float u, v;

	bool operator==(const Vec2f& other) const { return u == other.u && v == other.v; }
	bool operator!=(const Vec2f& other) const { return !(*this == other); }
};

struct MeshTriangle
{
	uint32_t vertex_indices[3];
	uint32_t uv_indices[3];
	uint32_t tri_mat_index;
};

struct MeshQuad
{
	uint32_t vertex_indices[4];
	uint32_t uv_indices[4];
	uint32_t mat_index;
};

// These types are stored in mesh files and hashed as raw memory: no padding.
static_assert(sizeof(Vec3f) == 12, "Vec3f must be three packed floats");
static_assert(sizeof(Vec2f) == 8, "Vec2f must be two packed floats");
static_assert(sizeof(MeshTriangle) == 28, "MeshTriangle must be seven packed words");
static_assert(sizeof(MeshQuad) == 36, "MeshQuad must be nine packed words");

// A triangle and quad soup as the renderer takes it: filled by the exporter
// and the model decoders, finalised with endOfModel(), stored as a .vlmesh
// file. Building operations throw VelornException on bad input and leave the
// mesh unchanged when they do.
class Mesh : public RefCounted
{
public:
	Mesh();

	// num_uv_mappings becomes the larger of its value and n; it never shrinks.
	void setMaxNumUVMappings(uint32_t n);
	// Appends name unless an equal name is already there.
	void addMaterialUsed(const String& name);

	void addVertex(const Vec3f& position);
	// Stores the normal scaled to unit length. A normal with an infinite or
	// NaN component is refused; a zero normal is taken as it is and ends up
	// non-finite.
	void addVertex(const Vec3f& position, const Vec3f& normal);
	// Appends one record of exactly num_uv_mappings pairs: uvs padded with
	// (0, 0) or cut short as needed.
	void addUVs(const Vector<Vec2f>& uvs);

	// Checks the indices; a triangle of (near) zero area is dropped silently.
	void addTriangle(const uint32_t (&vertex_indices)[3], const uint32_t (&uv_indices)[3], uint32_t material_index);
	// Checks the indices; a quad is always kept.
	void addQuad(const uint32_t (&vertex_indices)[4], const uint32_t (&uv_indices)[4], uint32_t material_index);

	// Checks the vector sizes, then computes the box, the bounding radius and
	// num_materials_referenced. Call once all geometry is in.
	void endOfModel();

	// Requires num_uv_mappings to be non-zero.
	size_t numUVRecords() const { return uv_pairs.size() / num_uv_mappings; }
	// Numbers polygons triangles first, then quads, each quad counting as two.
	uint32_t getMaterialIndex(size_t polygon_index) const;
	void getBounds(Vec3f& min_out, Vec3f& max_out, float& radius_out) const;

	// The CRC-32 of the mesh content and the byte count that goes with it;
	// together they name the mesh's file.
	uint32_t checksum(uint64_t& byte_count_out) const;

	// The size checks of endOfModel(), which writing a file repeats.
	void checkSizes() const;

	uint32_t num_uv_mappings;
	Vector<String> used_materials;
	Vector<Vec3f> verts;
	Vector<Vec3f> normals;
	uint32_t uv_layout;
	Vector<Vec2f> uv_pairs;
	Vector<MeshTriangle> triangles;
	Vector<MeshQuad> quads;
	Vec3f aabb_min, aabb_max;
	float bounding_radius;
	uint32_t num_materials_referenced;

private:
	template <size_t N>
	void checkIndices(const uint32_t (&vertex_indices)[N], const uint32_t (&uv_indices)[N], const char* polygon_kind) const;
};

} // namespace Velorn
