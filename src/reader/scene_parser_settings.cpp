// The renderer_settings element: the keyed settings, each read only when it
// stands in the file, and the structured values.
#include "reader/scene_parse_utils.h"
#include "reader/scene_parser_readers.h"
#include "support/exceptions.h"

#include <iterator>
#include <vector>

namespace Velorn
{
namespace SceneReaders
{

using namespace SceneParseUtils;

namespace
{

enum class KeyType
{
	Size, // an int that must not be negative
	Bool,
	Int,
	Double
};

struct SettingKey
{
	const char* key;
	KeyType type;
};

// In the order in which they are read, which is the order in which they go
// into the settings map, and so, with the map's hash, the order in which
// they are written again.
const SettingKey setting_keys[] = {
	{"width", KeyType::Size},
	{"height", KeyType::Size},
	{"metropolis", KeyType::Bool},
	{"logging", KeyType::Bool},
	{"bidirectional", KeyType::Bool},
	{"save_tonemapped_exr", KeyType::Bool},
	{"save_untonemapped_exr", KeyType::Bool},
	{"save_vli", KeyType::Bool},
	{"save_png", KeyType::Bool},
	{"auto_choose_num_threads", KeyType::Bool},
	{"hybrid", KeyType::Bool},
	{"watermark", KeyType::Bool},
	{"cache_trees", KeyType::Bool},
	{"aperture_diffraction", KeyType::Bool},
	{"post_process_diffraction", KeyType::Bool},
	{"render_foreground_alpha", KeyType::Bool},
	{"material_id_tracer", KeyType::Bool},
	{"depth_pass", KeyType::Bool},
	{"shadow_pass", KeyType::Bool},
	{"info_overlay", KeyType::Bool},
	{"verbose", KeyType::Bool},
	{"write_aperture_preview", KeyType::Bool},
	{"batched", KeyType::Bool},
	{"wait_for_slave_frames_on_stop", KeyType::Bool},
	{"close_gui_on_halt", KeyType::Bool},
	{"save_images_on_close", KeyType::Bool},
	{"glass_acceleration", KeyType::Bool},
	{"vignetting", KeyType::Bool},
	{"merging", KeyType::Bool},
	{"dithering", KeyType::Bool},
	{"large_mutation_prob", KeyType::Double},
	{"max_change", KeyType::Double},
	{"max_depth", KeyType::Int},
	{"max_num_consec_rejections", KeyType::Int},
	{"num_threads", KeyType::Int},
	{"image_save_period", KeyType::Double},
	{"halt_time", KeyType::Double},
	{"halt_samples_per_pixel", KeyType::Double},
	{"frame_upload_period", KeyType::Double},
	{"super_sample_factor", KeyType::Int},
	{"bih_tri_threshold", KeyType::Int},
};

// Elements of renderer_settings besides the keys. gpu is a key of the
// default settings that files hold but that is not read; display_period
// and polarisation are keys that exported scenes carry and the reader
// leaves unread as well.
const char* const structured_elements[] = {"name", "uid", "white_point", "gpu", "display_period", "polarisation",
	"selected_gpu_device", "splat_filter", "downsize_filter", "render_region", "layer_setting"};

// Every element name that renderer_settings may hold, null-terminated.
const char* const* allowedElements()
{
	static const std::vector<const char*> allowed = [] {
		std::vector<const char*> names(std::begin(structured_elements), std::end(structured_elements));
		for(const SettingKey& key : setting_keys)
			names.push_back(key.key);
		names.push_back(nullptr);
		return names;
	}();
	return allowed.data();
}

void readKey(const TiXmlElement& element, const SettingKey& key, SceneNodeRenderSettings& settings)
{
	switch(key.type)
	{
	case KeyType::Size:
	{
		const int32_t size = parseInt(element, key.key);
		if(size < 0)
			throw SceneParserExcep(std::string(key.key) + " must be >= 0.  " + errorContext(element));
		settings.setInt(key.key, size);
		break;
	}
	case KeyType::Bool:
		settings.setBool(key.key, parseBool(element, key.key));
		break;
	case KeyType::Int:
		settings.setInt(key.key, parseInt(element, key.key));
		break;
	case KeyType::Double:
		settings.setDouble(key.key, parseDouble(element, key.key));
		break;
	}
}

Reference<SplatFilter> readSplatFilter(const TiXmlElement& element)
{
	static const char* const kinds[] = {"box", "gaussian", "fastbox", "radial", "mn_cubic", nullptr};
	const TiXmlElement& kind = checkMutuallyExclusive(element, kinds);
	switch(nameIndex(kinds, kind.Value()))
	{
	case 0:
		return new SplatFilterBox();
	case 1: // the gaussian of old files is the radial filter
	case 3:
		return new SplatFilterRadial();
	case 2:
		return new SplatFilterFastBox();
	case 4:
		return new SplatFilterMNCubic(parseDouble(kind, "ring"), parseDouble(kind, "blur"));
	}
	throw SceneParserExcep("Internal error a1");
}

Reference<DownsizeFilter> readDownsizeFilter(const TiXmlElement& element)
{
	static const char* const kinds[] = {"gaussian", "sharp", "mn_cubic", nullptr};
	const TiXmlElement& kind = checkMutuallyExclusive(element, kinds);
	switch(nameIndex(kinds, kind.Value()))
	{
	case 0:
		return new DownsizeFilterGaussian();
	case 1:
		return new DownsizeFilterSharp();
	default:
		return new DownsizeFilterMNCubic(parseDouble(kind, "ring"), parseDouble(kind, "blur"), parseDouble(kind, "radius"));
	}
}

Reference<GPUDeviceSettings> readGPUDevice(const TiXmlElement& element)
{
	const std::string subsystem = parseString(element, "subsystem");
	return new GPUDeviceSettings(parseString(element, "device_name"),
		subsystem == "CUDA" ? GPUDeviceSettings::CUDA : GPUDeviceSettings::OpenCL);
}

Reference<RenderRegion> readRenderRegion(const TiXmlElement& element)
{
	return new RenderRegion(parseInt(element, "x1"), parseInt(element, "x2"), parseInt(element, "y1"), parseInt(element, "y2"));
}

Reference<LayerSetting> readLayerSetting(const TiXmlElement& element)
{
	const Vec3d xyz = element.FirstChildElement("xyz") ? parseVec3(element, "xyz") : Vec3d(1, 1, 1);
	return new LayerSetting(parseString(element, "name"), xyz, parseDoubleWithDefault(element, "gain", 1));
}

void readStructuredValues(const TiXmlElement& element, SceneNodeRenderSettings& settings)
{
	if(const TiXmlElement* gpu = element.FirstChildElement("selected_gpu_device"))
		settings.setGPUDevice(readGPUDevice(*gpu));
	if(const TiXmlElement* filter = element.FirstChildElement("splat_filter"))
		settings.setSplatFilter(readSplatFilter(*filter));
	if(const TiXmlElement* filter = element.FirstChildElement("downsize_filter"))
		settings.setDownsizeFilter(readDownsizeFilter(*filter));
	if(const TiXmlElement* region = element.FirstChildElement("render_region"))
		settings.setRenderRegion(readRenderRegion(*region));
	forEachChildElement(element, "layer_setting",
		[&](const TiXmlElement& layer) { settings.layer_settings.push_back(readLayerSetting(layer)); });
}

} // namespace

Reference<SceneNodeRenderSettings> readRenderSettings(const TiXmlElement& element)
{
	checkForUnexpectedElements(element, allowedElements());
	Reference<SceneNodeRenderSettings> settings(new SceneNodeRenderSettings());
	readNameAndUID(element, "Render Settings", *settings);
	if(element.FirstChildElement("white_point"))
	{
		const Vec2d white_point = parseVec2(element, "white_point");
		settings->setWhitePoint(white_point.x, white_point.y);
	}
	for(const SettingKey& key : setting_keys)
		if(element.FirstChildElement(key.key))
			readKey(element, key, *settings);
	readStructuredValues(element, *settings);
	return settings;
}

Reference<SceneNode> readRenderSettingsNode(SceneParser&, const TiXmlElement& element, const std::string&)
{
	return readRenderSettings(element);
}

} // namespace SceneReaders
} // namespace Velorn
