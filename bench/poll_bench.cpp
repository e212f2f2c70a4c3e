// The in-host render's poll loop against the stand-in renderer's SDK
// library: how many rounds a second the loop makes while the library
// renders, and how long one round's calls take (the time the render thread
// is held, sleep aside), with a tone mapping pass asked for as soon as the
// former one is done, and with no tone mapping at all. The loop makes the
// calls of the video post's loop in its order: drain the messages, read the
// elapsed time, start a pass or test whether it is done, copy the 8-bit
// picture under its lock, read samples per pixel, sleep 50 ms.
//
// A tone mapping pass reads the render buffer under its lock, which the
// renderer's threads take to write each row they finish. A probe thread
// takes that lock as they do, every millisecond, and keeps the longest
// wait: the longest time a render thread is held up by a pass.
//
// The library is loaded from the build's renderer directory.
#include "scene/scene_node_tonemapping.h"
#include "sdk/render_buffers.h"
#include "sdk/renderer.h"
#include "sdk/tone_mapper.h"
#include "sdk/velorn_context.h"
#include "standin/standin_test_helpers.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

namespace
{

using namespace Velorn;
using namespace Velorn::StandinTest;
using Clock = std::chrono::steady_clock;

const auto poll_period = std::chrono::milliseconds(50);
// Seconds of rendering that one measurement polls through.
const double run_seconds = 4;

Reference<VelornContext> context()
{
	static Reference<VelornContext> loaded = [] {
		Reference<VelornContext> c = new VelornContext();
		std::string error;
		if(c->load(STANDIN_RENDERER_DIR, STANDIN_RENDERER_DIR, error) != VelornContext::LOAD_OK)
			throw std::runtime_error("The SDK library cannot be loaded: " + error);
		return c;
	}();
	return loaded;
}

// A diffuse ball on a diffuse floor ball under a uniform sky, width by
// height at super sampling 2 (so the tone mapper resolves a buffer four
// times the picture), rendered by two threads without a halt.
Reference<SceneNodeRoot> scene(int width, int height)
{
	Reference<SceneNodeRoot> root = makeRoot(width, height, Vec3d(0, -4, 1), Vec3d(0, 0.97, -0.243));
	auto& settings = static_cast<SceneNodeRenderSettings&>(*root->getRenderSettingsNode());
	settings.setInt("super_sample_factor", 2);
	settings.setInt("num_threads", 2);
	settings.setDouble("halt_samples_per_pixel", -1);
	settings.setDouble("halt_time", -1);
	root->addChildNode(new SceneNodeTonemapping(4.0, 1.0, 6.0));
	addUniformBackground(*root, 1.0, 0);
	addSphere(*root, Vec3d(0, 0, 0.5), 0.5, addMaterial(*root, diffuse(0.8)));
	addSphere(*root, Vec3d(0, 0, -1000), 1000, addMaterial(*root, diffuse(0.5)));
	return root;
}

// The host's buffer that the loop copies the picture into.
void copyPicture(UInt8Buffer& bytes, std::vector<uint8_t>& host)
{
	std::lock_guard<std::mutex> lock(bytes.mutex);
	const size_t size = (size_t)bytes.width * bytes.height * bytes.bytes_pp;
	host.resize(size);
	if(bytes.data)
		std::memcpy(host.data(), bytes.data, size);
}

// Takes the buffer's lock every millisecond until told to stop; the longest
// wait for it, in milliseconds.
class LockProbe
{
public:
	explicit LockProbe(std::mutex& mutex_) : mutex(mutex_), thread([this] { run(); }) {}
	~LockProbe() { stop(); }

	double stop()
	{
		stopping = true;
		if(thread.joinable())
			thread.join();
		return longest;
	}

private:
	void run()
	{
		while(!stopping)
		{
			const Clock::time_point asked = Clock::now();
			{
				std::lock_guard<std::mutex> lock(mutex);
				longest = std::max(longest, std::chrono::duration<double, std::milli>(Clock::now() - asked).count());
			}
			std::this_thread::sleep_for(std::chrono::milliseconds(1));
		}
	}

	std::mutex& mutex;
	std::atomic<bool> stopping{false};
	double longest = 0;
	std::thread thread;
};

// Arguments: tone mapping (1) or not (0), picture width; the height is
// 9/16 of it.
void BM_PollLoop(benchmark::State& state)
{
	const bool tone_mapping = state.range(0) != 0;
	const int width = (int)state.range(1), height = width * 9 / 16;
	double rounds_per_second = 0, longest_round_ms = 0, passes = 0, spp = 0, longest_render_wait_ms = 0;
	for(auto _ : state)
	{
		Reference<SceneNodeRoot> root = scene(width, height);
		Reference<RenderBuffer> render_buffer = new RenderBuffer(*root);
		Reference<UInt8Buffer> bytes = new UInt8Buffer();
		Reference<Renderer> renderer = new Renderer(context());
		Reference<ToneMapper> tone_mapper = new ToneMapper(context(), render_buffer, bytes, nullptr, 2.2f);
		if(tone_mapper->setParameters(root->getToneMappingNode(), root->getRenderSettingsNode(), root->getCameraNode()) != 0 ||
			renderer->initialiseWithScene(root, render_buffer, Vector<String>{String("poll_bench.vls")}) != 0)
		{
			state.SkipWithError("The library refused the scene.");
			return;
		}
		std::vector<uint8_t> host;
		std::vector<Reference<InterfaceBase>> messages;
		renderer->startRendering();
		LockProbe probe(render_buffer->pixels_mutex);
		const Clock::time_point start = Clock::now();
		bool tonemapping = false;
		int rounds = 0, done_passes = 0;
		double longest = 0;
		while(renderer->getElapsedTime() < run_seconds)
		{
			const Clock::time_point round_start = Clock::now();
			renderer->getMessages(messages);
			benchmark::DoNotOptimize(renderer->getElapsedTime());
			if(tone_mapping && !tonemapping)
			{
				tone_mapper->update();
				tonemapping = true;
			}
			if(tonemapping && tone_mapper->isDone())
			{
				copyPicture(*bytes, host);
				tonemapping = false;
				++done_passes;
			}
			benchmark::DoNotOptimize(renderer->getSamplesPerPixel());
			longest = std::max(longest, std::chrono::duration<double, std::milli>(Clock::now() - round_start).count());
			++rounds;
			std::this_thread::sleep_for(poll_period);
		}
		const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
		longest_render_wait_ms = probe.stop();
		spp = renderer->getSamplesPerPixel();
		renderer->stopRendering();
		// The pass under way ends before the buffers go.
		while(!tone_mapper->isDone())
			std::this_thread::sleep_for(std::chrono::milliseconds(1));
		rounds_per_second = rounds / seconds;
		longest_round_ms = longest;
		passes = done_passes;
	}
	state.counters["rounds_per_s"] = rounds_per_second;
	state.counters["longest_round_ms"] = longest_round_ms;
	state.counters["tone_map_passes"] = passes;
	state.counters["spp"] = spp;
	state.counters["longest_render_wait_ms"] = longest_render_wait_ms;
}

BENCHMARK(BM_PollLoop)
	->ArgNames({"tonemap", "width"})
	->Args({0, 640})
	->Args({1, 640})
	->Args({0, 1920})
	->Args({1, 1920})
	->Iterations(1)
	->Unit(benchmark::kSecond)
	->UseRealTime();

// One tone mapping pass of a picture of the width (9/16 as high), from
// update until isDone: what the loop would wait each time if it waited.
void BM_ToneMapPass(benchmark::State& state)
{
	const int width = (int)state.range(0), height = width * 9 / 16;
	Reference<SceneNodeRoot> root = scene(width, height);
	Reference<RenderBuffer> render_buffer = new RenderBuffer(*root);
	Reference<UInt8Buffer> bytes = new UInt8Buffer();
	Reference<ToneMapper> tone_mapper = new ToneMapper(context(), render_buffer, bytes, nullptr, 2.2f);
	if(tone_mapper->setParameters(root->getToneMappingNode(), root->getRenderSettingsNode(), root->getCameraNode()) != 0)
	{
		state.SkipWithError("The library refused the settings.");
		return;
	}
	for(auto _ : state)
	{
		tone_mapper->update();
		while(!tone_mapper->isDone())
			std::this_thread::sleep_for(std::chrono::microseconds(200));
	}
	state.SetItemsProcessed(state.iterations() * width * height);
}

BENCHMARK(BM_ToneMapPass)->ArgName("width")->Arg(640)->Arg(1920)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
