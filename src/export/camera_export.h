#pragma once

#include "export/export_settings.h"

#include "scene/scene_node_camera.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_tonemapping.h"

// Fills the camera node from the camera and its camera tag, and sets on the
// settings node what the tag holds for the whole render: sampling, filters,
// region, the output size, diffraction and the white point. A null
// settings_node leaves all that out. Without a camera tag the camera takes
// the fallbacks: D65, autofocus, f-number 8. The sensor width goes to the
// console whether or not the export is verbose.
bool exportCamera(Velorn::SceneNodeCamera& camera_node, Velorn::SceneNodeRenderSettings* settings_node,
	const ExportSettings& settings);

// Sets the tone mapping node from the camera tag: linear, Reinhard (also
// for an unknown mode) or a camera response curve.
bool exportTonemapping(Velorn::SceneNodeTonemapping& node, const ExportSettings& settings);

// The file names of the camera response curves that the tone mapping offers,
// by the index the camera tag stores; null outside the table.
const char* responseFunctionFile(int32_t index);
