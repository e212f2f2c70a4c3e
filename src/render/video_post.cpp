#include "render/video_post.h"

#include "c4d/base_document.h"
#include "c4d/plugin_registry.h"
#include "c4d/resources.h"
#include "c4d/world_preferences.h"
#include "host/plugin_ids.h"
#include "host/registration.h"

namespace
{

const int32_t NAME_STRING = 10000;
// The host runs video posts by priority.
const int32_t PRIORITY = 100;

// The unit choice that matches the host's unit preference.
int32_t unitChoice()
{
	switch(GetWorldContainerInstance()->GetInt32(WPREF_UNITS))
	{
	case DOCUMENT_UNIT_KM:
		return vp_unit_km;
	case DOCUMENT_UNIT_M:
		return vp_unit_m;
	case DOCUMENT_UNIT_CM:
		return vp_unit_cm;
	case DOCUMENT_UNIT_MM:
		return vp_unit_mm;
	}
	return vp_unit_custom;
}

void setLayerNames(BaseContainer& data)
{
	for(int32_t n = 0; n < 10; ++n)
		data.SetString(vp_layer_name_first + n, String("Layer ") + String::IntToString(n + 1));
}

} // namespace

bool VelornVideoPost::Init(GeListNode* node)
{
	BaseContainer* data = static_cast<BaseList2D*>(node)->GetDataInstance();
	// Network, console and launch switches are set by number: the export of
	// the scene does not read them.
	setParameters(*data, {
		{1361, 0},
		{vp_bih_threshold, 800},
		{vp_turbidity, 2.4},
		{vp_large_mutation_prob, 0.4},
		{vp_max_change, 0.01},
		{vp_max_depth, 10000},
		{vp_max_rejections, 1000},
		{vp_display_period, 1800.0},
		{vp_image_save_period, 3600.0},
		{vp_logging, 1},
		{vp_save_untonemapped_exr, 0},
		{vp_save_tonemapped_exr, 0},
		{vp_halt_time, -1.0},
		{vp_halt_spp, -1.0},
		{vp_cache_trees, 1},
		{1359, 0},
		{vp_save_vli, 1},
		{vp_save_png, 1},
		{vp_num_threads, GeGetCurrentThreadCount()},
		{vp_auto_threads, 1},
		{vp_render_mode, vp_render_mode_bidirectional},
		{vp_background, 1379},
		{vp_remove_sun, 0},
		{vp_sun_own_layer, 0},
		{vp_gpu, 0},
		{vp_gpu_device, -1},
		{vp_unit, unitChoice()},
		{vp_custom_scale, 1.0},
		{1393, Filename()},
		{1394, 0},
		{vp_clay_render, 0},
		{vp_foreground_alpha, 0},
		{1399, 1},
		{1400, 0},
		{1402, 0},
		{1403, 7100},
		{1408, 0},
		{1420, 0},
		{vp_ambient, Vector(0.71, 0.62, 0.53)},
		{vp_wait_for_slaves, 0},
		{vp_glass_acceleration, 0},
		{vp_verbose, 0},
		{vp_vignetting, 1},
		{1431, 1},
		{1433, 0},
		{vp_sky_model_captured, 1},
	});
	setLayerNames(*data);
	return true;
}

bool RegisterVelornVideoPost()
{
	return RegisterVideoPostPlugin(ID_VIDEO_POST, GeLoadString(NAME_STRING), 0, VelornVideoPost::Alloc,
		String("ovelornrendersettings"), 0, PRIORITY);
}
