#pragma once

#include "scene/scene_node_material.h"
#include "scene/scene_node_medium.h"
#include "scene/scene_node_mesh.h"
#include "support/hash_map.h"

namespace Velorn
{

// The nodes that a scene file has named so far, for elements that refer to
// others by name. A name can only refer to what stands before it in the file.
struct ParseNames
{
	HashMap<String, Reference<SceneNodeMaterial>, StringHash> material_names;
	HashMap<String, Reference<SceneNodeMesh>, StringHash> mesh_names;
	HashMap<String, Reference<SceneNodeMedium>, StringHash> medium_names;
};

} // namespace Velorn
