#include "host/layer_cycle.h"

#include "host/plugin_ids.h"
#include "host/video_post_lookup.h"

namespace
{

const int32_t kLayerCount = 10;

} // namespace

BaseContainer layerCycle(BaseDocument* doc)
{
	const BaseContainer* video_post = findVideoPostContainer(doc);
	BaseContainer cycle;
	for(int32_t i = 0; i < kLayerCount; ++i)
	{
		String label = String("Layer ") + String::IntToString(i + 1);
		if(video_post)
			label += String(": ") + video_post->GetString(vp_layer_name_first + i);
		cycle.SetString(i, label);
	}
	return cycle;
}

bool setLayerCycle(Description* description, int32_t id, BaseDocument* doc)
{
	BaseContainer* settings = description->GetParameterI(DescID(id));
	if(!settings)
		return false;
	settings->SetContainer(DESC_CYCLE, layerCycle(doc));
	return true;
}
