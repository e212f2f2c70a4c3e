#include "export/export_test_helpers.h"
#include "export/mesh_exporter.h"

#include "c4d/polygon_object.h"
#include "c4d/uv_projection.h"
#include "scene/scene_node_root.h"

#include <zlib.h>

#include <cstring>
#include <map>
#include <memory>

using Velorn::Mesh;
using Velorn::Reference;
using Velorn::UID;
using Velorn::Vec2f;
using Velorn::Vec3f;

namespace
{

BaseTag* lastTag(BaseObject* op)
{
	BaseTag* tag = op->GetFirstTag();
	while(tag && tag->GetNext())
		tag = tag->GetNext();
	return tag;
}

// Builds the polygon objects, tags and materials of a test in one document,
// and runs the extraction with material UIDs 10, 11, ... for the materials
// made by material(), 1 as the default and 5 as the light material.
class MeshFixture : public ExportTest
{
protected:
	~MeshFixture() override { BaseDocument::Free(doc); }

	PolygonObject* polygonObject(
		const char* name, const std::vector<Vector>& points, const std::vector<CPolygon>& polygons)
	{
		PolygonObject* op = ::polygonObject(name, points, polygons);
		doc->InsertObject(op, nullptr, nullptr);
		return op;
	}
	// A material that the export knows (its UID in the map) or not.
	BaseMaterial* material(bool exported = true)
	{
		BaseMaterial* mat = BaseMaterial::Alloc(Mmaterial);
		doc->InsertMaterial(mat);
		if(exported)
			material_map[mat] = UID(10 + (uint32_t)material_map.size());
		return mat;
	}
	template <class Tag>
	Tag* append(BaseObject* op, Tag* tag)
	{
		op->InsertTag(tag, lastTag(op));
		return tag;
	}
	SelectionTag* selection(BaseObject* op, const char* name, std::initializer_list<int32_t> polygons)
	{
		SelectionTag* tag = append(op, SelectionTag::Alloc(Tpolygonselection));
		tag->SetName(name);
		for(int32_t i : polygons)
			tag->GetBaseSelect()->Select(i);
		return tag;
	}
	TextureTag* texture(BaseObject* op, BaseMaterial* mat, const char* restriction = "")
	{
		TextureTag* tag = append(op, TextureTag::Alloc());
		tag->SetMaterial(mat);
		tag->GetDataInstance()->SetString(TEXTURETAG_RESTRICTION, restriction);
		return tag;
	}
	UVWTag* uvw(BaseObject* op, const std::vector<UVWStruct>& records)
	{
		UVWTag* tag = append(op, UVWTag::Alloc((int32_t)records.size()));
		for(size_t i = 0; i < records.size(); ++i)
			tag->Set((int32_t)i, records[i]);
		return tag;
	}
	Reference<Mesh> build(BaseObject* op, bool merge, float scale = 1, bool is_light = false, bool verbose = false)
	{
		return exporter.build(doc, op, scale, is_light, merge, verbose, context());
	}
	MaterialContext& context()
	{
		materials.material_map = &material_map;
		materials.default_material = UID(1);
		materials.light_material = UID(5);
		return materials;
	}

	BaseDocument* doc = BaseDocument::Alloc();
	std::map<BaseMaterial*, UID> material_map;
	MaterialContext materials;
	MeshExporter exporter;
};

// The vertex (or UV) indices of a polygon of the mesh, triangles first.
std::vector<uint32_t> corners(const Mesh& mesh, size_t polygon, bool uv = false)
{
	const auto of = [uv](const auto& p, size_t n) {
		const uint32_t* first = uv ? p.uv_indices : p.vertex_indices;
		return std::vector<uint32_t>(first, first + n);
	};
	if(polygon < mesh.triangles.size())
		return of(mesh.triangles[polygon], 3);
	return of(mesh.quads[polygon - mesh.triangles.size()], 4);
}

using Names = Velorn::Vector<Velorn::String>;

UVWStruct uvRecord(Vec2f a, Vec2f b, Vec2f c, Vec2f d)
{
	return UVWStruct{Vector(a.u, a.v, 0), Vector(b.u, b.v, 0), Vector(c.u, c.v, 0), Vector(d.u, d.v, 0)};
}

// Two unit quads folded at a right angle along their shared edge p0-p3:
// a floor (y = 0) and a wall (x = 0). Corner UVs follow the points.
const std::vector<Vector> fold_points = {{0, 0, 0}, {1, 0, 0}, {1, 0, 1}, {0, 0, 1}, {0, 1, 1}, {0, 1, 0}};
const std::vector<CPolygon> fold_polygons = {{0, 1, 2, 3}, {0, 3, 4, 5}};
const Vec2f fold_uv[6] = {{0, 0}, {0.5f, 0}, {0.5f, 0.5f}, {0, 0.5f}, {0.25f, 0.75f}, {0.25f, 0.25f}};
const std::vector<UVWStruct> fold_uvw = {uvRecord(fold_uv[0], fold_uv[1], fold_uv[2], fold_uv[3]),
	uvRecord(fold_uv[0], fold_uv[3], fold_uv[4], fold_uv[5])};

template <class T>
void appendBytes(std::string& bytes, T value)
{
	bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

uint32_t crcOf(const std::string& bytes)
{
	return (uint32_t)crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), (uInt)bytes.size());
}

} // namespace

// Stages A {0, 1}, B {1, 7}, C {9} and the rest {2}: a polygon stays with
// its first stage, indices past the end are ignored, and every stage gets
// its own index, even one without polygons.
TEST_F(MeshFixture, SelectionsAssignPolygonsToMaterialStages)
{
	PolygonObject* op = polygonObject("Stages", {{0, 0, 0}, {1, 0, 0}, {1, 0, 1}, {0, 0, 1}, {2, 0, 0}, {2, 0, 1}},
		{{0, 1, 2, 3}, {1, 4, 5, 2}, {0, 1, 2}});
	SelectionTag* a = selection(op, "A", {0, 1});
	selection(op, "B", {1, 7});
	selection(op, "C", {9});
	selection(op, "Empty", {});
	BaseMaterial *ma = material(), *mb = material(), *unknown = material(false);
	TextureTag* rest = texture(op, unknown); // the later tags hide it from A and B
	texture(op, nullptr, "A");               // hidden by the later tag for A
	TextureTag* ta = texture(op, ma, "A");
	TextureTag* tb = texture(op, mb, "B");

	EXPECT_EQ(findTextureTag(op, a), ta);
	Reference<Mesh> mesh = build(op, true);
	EXPECT_EQ(materials.material_uids, (std::vector<UID>{UID(10), UID(11), UID(1), UID(1)}));
	EXPECT_EQ(mesh->used_materials, (Names{"default0", "default1", "default2", "default3"}));
	ASSERT_EQ(mesh->quads.size(), 2u);
	ASSERT_EQ(mesh->triangles.size(), 1u); // the quad with c == d
	EXPECT_EQ(mesh->quads[0].mat_index, 0u);
	EXPECT_EQ(mesh->quads[1].mat_index, 0u);
	EXPECT_EQ(mesh->triangles[0].tri_mat_index, 3u);
	EXPECT_EQ(corners(*mesh, 0), (std::vector<uint32_t>{0, 1, 2}));
	EXPECT_EQ(mesh->num_materials_referenced, 4u);

	std::vector<TextureMaterial> list;
	listTextureMaterials(op, list);
	EXPECT_EQ(list, (std::vector<TextureMaterial>{{ma, ta}, {mb, tb}, {unknown, rest}}));
	exporter.rebuildMaterialList(op, true, context());
	EXPECT_EQ(materials.material_uids, std::vector<UID>(4, UID(5)));
	exporter.rebuildMaterialList(op, false, context());
	EXPECT_EQ(materials.material_uids, (std::vector<UID>{UID(10), UID(11), UID(1), UID(1)}));
}

// A texture tag without a material gives its selection the default
// material; without selections there is one stage; a texture tag on the
// parent, or on the generator of a cache, applies to the object.
TEST_F(MeshFixture, TextureTagsWithoutMaterialAndFromAbove)
{
	PolygonObject* op = polygonObject("Sel", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, {{0, 1, 2}, {0, 2, 1}});
	selection(op, "S", {0});
	BaseMaterial* mx = material();
	TextureTag* tx = texture(op, mx);
	texture(op, nullptr, "S"); // the last tag that fits S
	build(op, true);
	EXPECT_EQ(materials.material_uids, (std::vector<UID>{UID(1), UID(10)}));
	std::vector<TextureMaterial> list;
	listTextureMaterials(op, list);
	EXPECT_EQ(list, (std::vector<TextureMaterial>{{mx, tx}}));

	PolygonObject* plain = polygonObject("Plain", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, {{0, 1, 2}});
	EXPECT_EQ(build(plain, false)->used_materials, Names{"default0"});
	EXPECT_EQ(materials.material_uids, std::vector<UID>{UID(1)});

	BaseObject* parent = BaseObject::Alloc(Onull);
	doc->InsertObject(parent, nullptr, nullptr);
	TextureTag* on_parent = texture(parent, mx);
	plain->InsertUnder(parent);
	EXPECT_EQ(findTextureTag(plain, nullptr), on_parent);
	BaseObject* generator = BaseObject::Alloc(Onull);
	doc->InsertObject(generator, nullptr, nullptr);
	TextureTag* on_generator = texture(generator, mx, "S2");
	PolygonObject* cached = PolygonObject::Alloc(0, 0);
	generator->SetCache(cached);
	EXPECT_EQ(findTextureTag(cached, selection(cached, "S2", {0})), on_generator);
	EXPECT_EQ(findTextureTag(cached, selection(cached, "S", {0})), nullptr);
	EXPECT_EQ(findTextureTag(cached, nullptr), nullptr);
}

// Merging shares equal (position, normal) keys and equal UVs; the folded
// edge keeps two normals with Phong, so its corners stay two vertices each.
// Positions go (x, z, y) * scale, normals (x, z, y), UVs (u, 1 - v).
TEST_F(MeshFixture, BuildersMergeOrKeepCorners)
{
	PolygonObject* op = polygonObject("Fold", fold_points, fold_polygons);
	uvw(op, fold_uvw);

	Reference<Mesh> merged = build(op, true, 2);
	EXPECT_EQ(merged->verts.size(), 6u);
	EXPECT_TRUE(merged->normals.empty());
	EXPECT_EQ(merged->uv_pairs.size(), 6u);
	EXPECT_EQ(merged->num_uv_mappings, 1u);
	EXPECT_EQ(corners(*merged, 1), (std::vector<uint32_t>{0, 3, 4, 5}));
	EXPECT_EQ(corners(*merged, 1, true), (std::vector<uint32_t>{0, 3, 4, 5}));
	EXPECT_EQ(merged->verts[2], (Vec3f{2, 2, 0}));
	EXPECT_EQ(merged->uv_pairs[1], (Vec2f{0.5f, 1}));

	Reference<Mesh> plain = build(op, false, 2);
	EXPECT_EQ(plain->verts.size(), 8u);
	EXPECT_EQ(plain->uv_pairs.size(), 8u);
	EXPECT_EQ(corners(*plain, 1), (std::vector<uint32_t>{4, 5, 6, 7}));
	EXPECT_EQ(plain->verts[6], (Vec3f{0, 2, 2}));
	EXPECT_EQ(plain->uv_pairs[5], (Vec2f{0, 0.5f}));

	BaseTag* phong = op->MakeTag(Tphong);
	phong->GetDataInstance()->SetBool(PHONGTAG_PHONG_ANGLELIMIT, true);
	phong->GetDataInstance()->SetFloat(PHONGTAG_PHONG_ANGLE, 0.5);
	Reference<Mesh> smooth = build(op, true, 2);
	EXPECT_EQ(smooth->verts.size(), 8u);
	EXPECT_EQ(smooth->uv_pairs.size(), 6u);
	EXPECT_EQ(corners(*smooth, 1), (std::vector<uint32_t>{4, 5, 6, 7}));
	const std::vector<Vector> host = op->CreatePhongNormals();
	for(size_t i = 0; i < 8; ++i)
	{
		SCOPED_TRACE(i);
		const Vector n = host[i];
		EXPECT_EQ(smooth->normals[i], (Vec3f{(float)n.x, (float)n.z, (float)n.y}));
		// The floor's normal is the host's y axis, the renderer's z; the wall's is x.
		EXPECT_EQ(std::fabs(i < 4 ? smooth->normals[i].z : smooth->normals[i].x), 1.0f);
	}

	PolygonObject* flat = polygonObject("Point", {{1, 1, 1}}, {{0, 0, 0, 0}});
	flat->MakeTag(Tphong);
	EXPECT_EQ(build(flat, true)->normals, (Velorn::Vector<Vec3f>{{1, 0, 0}}));
}

// A texture tag with a material places the UVs of its polygons by its
// offset and length: u * 2 - 1 and v * 4 - 1 for offset (0.5, 0.25) and
// length (0.5, 0.25). Without a material the UVs stay.
TEST_F(MeshFixture, TextureTagPlacesUVs)
{
	const Vec2f a{0.25f, 0.5f}, b{0.75f, 0.5f}, c{0.75f, 0.75f}, d{0.25f, 0.75f};
	PolygonObject* op = polygonObject("UV", fold_points, fold_polygons);
	uvw(op, {uvRecord(a, b, c, d), uvRecord(a, b, c, d)});
	selection(op, "S", {1});
	TextureTag* tag = texture(op, nullptr, "S");
	tag->GetDataInstance()->SetFloat(TEXTURETAG_OFFSETX, 0.5);
	tag->GetDataInstance()->SetFloat(TEXTURETAG_OFFSETY, 0.25);
	tag->GetDataInstance()->SetFloat(TEXTURETAG_LENGTHX, 0.5);
	tag->GetDataInstance()->SetFloat(TEXTURETAG_LENGTHY, 0.25);
	const Velorn::Vector<Vec2f> raw = {{0.25f, 0.5f}, {0.75f, 0.5f}, {0.75f, 0.25f}, {0.25f, 0.25f}};
	const Velorn::Vector<Vec2f> placed = {{-0.5f, 0}, {0.5f, 0}, {0.5f, -1}, {-0.5f, -1}};
	// The selection's polygon 1 comes first, then the rest, polygon 0.
	Velorn::Vector<Vec2f> expected = raw;
	expected.append(raw.data(), 4);
	EXPECT_EQ(build(op, false)->uv_pairs, expected);

	tag->SetMaterial(material());
	expected = placed;
	expected.append(raw.data(), 4);
	EXPECT_EQ(build(op, false)->uv_pairs, expected);
}

// Without a UVW tag the UVs come from the projection of the last
// unrestricted texture tag, which has a material.
TEST_F(MeshFixture, ProjectionGivesUVsWithoutUVWTag)
{
	PolygonObject* op = polygonObject("Projected", fold_points, fold_polygons);
	op->SetMl(Matrix(Vector(3, 1, 2), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)));
	TextureTag* first = texture(op, material());
	first->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, TEXTURETAG_PROJECTION_FLAT);
	TextureTag* last = texture(op, material());
	last->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, TEXTURETAG_PROJECTION_CUBIC);
	texture(op, nullptr, "Elsewhere");

	// The host's projection of a tag, as the mesh's UV pairs (u, 1 - v).
	const auto projected = [op](const TextureTag* tag) {
		std::unique_ptr<UVWTag, void (*)(UVWTag*)> host(
			GenerateUVW(op, op->GetMg(), tag, tag->GetMg()), [](UVWTag* t) { GeListNode::Free(t); });
		Velorn::Vector<Vec2f> uvs;
		for(int32_t i = 0; host && i < host->GetDataCount(); ++i)
			for(const Vector& uv : {host->Get(i).a, host->Get(i).b, host->Get(i).c, host->Get(i).d})
				uvs.push_back(Vec2f{(float)uv.x, 1.0f - (float)uv.y});
		return uvs;
	};
	const Velorn::Vector<Vec2f> expected = projected(last);
	ASSERT_EQ(expected.size(), 8u);
	EXPECT_NE(expected, projected(first));
	EXPECT_EQ(build(op, false)->uv_pairs, expected);

	// With a UVW tag the rest of the polygons take it, while a selection
	// still takes its tag's projection.
	uvw(op, fold_uvw);
	selection(op, "S", {1});
	TextureTag* flat = texture(op, material(), "S");
	flat->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, TEXTURETAG_PROJECTION_FLAT);
	Velorn::Vector<Vec2f> mixed;
	mixed.append(projected(flat).data() + 4, 4);
	for(int i : {0, 1, 2, 3})
		mixed.push_back(Vec2f{fold_uv[i].u, 1.0f - fold_uv[i].v});
	EXPECT_EQ(build(op, false)->uv_pairs, mixed);
}

// The chain of the checksum worked out byte by byte, and what changes it.
TEST_F(MeshFixture, ChecksumCoversGeometryTagsAndFlags)
{
	EXPECT_EQ(meshChecksum(nullptr, {}, false, 1), 0u);
	PolygonObject* op = polygonObject("One", {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {{0, 1, 2}});
	uvw(op, {uvRecord({0.5f, 0.25f}, {1, 0}, {0, 1}, {0, 1})});
	TextureTag* tag = texture(op, material());
	tag->GetDataInstance()->SetFloat(TEXTURETAG_OFFSETX, 0.5);
	tag->GetDataInstance()->SetFloat(TEXTURETAG_LENGTHY, 4.0);
	tag->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, TEXTURETAG_PROJECTION_CUBIC);
	tag->SetMl(Matrix(Vector(1, 2, 3), Vector(2, 0, 0), Vector(0, 3, 0), Vector(0, 0, 4)));
	BaseTag* phong = op->MakeTag(Tphong);
	phong->GetDataInstance()->SetBool(PHONGTAG_PHONG_ANGLELIMIT, true);
	phong->GetDataInstance()->SetBool(PHONGTAG_PHONG_USEEDGES, false);
	phong->GetDataInstance()->SetFloat(PHONGTAG_PHONG_ANGLE, 0.75);
	std::vector<TextureMaterial> list;
	listTextureMaterials(op, list);
	ASSERT_EQ(list.size(), 1u);

	std::string bytes;
	for(float f : {0.5f, 0.25f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 1.0f, 0.0f}) // UVW record
		appendBytes(bytes, f);
	for(float f = 1; f <= 9; ++f) // points
		appendBytes(bytes, f);
	for(int32_t i : {0, 1, 2, 2}) // the triangle
		appendBytes(bytes, i);
	for(float f : {-0.5f, -0.0f, 1.0f, 4.0f}) // offsets negated, lengths
		appendBytes(bytes, f);
	appendBytes(bytes, (int32_t)TEXTURETAG_PROJECTION_CUBIC);
	for(float f : {1.0f, 2.0f, 3.0f, 2.0f, 0.0f, 0.0f, 0.0f, 3.0f, 0.0f, 0.0f, 0.0f, 4.0f}) // off, v1, v2, v3
		appendBytes(bytes, f);
	appendBytes(bytes, (int32_t)1); // angle limit
	appendBytes(bytes, (int32_t)0); // use edges
	appendBytes(bytes, 0.75f);
	appendBytes(bytes, (int32_t)1); // light
	appendBytes(bytes, 0.5f);
	EXPECT_EQ(meshChecksum(op, list, true, 0.5f), crcOf(bytes));
}

// The console: the statistics line when verbose, and one line for polygons
// that index points the object lacks, which are left out.
TEST_F(MeshFixture, ConsoleReportsStatisticsAndSkippedPolygons)
{
	PolygonObject* op = polygonObject("Box", fold_points, {{0, 1, 2, 3}});
	uvw(op, {fold_uvw[0]});
	build(op, true, 1, false, true);
	PolygonObject* broken =
		polygonObject("Broken", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, {{0, 1, 2}, {0, 1, 7}, {0, -1, 2, 1}});
	selection(broken, "Past", {1, 2, 40});
	broken->MakeTag(Tphong);
	Reference<Mesh> mesh = build(broken, true);
	EXPECT_EQ(mesh->triangles.size() + mesh->quads.size(), 1u);
	EXPECT_EQ(consoleLines(),
		(std::vector<String>{"--Exported Box: 1 Faces, 4 Vertices, 4 UVs. Processing Time: 0.000s. Export Time: 0.000s",
			"--Skipped 2 polygons of Broken: they index points that the object does not have"}));
}

TEST_F(MeshFixture, MeshNodeTakesPhongAndSubdivisionTag)
{
	registerPlainPlugins(PluginKind::Tag, {ID_SUBDIVISION_TAG});
	Velorn::SceneNodeRoot root;
	PolygonObject* op = polygonObject("Node", fold_points, fold_polygons);
	Reference<Mesh> mesh = build(op, true);
	Reference<Velorn::SceneNodeMesh> node = makeMeshNode(op, mesh, 1, root);
	EXPECT_EQ(node->mesh.getPointer(), mesh.getPointer());
	EXPECT_FALSE(node->normal_smoothing);
	EXPECT_FALSE(node->merge_vertices_with_same_pos_and_normal);
	EXPECT_EQ(node->max_num_subdivisions, 0);
	EXPECT_EQ(root.getChildren().back().getPointer(), node.getPointer());

	op->MakeTag(Tphong);
	BaseContainer& data = *op->MakeTag(ID_SUBDIVISION_TAG)->GetDataInstance();
	data.SetInt32(st_max_subdivisions, 3);
	data.SetFloat(st_pixel_threshold, 2.5);
	data.SetFloat(st_curvature_threshold, 0.25);
	data.SetBool(st_view_dependent, false);
	data.SetBool(st_smoothing, false);
	data.SetFloat(st_displacement_error, 0.125);
	node = makeMeshNode(op, mesh, 0, root);
	EXPECT_TRUE(node->normal_smoothing);
	EXPECT_TRUE(node->merge_vertices_with_same_pos_and_normal);
	EXPECT_EQ(node->max_num_subdivisions, 3);
	EXPECT_EQ((std::vector<double>{node->subdivide_pixel_threshold, node->subdivide_curvature_threshold,
				  node->displacement_error_threshold}),
		(std::vector<double>{2.5, 0.25, 0.125}));
	EXPECT_FALSE(node->view_dependent_subdivision);
	EXPECT_FALSE(node->subdivision_smoothing);
}
