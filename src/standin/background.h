#pragma once

#include "standin/surface_materials.h"

#include <vector>

namespace Velorn
{

class SceneNodeRoot;
class SunSkyMaterial;

namespace Standin
{

// What a ray sees when it leaves the scene: nothing, the emission of the
// background material (uniform, or an environment map over the sphere of
// directions), or a simple analytic sun and sky. The scene's up is +z.
//
// The sky is a blend from a blue zenith to a pale horizon with a glow about
// the sun, dimmed as the sun sinks; the ground below the horizon is a grey
// plane lit by sun and sky. The sun is a disc of 0.27 degrees radius whose
// irradiance is attenuated by the air mass and the turbidity, more in blue
// than in red.
class Background
{
public:
	Background() = default;
	// Throws Exception when the background material is of a kind that cannot
	// be a background.
	Background(const SceneNodeRoot& root, MaterialLibrary& materials);

	// Adds the light arriving along -dir (dir points away from the scene)
	// times weight into layers. The sun's disc is added only when
	// with_sun_disc: paths that sampled the sun directly must not see it again.
	void addEscaped(const V3& dir, const V3& weight, bool with_sun_disc, std::vector<V3>& layers) const;

	// The sun, for sampling it from surfaces.
	bool has_sun = false;
	V3 sun_dir;
	Frame sun_frame{V3(0, 0, 1)};  // about sun_dir, for sampling its disc
	float sun_cos_max = 1;
	V3 sun_irradiance;  // through a surface facing the sun
	unsigned sun_layer = 0;

	// The sky's radiance along a direction (excluding the sun).
	V3 skyRadiance(const V3& dir) const;

private:
	void setSunSky(const SunSkyMaterial& sunsky);

	const ShadingMaterial* emitter = nullptr;
	bool has_sky = false;
	unsigned sky_layer = 0;
	float sky_scale = 1;
	V3 ground_radiance;
};

} // namespace Standin
} // namespace Velorn
