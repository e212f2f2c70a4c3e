#pragma once

#include "scene/uid.h"
#include "standin/tracer_math.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Velorn
{

class SceneNodeRoot;

namespace Standin
{

// The enabled section planes of a scene. A plane cuts away the geometry on
// its front side, the side its normal points to, of every object or only of
// those its list selects. A plane that culls geometry cuts it for every
// ray; one that does not hides it from the camera only, so that the cut part
// still casts shadows and shows in reflections.
class SectionPlanes
{
public:
	// At most this many planes; further ones are left out with a warning.
	static const size_t max_planes = 32;

	SectionPlanes() = default;
	SectionPlanes(const SceneNodeRoot& root, std::vector<std::string>& warnings);

	// The planes that cut the object of this UID, one bit each.
	uint32_t planesCutting(UID object) const;
	// True when a plane of the mask cuts point away from a ray of this kind.
	bool cutsAway(uint32_t mask, const V3& point, bool camera_ray) const;

private:
	struct Plane
	{
		V3 point, normal;
		bool all_rays;
		bool include_list;  // the list names the objects cut, else those spared
		std::vector<UID> objects;
	};
	std::vector<Plane> planes;
};

} // namespace Standin
} // namespace Velorn
