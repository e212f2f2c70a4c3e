#pragma once

#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/base_object.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"
#include "export/export_settings.h"

#include "mesh/mesh.h"
#include "scene/scene_node_mesh.h"
#include "scene/uid.h"

#include <cstdint>
#include <map>
#include <vector>

// The material side of one mesh extraction. The caller hands in the
// materials exported so far and the driver's fallbacks; the extraction
// hands back one UID per material stage, so that a model's material list
// follows the mesh's material indices.
struct MaterialContext
{
	MaterialContext() = default;
	// The settings' material map and the default and light materials as
	// they are now.
	explicit MaterialContext(const ExportSettings& settings);

	// Not owned; null counts as an empty map.
	const std::map<BaseMaterial*, Velorn::UID>* material_map = nullptr;
	Velorn::UID default_material;
	Velorn::UID light_material;
	// Output: the UID of each stage, by material index.
	std::vector<Velorn::UID> material_uids;
};

// A material an object uses, with the texture tag through which it was
// reached first: the tag's offsets, lengths and projection shape the UVs.
struct TextureMaterial
{
	BaseMaterial* material;
	const TextureTag* tag;

	bool operator==(const TextureMaterial& o) const { return material == o.material && tag == o.tag; }
};

// The texture tag that puts a material on the selection (or, without one,
// on the whole object): from the object up through its parents, a cache
// counting as the child of its generator; on each object the last texture
// tag that is unrestricted or restricted to the selection's name. Null if
// none is found.
const TextureTag* findTextureTag(const BaseObject* object, const SelectionTag* selection_tag);

// The distinct materials that the object's polygon selections and the rest
// of its polygons reach through their texture tags, in first-use order.
// Texture tags without a material add nothing.
void listTextureMaterials(const BaseObject* object, std::vector<TextureMaterial>& out);

// The CRC-32 that tells equal meshes apart within one export: over the UVW
// tag, the points, the polygons, the placement of each material's texture
// tag, the Phong settings, the light flag and the scale. 0 for an object
// that is no polygon object.
uint32_t meshChecksum(const BaseObject* object, const std::vector<TextureMaterial>& materials, bool is_light,
	float scale);

// The mesh node for mesh, with smoothing from the object's Phong tag and the
// subdivision settings of its subdivision tag, added to root. With
// merge_vertices set the exporter has merged the vertices already, so the
// renderer is told not to.
Velorn::Reference<Velorn::SceneNodeMesh> makeMeshNode(const BaseObject* object,
	const Velorn::Reference<Velorn::Mesh>& mesh, int32_t merge_vertices, Velorn::SceneNode& root);

// One extraction of a host polygon object into a renderer mesh. Polygons
// are assigned to materials stage by stage: each non-empty polygon
// selection tag in tag order, then the polygons that no selection names.
// Positions, normals and UVs change from the host's Y-up to the renderer's
// Z-up space on the way.
class MeshExporter
{
public:
	// A mesh position with its normal; the normal stays zero without a
	// Phong tag.
	struct Vertex
	{
		Velorn::Vec3f position;
		Velorn::Vec3f normal;
	};

	// The mesh of object, finalised, with one UV set; null when object is
	// no polygon object. merge_vertices shares vertices with equal position
	// and normal, and equal UV pairs; otherwise every polygon corner gets a
	// vertex and a UV pair of its own. Polygons that index missing points
	// are left out and reported on the console. With verbose, a line of
	// statistics goes to the console.
	Velorn::Reference<Velorn::Mesh> build(BaseDocument* doc, const BaseObject* object, float scale_, bool is_light,
		bool merge_vertices, bool verbose, MaterialContext& context);
	// The material UIDs that build would hand back, without the geometry:
	// for an object whose mesh is used again.
	void rebuildMaterialList(const BaseObject* object, bool is_light, MaterialContext& context);

	BaseDocument* document = nullptr;
	// After build: the mesh's triangles and quads.
	int32_t polygon_count = 0;
	int32_t vertex_count = 0;
	int32_t uv_count = 0;
	bool has_phong = false;
	float scale = 1;
	Velorn::Reference<Velorn::Mesh> mesh;
	// The vertices being built; moved into the mesh at the end of build.
	std::vector<Vertex> vertices;
};
