#pragma once

#include "support/task_manager.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Velorn
{

class Image;

// The taps of a Gaussian of standard deviation sigma, for a picture of
// width by height pixels: 2 * radius + 1 taps that sum to 1. The radius
// ends where a tap would fall below 1e-5 of the peak, at least 1 and at most
// min(width, height) - 1; taps below 1e-12 are 0.
struct BlurKernel
{
	int radius;
	std::vector<float> taps;
};
BlurKernel gaussianBlurKernel(float sigma, uint32_t width, uint32_t height);

// What the tasks of one pass share. The source is read, the destination
// written, each task in its own rows or columns.
struct BlurClosure
{
	const Image* source;
	Image* destination;
	const BlurKernel* kernel;
};

// One pass over the lines first to last - 1 of a picture.
class BlurTask : public Task
{
public:
	BlurTask(const BlurClosure& closure_, size_t first_, size_t last_) : closure(&closure_), first(first_), last(last_) {}

protected:
	const BlurClosure* closure;
	size_t first, last;
};

// Blurs rows along x.
class XBlurTask : public BlurTask
{
public:
	using BlurTask::BlurTask;
	void run(size_t thread_index) override;
};

// Blurs columns along y.
class YBlurTask : public BlurTask
{
public:
	using BlurTask::BlurTask;
	void run(size_t thread_index) override;
};

} // namespace Velorn
