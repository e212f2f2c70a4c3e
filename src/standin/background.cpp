#include "standin/background.h"

#include "scene/materials_other.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_root.h"
#include "support/exceptions.h"

#include <cmath>

namespace Velorn
{
namespace Standin
{

namespace
{

const float sun_angular_radius = 0.267f * pi / 180;
// The sun's irradiance above the atmosphere, in the renderer's units.
const float sun_strength = 20.0f;
// Optical depth of the atmosphere per unit of turbidity, red, green, blue.
const V3 optical_depth(0.03f, 0.045f, 0.095f);
const V3 zenith_colour(0.2f, 0.38f, 0.9f);
const V3 horizon_colour(0.75f, 0.82f, 0.95f);
const V3 glow_colour(1.0f, 0.9f, 0.7f);
const float ground_albedo = 0.3f;

} // namespace

Background::Background(const SceneNodeRoot& root, MaterialLibrary& materials)
{
	const Reference<SceneNode> node = root.getBackgroundSettingsNode();
	if(node.isNull())
		return;
	const auto& settings = static_cast<const SceneNodeBackgroundSettings&>(*node);
	if(settings.background_material.isNull())
		return;
	const Material& material = *settings.background_material;
	if(material.getType() == MaterialType::SunSky)
		setSunSky(static_cast<const SunSkyMaterial&>(material));
	else
	{
		emitter = materials.convert(material, "background");
		if(emitter->kind != SurfaceKind::Diffuse || !emitter->emits)
			throw Exception("The background material must be an emitting diffuse material or a sun and sky.");
	}
}

void Background::setSunSky(const SunSkyMaterial& sunsky)
{
	sun_dir = normalise(V3((float)sunsky.sundir.x, (float)sunsky.sundir.y, (float)sunsky.sundir.z));
	sun_frame = Frame(sun_dir);
	sun_layer = (unsigned)std::max(0, sunsky.sun_layer);
	sky_layer = (unsigned)std::max(0, sunsky.sky_layer);
	has_sun = true;
	sun_cos_max = std::cos(sun_angular_radius);

	const float elevation = std::fmax(sun_dir.z, 0.0f);
	V3 transmittance(1);
	if(!sunsky.extra_atmospheric)
	{
		const float air_mass = 1 / std::fmax(elevation, 0.05f);
		transmittance = exp(optical_depth * (-air_mass * (float)sunsky.turbidity));
	}
	// Below the horizon the sun lights nothing.
	sun_irradiance = sun_dir.z > 0 ? transmittance * sun_strength : V3(0);

	has_sky = sunsky.enable_sky && !sunsky.extra_atmospheric;
	sky_scale = std::sqrt(std::fmax(elevation, 0.02f));
	// The ground as a diffuse plane under the sun and a sky of roughly its
	// horizon radiance.
	ground_radiance = (sun_irradiance * elevation + (has_sky ? horizon_colour * (pi * sky_scale) : V3(0))) *
					  (ground_albedo / pi);
}

V3 Background::skyRadiance(const V3& dir) const
{
	if(!has_sky)
		return V3(0);
	if(dir.z < 0)
		return ground_radiance;
	const float t = (1 - dir.z) * (1 - dir.z) * (1 - dir.z);
	const float angle = std::acos(std::fmin(std::fmax(dot(dir, sun_dir), -1.0f), 1.0f));
	const V3 glow = glow_colour * (0.6f * std::exp(-angle / 0.15f));
	return (zenith_colour * (1 - t) + horizon_colour * t + glow) * sky_scale;
}

void Background::addEscaped(const V3& dir, const V3& weight, bool with_sun_disc, std::vector<V3>& layers) const
{
	if(emitter)
	{
		// Longitude about z from the x axis, latitude up from the horizon.
		SurfacePoint sp;
		if(emitter->reads_coordinates)
		{
			sp.u = std::atan2(dir.y, dir.x) / (2 * pi) + 0.5f;
			sp.v = std::asin(std::fmin(std::fmax(dir.z, -1.0f), 1.0f)) / pi + 0.5f;
		}
		addEmission(*emitter, sp, weight, layers);
		return;
	}
	if(has_sky && sky_layer < layers.size())
		layers[sky_layer] += weight * skyRadiance(dir);
	if(has_sun && with_sun_disc && dot(dir, sun_dir) >= sun_cos_max && sun_layer < layers.size())
	{
		const float solid_angle = 2 * pi * (1 - sun_cos_max);
		layers[sun_layer] += weight * sun_irradiance / solid_angle;
	}
}

} // namespace Standin
} // namespace Velorn
