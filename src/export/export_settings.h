#pragma once

#include "c4d/base_document.h"
#include "c4d/filename.h"
#include "host/video_post_lookup.h"

#include "scene/uid.h"

#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <vector>

// What one export of one frame is to do and where, built once per frame and
// read by every step of the export. Material and light export write to it
// as well: the layer table, the material maps and the UIDs of the materials
// the driver makes.
struct ExportSettings
{
	// Builds the settings for doc at frame, for the scene file target, in
	// this order: the directories and base name, the camera with its
	// containers and the exposure, the video post, the scale. Without
	// temp_files the textures directory ("textures." and the base name,
	// beside the scene) is created; with it, textures go to the system's
	// temporary directory and every file made is recorded there. A null
	// document gives settings with only the names set: nothing to export.
	ExportSettings(BaseDocument* doc, const Filename& target, std::vector<Filename>* temp_files, int32_t frame,
		int32_t width, int32_t height, int32_t is_animation, int32_t merge_vertices, int32_t verbose, int32_t preview);

	BaseDocument* document = nullptr;
	// Host layer number to renderer layer index; -1 and -2 are the layers of
	// the sun and the sky.
	std::map<int32_t, int32_t> layers;
	Filename export_dir;
	Filename textures_dir;
	// The scene file name without its suffix.
	String base_name;
	int32_t frame = 0;
	int32_t width = 0;
	int32_t height = 0;
	// Seconds.
	float exposure_duration = 0;
	// Host units to metres.
	float scale = 1;
	// Non-zero adds the frame number to file names.
	int32_t is_animation = 0;
	// Every material is replaced by the default clay material.
	int32_t clay_render = 0;
	int32_t merge_vertices = 0;
	// Console reports on or off.
	int32_t verbose = 0;
	// A material preview is exported.
	int32_t preview = 0;
	int32_t gpu = 0;
	std::array<float, 3> ambient = {0.71f, 0.62f, 0.53f};
	Velorn::UID null_material;
	Velorn::UID default_material;
	Velorn::UID light_material;
	Velorn::UID exit_portal_material;
	std::vector<Filename>* temp_files = nullptr;
	std::map<BaseMaterial*, Velorn::UID> material_map;
	std::map<BaseMaterial*, Velorn::UID> medium_map;
	// The materials whose nodes are being built, innermost last: a link to
	// one of them is a cycle, which a scene cannot hold.
	std::set<BaseMaterial*> materials_in_progress;
	// The object the active view renders through, its parameters, and those
	// of its camera tag when it has one.
	BaseObject* camera = nullptr;
	BaseContainer camera_data;
	BaseContainer camera_tag_data;
	int32_t has_camera_tag = 0;
	// The parameters of the renderer's video post; null without one.
	BaseContainer* video_post_container = nullptr;

	// The renderer layer of the host's light layer number; a number not
	// seen before gets the next free index (one past the highest in use).
	int32_t lightLayer(int32_t host_layer);

private:
	void fetchCamera();
	float unitScale() const;
};

// The name of a file of the export: the base name, "_frame" and the frame
// number in six digits for an animation, then the suffix (".vls" for a
// scene, empty for images).
String sceneFileName(const String& base_name, int32_t frame, int32_t is_animation, const String& suffix);
