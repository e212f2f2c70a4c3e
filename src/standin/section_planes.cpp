#include "standin/section_planes.h"

#include "scene/scene_node_root.h"
#include "scene/scene_node_section_plane.h"

#include <algorithm>

namespace Velorn
{
namespace Standin
{

SectionPlanes::SectionPlanes(const SceneNodeRoot& root, std::vector<std::string>& warnings)
{
	for(const Reference<SceneNode>& child : root.getChildren())
	{
		if(child->getType() != SceneNodeType::SectionPlane)
			continue;
		const auto& node = static_cast<const SceneNodeSectionPlane&>(*child);
		if(!node.enabled)
			continue;
		if(planes.size() == max_planes)
		{
			warnings.push_back("Only the first " + std::to_string(max_planes) + " section planes cut the scene.");
			break;
		}
		Plane plane;
		plane.point = V3((float)node.point.x, (float)node.point.y, (float)node.point.z);
		// The export writes the object's axis unnormalised; only its
		// direction matters for the side.
		plane.normal = V3((float)node.normal.x, (float)node.normal.y, (float)node.normal.z);
		plane.all_rays = node.cull_geometry;
		plane.include_list = node.object_list_type == SceneNodeSectionPlane::Include;
		plane.objects.assign(node.object_list.begin(), node.object_list.end());
		planes.push_back(std::move(plane));
	}
}

uint32_t SectionPlanes::planesCutting(UID object) const
{
	uint32_t mask = 0;
	for(size_t i = 0; i < planes.size(); ++i)
	{
		const Plane& plane = planes[i];
		const bool listed = std::find(plane.objects.begin(), plane.objects.end(), object) != plane.objects.end();
		if(listed == plane.include_list)
			mask |= 1u << i;
	}
	return mask;
}

bool SectionPlanes::cutsAway(uint32_t mask, const V3& point, bool camera_ray) const
{
	for(size_t i = 0; mask != 0; ++i, mask >>= 1)
	{
		const Plane& plane = planes[i];
		if((mask & 1) && (plane.all_rays || camera_ray) && dot(point - plane.point, plane.normal) > 0)
			return true;
	}
	return false;
}

} // namespace Standin
} // namespace Velorn
