#include "host/object_tags.h"

#include "c4d/base_list.h"
#include "c4d/description.h"
#include "host/plugin_ids.h"
#include "host/registration.h"

bool SubdivisionTag::Init(GeListNode* node)
{
	setParameters(*static_cast<BaseList2D*>(node)->GetDataInstance(), {
		{st_max_subdivisions, 3},
		{st_curvature_threshold, 0.1},
		{st_displacement_error, 0.0},
	});
	return true;
}

bool SubdivisionTag::GetDEnabling(
	GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags, const BaseContainer* itemdesc)
{
	if(id[0].id == st_pixel_threshold)
		return static_cast<BaseList2D*>(node)->GetDataInstance()->GetBool(st_smoothing);
	return TagData::GetDEnabling(node, id, t_data, flags, itemdesc);
}

bool RegisterSubdivisionTag()
{
	return registerTag(ID_SUBDIVISION_TAG, 10016, SubdivisionTag::Alloc, "tSubdivision", "subdivtag.tif");
}

bool RegisterExitPortalTag()
{
	return registerTag(ID_EXIT_PORTAL_TAG, 10006, ExitPortalTag::Alloc, "TMyExitPortal", "ExitPortal.tif");
}

bool RegisterCompositingTag()
{
	return registerTag(ID_COMPOSITING_TAG, 10028, CompositingTag::Alloc, "TVelornCompositing", "animationtag.tif");
}
