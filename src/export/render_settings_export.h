#pragma once

#include "export/export_settings.h"

#include "scene/scene_node_render_settings.h"

// Sets the render settings node, filled with the defaults, from the video
// post's parameters, and copies the clay switch, the ambient colour and the
// GPU switch into settings. Without a video post only the two switches of
// the render mode are set (no Metropolis, bidirectional) and the result is
// false.
bool exportRenderSettings(Velorn::SceneNodeRenderSettings& node, ExportSettings& settings);
