// The parallel image operations on a 4096 by 4096 picture, with one and two
// threads of the task manager: a Gaussian blur of sigma 4 and a
// downsampling by 2 with the box filter. Rates are of source pixels.

#include "support/filter_function.h"
#include "support/image.h"
#include "support/task_manager.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>

using namespace Velorn;

namespace
{

const uint32_t SIZE = 4096;

// Values in [0, 1) from a linear congruential sequence, so that nothing is
// constant and every run sees the same picture.
Image noiseImage()
{
	Image image(SIZE, SIZE);
	uint32_t state = 1;
	float* values = image.getData();
	for(size_t i = 0; i < image.numPixels() * 3; ++i)
	{
		state = state * 1664525u + 1013904223u;
		values[i] = (float)(state >> 8) / 16777216.0f;
	}
	return image;
}

void setRate(benchmark::State& state)
{
	state.counters["Mpix/s"] =
		benchmark::Counter((double)state.iterations() * SIZE * SIZE / 1e6, benchmark::Counter::kIsRate);
}

void BM_GaussianBlur(benchmark::State& state)
{
	TaskManager manager((size_t)state.range(0));
	// Blurring the same picture again and again costs the same each time.
	Image image = noiseImage();
	for(auto _ : state)
	{
		image.gaussianBlur(4.0f, manager);
		benchmark::DoNotOptimize(image.getData());
	}
	setRate(state);
}

void BM_Downsample(benchmark::State& state)
{
	TaskManager manager((size_t)state.range(0));
	const Image image = noiseImage();
	const BoxFilterFunction box;
	Image out;
	for(auto _ : state)
	{
		image.downsampleImage(2, 0, box, out, manager);
		benchmark::DoNotOptimize(out.getData());
	}
	setRate(state);
}

// The fastest of the repetitions: on a machine shared with other work, the
// run that the other work disturbed least. Its rate column is the slowest
// rate, not the one of the fastest time, and is to be ignored.
double fastest(const std::vector<double>& values) { return *std::min_element(values.begin(), values.end()); }

} // namespace

// Wall-clock time: the work runs on the manager's threads, not on the
// thread that measures.
BENCHMARK(BM_GaussianBlur)
	->Arg(1)
	->Arg(2)
	->ArgName("threads")
	->Unit(benchmark::kMillisecond)
	->UseRealTime()
	->ComputeStatistics("min", fastest);
BENCHMARK(BM_Downsample)
	->Arg(1)
	->Arg(2)
	->ArgName("threads")
	->Unit(benchmark::kMillisecond)
	->UseRealTime()
	->ComputeStatistics("min", fastest);

BENCHMARK_MAIN();
