#include "host/video_post_lookup.h"

#include "c4d/render_data.h"
#include "c4d/world_preferences.h"
#include "host/plugin_ids.h"

namespace
{

// Metres per unit of the unit numbers that the host's preference uses.
float preferenceUnitScale(int32_t unit)
{
	switch(unit)
	{
	case DOCUMENT_UNIT_KM:
		return 1000.0f;
	case DOCUMENT_UNIT_CM:
		return 0.01f;
	case DOCUMENT_UNIT_MM:
		return 0.001f;
	default:
		return 1.0f;
	}
}

} // namespace

BaseContainer* findVideoPostContainer(BaseDocument* doc)
{
	RenderData* render_data = doc ? doc->GetActiveRenderData() : nullptr;
	if(!render_data)
		return nullptr;
	for(BaseVideoPost* post = render_data->GetFirstVideoPost(); post; post = post->GetNext())
	{
		if(post->GetType() == ID_VIDEO_POST && !(post->GetInfo() & VIDEOPOST_DISABLED))
			return post->GetDataInstance();
	}
	return nullptr;
}

float sceneUnitScale(const BaseContainer* video_post_container)
{
	if(!video_post_container)
		return preferenceUnitScale(GetWorldContainerInstance()->GetInt32(WPREF_UNITS));
	switch(video_post_container->GetInt32(vp_unit, vp_unit_cm))
	{
	case vp_unit_km:
		return 1000.0f;
	case vp_unit_cm:
		return 0.01f;
	case vp_unit_mm:
		return 0.001f;
	case vp_unit_custom:
		return (float)video_post_container->GetFloat(vp_custom_scale);
	default:
		return 1.0f;
	}
}

float documentSceneScale(BaseDocument* doc)
{
	return sceneUnitScale(findVideoPostContainer(doc));
}
