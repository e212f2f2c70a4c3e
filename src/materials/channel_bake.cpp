#include "materials/channel_bake.h"

#include "bake/shader_bake.h"
#include "c4d/base_bitmap.h"
#include "c4d/base_shader.h"
#include "c4d/console.h"
#include "c4d/host_clock.h"
#include "materials/channel_export.h"
#include "materials/material_ids.h"

#include "support/file_utils.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace
{

// The material's name as a part of a file name: characters that separate
// folders or that some file systems refuse become "_".
std::string fileNamePart(const String& name)
{
	std::string part = name.GetStdString();
	for(char& c : part)
		if(std::string("/\\:*?\"<>|").find(c) != std::string::npos || (unsigned char)c < 32)
			c = '_';
	return part;
}

// The path of the baked file. A file of the name may be left from an earlier
// export, or made by a channel baked within the same millisecond (the
// generic channels share suffixes): the next timer value is taken then.
std::string bakedFilePath(const String& material_name, const char* suffix, const ExportSettings& settings)
{
	const std::string dir = settings.textures_dir.GetString().GetStdString();
	const std::string stem = fileNamePart(material_name) + "_";
	for(int64_t timer = GeGetTimer();; ++timer)
	{
		const std::string path = Velorn::FileUtils::join(dir, stem + std::to_string(timer) + suffix);
		if(!Velorn::FileUtils::fileExists(path))
			return path;
	}
}

void reportFailure(const String& material_name, const BaseShader* shader, const std::string& path, const String& reason)
{
	GePrint(materialSubject(material_name) + String(": the shader '") + shader->GetName() +
		String("' could not be baked into '" + path + "' (") + reason +
		String("); the channel was exported without the shader."));
}

} // namespace

void channelBakeSize(const BaseContainer& data, bool preview, int32_t& width, int32_t& height)
{
	width = data.GetInt32(MAT_BAKE_WIDTH);
	height = data.GetInt32(MAT_BAKE_HEIGHT);
	const double pixels = (double)width * height;
	if(!preview || width < 1 || height < 1 || pixels <= preview_bake_pixels)
		return;
	const double factor = std::sqrt(preview_bake_pixels / pixels);
	width = std::max(1, (int32_t)(width * factor));
	height = std::max(1, (int32_t)(height * factor));
}

String bakeChannelShader(BaseShader* shader, const BaseContainer& data, const char* suffix,
	const String& material_name, ExportSettings& settings)
{
	int32_t width = 0, height = 0;
	channelBakeSize(data, settings.preview != 0, width, height);
	const std::string path = bakedFilePath(material_name, suffix, settings);
	BaseBitmap bitmap;
	if(bitmap.Init(width, height, 32) != IMAGERESULT_OK)
	{
		reportFailure(material_name, shader, path,
			String("no picture of " + std::to_string(width) + " x " + std::to_string(height) + " pixels"));
		return String();
	}
	const BAKE_TEX_ERR baked = bakeShaderToBitmap(&bitmap, shader, settings.document);
	if(baked != BAKE_TEX_ERR_NONE)
	{
		reportFailure(material_name, shader, path, String("baking error " + std::to_string(baked)));
		return String();
	}
	BaseContainer jpeg;
	jpeg.SetInt32(JPGSAVER_QUALITY, 100);
	const IMAGERESULT saved = bitmap.Save(Filename(String(path)), FILTER_JPG, &jpeg, SAVEBIT_NONE);
	if(saved != IMAGERESULT_OK)
	{
		reportFailure(material_name, shader, path, String("image error " + std::to_string(saved)));
		return String();
	}
	if(settings.temp_files)
		settings.temp_files->push_back(Filename(String(path)));
	return String(path);
}
