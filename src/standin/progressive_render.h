#pragma once

#include "standin/tracer_scene.h"
#include "support/master_buffer.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace Velorn
{
namespace Standin
{

// Renders a scene progressively into a MasterBuffer: each pass adds one
// sample to every internal pixel (the margin included), and every layer's
// pixel holds the mean of its samples so far. Rows are shared out among
// the threads; a pixel's random numbers depend only on the pixel, the pass
// and the seed. The buffer's pixels are written under buffer_mutex, one row
// at a time.
class ProgressiveRender
{
public:
	ProgressiveRender(std::shared_ptr<const TracerScene> scene, MasterBuffer& buffer, std::mutex& buffer_mutex,
		unsigned num_threads, uint64_t seed);
	// Stops and joins.
	~ProgressiveRender();

	// A halt after so many passes or seconds of rendering; not positive
	// means none.
	void setHalt(double samples_per_pixel, double seconds);

	void start();
	void pause();
	void resume();
	// Returns once every thread has ended; a row under way is finished.
	void stop();
	// Blocks until the halt is reached or stop is called.
	void waitUntilDone();

	double getSamplesPerPixel() const { return passes_done.load(); }
	// Seconds of rendering, without the time paused.
	double getElapsedTime() const;
	bool isDone() const { return done.load(); }
	// True from start until the render ends by its halt or by stop.
	bool isRunning() const;

	// Renders one pass on the calling thread: for tests and benchmarks.
	void renderPassHere();

	// The rays cast so far, by role; complete for the passes done.
	RayCounts getRayCounts() const;

private:
	void run();
	void renderRows(uint32_t pass);
	void renderRow(uint32_t y, uint32_t pass, std::vector<std::vector<V3>>& row_layers, std::vector<float>& row_alpha,
		std::vector<V3>& sample, RayCounts& counts);
	bool haltReached() const;
	void waitWhilePaused();

	std::shared_ptr<const TracerScene> scene;
	MasterBuffer& buffer;
	std::mutex& buffer_mutex;
	unsigned num_threads;
	uint64_t seed;
	double halt_spp = -1, halt_seconds = -1;

	std::thread coordinator;
	std::atomic<bool> stop_requested{false};
	std::atomic<bool> done{false};
	std::atomic<uint32_t> passes_done{0};
	std::atomic<uint32_t> next_row{0};
	// Each thread counts on its own and adds its counts here when its share
	// of a pass is done.
	std::atomic<uint64_t> camera_rays{0}, bounce_rays{0}, shadow_rays{0};

	mutable std::mutex state_mutex;
	std::condition_variable state_changed;
	bool paused = false;
	bool started = false;
	using Clock = std::chrono::steady_clock;
	Clock::time_point run_start;
	Clock::time_point pause_start;
	Clock::duration paused_time{0};
};

} // namespace Standin
} // namespace Velorn
