#pragma once

#include "scene/render_filters.h"
#include "scene/render_setting_values.h"
#include "scene/scene_node.h"
#include "support/hash_map.h"

#include <cstdint>

namespace Velorn
{

// All switches and numbers of a render in one loosely typed dictionary, plus
// the structured values (filters, white point, region, layers, GPU). A new
// node is empty: a key that is absent is simply not passed on. getDefaults
// gives a node filled with the default table.
class SceneNodeRenderSettings : public SceneNode
{
public:
	typedef HashMap<String, Reference<BaseSetting>, StringHash> SettingsMap;
	typedef Vector<Reference<LayerSetting>> LayerVector;

	// setLayerName ignores indices from here on.
	static const unsigned max_layer_index = 65536;

	SceneNodeRenderSettings();

	unsigned getType() const override { return SceneNodeType::RenderSettings; }
	Reference<SceneNode> clone() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	bool doIsEqual(const SceneNode& other) const override;

	// Insert or replace; a replacement may change the kind of the value.
	void setInt(const String& key, int32_t value);
	void setBool(const String& key, bool value);
	void setDouble(const String& key, double value);
	// Throw VelornException when the key is absent or holds another kind;
	// no conversion is made, not even from int to double.
	int32_t getInt(const String& key) const;
	bool getBool(const String& key) const;
	double getDouble(const String& key) const;

	void setSplatFilter(const Reference<SplatFilter>& filter) { splat_filter = filter; }
	void setDownsizeFilter(const Reference<DownsizeFilter>& filter) { downsize_filter = filter; }
	void setRenderRegion(const Reference<RenderRegion>& region) { render_region = region; }
	void setGPUDevice(const Reference<GPUDeviceSettings>& device) { gpu_device = device; }
	void setWhitePoint(double x, double y);

	// Makes n layers; entries that are missing become default layers and a
	// shorter count drops the tail.
	void setNumLayers(size_t n);
	// Renames a layer by replacing it with a white layer of gain 1, growing
	// the list when the index is past its end.
	void setLayerName(size_t index, const String& layer_name);
	// Takes the list, with default layers where it holds nulls.
	void setLayers(const LayerVector& layers);

	// A node filled with the default settings, in the fixed insertion order
	// that, with the hash, fixes their order in a file.
	static Reference<SceneNodeRenderSettings> getDefaults();
	// A new node with the settings and values of both; b wins everywhere.
	static Reference<SceneNodeRenderSettings> merge(const SceneNodeRenderSettings& a, const SceneNodeRenderSettings& b);
	// The CIE 1931 chromaticity of a standard illuminant by its name, as a
	// single precision value. Throws VelornException for an unknown name.
	static void whitePointForName(const String& illuminant, double& x, double& y);

	SettingsMap settings;
	Reference<SplatFilter> splat_filter;
	Reference<DownsizeFilter> downsize_filter;
	Reference<WhitePoint> white_point;
	Reference<RenderRegion> render_region;
	Reference<GPUDeviceSettings> gpu_device;
	LayerVector layer_settings;

private:
	// The setting under key, which must be of class S.
	template <class S>
	const S& lookup(const String& key, const char* wrong_type_message) const;
	void fillMissingLayers();
	void writeSettings(OStream& stream, unsigned depth) const;
	void writeRenderRegion(OStream& stream, unsigned depth) const;
	void writeWhitePoint(OStream& stream, unsigned depth) const;
	void writeLayers(OStream& stream, unsigned depth) const;
	void writeGPUDevice(OStream& stream, unsigned depth) const;
};

} // namespace Velorn
