#include "export/render_settings_export.h"

#include "host/plugin_ids.h"
#include "host/plugin_globals.h"

namespace
{

// The switches that the render mode of the video post sets.
struct RenderMode
{
	bool metropolis = false;
	bool bidirectional = false;
	bool material_id_tracer = false;
	bool shadow_pass = false;
	bool depth_pass = false;
};

RenderMode renderMode(int32_t mode)
{
	RenderMode m;
	switch(mode)
	{
	case vp_render_mode_bidirectional:
		m.bidirectional = true;
		break;
	case vp_render_mode_metropolis:
		m.metropolis = true;
		break;
	case vp_render_mode_metropolis_bidirectional:
		m.metropolis = true;
		m.bidirectional = true;
		break;
	case vp_render_mode_material_id:
		m.material_id_tracer = true;
		break;
	case vp_render_mode_shadow_pass:
		m.shadow_pass = true;
		break;
	case vp_render_mode_depth_pass:
		m.depth_pass = true;
		break;
	case vp_render_mode_path_tracing:
	default:
		// Path tracing, and any number the plug-in does not know.
		break;
	}
	return m;
}

// The GPU is chosen by the device parameter read with the container's
// boolean accessor, as the plug-in always has: any non-zero number selects
// the second device.
void exportGPUDevice(Velorn::SceneNodeRenderSettings& node, const BaseContainer& vp)
{
	const int32_t device = vp.GetBool(vp_gpu_device) ? 1 : 0;
	if(device >= (int32_t)gpu_devices.size())
		return;
	const GPUDeviceInfo& info = gpu_devices[device];
	node.setGPUDevice(
		new Velorn::GPUDeviceSettings(Velorn::String(info.device_name.GetStdString()), info.subsystem));
}

} // namespace

bool exportRenderSettings(Velorn::SceneNodeRenderSettings& node, ExportSettings& settings)
{
	const BaseContainer* vp = settings.video_post_container;
	if(!vp)
	{
		node.setBool("metropolis", false);
		node.setBool("bidirectional", true);
		return false;
	}

	settings.clay_render = vp->GetBool(vp_clay_render);
	const Vector ambient = vp->GetVector(vp_ambient,
		Vector(settings.ambient[0], settings.ambient[1], settings.ambient[2]));
	settings.ambient = {(float)ambient.x, (float)ambient.y, (float)ambient.z};

	const RenderMode mode = renderMode(vp->GetInt32(vp_render_mode));
	settings.gpu = vp->GetBool(vp_gpu);
	node.setBool("gpu", settings.gpu != 0);
	exportGPUDevice(node, *vp);

	node.setBool("render_foreground_alpha", vp->GetBool(vp_foreground_alpha));
	node.setBool("depth_pass", mode.depth_pass);
	node.setBool("shadow_pass", mode.shadow_pass);
	node.setBool("material_id_tracer", mode.material_id_tracer);
	node.setBool("metropolis", mode.metropolis);
	node.setDouble("large_mutation_prob", vp->GetFloat(vp_large_mutation_prob));
	node.setDouble("max_change", vp->GetFloat(vp_max_change));
	node.setInt("max_num_consec_rejections", vp->GetInt32(vp_max_rejections));
	node.setInt("max_depth", vp->GetInt32(vp_max_depth));
	node.setInt("bih_tri_threshold", vp->GetInt32(vp_bih_threshold) * 1000);
	node.setDouble("halt_time", vp->GetFloat(vp_halt_time));
	node.setDouble("halt_samples_per_pixel", vp->GetFloat(vp_halt_spp));
	node.setBool("bidirectional", mode.bidirectional);
	node.setBool("logging", vp->GetBool(vp_logging));
	node.setDouble("display_period", vp->GetInt32(vp_display_period));
	node.setDouble("image_save_period", vp->GetInt32(vp_image_save_period));
	node.setBool("save_untonemapped_exr", vp->GetBool(vp_save_untonemapped_exr));
	node.setBool("save_tonemapped_exr", vp->GetBool(vp_save_tonemapped_exr));
	node.setBool("save_vli", vp->GetBool(vp_save_vli));
	node.setBool("save_png", vp->GetBool(vp_save_png));
	node.setBool("glass_acceleration", vp->GetBool(vp_glass_acceleration));
	node.setBool("verbose", vp->GetBool(vp_verbose));
	const bool auto_threads = vp->GetInt32(vp_auto_threads) == 1;
	node.setBool("auto_choose_num_threads", auto_threads);
	if(!auto_threads)
		node.setInt("num_threads", vp->GetInt32(vp_num_threads));
	node.setBool("cache_trees", vp->GetBool(vp_cache_trees));
	node.setBool("polarisation", false);
	node.setBool("wait_for_slave_frames_on_stop", vp->GetBool(vp_wait_for_slaves));
	node.setBool("vignetting", vp->GetBool(vp_vignetting, true));
	return true;
}
