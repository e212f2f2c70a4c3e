#include "support/exceptions.h"
#include "support/filter_function.h"
#include "support/image.h"
#include "support/task_manager.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Velorn
{

namespace
{

// The filter table and the geometry that the row tasks share.
struct DownsampleClosure
{
	const Image* source;
	Image* destination;
	int64_t border_width;
	int64_t ss_factor;
	// table_size squared taps, row by row. Tap (tx, ty) weights the source
	// pixel (start + tx, start + ty) of an output pixel, where start is
	// border_width + index * ss_factor + table_offset in each direction.
	size_t table_size;
	std::vector<float> taps;
	int64_t table_offset;
};

DownsampleClosure makeClosure(const Image& source, Image& destination, uint32_t ss_factor, uint32_t border_width,
	const FilterFunction& filter)
{
	const double ss = ss_factor;
	const double r = filter.getSupportRadius() * ss;
	DownsampleClosure closure{&source, &destination, border_width, ss_factor, (size_t)std::ceil(r * 2), {}, 0};
	// The table is centred on the output pixel's centre, border + (x + 0.5)
	// * ss_factor in source pixels; its first tap is r to the left of it.
	closure.table_offset = (int64_t)std::floor(ss * 0.5 - r);

	std::vector<double> along(closure.table_size);
	for(size_t i = 0; i < along.size(); ++i)
		along[i] = filter.eval(std::fabs((double)i + 0.5 - r) / ss);
	closure.taps.resize(closure.table_size * closure.table_size);
	for(size_t ty = 0; ty < closure.table_size; ++ty)
		for(size_t tx = 0; tx < closure.table_size; ++tx)
			closure.taps[ty * closure.table_size + tx] = (float)(along[tx] * along[ty] / (ss * ss));
	return closure;
}

// The taps of a table that starts at source pixel start and lie inside a
// source of the given size: first to last - 1.
void clipTable(int64_t start, int64_t size, size_t table_size, size_t& first, size_t& last)
{
	first = (size_t)std::clamp<int64_t>(-start, 0, (int64_t)table_size);
	last = (size_t)std::clamp<int64_t>(size - start, (int64_t)first, (int64_t)table_size);
}

// Makes output rows first to last - 1.
class DownsampleTask : public Task
{
public:
	DownsampleTask(const DownsampleClosure& closure_, size_t first_, size_t last_) : closure(closure_), first(first_), last(last_) {}

	void run(size_t) override
	{
		const Image& source = *closure.source;
		Image& destination = *closure.destination;
		const size_t n = closure.table_size;
		for(size_t y = first; y < last; ++y)
		{
			const int64_t start_y = closure.border_width + (int64_t)y * closure.ss_factor + closure.table_offset;
			size_t first_ty, last_ty;
			clipTable(start_y, source.getHeight(), n, first_ty, last_ty);
			for(uint32_t x = 0; x < destination.getWidth(); ++x)
			{
				const int64_t start_x = closure.border_width + (int64_t)x * closure.ss_factor + closure.table_offset;
				size_t first_tx, last_tx;
				clipTable(start_x, source.getWidth(), n, first_tx, last_tx);
				float sum[3] = {0, 0, 0};
				for(size_t ty = first_ty; ty < last_ty && first_tx < last_tx; ++ty)
				{
					const float* row = source.getPixel((uint32_t)(start_x + (int64_t)first_tx), (uint32_t)(start_y + (int64_t)ty));
					const float* tap = &closure.taps[ty * n];
					for(size_t tx = first_tx; tx < last_tx; ++tx, row += 3)
					{
						sum[0] += tap[tx] * row[0];
						sum[1] += tap[tx] * row[1];
						sum[2] += tap[tx] * row[2];
					}
				}
				float* pixel = destination.getPixel(x, (uint32_t)y);
				pixel[0] = sum[0];
				pixel[1] = sum[1];
				pixel[2] = sum[2];
			}
		}
	}

private:
	const DownsampleClosure& closure;
	size_t first, last;
};

// (internal - 2 * border) / ss, or 0 when the border takes it all.
uint32_t downsampledSize(uint32_t internal, uint32_t border_width, uint32_t ss_factor)
{
	const uint64_t border = 2 * (uint64_t)border_width;
	return internal > border ? (uint32_t)((internal - border) / ss_factor) : 0;
}

} // namespace

void Image::downsampleImage(uint32_t ss_factor, uint32_t border_width, const FilterFunction& filter, Image& out,
	TaskManager& task_manager) const
{
	if(ss_factor == 0)
		throw Exception("Supersampling factor must be at least 1.");
	out.resizeForOverwrite(downsampledSize(width, border_width, ss_factor), downsampledSize(height, border_width, ss_factor));
	DownsampleClosure closure = makeClosure(*this, out, ss_factor, border_width, filter);
	task_manager.runTasks<DownsampleTask>(closure, out.getHeight());
}

} // namespace Velorn
