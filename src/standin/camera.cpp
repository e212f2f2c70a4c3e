#include "standin/camera.h"

#include "scene/scene_node_camera.h"

#include <cmath>

namespace Velorn
{
namespace Standin
{

namespace
{

V3 toV3(const Vec3d& v) { return V3((float)v.x, (float)v.y, (float)v.z); }

} // namespace

Camera::Camera(const SceneNodeCamera& node, uint32_t image_width, uint32_t image_height)
	: path(node.keyframes), node_forwards(node.forwards), node_up(node.up)
{
	const Axes start = axesAt(0);
	position = start.position;
	forwards = start.forwards;
	up = start.up;
	right = start.right;

	type = node.camera_type;
	inv_width = 1.0f / image_width;
	inv_height = 1.0f / image_height;
	sensor_width = (float)node.sensor_width;
	sensor_height = sensor_width * image_height / image_width;
	lens_sensor_dist = (float)node.lens_sensor_dist;
	focus_distance = (float)node.focus_distance;
	aperture_radius = (float)node.aperture_radius;
	shift_right = (float)node.lens_shift_right_distance;
	shift_up = (float)node.lens_shift_up_distance;
}

Camera::Axes Camera::axesAt(double time) const
{
	// The keyframe's rotation turns the node's forwards and up axes.
	const Placement placement = path.at(time);
	Axes axes;
	axes.position = toV3(placement.position);
	axes.forwards = normalise(toV3(placement.rotation * node_forwards));
	axes.right = normalise(cross(axes.forwards, toV3(placement.rotation * node_up)));
	axes.up = cross(axes.right, axes.forwards);
	return axes;
}

Ray Camera::generateRay(float film_x, float film_y, float u1, float u2, float time) const
{
	Ray ray = rayFrom(path.moves() ? axesAt(time) : Axes{position, forwards, up, right}, film_x, film_y, u1, u2);
	ray.time = time;
	return ray;
}

Ray Camera::rayFrom(const Axes& axes, float film_x, float film_y, float u1, float u2) const
{
	Ray ray;
	const float fx = film_x * inv_width, fy = film_y * inv_height;
	const float sx = (fx - 0.5f) * sensor_width + shift_right;
	const float sy = (0.5f - fy) * sensor_height + shift_up;
	if(type == SceneNodeCamera::Orthographic)
	{
		ray.origin = axes.position + axes.right * sx + axes.up * sy;
		ray.dir = axes.forwards;
		return ray;
	}
	if(type == SceneNodeCamera::Spherical)
	{
		const float lon = fx * 2 * pi - pi;
		const float lat = (0.5f - fy) * pi;
		ray.origin = axes.position;
		ray.dir = normalise(axes.forwards * (std::cos(lat) * std::cos(lon)) + axes.right * (std::cos(lat) * std::sin(lon)) +
							axes.up * std::sin(lat));
		return ray;
	}
	// The pinhole direction, then the thin lens: every ray of a film point
	// meets at its point on the plane of focus, where the pinhole ray's
	// forwards part, lens_sensor_dist, has grown to focus_distance.
	const V3 pinhole = axes.forwards * lens_sensor_dist + axes.right * sx + axes.up * sy;
	if(aperture_radius <= 0 || focus_distance <= 0)
	{
		ray.origin = axes.position;
		ray.dir = normalise(pinhole);
		return ray;
	}
	const V3 focus_point = axes.position + pinhole * (focus_distance / lens_sensor_dist);
	const float r = aperture_radius * std::sqrt(u1);
	const float phi = 2 * pi * u2;
	ray.origin = axes.position + axes.right * (r * std::cos(phi)) + axes.up * (r * std::sin(phi));
	ray.dir = normalise(focus_point - ray.origin);
	return ray;
}

} // namespace Standin
} // namespace Velorn
