#include "host/video_post_lookup.h"

#include "c4d/render_data.h"
#include "host/plugin_ids.h"

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
