#pragma once

#include "support/bitmap.h"
#include "support/image.h"
#include "support/master_buffer.h"

#include <mutex>
#include <vector>

namespace Velorn
{

class SceneNode;

namespace Standin
{

// How the linear picture becomes 8-bit: by a scale (linear), by Reinhard's
// operator keyed to the picture's mean luminance, or as a camera would
// (automatic exposure corrected by ev_adjust, white balance, and the film's
// response reduced to the display gamma).
struct ToneMapSettings
{
	enum Kind
	{
		Linear,
		Reinhard,
		Camera
	} kind = Linear;
	double linear_scale = 1;
	double pre_scale = 4, post_scale = 1, burn = 6;
	double ev_adjust = 0;
	// The illuminant that is to look white, as CIE 1931 x and y.
	double white_x = 1.0 / 3, white_y = 1.0 / 3;
	double gamma = 2.2;

	// From a tone mapping node (null: linear, scale 1) and the render
	// settings' white point (null: equal energy).
	static ToneMapSettings fromNodes(const SceneNode* tone_mapping, const SceneNode* settings, double gamma);
};

// How a light layer goes into the picture: a layer setting scales the
// layer's light by its gain and by a factor for each of X, Y and Z, the
// space the renderer's buffer stands for. This buffer holds linear sRGB, so
// the weight is that scale carried over to it, a 3 by 3 matrix by rows.
struct LayerWeight
{
	float m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

	// A layer scaled alike in X, Y and Z is scaled by that in every channel,
	// exactly.
	static LayerWeight of(double x, double y, double z, double gain);
};

// The weights of the layer settings of a render settings node, one per
// buffer layer (1 where there is no setting or no node).
std::vector<LayerWeight> layerWeights(const SceneNode* settings, size_t layer_count);

// The final linear picture of a buffer: its layers summed, each by its
// weight (as it is where there is none), the margin dropped and the
// supersamples averaged. With rows_lock, the lock that a running render
// writes its rows under, the buffer is read a band of rows at a time, each
// under the lock: the render's threads then wait for one band at most, not
// for the whole buffer, and a row is never read half written.
void resolveBuffer(const MasterBuffer& buffer, const LayerWeight* weights, uint32_t super_sample_factor, Image& out,
	std::mutex* rows_lock = nullptr);

// The picture's key: the geometric mean of its pixels' luminance, which
// Reinhard's and the camera's exposure bring to middle grey. A few pixels
// of a bright highlight move it little, where they would dominate the
// arithmetic mean and darken the whole picture.
double keyLuminance(const Image& image);

// Writes the tone mapped picture into a bitmap of its size, 3 or 4 bytes
// per pixel (a fourth byte is 255).
void toneMap(const Image& linear, const ToneMapSettings& settings, Bitmap& out);
// The same into floats after the display curve, 0 to 1.
void toneMapToFloat(const Image& linear, const ToneMapSettings& settings, Image& out);

} // namespace Standin
} // namespace Velorn
