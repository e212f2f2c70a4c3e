#pragma once

#include "standin/shader_program.h"
#include "standin/tracer_math.h"
#include "support/image.h"
#include "support/velorn_vector.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Velorn
{

class Spectrum;
class ShaderInfo;
class Texture;
class WavelengthDependentParam;
class WavelengthIndependentParam;
class DisplacementParam;
class Vec3Param;

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

// A colour channel of a material: a constant, a texture or a shader
// program. A program this renderer cannot read leaves the constant.
struct ColourValue
{
	V3 constant;
	bool has_texture = false;
	TextureMap texture;
	std::shared_ptr<const ShaderProgram> shader;

	V3 eval(const ShadePoint& p) const
	{
		return shader ? shader->evalColour(p) : (has_texture ? texture.eval(p.u, p.v) : constant);
	}
};

// A single number of a material: the mean of a texture's channels where
// there is one, a shader program's real result (or the mean of its vec3).
struct ScalarValue
{
	float constant = 0;
	bool has_texture = false;
	TextureMap texture;
	std::shared_ptr<const ShaderProgram> shader;

	float eval(const ShadePoint& p) const
	{
		return shader ? shader->evalReal(p) : (has_texture ? texture.eval(p.u, p.v).average() : constant);
	}
};

// The channel readers. A null parameter gives the fallback; so does a
// shader whose program cannot be read, which is added to shader_errors so
// that the caller can say so. texture_list is the owning material's
// textures.
struct ChannelReader
{
	TextureCache& cache;
	const Vector<Texture>& texture_list;
	std::vector<std::string> shader_errors;
	// Set once a channel is a texture or a shader.
	bool reads_coordinates = false;

	ColourValue colour(const Reference<WavelengthDependentParam>& param, const V3& fallback);
	ScalarValue scalar(const Reference<WavelengthIndependentParam>& param, float fallback);
	ScalarValue scalar(const Reference<DisplacementParam>& param, float fallback);
	// A direction of three components, as a normal map gives it.
	ColourValue vec3(const Reference<Vec3Param>& param, const V3& fallback);

private:
	// Fills value from the texture or shader form of a channel, which
	// every kind of channel has; false for any other form.
	template <class TextureForm, class ShaderForm, class Param, class Value>
	bool readVarying(const Param* param, Value& value);
	// Notes a channel that is none of the forms this renderer reads.
	void unknownForm(bool present);
	TextureMap textureAt(int index);
	// The compiled program of a shader parameter, or null after noting why
	// not.
	std::shared_ptr<const ShaderProgram> program(const ShaderInfo* info);
};

} // namespace Standin
} // namespace Velorn
