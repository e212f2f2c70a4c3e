#pragma once

#include "c4d/base_container.h"
#include "c4d/c4d_string.h"
#include "export/export_settings.h"

class BaseShader;

// The most pixels a bake may have while a material preview is exported.
constexpr int64_t preview_bake_pixels = 262144;

// The size of a channel's bake from the material's parameters: the bake
// width and height, in a preview scaled down together (truncated, at least
// 1) to at most preview_bake_pixels.
void channelBakeSize(const BaseContainer& data, bool preview, int32_t& width, int32_t& height);

// Bakes a shader that the scene cannot describe into a JPEG in the textures
// directory, named material name, "_", the host's millisecond timer and the
// channel's suffix, and records it in temp_files when there is that list.
// The file's path; empty when the bake or the save failed, which the
// console is told.
String bakeChannelShader(BaseShader* shader, const BaseContainer& data, const char* suffix,
	const String& material_name, ExportSettings& settings);
