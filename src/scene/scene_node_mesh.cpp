#include "scene/scene_node_mesh.h"

#include "mesh/mesh_file.h"
#include "mesh/model_decoder.h"
#include "scene/xml_write.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/string_utils.h"

#include <atomic>

namespace Velorn
{

namespace
{

std::atomic<uint32_t> mesh_node_counter(0);

} // namespace

SceneNodeMesh::SceneNodeMesh() { name = "Mesh" + toString(mesh_node_counter++); }

Reference<SceneNode> SceneNodeMesh::clone() const
{
	printNotImplemented("SceneNodeMesh::clone() not yet implemented");
	return Reference<SceneNode>();
}

std::string SceneNodeMesh::meshFilePath(const String& scene_dir, const String& scene_path) const
{
	if(mesh.isNull())
		throw VelornException("Mesh node '" + getName().str() + "' has no mesh to name its file by.");
	const std::string scene_name = FileUtils::eatExtension(FileUtils::getFilename(FileUtils::toPlatformSeparators(scene_path.str())));
	const std::string dir = FileUtils::join(scene_dir.str(), scene_name + "_meshes");
	uint64_t byte_count = 0;
	const uint32_t crc = mesh->checksum(byte_count);
	return FileUtils::join(dir, "mesh_" + toString(crc) + "_" + toString(byte_count) + ".vlmesh");
}

void SceneNodeMesh::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	using namespace XMLWrite;
	const unsigned d = depth + 1;
	writeOpenTag(stream, depth, "mesh");
	writeUIDAndName(stream, d);
	writeInt(stream, d, "max_num_subdivisions", max_num_subdivisions);
	writeDouble(stream, d, "subdivide_pixel_threshold", subdivide_pixel_threshold);
	writeDouble(stream, d, "subdivide_curvature_threshold", subdivide_curvature_threshold);
	writeDouble(stream, d, "displacement_error_threshold", displacement_error_threshold);
	writeBool(stream, d, "view_dependent_subdivision", view_dependent_subdivision);
	writeBool(stream, d, "subdivision_smoothing", subdivision_smoothing);
	writeBool(stream, d, "normal_smoothing", normal_smoothing);
	writeBool(stream, d, "merge_vertices_with_same_pos_and_normal", merge_vertices_with_same_pos_and_normal);
	writeBool(stream, d, "wrap_u", wrap_u);
	writeBool(stream, d, "wrap_v", wrap_v);
	// Every mesh element has always held this one twice; readers take it.
	writeBool(stream, d, "view_dependent_subdivision", view_dependent_subdivision);
	writeDouble(stream, d, "scale", scale);

	const std::string file_path = meshFilePath(context.scene_dir, context.scene_path);
	FileUtils::createDirsForPath(FileUtils::getDirectory(file_path));
	writeMeshToFile(file_path, *mesh);

	writeOpenTag(stream, d, "external");
	writePath(stream, d + 1, "path", String(file_path), context);
	writeCloseTag(stream, d, "external");
	writeCloseTag(stream, depth, "mesh");
}

void SceneNodeMesh::doVisit(VisitOperation& op)
{
	switch(op.type)
	{
	case VisitOperation::GetDependencies:
		op.dependency_paths.push_back(op.use_stored_paths ? path : String(meshFilePath(op.scene_dir, op.scene_path)));
		break;
	case VisitOperation::UpdatePaths:
		path = op.mappedPath(path);
		break;
	case VisitOperation::Load:
		if(mesh.isNull())
		{
			Reference<Mesh> loaded(new Mesh());
			try
			{
				loadModel(FileUtils::join(op.scene_dir.str(), path.str()), *loaded, (float)scale);
			}
			catch(const ModelFormatDecoderExcep& e)
			{
				throw SceneParserExcep("CSModelLoaderExcep: " + e.what());
			}
			mesh = loaded;
		}
		break;
	case VisitOperation::OffsetUIDs:
		uid = uid + op.uid_offset;
		break;
	default:
		break;
	}
}

bool SceneNodeMesh::doIsEqual(const SceneNode& other) const
{
	return equalByBaseFieldsOnly(other, "TODO: IMPLEMENT SceneNodeMesh::doIsEqual()\n");
}

} // namespace Velorn
