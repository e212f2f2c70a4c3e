#pragma once

#include "mesh/mesh.h"
#include "scene/scene_node.h"

#include <string>

namespace Velorn
{

// One polygon mesh with its subdivision settings. The geometry itself goes
// into a .vlmesh file beside the scene, named by its content, and the scene
// text only points at it.
class SceneNodeMesh : public SceneNode
{
public:
	// Named "Mesh" and a process-wide running number.
	SceneNodeMesh();

	unsigned getType() const override { return SceneNodeType::Mesh; }
	Reference<SceneNode> clone() const override;
	// Also writes the mesh file.
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	bool doIsEqual(const SceneNode& other) const override;

	void setMesh(const Reference<Mesh>& m) { mesh = m; }

	// Where the mesh file of this node's mesh goes for a scene file:
	// <scene dir>/<scene name>_meshes/mesh_<crc>_<byte count>.vlmesh.
	std::string meshFilePath(const String& scene_dir, const String& scene_path) const;

	String path;
	Reference<Mesh> mesh;
	int32_t max_num_subdivisions = 0;
	double subdivide_pixel_threshold = 4;
	double subdivide_curvature_threshold = 0;
	double displacement_error_threshold = 0;
	bool view_dependent_subdivision = true;
	bool subdivision_smoothing = true;
	bool normal_smoothing = false;
	bool merge_vertices_with_same_pos_and_normal = true;
	bool wrap_u = false;
	bool wrap_v = false;
	double scale = 1;
};

} // namespace Velorn
