#include "host/module/plugin_start.h"

#include "bake/bake_commands.h"
#include "c4d/console.h"
#include "c4d/preview_scenes.h"
#include "export/export_dialog.h"
#include "host/about_command.h"
#include "host/camera_tag.h"
#include "host/create_instances_command.h"
#include "host/light_tag.h"
#include "host/object_tags.h"
#include "host/plugin_globals.h"
#include "host/plugin_ids.h"
#include "host/plugin_version.h"
#include "host/registration.h"
#include "host/section_plane.h"
#include "host/velorn_instance.h"
#include "materials/material_plugin.h"
#include "materials/convert_command.h"
#include "materials/material_import.h"
#include "materials/new_material_command.h"
#include "render/render_state.h"
#include "render/tonemap_dialog.h"
#include "render/video_post.h"
#include "sdk/hardware_info.h"
#include "shaders/shader_plugins.h"
#include "support/file_utils.h"
#include "support/platform.h"
#include "support/platform_utils.h"

#include <algorithm>
#include <string>
#include <vector>

namespace
{

std::string moduleDir()
{
	return plugin_path ? plugin_path->GetString().GetStdString() : std::string();
}

// Makes the SDK context and has it load the library from the module's
// directory; a library that is missing or refuses is reported and the
// plug-in goes on without it.
void loadSdk(const std::string& module_dir)
{
	const std::string appdata_dir = Velorn::FileUtils::join(Velorn::PlatformUtils::getAPPDataDirPath(), "Velorn Renderer");
	g_context = new Velorn::VelornContext();
	std::string error;
	const int code = g_context->load(module_dir, appdata_dir, error);
	if(code != Velorn::VelornContext::LOAD_OK)
	{
		GePrint(String("Failed initialising Velorn sdk (error code: ") + String::IntToString(code) + String("):"));
		GePrint(String(error));
	}
}

// Copies the SDK's list of graphics devices for the render settings.
void copyGPUList()
{
	Velorn::Reference<Velorn::HardwareInfo> hardware = new Velorn::HardwareInfo(g_context);
	Velorn::Reference<Velorn::InterfaceBase> list;
	hardware->getGPUInfo(list);
	gpu_devices.clear();
	if(list.nonNull())
		for(const Velorn::GPUInfo& gpu : static_cast<Velorn::GPUInfoList&>(*list).gpus)
			gpu_devices.push_back(GPUDeviceInfo{String(gpu.device_name.str()), gpu.api_kind});
}

// The registrations of the plug-in, in the order the host must see them.
bool registerPlugins()
{
	bool (*const registrations[])() = {
		RegisterLightTag,
		RegisterExitPortalTag,
		RegisterCameraTag,
		RegisterSubdivisionTag,
		RegisterCompositingTag,
		RegisterBakeUVWTagCommand,
		RegisterBakeMaterialCommand,
		RegisterAboutCommand,
		RegisterConvertMaterialsCommand,
		RegisterImportMaterialCommand,
		RegisterRenderCommand,
		RegisterCreateInstancesCommand,
		RegisterNewMaterialCommand,
		RegisterResumeRenderingCommand,
		RegisterPauseRenderingCommand,
		RegisterUpdateImageCommand,
		RegisterTonemapCommand,
		RegisterVelornInstance,
		RegisterSectionPlane,
		RegisterVelornVideoPost,
		RegisterPlaceholderCommand,
		RegisterVslShader,
		RegisterVelornMaterial,
		RegisterVslNoise,
		RegisterVslBlend,
		RegisterVslGradient,
		RegisterVslNormal,
		RegisterVelornMessage,
	};
	for(auto registration : registrations)
		if(!registration())
			return false;
	return true;
}

// Every entry of the res/materialpreview folder is a scene for the previews
// of the plug-in's material.
void addPreviewScenes()
{
	const Filename dir = moduleResourceFile("materialpreview");
	std::vector<std::string> names;
	Velorn::Platform::listDirectory(dir.GetString().GetStdString(), names);
	std::sort(names.begin(), names.end());
	for(const std::string& name : names)
		if(!AddUserPreviewScene(dir + Filename(String(name)), ID_VELORN_MATERIAL, nullptr))
			GePrint(String("Failed loading preview scene: ") + String(name));
}

void printBanner()
{
	GePrint(String());
	GePrint(String(console_banner));
	GePrint(String("._.-.") + String(velorn_version_text));
	GePrint(String("Documentation: docs/ in the plug-in's source, and README.md"));
	GePrint(String(console_banner));
}

} // namespace

bool PluginStart()
{
	// The host loaded the module's resource with the message C4DPL_INIT_SYS
	// just before this start.
	const std::string module_dir = moduleDir();
	GePrint(String("Loading velorn from: ") + String(module_dir));

	loadSdk(module_dir);
	realtime_edition = Velorn::FileUtils::fileExists(Velorn::FileUtils::join(module_dir, "velorn_sdk.dll")) ? 0 : 1;
	if(g_context->isLoaded())
		copyGPUList();
	if(g_context->isLoaded())
		GePrint(String(realtime_edition ? "Successfully initialised Velorn RT." :
			"Successfully initialised Velorn Renderer."));

	if(!registerPlugins())
		return false;
	addPreviewScenes();
	printBanner();
	return true;
}

void PluginEnd()
{
	renderState().clear();
	g_context = nullptr;
}
