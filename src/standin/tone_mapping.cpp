#include "standin/tone_mapping.h"

#include "scene/render_setting_values.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_tonemapping.h"
#include "support/filter_function.h"
#include "support/task_manager.h"

#include <algorithm>
#include <cmath>

namespace Velorn
{
namespace Standin
{

namespace
{

// The luminance that the automatic exposure gives the mean of a picture.
const double middle_grey = 0.18;

// Rows of the render buffer read under its lock at a time: a band of a
// wide picture takes well under a millisecond.
const uint32_t resolve_band_rows = 16;

// Linear sRGB of an XYZ colour.
void xyzToRGB(double X, double Y, double Z, double rgb[3])
{
	rgb[0] = 3.2406 * X - 1.5372 * Y - 0.4986 * Z;
	rgb[1] = -0.9689 * X + 1.8758 * Y + 0.0415 * Z;
	rgb[2] = 0.0557 * X - 0.2040 * Y + 1.0570 * Z;
}

// CIE XYZ of a linear sRGB colour, the inverse of xyzToRGB.
const double rgb_to_xyz[3][3] = {{0.4124564, 0.3575761, 0.1804375}, {0.2126729, 0.7151522, 0.0721750},
	{0.0193339, 0.1191920, 0.9503041}};

// Per-channel gains that make the white point's colour neutral, relative
// to the equal-energy white (which the renderer's RGB white stands for).
void whiteBalanceGains(double x, double y, double gains[3])
{
	double white[3], equal[3];
	xyzToRGB(x / y, 1, (1 - x - y) / y, white);
	xyzToRGB(1, 1, 1, equal);
	for(int i = 0; i < 3; ++i)
		gains[i] = white[i] > 0 ? equal[i] / white[i] : 1;
	const double g = gains[1];
	for(int i = 0; i < 3; ++i)
		gains[i] /= g;
}

// The linear value of every channel after exposure, before the display curve.
void exposeAll(const Image& linear, const ToneMapSettings& s, Image& out)
{
	out.resize(linear.getWidth(), linear.getHeight());
	const double key = keyLuminance(linear);
	double gains[3] = {1, 1, 1};
	double scale = 1;
	switch(s.kind)
	{
	case ToneMapSettings::Linear:
		scale = s.linear_scale;
		break;
	case ToneMapSettings::Reinhard:
		scale = key > 0 ? s.pre_scale * middle_grey / key : 1;
		break;
	case ToneMapSettings::Camera:
		scale = (key > 0 ? middle_grey / key : 1) * std::pow(2.0, s.ev_adjust);
		whiteBalanceGains(s.white_x, s.white_y, gains);
		break;
	}
	const double burn2 = s.burn * s.burn;
	for(uint32_t y = 0; y < linear.getHeight(); ++y)
		for(uint32_t x = 0; x < linear.getWidth(); ++x)
		{
			const float* p = linear.getPixel(x, y);
			float* q = out.getPixel(x, y);
			double c[3];
			for(int i = 0; i < 3; ++i)
				c[i] = p[i] * scale * gains[i];
			if(s.kind == ToneMapSettings::Reinhard)
			{
				// L (1 + L / burn^2) / (1 + L) on the luminance, the colour kept.
				const double L = 0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2];
				const double Ld = L > 0 ? L * (1 + L / burn2) / (1 + L) * s.post_scale : 0;
				for(int i = 0; i < 3; ++i)
					c[i] = L > 0 ? c[i] * Ld / L : 0;
			}
			for(int i = 0; i < 3; ++i)
				q[i] = (float)c[i];
		}
}

} // namespace

ToneMapSettings ToneMapSettings::fromNodes(const SceneNode* tone_mapping, const SceneNode* settings, double gamma)
{
	ToneMapSettings s;
	s.gamma = gamma > 0 ? gamma : 2.2;
	if(auto* node = dynamic_cast<const SceneNodeTonemapping*>(tone_mapping))
	{
		switch(node->tone_mapping_type)
		{
		case SceneNodeTonemapping::Reinhard:
			s.kind = Reinhard;
			break;
		case SceneNodeTonemapping::CameraResponse:
			s.kind = Camera;
			break;
		default:
			s.kind = Linear;
			break;
		}
		s.linear_scale = node->linear_scale;
		s.pre_scale = node->pre_scale;
		s.post_scale = node->post_scale;
		s.burn = node->burn;
		s.ev_adjust = node->ev_adjust;
	}
	if(auto* rs = dynamic_cast<const SceneNodeRenderSettings*>(settings))
		if(rs->white_point.nonNull() && rs->white_point->y > 0)
		{
			s.white_x = rs->white_point->x;
			s.white_y = rs->white_point->y;
		}
	return s;
}

LayerWeight LayerWeight::of(double x, double y, double z, double gain)
{
	LayerWeight w;
	if(x == y && y == z)
	{
		for(int i = 0; i < 3; ++i)
			w.m[i][i] = (float)(x * gain);
		return w;
	}
	// RGB to XYZ, the scale, and back: column k of the way back is the RGB
	// of the unit X, Y or Z.
	const double scale[3] = {x * gain, y * gain, z * gain};
	double back[3][3];
	xyzToRGB(1, 0, 0, back[0]);
	xyzToRGB(0, 1, 0, back[1]);
	xyzToRGB(0, 0, 1, back[2]);
	for(int i = 0; i < 3; ++i)
		for(int j = 0; j < 3; ++j)
		{
			double sum = 0;
			for(int k = 0; k < 3; ++k)
				sum += back[k][i] * scale[k] * rgb_to_xyz[k][j];
			w.m[i][j] = (float)sum;
		}
	return w;
}

std::vector<LayerWeight> layerWeights(const SceneNode* settings, size_t layer_count)
{
	std::vector<LayerWeight> weights(layer_count);
	if(const auto* rs = dynamic_cast<const SceneNodeRenderSettings*>(settings))
		for(size_t i = 0; i < layer_count && i < rs->layer_settings.size(); ++i)
			if(const LayerSetting* layer = rs->layer_settings[i].getPointer())
				weights[i] = LayerWeight::of(layer->xyz.x, layer->xyz.y, layer->xyz.z, layer->gain);
	return weights;
}

void resolveBuffer(const MasterBuffer& buffer, const LayerWeight* weights, uint32_t ss, Image& out, std::mutex* rows_lock)
{
	const uint32_t width = buffer.getInternalWidth(), height = buffer.getInternalHeight();
	Image sum(width, height);
	for(uint32_t first = 0; first < height; first += resolve_band_rows)
	{
		const uint32_t end = std::min(height, first + resolve_band_rows);
		std::unique_lock<std::mutex> lock;
		if(rows_lock)
			lock = std::unique_lock<std::mutex>(*rows_lock);
		for(size_t l = 0; l < buffer.layers.size(); ++l)
		{
			const LayerWeight w = weights ? weights[l] : LayerWeight();
			const float* src = buffer.layers[l].image.getData();
			float* dst = sum.getData();
			for(size_t i = (size_t)first * width * 3; i < (size_t)end * width * 3; i += 3)
				for(int c = 0; c < 3; ++c)
					dst[i + c] += w.m[c][0] * src[i] + w.m[c][1] * src[i + 1] + w.m[c][2] * src[i + 2];
		}
	}
	TaskManager tasks(1);
	BoxFilterFunction box;
	// The buffer's margin is 4 final pixels on each side.
	sum.downsampleImage(ss, 4 * ss, box, out, tasks);
}

double keyLuminance(const Image& image)
{
	// The small offset keeps black pixels from sending the logarithm to
	// minus infinity.
	const double offset = 1e-4;
	double total = 0;
	const float* p = image.getData();
	for(size_t i = 0; i < image.numPixels(); ++i, p += 3)
		total += std::log(offset + std::fmax(0.0, 0.2126 * p[0] + 0.7152 * p[1] + 0.0722 * p[2]));
	return image.numPixels() ? std::exp(total / image.numPixels()) : 0;
}

void toneMapToFloat(const Image& linear, const ToneMapSettings& settings, Image& out)
{
	exposeAll(linear, settings, out);
	float* p = out.getData();
	for(size_t i = 0; i < out.numPixels() * 3; ++i)
		p[i] = (float)std::pow(std::fmin(std::fmax((double)p[i], 0.0), 1.0), 1 / settings.gamma);
}

void toneMap(const Image& linear, const ToneMapSettings& settings, Bitmap& out)
{
	Image display;
	toneMapToFloat(linear, settings, display);
	const uint32_t bpp = out.getBytesPP() == 4 ? 4 : 3;
	out.resize(linear.getWidth(), linear.getHeight(), bpp);
	for(uint32_t y = 0; y < linear.getHeight(); ++y)
		for(uint32_t x = 0; x < linear.getWidth(); ++x)
		{
			const float* p = display.getPixel(x, y);
			uint8_t* q = out.getPixel(x, y);
			for(int i = 0; i < 3; ++i)
				q[i] = (uint8_t)std::lround(p[i] * 255.0f);
			if(bpp == 4)
				q[3] = 255;
		}
}

} // namespace Standin
} // namespace Velorn
