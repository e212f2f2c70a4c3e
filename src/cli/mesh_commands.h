#pragma once

#include <string>

// The work behind `velorn mesh ...`. Each function returns what the command
// prints on success and throws the library's exception on failure.
namespace Velorn
{
namespace MeshCommands
{

// Loads a .vlmesh, .obj or .ply file and describes it, one "name: value"
// line each: vertices, normals, uv pairs, uv mappings, triangles, quads,
// materials, bounds, checksum, byte count.
std::string info(const std::string& path);

// Loads a model file and writes it as a .vlmesh file.
std::string convert(const std::string& in_path, const std::string& out_path);

} // namespace MeshCommands
} // namespace Velorn
