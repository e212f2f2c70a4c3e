#include "scene/scene_node_render_settings.h"

#include "scene/xml_write.h"
#include "support/exceptions.h"

namespace Velorn
{

namespace
{

struct DefaultSetting
{
	const char* key;
	BaseSetting::Type type;
	double value; // exact for every int and bool of the table
};

// The insertion order of this table, with the hash of the keys, fixes the
// order in which the defaults stand in a file.
const DefaultSetting default_settings[] = {
	{"bidirectional", BaseSetting::Bool, 1},
	{"verbose", BaseSetting::Bool, 0},
	{"write_aperture_preview", BaseSetting::Bool, 0},
	{"save_tonemapped_exr", BaseSetting::Bool, 0},
	{"save_untonemapped_exr", BaseSetting::Bool, 0},
	{"save_vli", BaseSetting::Bool, 0},
	{"save_png", BaseSetting::Bool, 1},
	{"auto_choose_num_threads", BaseSetting::Bool, 1},
	{"cache_trees", BaseSetting::Bool, 1},
	{"metropolis", BaseSetting::Bool, 1},
	{"hybrid", BaseSetting::Bool, 0},
	{"logging", BaseSetting::Bool, 1},
	{"watermark", BaseSetting::Bool, 0},
	{"aperture_diffraction", BaseSetting::Bool, 0},
	{"post_process_diffraction", BaseSetting::Bool, 1},
	{"material_id_tracer", BaseSetting::Bool, 0},
	{"render_foreground_alpha", BaseSetting::Bool, 0},
	{"depth_pass", BaseSetting::Bool, 0},
	{"shadow_pass", BaseSetting::Bool, 0},
	{"info_overlay", BaseSetting::Bool, 0},
	{"wait_for_slave_frames_on_stop", BaseSetting::Bool, 0},
	{"close_gui_on_halt", BaseSetting::Bool, 0},
	{"save_images_on_close", BaseSetting::Bool, 0},
	{"glass_acceleration", BaseSetting::Bool, 0},
	{"vignetting", BaseSetting::Bool, 1},
	{"merging", BaseSetting::Bool, 1},
	{"dithering", BaseSetting::Bool, 1},
	{"max_depth", BaseSetting::Int, 10000},
	{"max_num_consec_rejections", BaseSetting::Int, 10000},
	{"num_threads", BaseSetting::Int, 1},
	{"width", BaseSetting::Int, 800},
	{"height", BaseSetting::Int, 600},
	{"super_sample_factor", BaseSetting::Int, 2},
	{"bih_tri_threshold", BaseSetting::Int, 1100000},
	{"batched", BaseSetting::Bool, 0},
	{"gpu", BaseSetting::Bool, 0},
	{"halt_time", BaseSetting::Double, -1},
	{"halt_samples_per_pixel", BaseSetting::Double, -1},
	{"frame_upload_period", BaseSetting::Double, 40},
	{"large_mutation_prob", BaseSetting::Double, 0.4},
	{"max_change", BaseSetting::Double, 0.01},
	{"image_save_period", BaseSetting::Double, 1800},
};

struct Illuminant
{
	const char* name;
	float x;
	float y;
};

const Illuminant illuminants[] = {
	{"E", 1.0f / 3.0f, 1.0f / 3.0f},
	{"D50", 0.34567f, 0.3585f},
	{"D55", 0.33242f, 0.34743f},
	{"D65", 0.31273f, 0.32902f},
	{"D75", 0.29902f, 0.31485f},
	{"A", 0.44757f, 0.40745f},
	{"B", 0.34842f, 0.35161f},
	{"C", 0.31006f, 0.31616f},
	{"9300", 0.2848f, 0.2932f},
	{"F2", 0.37207f, 0.37512f},
	{"F7", 0.31285f, 0.32918f},
	{"F11", 0.38054f, 0.37691f},
};

// The key that a render may carry but that never reaches a file.
const char* const unwritten_key = "gpu_path_tracing";

// A clone of b's value if it has one, else of a's, else null.
template <class T>
Reference<T> cloneOfWinner(const Reference<T>& a, const Reference<T>& b)
{
	const Reference<T>& winner = b.nonNull() ? b : a;
	return winner.nonNull() ? Reference<T>(winner->clone()) : Reference<T>();
}

SceneNodeRenderSettings::LayerVector cloneLayers(const SceneNodeRenderSettings::LayerVector& layers)
{
	SceneNodeRenderSettings::LayerVector copies;
	for(const Reference<LayerSetting>& layer : layers)
		copies.push_back(layer.nonNull() ? layer->clone() : Reference<LayerSetting>());
	return copies;
}

} // namespace

SceneNodeRenderSettings::SceneNodeRenderSettings() { name = "Render Settings"; }

void SceneNodeRenderSettings::setInt(const String& key, int32_t value) { settings.insert(key, new IntSetting(value)); }

void SceneNodeRenderSettings::setBool(const String& key, bool value) { settings.insert(key, new BoolSetting(value)); }

void SceneNodeRenderSettings::setDouble(const String& key, double value) { settings.insert(key, new DoubleSetting(value)); }

template <class S>
const S& SceneNodeRenderSettings::lookup(const String& key, const char* wrong_type_message) const
{
	const Reference<BaseSetting>* setting = settings.find(key);
	if(!setting)
		throw VelornException("Tried to read missing setting '" + key.str() + "'");
	if((*setting)->type != S::kind)
		throw VelornException(wrong_type_message + key.str() + "'");
	return static_cast<const S&>(**setting);
}

int32_t SceneNodeRenderSettings::getInt(const String& key) const
{
	return lookup<IntSetting>(key, "Tried to read setting as an int that was of different type: '").value;
}

bool SceneNodeRenderSettings::getBool(const String& key) const
{
	return lookup<BoolSetting>(key, "Tried to read setting as a bool that was of different type: '").value;
}

double SceneNodeRenderSettings::getDouble(const String& key) const
{
	return lookup<DoubleSetting>(key, "Tried to read setting as a double that was of different type: '").value;
}

void SceneNodeRenderSettings::setWhitePoint(double x, double y) { white_point = new WhitePoint(x, y); }

void SceneNodeRenderSettings::fillMissingLayers()
{
	for(size_t i = 0; i < layer_settings.size(); ++i)
		if(layer_settings[i].isNull())
			layer_settings[i] = LayerSetting::makeDefault(i);
}

void SceneNodeRenderSettings::setNumLayers(size_t n)
{
	layer_settings.resize(n);
	fillMissingLayers();
}

void SceneNodeRenderSettings::setLayerName(size_t index, const String& layer_name)
{
	if(index >= max_layer_index)
		return;
	if(index >= layer_settings.size())
		setNumLayers(index + 1);
	layer_settings[index] = LayerSetting::makeNamed(layer_name);
}

void SceneNodeRenderSettings::setLayers(const LayerVector& layers)
{
	layer_settings = layers;
	fillMissingLayers();
}

Reference<SceneNodeRenderSettings> SceneNodeRenderSettings::getDefaults()
{
	Reference<SceneNodeRenderSettings> node(new SceneNodeRenderSettings());
	for(const DefaultSetting& d : default_settings)
	{
		if(d.type == BaseSetting::Bool)
			node->setBool(d.key, d.value != 0);
		else if(d.type == BaseSetting::Int)
			node->setInt(d.key, (int32_t)d.value);
		else
			node->setDouble(d.key, d.value);
	}
	node->splat_filter = new SplatFilterFastBox();
	// The radius has always been a float; it is written widened to double.
	node->downsize_filter = new DownsizeFilterMNCubic(0, 1, (double)1.6f);
	node->setWhitePoint(1.0 / 3.0, 1.0 / 3.0);
	return node;
}

Reference<SceneNodeRenderSettings> SceneNodeRenderSettings::merge(const SceneNodeRenderSettings& a,
	const SceneNodeRenderSettings& b)
{
	Reference<SceneNodeRenderSettings> result(new SceneNodeRenderSettings());
	a.settings.forEach([&](const String& key, const Reference<BaseSetting>& a_setting) {
		const Reference<BaseSetting>* b_setting = b.settings.find(key);
		result->settings.insert(key, (b_setting ? *b_setting : a_setting)->clone());
	});
	b.settings.forEach([&](const String& key, const Reference<BaseSetting>& b_setting) {
		if(!a.settings.contains(key))
			result->settings.insert(key, b_setting->clone());
	});
	result->splat_filter = cloneOfWinner(a.splat_filter, b.splat_filter);
	result->downsize_filter = cloneOfWinner(a.downsize_filter, b.downsize_filter);
	result->render_region = cloneOfWinner(a.render_region, b.render_region);
	result->white_point = cloneOfWinner(a.white_point, b.white_point);
	result->gpu_device = cloneOfWinner(a.gpu_device, b.gpu_device);
	result->layer_settings = cloneLayers(b.layer_settings.empty() ? a.layer_settings : b.layer_settings);
	return result;
}

void SceneNodeRenderSettings::whitePointForName(const String& illuminant, double& x, double& y)
{
	for(const Illuminant& i : illuminants)
		if(illuminant == i.name)
		{
			x = i.x;
			y = i.y;
			return;
		}
	throw VelornException("'" + illuminant.str() + "' is not a valid value for white_balance.  (must be one of D50, D55, F2 etc..)");
}

Reference<SceneNode> SceneNodeRenderSettings::clone() const
{
	// Merging a node with itself clones every setting in the node's own
	// order and every structured value.
	Reference<SceneNodeRenderSettings> copy = merge(*this, *this);
	copyBaseFieldsTo(*copy);
	return copy;
}

void SceneNodeRenderSettings::writeSettings(OStream& stream, unsigned depth) const
{
	settings.forEach([&](const String& key, const Reference<BaseSetting>& setting) {
		if(key != unwritten_key)
			XMLWrite::writeElement(stream, depth, key.str().c_str(), setting->toString());
	});
}

void SceneNodeRenderSettings::writeRenderRegion(OStream& stream, unsigned depth) const
{
	XMLWrite::writeOpenTag(stream, depth, "render_region");
	XMLWrite::writeInt(stream, depth + 1, "x1", render_region->x1);
	XMLWrite::writeInt(stream, depth + 1, "y1", render_region->y1);
	XMLWrite::writeInt(stream, depth + 1, "x2", render_region->x2);
	XMLWrite::writeInt(stream, depth + 1, "y2", render_region->y2);
	XMLWrite::writeCloseTag(stream, depth, "render_region");
}

void SceneNodeRenderSettings::writeWhitePoint(OStream& stream, unsigned depth) const
{
	// The numbers take the stream's own format, not the scene number form,
	// and the line ends in tabs: both have always been so.
	XMLWrite::writeOpenTag(stream, depth, "white_point");
	XMLWrite::writeTabs(stream, depth + 1);
	stream.write(white_point->x);
	stream.write(" ");
	stream.write(white_point->y);
	XMLWrite::writeTabs(stream, depth + 1);
	stream.write("\n");
	XMLWrite::writeCloseTag(stream, depth, "white_point");
}

void SceneNodeRenderSettings::writeLayers(OStream& stream, unsigned depth) const
{
	for(const Reference<LayerSetting>& layer : layer_settings)
	{
		XMLWrite::writeOpenTag(stream, depth, "layer_setting");
		XMLWrite::writeString(stream, depth + 1, "name", layer->name);
		XMLWrite::writeVec3(stream, depth + 1, "xyz", layer->xyz);
		XMLWrite::writeDouble(stream, depth + 1, "gain", layer->gain);
		XMLWrite::writeCloseTag(stream, depth, "layer_setting");
	}
}

void SceneNodeRenderSettings::writeGPUDevice(OStream& stream, unsigned depth) const
{
	XMLWrite::writeOpenTag(stream, depth, "selected_gpu_device");
	XMLWrite::writeString(stream, depth + 1, "device_name", gpu_device->device_name);
	XMLWrite::writeString(stream, depth + 1, "subsystem", gpu_device->subsystemName());
	XMLWrite::writeCloseTag(stream, depth, "selected_gpu_device");
}

void SceneNodeRenderSettings::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	const unsigned d = depth + 1;
	XMLWrite::writeOpenTag(stream, depth, "renderer_settings");
	writeUIDAndName(stream, d);
	writeSettings(stream, d);
	if(render_region.nonNull())
		writeRenderRegion(stream, d);
	if(splat_filter.nonNull())
		splat_filter->writeXML(stream, d);
	if(downsize_filter.nonNull())
		downsize_filter->writeXML(stream, d);
	if(white_point.nonNull())
		writeWhitePoint(stream, d);
	writeLayers(stream, d);
	if(gpu_device.nonNull())
		writeGPUDevice(stream, d);
	XMLWrite::writeCloseTag(stream, depth, "renderer_settings");
}

void SceneNodeRenderSettings::doVisit(VisitOperation& op)
{
	if(op.type == VisitOperation::OffsetUIDs)
		uid = uid + op.uid_offset;
}

bool SceneNodeRenderSettings::doIsEqual(const SceneNode& other) const
{
	printNotImplemented("TODO: IMPLEMENT SceneNodeRenderSettings::doIsEqual()");
	return baseFieldsEqual(other);
}

} // namespace Velorn
