#include "support/image_blur.h"

#include "support/image.h"

#include <algorithm>
#include <cmath>

namespace Velorn
{

namespace
{

const double PI = 3.14159265358979323846;

// destination = weight * source, or destination += weight * source, over n
// floats. The passes build each sum tap by tap in the same order wherever a
// pixel lies, so that any division into tasks gives the same floats.
void setScaled(float* destination, const float* source, size_t n, float weight)
{
	for(size_t i = 0; i < n; ++i)
		destination[i] = weight * source[i];
}

void addScaled(float* destination, const float* source, size_t n, float weight)
{
	for(size_t i = 0; i < n; ++i)
		destination[i] += weight * source[i];
}

void scaleInto(bool first_tap, float* destination, const float* source, size_t n, float weight)
{
	if(first_tap)
		setScaled(destination, source, n, weight);
	else
		addScaled(destination, source, n, weight);
}

} // namespace

BlurKernel gaussianBlurKernel(float sigma, uint32_t width, uint32_t height)
{
	const double s = sigma;
	const double normaliser = s * std::sqrt(2.0 * PI);
	// Where exp(-0.5 d^2 / s^2) / normaliser falls to 1e-5 of a unit peak.
	// When even the peak is below that, the root is NaN: such a wide kernel
	// takes the largest radius.
	const double extent = std::sqrt(-2.0 * s * s * std::log(normaliser * 1e-5));
	const int64_t largest = (int64_t)std::min(width, height) - 1;
	int64_t radius = extent < (double)largest ? (int64_t)extent : largest;
	radius = std::max<int64_t>(0, std::min(std::max<int64_t>(radius, 1), largest));

	std::vector<double> values((size_t)(2 * radius + 1));
	double sum = 0;
	for(size_t i = 0; i < values.size(); ++i)
	{
		const double d = (double)i - (double)radius;
		const double value = std::exp(-0.5 * d * d / (s * s)) / normaliser;
		values[i] = value < 1e-12 ? 0.0 : value;
		sum += values[i];
	}
	BlurKernel kernel{(int)radius, std::vector<float>(values.size())};
	for(size_t i = 0; i < values.size(); ++i)
		kernel.taps[i] = (float)(values[i] / sum);
	return kernel;
}

void XBlurTask::run(size_t)
{
	const Image& source = *closure->source;
	Image& destination = *closure->destination;
	const BlurKernel& kernel = *closure->kernel;
	const int64_t width = source.getWidth();
	for(size_t y = first; y < last; ++y)
	{
		const float* source_row = source.getPixel(0, (uint32_t)y);
		float* destination_row = destination.getPixel(0, (uint32_t)y);
		for(size_t i = 0; i < kernel.taps.size(); ++i)
		{
			// Pixel x reads x + d. With the shift taken modulo the width, the
			// row splits into a run that reads to the right of x and a run at
			// the end that reads from the start of the row, or, for taps left
			// of column 0, the other way round.
			const int64_t d = (int64_t)i - kernel.radius;
			const size_t shift = (size_t)((d % width + width) % width);
			const size_t straight = (size_t)width - shift;
			scaleInto(i == 0, destination_row, source_row + shift * 3, straight * 3, kernel.taps[i]);
			scaleInto(i == 0, destination_row + straight * 3, source_row, shift * 3, kernel.taps[i]);
		}
	}
}

void YBlurTask::run(size_t)
{
	const Image& source = *closure->source;
	Image& destination = *closure->destination;
	const BlurKernel& kernel = *closure->kernel;
	const int64_t height = source.getHeight();
	// Row by row over strips of this task's columns, so that reads run along
	// memory and the rows under the kernel stay in the core's cache.
	const size_t strip_width = 256;
	for(size_t strip = first; strip < last; strip += strip_width)
	{
		const size_t num_floats = (std::min(last, strip + strip_width) - strip) * 3;
		for(int64_t y = 0; y < height; ++y)
		{
			float* destination_run = destination.getPixel((uint32_t)strip, (uint32_t)y);
			for(size_t i = 0; i < kernel.taps.size(); ++i)
			{
				const int64_t source_y = ((y + (int64_t)i - kernel.radius) % height + height) % height;
				scaleInto(i == 0, destination_run, source.getPixel((uint32_t)strip, (uint32_t)source_y), num_floats,
					kernel.taps[i]);
			}
		}
	}
}

void Image::gaussianBlur(float sigma, TaskManager& task_manager)
{
	if(!(sigma > 0) || pixels.empty())
		return;
	const BlurKernel kernel = gaussianBlurKernel(sigma, width, height);
	Image rows_blurred;
	rows_blurred.resizeForOverwrite(width, height);
	BlurClosure rows{this, &rows_blurred, &kernel};
	task_manager.runTasks<XBlurTask>(rows, height);
	BlurClosure columns{&rows_blurred, this, &kernel};
	task_manager.runTasks<YBlurTask>(columns, width);
}

} // namespace Velorn
