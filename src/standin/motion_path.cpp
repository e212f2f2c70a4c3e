#include "standin/motion_path.h"

#include <cmath>

namespace Velorn
{
namespace Standin
{

namespace
{

// The unit quaternion of a turn by angle about axis; identity for a zero
// axis, as Matrix3d::axisAngle has it.
void quaternionOf(const Vec3d& axis, double angle, double q[4])
{
	const double len = std::sqrt(axis.x * axis.x + axis.y * axis.y + axis.z * axis.z);
	if(len == 0)
	{
		q[0] = 1;
		q[1] = q[2] = q[3] = 0;
		return;
	}
	const double s = std::sin(angle / 2) / len;
	q[0] = std::cos(angle / 2);
	q[1] = axis.x * s;
	q[2] = axis.y * s;
	q[3] = axis.z * s;
}

// Spherical interpolation from a to b, the short way round.
void slerp(const double a[4], const double b[4], double f, double out[4])
{
	double d = a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
	const double sign = d < 0 ? -1 : 1;
	d = std::fabs(d);
	double wa = 1 - f, wb = f;
	// Nearly equal rotations: the linear blend, normalised below, is exact
	// enough and avoids dividing by a vanishing sine.
	if(d < 0.9999)
	{
		const double theta = std::acos(d);
		wa = std::sin((1 - f) * theta) / std::sin(theta);
		wb = std::sin(f * theta) / std::sin(theta);
	}
	double len = 0;
	for(int i = 0; i < 4; ++i)
	{
		out[i] = wa * a[i] + wb * sign * b[i];
		len += out[i] * out[i];
	}
	len = std::sqrt(len);
	for(int i = 0; i < 4; ++i)
		out[i] /= len;
}

Vec3d lerp(const Vec3d& a, const Vec3d& b, double f)
{
	return Vec3d(a.x + (b.x - a.x) * f, a.y + (b.y - a.y) * f, a.z + (b.z - a.z) * f);
}

} // namespace

MotionPath::MotionPath(const Vector<KeyFrame>& keyframes)
{
	for(const KeyFrame& k : keyframes)
	{
		Key key{k.time, k.pos, k.rotation_axis, k.rotation_angle, {}};
		quaternionOf(k.rotation_axis, k.rotation_angle, key.q);
		if(!keys.empty())
		{
			const Key& first = keys.front();
			const double d = first.q[0] * key.q[0] + first.q[1] * key.q[1] + first.q[2] * key.q[2] + first.q[3] * key.q[3];
			moving = moving || !(key.position == first.position) || std::fabs(d) < 1 - 1e-12;
		}
		keys.push_back(key);
	}
}

Placement MotionPath::placementOf(const Key& key)
{
	Placement p;
	if(key.angle != 0)
		p.rotation = Matrix3d::axisAngle(key.axis, key.angle);
	p.position = key.position;
	return p;
}

Placement MotionPath::at(double time) const
{
	if(keys.empty())
		return Placement();
	if(!moving || time <= keys.front().time)
		return placementOf(keys.front());
	if(time >= keys.back().time)
		return placementOf(keys.back());
	size_t i = 0;
	while(time >= keys[i + 1].time)
		++i;
	const Key& a = keys[i];
	const Key& b = keys[i + 1];
	const double f = (time - a.time) / (b.time - a.time);
	double q[4];
	slerp(a.q, b.q, f, q);
	Placement p;
	const double s = std::sqrt(std::fmax(0.0, 1 - q[0] * q[0]));
	if(s > 1e-12)
		p.rotation = Matrix3d::axisAngle(Vec3d(q[1] / s, q[2] / s, q[3] / s), 2 * std::acos(std::fmin(q[0], 1.0)));
	p.position = lerp(a.position, b.position, f);
	return p;
}

} // namespace Standin
} // namespace Velorn
