#pragma once

#include "standin/tracer_math.h"

#include <cstdint>

namespace Velorn
{

class SceneNodeCamera;

namespace Standin
{

struct Ray
{
	V3 origin;
	V3 dir;  // unit
};

// The camera of a scene at time 0: a thin lens in front of a virtual sensor
// of sensor_width by sensor_width * height / width at lens_sensor_dist,
// focused at focus_distance, with a circular aperture; or an orthographic
// view sensor_width wide; or a full spherical view. Film coordinates are in
// final pixels, x to the right and y down, (0, 0) the top left corner.
class Camera
{
public:
	Camera(const SceneNodeCamera& node, uint32_t image_width, uint32_t image_height);

	// The ray through a film point, through the lens point chosen by (u1, u2).
	Ray generateRay(float film_x, float film_y, float u1, float u2) const;

	V3 position, forwards, up, right;

private:
	int type;
	float sensor_width, sensor_height, lens_sensor_dist;
	float focus_distance, aperture_radius;
	float shift_right, shift_up;
	float width, height;
};

} // namespace Standin
} // namespace Velorn
