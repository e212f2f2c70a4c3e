#include "export/export_settings.h"

#include "c4d/base_draw.h"
#include "host/plugin_ids.h"

#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform_utils.h"

#include <algorithm>
#include <cstdio>

namespace
{

// As the host's directory call: a failure is no error here, the texture
// copies that need the directory fail on their own.
void createDirectory(const Filename& dir)
{
	try
	{
		Velorn::FileUtils::createDirsForPath(dir.GetString().GetStdString());
	}
	catch(const Velorn::FileUtilsExcep&)
	{
	}
}

} // namespace

ExportSettings::ExportSettings(BaseDocument* doc, const Filename& target, std::vector<Filename>* temp_files_,
	int32_t frame_, int32_t width_, int32_t height_, int32_t is_animation_, int32_t merge_vertices_,
	int32_t verbose_, int32_t preview_)
	: document(doc), frame(frame_), width(width_), height(height_), is_animation(is_animation_),
	  merge_vertices(merge_vertices_), verbose(verbose_), preview(preview_), temp_files(temp_files_)
{
	export_dir = target.GetDirectory();
	Filename file = target.GetFile();
	file.SetSuffix(String());
	base_name = file.GetString();
	if(!document)
		return;

	if(!temp_files)
	{
		textures_dir = export_dir + Filename(String("textures.") + base_name);
		createDirectory(textures_dir);
	}
	else
		textures_dir = Filename(String(Velorn::PlatformUtils::getTempDirPath()));

	fetchCamera();
	video_post_container = findVideoPostContainer(document);
	scale = unitScale();
}

void ExportSettings::fetchCamera()
{
	camera = document->GetActiveBaseDraw()->GetSceneCamera(document);
	camera_data = camera->GetData();
	if(BaseTag* tag = camera->GetTag(ID_CAMERA_TAG))
	{
		camera_tag_data = tag->GetData();
		has_camera_tag = 1;
	}
	exposure_duration = has_camera_tag ? (float)(1.0 / camera_tag_data.GetFloat(ct_exposure_divisor)) : 0.05f;
}

float ExportSettings::unitScale() const
{
	return sceneUnitScale(video_post_container);
}

String sceneFileName(const String& base_name, int32_t frame, int32_t is_animation, const String& suffix)
{
	String name = base_name;
	if(is_animation)
	{
		char number[16];
		std::snprintf(number, sizeof(number), "%06d", frame);
		name += String("_frame") + String(number);
	}
	return name + suffix;
}

int32_t ExportSettings::lightLayer(int32_t host_layer)
{
	const auto found = layers.find(host_layer);
	if(found != layers.end())
		return found->second;
	int32_t next = 0;
	for(const auto& entry : layers)
		next = std::max(next, entry.second + 1);
	layers[host_layer] = next;
	return next;
}
