#include "host/light_tag.h"

#include "c4d/base_list.h"
#include "host/plugin_ids.h"
#include "host/registration.h"

bool LightTag::Init(GeListNode* node)
{
	BaseContainer* data = static_cast<BaseList2D*>(node)->GetDataInstance();
	setParameters(*data, {
		{lt_type, lt_type_rgb},
		{lt_rgb_colour, Vector(1, 1, 1)},
		{lt_rgb_gain, 2.2},
		{lt_uniform_value, 1.0},
		{lt_black_body_temperature, 6500.0},
		{lt_black_body_gain, 1.0},
		{lt_peak_min, 300.0},
		{lt_peak_width, 550.0},
		{lt_peak_value, 200.0},
		{lt_base_value, 0.0},
		{lt_emission_measure, lt_measure_luminance},
		{lt_emission_value, 100.0},
		{lt_ies, 0},
		{lt_emission_scale, 0},
		{lt_layer, 0},
	});
	return true;
}

bool RegisterLightTag()
{
	return registerTag(ID_LIGHT_TAG, 10002, LightTag::Alloc, "tMyLightTag", "LightTag.tif");
}
