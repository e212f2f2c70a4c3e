#pragma once

#include "standin/tracer_math.h"
#include "support/image.h"
#include "support/velorn_vector.h"

#include <map>
#include <memory>
#include <string>

namespace Velorn
{

class Spectrum;
class Texture;
class WavelengthDependentParam;
class WavelengthIndependentParam;
class DisplacementParam;

namespace Standin
{

// The RGB value of a spectrum: RGB values raised to their gamma, a uniform
// value in all three channels, a black body's colour at unit luminance times
// its gain, a peak or a table averaged over the three bands of red, green and
// blue.
V3 spectrumToRGB(const Spectrum& spectrum);

// The linear RGB colour of a black body at a temperature in kelvin, scaled
// to a luminance of 1.
V3 blackBodyColour(double temperature);

// An image texture as a material channel reads it: the picture in linear
// values (raised to the texture's exponent on loading), sampled tiled and
// bilinearly at the surface's UV coordinates through the texture's UV
// matrix and translation, then shaped by a * t * t + b * t + c.
struct TextureMap
{
	std::shared_ptr<const Image> image;
	double a = 0, b = 1, c = 0;
	double matrix[4] = {1, 0, 0, 1};
	double translation[2] = {0, 0};

	V3 eval(float u, float v) const;
};

// The image files of a scene, each loaded once. Relative paths are taken
// against the scene's directory. Not locked: filled while the scene is
// built, then read only.
class TextureCache
{
public:
	explicit TextureCache(const std::string& scene_dir_) : scene_dir(scene_dir_) {}

	// Throws Exception when the file is missing or cannot be read.
	TextureMap get(const Texture& texture);

private:
	std::string scene_dir;
	std::map<std::pair<std::string, double>, std::shared_ptr<const Image>> images;
};

// A colour channel of a material: a constant or a texture. Shader programs
// are out of this renderer's reach and read as the constant.
struct ColourValue
{
	V3 constant;
	bool has_texture = false;
	TextureMap texture;

	V3 eval(float u, float v) const { return has_texture ? texture.eval(u, v) : constant; }
};

// A single number of a material: the mean of a texture's channels where
// there is one.
struct ScalarValue
{
	float constant = 0;
	bool has_texture = false;
	TextureMap texture;

	float eval(float u, float v) const { return has_texture ? texture.eval(u, v).average() : constant; }
};

// The channel readers. A null parameter gives the fallback; a shader gives
// the fallback too, and sets used_shader so that the caller can say so.
// texture_list is the owning material's textures.
struct ChannelReader
{
	TextureCache& cache;
	const Vector<Texture>& texture_list;
	bool used_shader = false;

	ColourValue colour(const Reference<WavelengthDependentParam>& param, const V3& fallback);
	ScalarValue scalar(const Reference<WavelengthIndependentParam>& param, float fallback);
	ScalarValue scalar(const Reference<DisplacementParam>& param, float fallback);

private:
	TextureMap textureAt(int index);
};

} // namespace Standin
} // namespace Velorn
