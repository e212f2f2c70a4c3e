#pragma once

#include "scene/scene_node_root.h"
#include "standin/tracer_scene.h"
#include "support/master_buffer.h"
#include "support/reference.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Velorn
{

class SceneNodeRoot;

namespace Standin
{

// One scene as the executables render it: read and finalised, traced into a
// buffer, written to the outputs asked for.
struct SessionOptions
{
	uint64_t seed = 1;
	double halt_spp = -1;      // from the command line or queue; overrides the scene's
	double halt_time = -1;
	unsigned num_threads = 0;  // 0: the scene's setting, or the hardware
	std::string png_path, vli_path, untonemapped_exr_path, tonemapped_exr_path;
};

// A render queue item of a .vlq file.
struct QueueItem
{
	std::string scene_path;
	std::string output_path;
	double halt_time = -1;
	double halt_spp = -1;
	long seed = -1;
};

// Reads a .vlq file: throws Exception when it cannot be read or is not a
// render queue.
std::vector<QueueItem> readRenderQueue(const std::string& path);

// Parses and finalises a scene file. Throws on any fault of the file, its
// meshes or its materials.
Reference<SceneNodeRoot> loadScene(const std::string& path);

// The thread count of the render settings: num_threads unless
// auto_choose_num_threads is set (the hardware's count then).
unsigned threadsFromSettings(const SceneNodeRoot& root);

// Renders a loaded scene until the halt, calling progress(spp, seconds,
// fraction or -1) about twice a second, then writes the outputs.
class RenderSession
{
public:
	RenderSession(const Reference<SceneNodeRoot>& root, const std::string& scene_path, const SessionOptions& options);

	template <class Progress>
	void run(Progress progress);
	void writeOutputs() const;

	const TracerScene& getScene() const { return *scene; }
	const MasterBuffer& getBuffer() const { return *buffer; }
	double halt_spp = -1, halt_time = -1;

private:
	void runWith(void (*callback)(void*, double, double, double), void* context);

	Reference<SceneNodeRoot> root;
	SessionOptions options;
	std::shared_ptr<TracerScene> scene;
	std::unique_ptr<MasterBuffer> buffer;
	std::mutex buffer_mutex;
};

template <class Progress>
void RenderSession::run(Progress progress)
{
	runWith([](void* c, double spp, double t, double f) { (*static_cast<Progress*>(c))(spp, t, f); }, &progress);
}

} // namespace Standin
} // namespace Velorn
