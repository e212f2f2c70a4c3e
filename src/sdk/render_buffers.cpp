#include "sdk/render_buffers.h"

#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_root.h"
#include "support/exceptions.h"

namespace Velorn
{

namespace
{

// The margin around the final picture that the reconstruction filter reads.
const uint32_t filter_margin = 8;

} // namespace

RenderBuffer::RenderBuffer(const SceneNodeRoot& root)
{
	const Reference<SceneNode> node = root.getRenderSettingsNode();
	if(node.isNull())
		throw Exception("no render settings node found.");
	const SceneNodeRenderSettings& settings = static_cast<const SceneNodeRenderSettings&>(*node);

	const uint32_t width = (uint32_t)settings.getInt("width");
	const uint32_t height = (uint32_t)settings.getInt("height");
	const uint32_t ss = (uint32_t)settings.getInt("super_sample_factor");
	const size_t layer_count = root.getHighestEmissionLayerInTree() + 1;

	std::vector<std::string> names(layer_count);
	for(size_t i = 0; i < layer_count && i < settings.layer_settings.size(); ++i)
		if(settings.layer_settings[i].nonNull())
			names[i] = settings.layer_settings[i]->name.str();

	bool alpha = false;
	if(settings.settings.contains("render_foreground_alpha"))
		alpha = settings.getBool("render_foreground_alpha");

	master_buffer = std::make_unique<MasterBuffer>((width + filter_margin) * ss, (height + filter_margin) * ss,
		layer_count, width, height, names, alpha);
}

void UInt8Buffer::resize(uint32_t new_width, uint32_t new_height)
{
	width = new_width;
	height = new_height;
	bytes_pp = 4;
	storage.assign((size_t)width * height * bytes_pp, 0);
	data = storage.data();
}

void FloatBuffer::resize(uint32_t new_width, uint32_t new_height)
{
	width = new_width;
	height = new_height;
	components = 4;
	storage.assign((size_t)width * height * components, 0.0f);
	data = storage.data();
}

} // namespace Velorn
