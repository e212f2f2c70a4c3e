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
{
	// The placement at time 0 is the first keyframe's: its position, and its
	// rotation turning the forwards and up axes.
	Matrix3d rotation = Matrix3d::axisAngle(Vec3d(0, 0, 1), 0);
	if(!node.keyframes.empty())
	{
		position = toV3(node.keyframes[0].pos);
		if(node.keyframes[0].rotation_angle != 0)
			rotation = Matrix3d::axisAngle(node.keyframes[0].rotation_axis, node.keyframes[0].rotation_angle);
	}
	forwards = normalise(toV3(rotation * node.forwards));
	right = normalise(cross(forwards, toV3(rotation * node.up)));
	up = cross(right, forwards);

	type = node.camera_type;
	width = (float)image_width;
	height = (float)image_height;
	sensor_width = (float)node.sensor_width;
	sensor_height = sensor_width * height / width;
	lens_sensor_dist = (float)node.lens_sensor_dist;
	focus_distance = (float)node.focus_distance;
	aperture_radius = (float)node.aperture_radius;
	shift_right = (float)node.lens_shift_right_distance;
	shift_up = (float)node.lens_shift_up_distance;
}

Ray Camera::generateRay(float film_x, float film_y, float u1, float u2) const
{
	Ray ray;
	const float sx = (film_x / width - 0.5f) * sensor_width + shift_right;
	const float sy = (0.5f - film_y / height) * sensor_height + shift_up;
	if(type == SceneNodeCamera::Orthographic)
	{
		ray.origin = position + right * sx + up * sy;
		ray.dir = forwards;
		return ray;
	}
	if(type == SceneNodeCamera::Spherical)
	{
		const float lon = (film_x / width) * 2 * pi - pi;
		const float lat = (0.5f - film_y / height) * pi;
		ray.origin = position;
		ray.dir = normalise(forwards * (std::cos(lat) * std::cos(lon)) + right * (std::cos(lat) * std::sin(lon)) +
							up * std::sin(lat));
		return ray;
	}
	// The pinhole direction, then the thin lens: every ray of a film point
	// meets at its point on the plane of focus.
	const V3 pinhole = normalise(forwards * lens_sensor_dist + right * sx + up * sy);
	if(aperture_radius <= 0 || focus_distance <= 0)
	{
		ray.origin = position;
		ray.dir = pinhole;
		return ray;
	}
	const V3 focus_point = position + pinhole * (focus_distance / dot(pinhole, forwards));
	const float r = aperture_radius * std::sqrt(u1);
	const float phi = 2 * pi * u2;
	ray.origin = position + right * (r * std::cos(phi)) + up * (r * std::sin(phi));
	ray.dir = normalise(focus_point - ray.origin);
	return ray;
}

} // namespace Standin
} // namespace Velorn
