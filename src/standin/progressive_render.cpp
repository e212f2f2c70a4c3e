#include "standin/progressive_render.h"

#include <vector>

namespace Velorn
{
namespace Standin
{

namespace
{

// The margin of final pixels on each side of the picture: the render
// buffer is 8 final pixels wider and higher than the picture.
const uint32_t filter_margin = 4;

uint64_t mix(uint64_t x)
{
	x ^= x >> 33;
	x *= 0xff51afd7ed558ccdULL;
	x ^= x >> 33;
	x *= 0xc4ceb9fe1a85ec53ULL;
	x ^= x >> 33;
	return x;
}

} // namespace

ProgressiveRender::ProgressiveRender(std::shared_ptr<const TracerScene> scene_, MasterBuffer& buffer_,
	std::mutex& buffer_mutex_, unsigned num_threads_, uint64_t seed_)
	: scene(std::move(scene_)), buffer(buffer_), buffer_mutex(buffer_mutex_), num_threads(std::max(1u, num_threads_)),
	  seed(seed_)
{}

ProgressiveRender::~ProgressiveRender()
{
	stop();
}

void ProgressiveRender::setHalt(double samples_per_pixel, double seconds)
{
	halt_spp = samples_per_pixel;
	halt_seconds = seconds;
}

void ProgressiveRender::start()
{
	std::lock_guard<std::mutex> lock(state_mutex);
	if(started)
		return;
	started = true;
	run_start = Clock::now();
	coordinator = std::thread([this] { run(); });
}

void ProgressiveRender::pause()
{
	std::lock_guard<std::mutex> lock(state_mutex);
	if(!paused)
	{
		paused = true;
		pause_start = Clock::now();
	}
}

void ProgressiveRender::resume()
{
	{
		std::lock_guard<std::mutex> lock(state_mutex);
		if(paused)
		{
			paused = false;
			paused_time += Clock::now() - pause_start;
		}
	}
	state_changed.notify_all();
}

void ProgressiveRender::stop()
{
	stop_requested = true;
	state_changed.notify_all();
	if(coordinator.joinable())
		coordinator.join();
}

bool ProgressiveRender::isRunning() const
{
	std::lock_guard<std::mutex> lock(state_mutex);
	return started && !done.load() && !stop_requested.load();
}

void ProgressiveRender::waitUntilDone()
{
	std::unique_lock<std::mutex> lock(state_mutex);
	state_changed.wait(lock, [this] { return done.load() || stop_requested.load(); });
}

double ProgressiveRender::getElapsedTime() const
{
	std::lock_guard<std::mutex> lock(state_mutex);
	if(!started)
		return 0;
	Clock::duration total = Clock::now() - run_start - paused_time;
	if(paused)
		total -= Clock::now() - pause_start;
	return std::chrono::duration<double>(total).count();
}

bool ProgressiveRender::haltReached() const
{
	if(halt_spp > 0 && passes_done.load() >= halt_spp)
		return true;
	return halt_seconds > 0 && getElapsedTime() >= halt_seconds;
}

void ProgressiveRender::waitWhilePaused()
{
	std::unique_lock<std::mutex> lock(state_mutex);
	state_changed.wait(lock, [this] { return !paused || stop_requested.load(); });
}

void ProgressiveRender::run()
{
	while(!stop_requested && !haltReached())
	{
		waitWhilePaused();
		if(stop_requested)
			break;
		const uint32_t pass = passes_done.load();
		next_row = 0;
		std::vector<std::thread> workers;
		for(unsigned i = 1; i < num_threads; ++i)
			workers.emplace_back([this, pass] { renderRows(pass); });
		renderRows(pass);
		for(std::thread& t : workers)
			t.join();
		if(stop_requested)
			break;
		++passes_done;
	}
	{
		std::lock_guard<std::mutex> lock(state_mutex);
		done = true;
	}
	state_changed.notify_all();
}

void ProgressiveRender::renderPassHere()
{
	const uint32_t pass = passes_done.load();
	next_row = 0;
	renderRows(pass);
	++passes_done;
}

RayCounts ProgressiveRender::getRayCounts() const
{
	RayCounts counts;
	counts.camera = camera_rays.load();
	counts.bounce = bounce_rays.load();
	counts.shadow = shadow_rays.load();
	return counts;
}

void ProgressiveRender::renderRows(uint32_t pass)
{
	const uint32_t rows = buffer.getInternalHeight();
	const uint32_t width = buffer.getInternalWidth();
	const size_t layer_count = buffer.layers.size();
	// The row's scratch space, allocated once per thread and pass.
	std::vector<std::vector<V3>> row_layers(layer_count, std::vector<V3>(width));
	std::vector<float> row_alpha(width);
	std::vector<V3> sample(std::max(layer_count, scene->getSettings().layer_count));
	RayCounts counts;
	for(;;)
	{
		if(stop_requested)
			break;
		waitWhilePaused();
		const uint32_t y = next_row++;
		if(y >= rows)
			break;
		renderRow(y, pass, row_layers, row_alpha, sample, counts);
	}
	camera_rays += counts.camera;
	bounce_rays += counts.bounce;
	shadow_rays += counts.shadow;
}

void ProgressiveRender::renderRow(uint32_t y, uint32_t pass, std::vector<std::vector<V3>>& row_layers,
	std::vector<float>& row_alpha, std::vector<V3>& sample, RayCounts& counts)
{
	const uint32_t width = buffer.getInternalWidth();
	const size_t layer_count = buffer.layers.size();
	const TraceSettings& settings = scene->getSettings();
	const float ss = (float)settings.super_sample_factor;
	const Camera& camera = scene->getCamera();

	for(uint32_t x = 0; x < width; ++x)
	{
		Rng rng(mix(seed ^ mix(((uint64_t)y << 32) | x)), pass);
		const float film_x = (x + rng.uniform()) / ss - filter_margin;
		const float film_y = (y + rng.uniform()) / ss - filter_margin;
		const float u1 = rng.uniform(), u2 = rng.uniform();
		// A time only where something moves, so that still scenes keep
		// their random numbers.
		const float time = scene->hasMotion() ? rng.uniform() : 0.0f;
		const Ray ray = camera.generateRay(film_x, film_y, u1, u2, time);
		std::fill(sample.begin(), sample.end(), V3(0));
		bool hit = false;
		scene->radiance(ray, rng, sample, hit, &counts);
		for(size_t l = 0; l < layer_count; ++l)
		{
			// A path that met something no float can hold adds nothing.
			const V3& s = sample[l];
			row_layers[l][x] = std::isfinite(s.x + s.y + s.z) ? s : V3(0);
		}
		row_alpha[x] = hit ? 1.0f : 0.0f;
	}

	// Running means: the new sample weighs 1 / (pass + 1).
	const float w = 1.0f / (pass + 1);
	std::lock_guard<std::mutex> lock(buffer_mutex);
	for(size_t l = 0; l < layer_count; ++l)
	{
		float* p = buffer.layers[l].image.getPixel(0, y);
		for(uint32_t x = 0; x < width; ++x, p += 3)
		{
			p[0] += (row_layers[l][x].x - p[0]) * w;
			p[1] += (row_layers[l][x].y - p[1]) * w;
			p[2] += (row_layers[l][x].z - p[2]) * w;
		}
	}
	if(buffer.alpha.getMapWidth() == width)
		for(uint32_t x = 0; x < width; ++x)
		{
			float& a = buffer.alpha.getPixel(x, y)[0];
			a += (row_alpha[x] - a) * w;
		}
}

} // namespace Standin
} // namespace Velorn
