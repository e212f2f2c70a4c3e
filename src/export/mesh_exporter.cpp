#include "export/mesh_exporter.h"

#include "c4d/console.h"
#include "c4d/host_clock.h"
#include "c4d/polygon_object.h"
#include "c4d/uv_projection.h"
#include "export/host_space.h"
#include "host/plugin_ids.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <string>

using Velorn::Mesh;
using Velorn::Reference;
using Velorn::Vec2f;
using Velorn::Vec3f;

namespace
{

// The Phong angle a tag without the parameter stands for: 89 degrees, as
// the tag stores angles, in radians.
const double default_phong_angle = 89.0 * 3.14159265358979323846 / 180.0;

const PolygonObject* polygonObject(const BaseObject* object) { return dynamic_cast<const PolygonObject*>(object); }

const UVWTag* uvwTagOf(const BaseObject& object) { return dynamic_cast<const UVWTag*>(object.GetTag(Tuvw)); }

// Calls f(first, last) with each range of the selection, cut off below
// count, ascending.
template <class F>
void forEachRange(const BaseSelect& selection, int32_t count, F f)
{
	int32_t first, last;
	for(int32_t seg = 0; selection.GetRange(seg, count, &first, &last); ++seg)
		f(first, last);
}

// Calls f with each index of the selection below count, ascending.
template <class F>
void forEachSelected(const BaseSelect& selection, int32_t count, F f)
{
	forEachRange(selection, count, [&f](int32_t first, int32_t last) {
		for(int32_t i = first; i <= last; ++i)
			f(i);
	});
}

// One material stage: the polygons of a selection tag, or (without a tag)
// the polygons that no selection names.
struct Stage
{
	const SelectionTag* selection_tag;
	const BaseSelect* polygons;
};

// The stages of a polygon object: every polygon selection tag with a
// non-empty selection, in tag order, then the rest of the polygons if any.
class MaterialStages
{
public:
	explicit MaterialStages(const PolygonObject& object)
	{
		const int32_t count = object.GetPolygonCount();
		BaseSelect named;
		for(const BaseTag* tag = object.GetFirstTag(); tag; tag = tag->GetNext())
		{
			const SelectionTag* selection =
				tag->GetType() == Tpolygonselection ? dynamic_cast<const SelectionTag*>(tag) : nullptr;
			if(!selection || selection->GetBaseSelect()->GetCount() == 0)
				continue;
			stages.push_back(Stage{selection, selection->GetBaseSelect()});
			forEachRange(*selection->GetBaseSelect(), count, [&named](int32_t first, int32_t last) {
				named.SelectAll(first, last);
			});
		}
		if(count > 0)
			remainder.SelectAll(0, count - 1);
		forEachRange(named, count, [this](int32_t first, int32_t last) { remainder.DeselectAll(first, last); });
		if(remainder.GetCount() > 0)
			stages.push_back(Stage{nullptr, &remainder});
	}
	MaterialStages(const MaterialStages&) = delete;
	MaterialStages& operator=(const MaterialStages&) = delete;

	std::vector<Stage>::const_iterator begin() const { return stages.begin(); }
	std::vector<Stage>::const_iterator end() const { return stages.end(); }

private:
	BaseSelect remainder;
	std::vector<Stage> stages;
};

// The placement of a texture in UV space, as its tag holds it.
struct TexturePlacement
{
	explicit TexturePlacement(const TextureTag& tag)
	{
		const BaseContainer& data = *tag.GetDataInstance();
		offset_u = (float)data.GetFloat(TEXTURETAG_OFFSETX, 0.0);
		offset_v = (float)data.GetFloat(TEXTURETAG_OFFSETY, 0.0);
		length_u = (float)data.GetFloat(TEXTURETAG_LENGTHX, 1.0);
		length_v = (float)data.GetFloat(TEXTURETAG_LENGTHY, 1.0);
		projection = data.GetInt32(TEXTURETAG_PROJECTION, TEXTURETAG_PROJECTION_UVW);
	}

	float offset_u, offset_v, length_u, length_v;
	int32_t projection;
};

// The UVs of one polygon's corners a, b, c, d in the host's orientation.
struct PolygonUVs
{
	Vec2f corner[4];
};

PolygonUVs polygonUVs(const UVWStruct& r)
{
	return PolygonUVs{{{(float)r.a.x, (float)r.a.y}, {(float)r.b.x, (float)r.b.y}, {(float)r.c.x, (float)r.c.y},
		{(float)r.d.x, (float)r.d.y}}};
}

struct FreeUVWTag
{
	void operator()(UVWTag* tag) const { GeListNode::Free(tag); }
};

// The UVs of every polygon: the object's UVW tag, then, for each stage whose
// texture tag has a material, the UVs of that tag's projection placed by its
// offset and length. A selection prefers the projection to the object's
// UVW tag; the rest of the polygons prefer the UVW tag. A polygon that gets
// no UVs from either keeps those it has.
std::vector<PolygonUVs> workingUVs(const PolygonObject& object, const MaterialStages& stages)
{
	const int32_t count = object.GetPolygonCount();
	std::vector<PolygonUVs> uvs(count);
	const UVWTag* own = uvwTagOf(object);
	if(own)
		for(int32_t i = 0; i < std::min(count, own->GetDataCount()); ++i)
			uvs[i] = polygonUVs(own->Get(i));

	for(const Stage& stage : stages)
	{
		const TextureTag* tag = findTextureTag(&object, stage.selection_tag);
		if(!tag || !tag->GetMaterial())
			continue;
		const TexturePlacement placement(*tag);
		const UVWTag* source = own;
		std::unique_ptr<UVWTag, FreeUVWTag> generated;
		// UVW mapping hands back the object's own UVW tag: no need to copy it.
		if(placement.projection != TEXTURETAG_PROJECTION_UVW && (stage.selection_tag || !own))
		{
			generated.reset(GenerateUVW(&object, object.GetMg(), tag, tag->GetMg()));
			if(generated)
				source = generated.get();
		}
		const float scale_u = 1.0f / placement.length_u, scale_v = 1.0f / placement.length_v;
		const float offset_u = -placement.offset_u * scale_u, offset_v = -placement.offset_v * scale_v;
		forEachSelected(*stage.polygons, count, [&](int32_t i) {
			if(source && i < source->GetDataCount())
				uvs[i] = polygonUVs(source->Get(i));
			for(Vec2f& uv : uvs[i].corner)
				uv = Vec2f{uv.u * scale_u + offset_u, uv.v * scale_v + offset_v};
		});
	}
	return uvs;
}

// The UID of a stage's material: the light material for a light's shape;
// otherwise the exported material of the stage's texture tag, or the
// default material.
Velorn::UID stageMaterial(const BaseObject& object, const Stage& stage, bool is_light, const MaterialContext& context)
{
	if(is_light)
		return context.light_material;
	const TextureTag* tag = findTextureTag(&object, stage.selection_tag);
	BaseMaterial* material = tag ? tag->GetMaterial() : nullptr;
	if(material && context.material_map)
	{
		const auto found = context.material_map->find(material);
		if(found != context.material_map->end() && found->second.valid())
			return found->second;
	}
	return context.default_material;
}

// One UID per stage: the stage's material index is its position.
void assignMaterials(const PolygonObject& object, const MaterialStages& stages, bool is_light, MaterialContext& context)
{
	context.material_uids.clear();
	for(const Stage& stage : stages)
		context.material_uids.push_back(stageMaterial(object, stage, is_light, context));
}

// The bits of a float for hashing, with -0 made 0, as the two compare equal.
uint64_t hashBits(float f)
{
	f += 0.0f;
	uint32_t bits;
	std::memcpy(&bits, &f, sizeof bits);
	return bits;
}

// A 64-bit mix of two 64-bit words (the multipliers of splitmix and of
// xxHash), with the high bits folded down, since tables index by the low bits.
size_t mixHash(uint64_t a, uint64_t b)
{
	uint64_t h = a * 0x9E3779B97F4A7C15ull ^ b * 0xC2B2AE3D27D4EB4Full;
	h ^= h >> 29;
	h *= 0xBF58476D1CE4E5B9ull;
	return (size_t)(h ^ (h >> 32));
}

size_t hashOf(const MeshExporter::Vertex& v)
{
	const size_t h = mixHash(hashBits(v.position.x) | hashBits(v.position.y) << 32,
		hashBits(v.position.z) | hashBits(v.normal.x) << 32);
	return mixHash(h, hashBits(v.normal.y) | hashBits(v.normal.z) << 32);
}

size_t hashOf(const Vec2f& uv) { return mixHash(hashBits(uv.u), hashBits(uv.v)); }

bool operator==(const MeshExporter::Vertex& a, const MeshExporter::Vertex& b)
{
	return a.position == b.position && a.normal == b.normal;
}

// The index of a key among the keys that an array already holds, where the
// array is one the builder fills anyway (its vertices, the mesh's UV pairs).
// The table keeps only 4-byte indices into it, open addressed, at most half
// full: 8 to 16 bytes per distinct key besides the key itself. Keys match
// when == says so: 0 and -0 match, and a key with a NaN matches nothing.
template <class Key>
class IndexTable
{
public:
	// The index of the key equal to key among keys[0 .. count); count, entered
	// for key, when there is none: the caller then appends key there.
	uint32_t findOrAdd(const Key& key, const Key* keys, uint32_t count)
	{
		if(((size_t)count + 1) * 2 > slots.size())
			rehash(keys, count);
		for(size_t i = hashOf(key) & mask;; i = (i + 1) & mask)
		{
			const uint32_t slot = slots[i];
			if(slot == empty)
			{
				slots[i] = count;
				return count;
			}
			if(keys[slot] == key)
				return slot;
		}
	}

private:
	static constexpr uint32_t empty = 0xFFFFFFFFu;

	void rehash(const Key* keys, uint32_t count)
	{
		const size_t size = std::max<size_t>(16, slots.size() * 2);
		slots.assign(size, empty);
		mask = size - 1;
		for(uint32_t k = 0; k < count; ++k)
		{
			size_t i = hashOf(keys[k]) & mask;
			while(slots[i] != empty)
				i = (i + 1) & mask;
			slots[i] = k;
		}
	}

	std::vector<uint32_t> slots;
	size_t mask = 0;
};

Vec3f meshPosition(const Vector& p, float scale)
{
	return Vec3f{(float)p.x * scale, (float)p.z * scale, (float)p.y * scale};
}

// A Phong normal made usable: a (near) zero normal points along x, one of
// length 1 stays as it is, any other is scaled to length 1.
Vec3f meshNormal(const Vector& n)
{
	const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
	if(length < 1e-7)
		return Vec3f{1, 0, 0};
	const double f = std::fabs(length - 1.0) > 1e-7 ? 1.0 / length : 1.0;
	return Vec3f{(float)(n.x * f), (float)(n.z * f), (float)(n.y * f)};
}

Vec2f meshUV(const Vec2f& uv) { return Vec2f{uv.u, 1.0f - uv.v}; }

// Turns the polygons of one object into the mesh's polygons, vertices and UV
// pairs. Merging gives equal (position, normal) keys and equal UV pairs one
// index each; otherwise every corner gets its own. Nothing is reserved:
// the arrays grow as the corners come.
class PolygonBuilder
{
public:
	// The normals come first, while nothing else of the build takes memory
	// beside the host's own working arrays.
	PolygonBuilder(const PolygonObject& object, float scale_, bool has_phong, bool merge_, const MaterialStages& stages,
		std::vector<MeshExporter::Vertex>& vertices_, Mesh& mesh_)
		: points(object.GetPointR()),
		  point_count(object.GetPointCount()),
		  polygons(object.GetPolygonR()),
		  scale(scale_),
		  merge(merge_),
		  normals(has_phong ? meshNormals(object) : std::vector<Vec3f>()),
		  uvs(workingUVs(object, stages)),
		  vertices(vertices_),
		  mesh(mesh_),
		  last_vertex(merge ? point_count : 0, no_index),
		  last_uv(merge ? point_count : 0, no_index)
	{
	}

	// Polygon i with the stage's material index; false, adding nothing, when
	// one of its corners indexes a point that does not exist.
	bool add(int32_t i, uint32_t material_index)
	{
		const CPolygon& polygon = polygons[i];
		if(!polygon.IsWithin(point_count))
			return false;
		const int32_t corners[4] = {polygon.a, polygon.b, polygon.c, polygon.d};
		const int corner_count = polygon.IsTriangle() ? 3 : 4;
		uint32_t vertex_indices[4], uv_indices[4];
		for(int k = 0; k < corner_count; ++k)
		{
			const int32_t point = corners[k];
			const MeshExporter::Vertex vertex{meshPosition(points[point], scale), normal(i, k)};
			vertex_indices[k] = indexOf(vertex, vertices, vertex_table, last_vertex, point);
			uv_indices[k] = indexOf(meshUV(uvs[i].corner[k]), mesh.uv_pairs, uv_table, last_uv, point);
		}
		// Appended as they are: the vertices reach the mesh only at the end,
		// and the exporter keeps every polygon, degenerate or not.
		if(corner_count == 3)
			mesh.triangles.push_back(Velorn::MeshTriangle{{vertex_indices[0], vertex_indices[1], vertex_indices[2]},
				{uv_indices[0], uv_indices[1], uv_indices[2]}, material_index});
		else
			mesh.quads.push_back(
				Velorn::MeshQuad{{vertex_indices[0], vertex_indices[1], vertex_indices[2], vertex_indices[3]},
					{uv_indices[0], uv_indices[1], uv_indices[2], uv_indices[3]}, material_index});
		return true;
	}

private:
	// The host's Phong normals of the polygons' corners, four per polygon,
	// made usable and in the mesh's axes: half the memory of the host's.
	static std::vector<Vec3f> meshNormals(const PolygonObject& object)
	{
		const std::vector<Vector> host = object.CreatePhongNormals();
		std::vector<Vec3f> normals(host.size());
		std::transform(host.begin(), host.end(), normals.begin(), meshNormal);
		return normals;
	}

	// Without a Phong tag the normal is left zero.
	Vec3f normal(int32_t polygon, int corner) const
	{
		const size_t at = (size_t)polygon * 4 + corner;
		return at < normals.size() ? normals[at] : Vec3f{0, 0, 0};
	}

	// The index of a corner's key (vertex or UV pair) in keys, appending it
	// when it is new. Merging first tries the index that the corner's point
	// got last: neighbouring polygons share points, and mostly their keys
	// too, so the table is asked only when that fails. Merged keys are
	// unique, so the answer is the table's either way.
	template <class Key, class Keys>
	uint32_t indexOf(
		const Key& key, Keys& keys, IndexTable<Key>& table, std::vector<uint32_t>& last_of_point, int32_t point)
	{
		const uint32_t count = (uint32_t)keys.size();
		uint32_t index = count;
		if(merge)
		{
			uint32_t& last = last_of_point[point];
			if(last < count && keys[last] == key)
				return last;
			index = last = table.findOrAdd(key, keys.data(), count);
		}
		if(index == count)
			keys.push_back(key);
		return index;
	}

	const Vector* points;
	int32_t point_count;
	const CPolygon* polygons;
	float scale;
	bool merge;
	std::vector<Vec3f> normals;
	std::vector<PolygonUVs> uvs;
	std::vector<MeshExporter::Vertex>& vertices;
	Mesh& mesh;
	IndexTable<MeshExporter::Vertex> vertex_table;
	IndexTable<Vec2f> uv_table;
	// By point: the vertex and UV index that a corner at the point got last.
	static constexpr uint32_t no_index = 0xFFFFFFFFu;
	std::vector<uint32_t> last_vertex;
	std::vector<uint32_t> last_uv;
};

// Adds the polygons stage by stage, each with the stage's material index
// and name ("default" and the index); a polygon in two stages goes with the
// first. The number of polygons left out for indexing missing points.
int32_t addPolygons(const PolygonObject& object, const MaterialStages& stages, float scale, bool has_phong,
	bool merge, std::vector<MeshExporter::Vertex>& vertices, Mesh& mesh)
{
	PolygonBuilder builder(object, scale, has_phong, merge, stages, vertices, mesh);
	std::vector<bool> taken(object.GetPolygonCount());
	int32_t skipped = 0;
	uint32_t material_index = 0;
	for(const Stage& stage : stages)
	{
		mesh.used_materials.push_back(Velorn::String("default" + std::to_string(material_index)));
		forEachSelected(*stage.polygons, object.GetPolygonCount(), [&](int32_t i) {
			if(taken[i])
				return;
			taken[i] = true;
			if(!builder.add(i, material_index))
				++skipped;
		});
		++material_index;
	}
	return skipped;
}

// The positions into the mesh, and the normals when there are any.
void copyVertices(const std::vector<MeshExporter::Vertex>& vertices, bool normals, Mesh& mesh)
{
	mesh.verts.resize(vertices.size());
	for(size_t i = 0; i < vertices.size(); ++i)
		mesh.verts[i] = vertices[i].position;
	if(!normals)
		return;
	mesh.normals.resize(vertices.size());
	for(size_t i = 0; i < vertices.size(); ++i)
		mesh.normals[i] = vertices[i].normal;
}

// Milliseconds as seconds with three decimals ("1.250"), whatever the locale.
String secondsText(double ms)
{
	const long long total = std::llround(std::max(ms, 0.0));
	const std::string fraction = std::to_string(1000 + total % 1000).substr(1);
	return String(std::to_string(total / 1000) + "." + fraction);
}

// A CRC-32 fed with the raw bytes of values as 32-bit words.
class Checksum
{
public:
	void add(const void* data, size_t size) { crc = crc32_z(crc, static_cast<const Bytef*>(data), size); }
	void addInt(int32_t v) { add(&v, sizeof v); }
	void addFloat(float v) { add(&v, sizeof v); }
	void addVector(const Vector& v)
	{
		const float xyz[3] = {(float)v.x, (float)v.y, (float)v.z};
		add(xyz, sizeof xyz);
	}
	// The host's double vectors, as the 32-bit floats the checksum is made of.
	void addVectors(const Vector* v, size_t count)
	{
		float buffer[3 * 1024];
		while(count > 0)
		{
			const size_t n = std::min<size_t>(count, 1024);
			for(size_t i = 0; i < n; ++i)
			{
				buffer[3 * i] = (float)v[i].x;
				buffer[3 * i + 1] = (float)v[i].y;
				buffer[3 * i + 2] = (float)v[i].z;
			}
			add(buffer, n * 3 * sizeof(float));
			v += n;
			count -= n;
		}
	}
	uint32_t value() const { return (uint32_t)crc; }

private:
	uLong crc = 0;
};

static_assert(sizeof(CPolygon) == 16, "polygons are hashed as four 32-bit indices");
static_assert(sizeof(UVWStruct) == 4 * sizeof(Vector), "a UVW record is four vectors");

} // namespace

MaterialContext::MaterialContext(const ExportSettings& settings)
	: material_map(&settings.material_map),
	  default_material(settings.default_material),
	  light_material(settings.light_material)
{
}

const TextureTag* findTextureTag(const BaseObject* object, const SelectionTag* selection_tag)
{
	for(; object; object = objectAbove(object))
	{
		const TextureTag* found = nullptr;
		for(const BaseTag* tag = object->GetFirstTag(); tag; tag = tag->GetNext())
		{
			const TextureTag* texture = tag->GetType() == Ttexture ? dynamic_cast<const TextureTag*>(tag) : nullptr;
			if(!texture)
				continue;
			const String restriction = texture->GetDataInstance()->GetString(TEXTURETAG_RESTRICTION);
			if(!restriction.Content() || (selection_tag && restriction == selection_tag->GetName()))
				found = texture;
		}
		if(found)
			return found;
	}
	return nullptr;
}

void listTextureMaterials(const BaseObject* object, std::vector<TextureMaterial>& out)
{
	out.clear();
	const PolygonObject* polygon_object = polygonObject(object);
	if(!polygon_object)
		return;
	for(const Stage& stage : MaterialStages(*polygon_object))
	{
		const TextureTag* tag = findTextureTag(object, stage.selection_tag);
		BaseMaterial* material = tag ? tag->GetMaterial() : nullptr;
		const auto same = [material](const TextureMaterial& m) { return m.material == material; };
		if(material && std::none_of(out.begin(), out.end(), same))
			out.push_back(TextureMaterial{material, tag});
	}
}

uint32_t meshChecksum(const BaseObject* object, const std::vector<TextureMaterial>& materials, bool is_light,
	float scale)
{
	const PolygonObject* polygon_object = polygonObject(object);
	if(!polygon_object)
		return 0;
	Checksum crc;
	if(const UVWTag* uvw = uvwTagOf(*polygon_object))
		crc.addVectors(&uvw->GetDataAddressR()->a, (size_t)uvw->GetDataCount() * 4);
	crc.addVectors(polygon_object->GetPointR(), (size_t)polygon_object->GetPointCount());
	crc.add(polygon_object->GetPolygonR(), (size_t)polygon_object->GetPolygonCount() * sizeof(CPolygon));
	for(const TextureMaterial& m : materials)
	{
		const TexturePlacement placement(*m.tag);
		crc.addFloat(-placement.offset_u);
		crc.addFloat(-placement.offset_v);
		crc.addFloat(placement.length_u);
		crc.addFloat(placement.length_v);
		crc.addInt(placement.projection);
		if(placement.projection != TEXTURETAG_PROJECTION_UVW)
		{
			const Matrix& ml = m.tag->GetMl();
			for(const Vector& v : {ml.off, ml.v1, ml.v2, ml.v3})
				crc.addVector(v);
		}
	}
	if(const BaseTag* phong = polygon_object->GetTag(Tphong))
	{
		const BaseContainer& data = *phong->GetDataInstance();
		crc.addInt(data.GetInt32(PHONGTAG_PHONG_ANGLELIMIT));
		crc.addInt(data.GetInt32(PHONGTAG_PHONG_USEEDGES));
		crc.addFloat((float)data.GetFloat(PHONGTAG_PHONG_ANGLE, default_phong_angle));
	}
	crc.addInt(is_light ? 1 : 0);
	crc.addFloat(scale);
	return crc.value();
}

Reference<Velorn::SceneNodeMesh> makeMeshNode(const BaseObject* object, const Reference<Mesh>& mesh,
	int32_t merge_vertices, Velorn::SceneNode& root)
{
	Reference<Velorn::SceneNodeMesh> node = new Velorn::SceneNodeMesh();
	node->normal_smoothing = object && object->GetTag(Tphong);
	node->merge_vertices_with_same_pos_and_normal = !merge_vertices;
	node->setMesh(mesh);
	if(const BaseTag* tag = object ? object->GetTag(ID_SUBDIVISION_TAG) : nullptr)
	{
		const BaseContainer& data = *tag->GetDataInstance();
		node->max_num_subdivisions = data.GetInt32(st_max_subdivisions, node->max_num_subdivisions);
		node->subdivide_pixel_threshold = data.GetFloat(st_pixel_threshold, node->subdivide_pixel_threshold);
		node->subdivide_curvature_threshold =
			data.GetFloat(st_curvature_threshold, node->subdivide_curvature_threshold);
		node->displacement_error_threshold = data.GetFloat(st_displacement_error, node->displacement_error_threshold);
		node->view_dependent_subdivision = data.GetBool(st_view_dependent, node->view_dependent_subdivision);
		node->subdivision_smoothing = data.GetBool(st_smoothing, node->subdivision_smoothing);
	}
	root.addChildNode(node);
	return node;
}

Reference<Mesh> MeshExporter::build(BaseDocument* doc, const BaseObject* object, float scale_, bool is_light,
	bool merge_vertices, bool verbose, MaterialContext& context)
{
	const double start = GeGetMilliSeconds();
	document = doc;
	scale = scale_;
	polygon_count = vertex_count = uv_count = 0;
	has_phong = false;
	vertices.clear();
	mesh = nullptr;
	const PolygonObject* polygon_object = polygonObject(object);
	if(!polygon_object)
		return mesh;
	has_phong = polygon_object->GetTag(Tphong) != nullptr;
	mesh = new Mesh();

	const MaterialStages stages(*polygon_object);
	assignMaterials(*polygon_object, stages, is_light, context);
	int32_t skipped = 0;
	try
	{
		skipped = addPolygons(*polygon_object, stages, scale, has_phong, merge_vertices, vertices, *mesh);
		copyVertices(vertices, has_phong, *mesh);
	}
	catch(const std::bad_alloc&)
	{
		// Out of memory for the working copies: the export goes on with a
		// mesh without polygons.
		mesh = new Mesh();
		vertices.clear();
	}
	vertex_count = (int32_t)vertices.size();
	std::vector<Vertex>().swap(vertices);
	polygon_count = (int32_t)(mesh->triangles.size() + mesh->quads.size());
	uv_count = (int32_t)mesh->uv_pairs.size();
	mesh->setMaxNumUVMappings(1);
	mesh->endOfModel();

	const String name = object->GetName();
	if(skipped > 0)
		GePrint("--Skipped " + String::IntToString(skipped) + " polygons of " + name +
				": they index points that the object does not have");
	if(verbose)
	{
		// Two readings of the timer, as the console has always shown them.
		const double processing = GeGetMilliSeconds() - start;
		const double exporting = GeGetMilliSeconds() - start;
		GePrint("--Exported " + name + ": " + String::IntToString(polygon_count) + " Faces, " +
				String::IntToString(vertex_count) + " Vertices, " + String::IntToString(uv_count) +
				" UVs. Processing Time: " + secondsText(processing) + "s. Export Time: " + secondsText(exporting) +
				"s");
	}
	return mesh;
}

void MeshExporter::rebuildMaterialList(const BaseObject* object, bool is_light, MaterialContext& context)
{
	context.material_uids.clear();
	const PolygonObject* polygon_object = polygonObject(object);
	if(polygon_object)
		assignMaterials(*polygon_object, MaterialStages(*polygon_object), is_light, context);
}
