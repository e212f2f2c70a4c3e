#include "cli/mesh_commands.h"

#include "mesh/mesh.h"
#include "mesh/mesh_file.h"
#include "mesh/model_decoder.h"
#include "support/exceptions.h"
#include "support/string_utils.h"

#include <utility>

namespace Velorn
{
namespace MeshCommands
{

namespace
{

Reference<Mesh> load(const std::string& path)
{
	Reference<Mesh> mesh(new Mesh());
	loadModel(path, *mesh, 1.0f);
	return mesh;
}

std::string line(const char* name, const std::string& value) { return std::string(name) + ": " + value + "\n"; }

std::string count(size_t n) { return toString((uint64_t)n); }

std::string point(const Vec3f& p) { return floatToString(p.x) + " " + floatToString(p.y) + " " + floatToString(p.z); }

std::string materialNames(const Mesh& mesh)
{
	std::string names = count(mesh.used_materials.size());
	for(size_t i = 0; i < mesh.used_materials.size(); ++i)
		names += (i == 0 ? " (" : ", ") + mesh.used_materials[i].str();
	return mesh.used_materials.empty() ? names : names + ")";
}

// Turns every polygon to the other winding: its first corner stays and the
// others run backwards, with their texture coordinates.
void turnWinding(Mesh& mesh)
{
	for(MeshTriangle& t : mesh.triangles)
	{
		std::swap(t.vertex_indices[1], t.vertex_indices[2]);
		std::swap(t.uv_indices[1], t.uv_indices[2]);
	}
	for(MeshQuad& q : mesh.quads)
	{
		std::swap(q.vertex_indices[1], q.vertex_indices[3]);
		std::swap(q.uv_indices[1], q.uv_indices[3]);
	}
}

} // namespace

std::string info(const std::string& path)
{
	Reference<Mesh> mesh = load(path);
	uint64_t byte_count = 0;
	const uint32_t crc = mesh->checksum(byte_count);
	const std::string bounds = mesh->verts.empty() ? "empty" : point(mesh->aabb_min) + " to " + point(mesh->aabb_max);
	return line("vertices", count(mesh->verts.size())) + line("normals", count(mesh->normals.size())) +
		   line("uv pairs", count(mesh->uv_pairs.size())) + line("uv mappings", toString(mesh->num_uv_mappings)) +
		   line("triangles", count(mesh->triangles.size())) + line("quads", count(mesh->quads.size())) +
		   line("materials", materialNames(*mesh)) + line("bounds", bounds) + line("checksum", toString(crc)) +
		   line("byte count", toString(byte_count));
}

std::string convert(const std::string& in_path, const std::string& out_path)
{
	if(!hasExtension(out_path, "vlmesh"))
		throw ModelFormatDecoderExcep("The output file must end in .vlmesh: '" + out_path + "'");
	Reference<Mesh> mesh = load(in_path);
	const bool turned = windsCounterClockwise(in_path);
	if(turned)
		turnWinding(*mesh);
	writeMeshToFile(out_path, *mesh);
	return "Wrote " + out_path + " (" + count(mesh->verts.size()) + " vertices, " + count(mesh->triangles.size()) +
		   " triangles, " + count(mesh->quads.size()) + " quads" +
		   (turned ? "; polygons turned to wind clockwise, as scene meshes do)" : ")");
}

} // namespace MeshCommands
} // namespace Velorn
