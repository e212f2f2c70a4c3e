#pragma once

#include "scene/math_types.h"
#include "scene/ostream.h"

namespace Velorn
{

// One point of a transform path: a position and an axis-angle rotation at a
// scene time between 0 and 1.
struct KeyFrame
{
	Vec3d pos;
	double time = 0;
	Vec3d rotation_axis;
	double rotation_angle = 0;

	// The element is named rotation_quaternion although it holds an axis
	// and an angle; files have always called it so.
	void writeXML(OStream& stream, unsigned depth) const;

	bool operator==(const KeyFrame& o) const
	{
		return pos == o.pos && time == o.time && rotation_axis == o.rotation_axis && rotation_angle == o.rotation_angle;
	}
};

} // namespace Velorn
