#pragma once

#include <string>

// The work behind `velorn scene ...`. Each function returns what the command
// prints on success and throws the library's exception on failure.
namespace Velorn
{
namespace SceneCommands
{

// Parses, finalises and validates the scene file. The result is one line:
// the file and its node counts by kind, e.g.
// "scene.vls: 5 nodes: 1 Camera, 2 Material, 1 Mesh, 1 Object".
std::string check(const std::string& path);

// Parses and finalises the scene file, then writes it to out_path with its
// meshes beside it. Returns a line naming what was written.
std::string format(const std::string& path, const std::string& out_path);

} // namespace SceneCommands
} // namespace Velorn
