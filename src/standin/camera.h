#pragma once

#include "standin/motion_path.h"
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
	float time = 0;  // while the shutter is open, 0 to 1
};

// The camera of a scene: a thin lens in front of a virtual sensor of
// sensor_width by sensor_width * height / width at lens_sensor_dist,
// focused at focus_distance, with a circular aperture; or an orthographic
// view sensor_width wide; or a full spherical view. It moves along its
// keyframes while the shutter is open. Film coordinates are in final
// pixels, x to the right and y down, (0, 0) the top left corner.
class Camera
{
public:
	Camera(const SceneNodeCamera& node, uint32_t image_width, uint32_t image_height);

	// The ray through a film point, through the lens point chosen by (u1,
	// u2), at a time while the shutter is open.
	Ray generateRay(float film_x, float film_y, float u1, float u2, float time = 0) const;

	bool moves() const { return path.moves(); }

	// The placement at time 0.
	V3 position, forwards, up, right;

private:
	struct Axes
	{
		V3 position, forwards, up, right;
	};
	Axes axesAt(double time) const;
	Ray rayFrom(const Axes& axes, float film_x, float film_y, float u1, float u2) const;

	MotionPath path;
	Vec3d node_forwards, node_up;
	int type;
	float sensor_width, sensor_height, lens_sensor_dist;
	float focus_distance, aperture_radius;
	float shift_right, shift_up;
	float inv_width, inv_height;  // of the picture, in final pixels
};

} // namespace Standin
} // namespace Velorn
