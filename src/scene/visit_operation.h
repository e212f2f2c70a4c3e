#pragma once

#include "scene/uid.h"
#include "support/hash_map.h"
#include "support/velorn_string.h"
#include "support/velorn_vector.h"

#include <cstdint>
#include <limits>
#include <string>

namespace Velorn
{

// One walk over a scene tree (SceneNode::visitTree): every node and value
// takes part in it through its doVisit, doing what the operation asks.
class VisitOperation
{
public:
	enum Type
	{
		Bind = 0,            // resolve stored UIDs to references through the root
		GetDependencies = 1, // append every file the node depends on to dependency_paths
		UpdatePaths = 2,     // replace every stored path by its entry in path_map
		Load = 3,            // load data held only as a path (mesh files)
		GetBounds = 4,       // grow bounds_min and bounds_max by the node's world bounds
		OffsetUIDs = 5       // add uid_offset to the node's UID and its stored references
	};

	VisitOperation() = default;
	VisitOperation(Type type_, const String& scene_path_, const String& scene_dir_)
		: scene_path(scene_path_), scene_dir(scene_dir_), type(type_)
	{}

	String scene_path;
	String scene_dir;
	Type type = Bind;
	Vector<String> dependency_paths;
	HashMap<UID, bool, UIDHash> visited;
	HashMap<std::string, std::string, StringHash> path_map;
	bool use_stored_paths = true;
	float bounds_min[3] = {inf(), inf(), inf()};
	float bounds_max[3] = {-inf(), -inf(), -inf()};
	uint32_t uid_offset = 0;

	// The new path for an old one during UpdatePaths. Throws VelornException
	// when path_map has no entry for it.
	String mappedPath(const String& old_path) const;

	// Widens the bounds by one point.
	void growBounds(float x, float y, float z);

private:
	static float inf() { return std::numeric_limits<float>::infinity(); }
};

} // namespace Velorn
