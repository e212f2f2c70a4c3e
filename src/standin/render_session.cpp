#include "standin/render_session.h"

#include "mesh/mesh.h"
#include "mesh/model_decoder.h"
#include "reader/scene_parser.h"
#include "scene/scene_node_mesh.h"
#include "scene/render_setting_values.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_root.h"
#include "scene/scene_node_tonemapping.h"
#include "standin/image_files.h"
#include "standin/progressive_render.h"
#include "standin/tone_mapping.h"
#include "support/binary_stream.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

#include <tinyxml.h>

#include <chrono>
#include <fstream>
#include <thread>

namespace Velorn
{
namespace Standin
{

namespace
{

// The render buffer is this many final pixels wider and higher than the
// picture, half of it on each side.
const uint32_t filter_margin = 8;

double childNumber(const TiXmlElement& item, const char* name, double fallback)
{
	const TiXmlElement* e = item.FirstChildElement(name);
	if(!e || !e->GetText())
		return fallback;
	return std::atof(e->GetText());
}

std::string childText(const TiXmlElement& item, const char* name)
{
	const TiXmlElement* e = item.FirstChildElement(name);
	return e && e->GetText() ? e->GetText() : "";
}

} // namespace

std::vector<QueueItem> readRenderQueue(const std::string& path)
{
	TiXmlDocument doc;
	if(!doc.LoadFile(path.c_str()))
		throw Exception("Could not read render queue '" + path + "': " + doc.ErrorDesc());
	const TiXmlElement* queue = doc.RootElement();
	if(!queue || std::string(queue->Value()) != "render_queue")
		throw Exception("'" + path + "' is not a render queue (no render_queue element).");
	std::vector<QueueItem> items;
	for(const TiXmlElement* e = queue->FirstChildElement("item"); e; e = e->NextSiblingElement("item"))
	{
		QueueItem item;
		item.scene_path = childText(*e, "scene_path");
		if(item.scene_path.empty())
			throw Exception("Render queue '" + path + "': an item has no scene_path.");
		item.output_path = childText(*e, "output_path");
		item.halt_time = childNumber(*e, "halt_time", -1);
		item.halt_spp = childNumber(*e, "halt_spp", -1);
		item.seed = (long)childNumber(*e, "seed", -1);
		items.push_back(item);
	}
	return items;
}

Reference<SceneNodeRoot> loadScene(const std::string& path)
{
	if(!FileUtils::fileExists(path))
		throw Exception("Scene file '" + path + "' does not exist.");
	SceneParser parser;
	Reference<SceneNodeRoot> root = parser.parseFile(path, "");
	// Meshes are loaded here rather than by finalise, so that a failure can
	// name the file at fault; finalise then finds them loaded.
	const std::string dir = FileUtils::getDirectory(path);
	for(const Reference<SceneNode>& child : root->getChildren())
	{
		if(child->getType() != SceneNodeType::Mesh)
			continue;
		auto& node = static_cast<SceneNodeMesh&>(*child);
		if(node.mesh.nonNull())
			continue;
		const std::string mesh_path = FileUtils::join(dir, node.path.str());
		if(!FileUtils::fileExists(mesh_path))
			throw Exception("Mesh file '" + mesh_path + "' of mesh '" + node.getName().str() + "' does not exist.");
		Reference<Mesh> mesh = new Mesh();
		try
		{
			loadModel(mesh_path, *mesh, (float)node.scale);
		}
		catch(const MessageException& e)
		{
			throw Exception("Mesh file '" + mesh_path + "' of mesh '" + node.getName().str() + "' cannot be read: " + e.what());
		}
		node.mesh = mesh;
	}
	root->finalise(String(path));
	return root;
}

unsigned threadsFromSettings(const SceneNodeRoot& root)
{
	const unsigned hardware = std::max(1u, std::thread::hardware_concurrency());
	const Reference<SceneNode> node = root.getRenderSettingsNode();
	if(node.isNull())
		return hardware;
	const auto& s = static_cast<const SceneNodeRenderSettings&>(*node);
	if(s.settings.contains("auto_choose_num_threads") && s.getBool("auto_choose_num_threads"))
		return hardware;
	if(s.settings.contains("num_threads") && s.getInt("num_threads") > 0)
		return (unsigned)s.getInt("num_threads");
	return hardware;
}

RenderSession::RenderSession(const Reference<SceneNodeRoot>& root_, const std::string& scene_path,
	const SessionOptions& options_)
	: root(root_), options(options_)
{
	scene = std::make_shared<TracerScene>(*root, FileUtils::getDirectory(scene_path));
	const TraceSettings& s = scene->getSettings();
	std::vector<std::string> names(s.layer_count);
	const Reference<SceneNode> node = root->getRenderSettingsNode();
	const auto& rs = static_cast<const SceneNodeRenderSettings&>(*node);
	for(size_t i = 0; i < names.size() && i < rs.layer_settings.size(); ++i)
		if(rs.layer_settings[i].nonNull())
			names[i] = rs.layer_settings[i]->name.str();
	const uint32_t ss = s.super_sample_factor;
	buffer = std::make_unique<MasterBuffer>((s.width + filter_margin) * ss, (s.height + filter_margin) * ss,
		s.layer_count, s.width, s.height, names, s.foreground_alpha);

	halt_spp = rs.settings.contains("halt_samples_per_pixel") ? rs.getDouble("halt_samples_per_pixel") : -1;
	halt_time = rs.settings.contains("halt_time") ? rs.getDouble("halt_time") : -1;
	if(options.halt_spp > 0)
		halt_spp = options.halt_spp;
	if(options.halt_time > 0)
		halt_time = options.halt_time;
}

void RenderSession::runWith(void (*callback)(void*, double, double, double), void* context)
{
	const unsigned threads = options.num_threads ? options.num_threads : threadsFromSettings(*root);
	ProgressiveRender render(scene, *buffer, buffer_mutex, threads, options.seed);
	render.setHalt(halt_spp, halt_time);
	render.start();
	auto last = std::chrono::steady_clock::now();
	while(!render.isDone())
	{
		std::this_thread::sleep_for(std::chrono::milliseconds(50));
		const auto now = std::chrono::steady_clock::now();
		if(now - last < std::chrono::milliseconds(500) || render.isDone())
			continue;
		last = now;
		const double spp = render.getSamplesPerPixel(), t = render.getElapsedTime();
		double fraction = -1;
		if(halt_spp > 0)
			fraction = spp / halt_spp;
		if(halt_time > 0)
			fraction = std::max(fraction, t / halt_time);
		callback(context, spp, t, std::min(fraction, 1.0));
	}
	render.stop();
	callback(context, render.getSamplesPerPixel(), render.getElapsedTime(), 1.0);
}

void RenderSession::writeOutputs() const
{
	const TraceSettings& s = scene->getSettings();
	const std::vector<LayerWeight> weights =
		layerWeights(root->getRenderSettingsNode().getPointer(), buffer->layers.size());
	Image linear;
	resolveBuffer(*buffer, weights.data(), s.super_sample_factor, linear);

	const Reference<SceneNode> tone_node = root->getToneMappingNode();
	const Reference<SceneNode> settings_node = root->getRenderSettingsNode();
	const ToneMapSettings tone = ToneMapSettings::fromNodes(tone_node.getPointer(), settings_node.getPointer(), 2.2);
	if(!options.png_path.empty())
	{
		Bitmap bitmap(1, 1, 3);
		toneMap(linear, tone, bitmap);
		writePNG(options.png_path, bitmap);
	}
	if(!options.untonemapped_exr_path.empty())
		writeEXR(options.untonemapped_exr_path, linear);
	if(!options.tonemapped_exr_path.empty())
	{
		Image display;
		toneMapToFloat(linear, tone, display);
		writeEXR(options.tonemapped_exr_path, display);
	}
	if(!options.vli_path.empty())
	{
		BufferOutStream stream;
		buffer->writeToStream(stream);
		std::ofstream file(options.vli_path, std::ios::binary);
		file.write(reinterpret_cast<const char*>(stream.getData().data()), (std::streamsize)stream.getData().size());
		if(!file)
			throw Exception("Could not write '" + options.vli_path + "'.");
	}
}

} // namespace Standin
} // namespace Velorn
