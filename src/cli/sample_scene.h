#pragma once

#include "scene/scene_node_root.h"

#include <string>

namespace Velorn
{

// A small studio scene that holds every kind of node the library has: a
// camera, settings, tone mapping, a sun and sky background, materials of
// several kinds and a medium, a box mesh placed twice, a sphere, a section
// plane, a parametric surface and a scatter. It shows a new user what a
// scene file looks like and exercises every writer.
Reference<SceneNodeRoot> buildSampleScene();

// Builds the sample scene and writes it as <dir>/sample.vls with its meshes
// in <dir>/sample_meshes. Returns the scene file's path.
std::string writeSampleScene(const std::string& dir);

} // namespace Velorn
