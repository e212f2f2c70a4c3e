#pragma once

#include "scene/keyframe.h"
#include "support/velorn_vector.h"

#include <vector>

namespace Velorn
{
namespace Standin
{

// A rotation followed by a translation.
struct Placement
{
	Matrix3d rotation;
	Vec3d position;
};

// Where a node with keyframes stands while the shutter is open, from time
// 0 (it opens) to 1 (it closes): positions are interpolated linearly between
// keyframes, rotations along the shortest arc between them. Before the
// first keyframe and after the last the node stays at them; without
// keyframes it stands unturned at the origin.
class MotionPath
{
public:
	explicit MotionPath(const Vector<KeyFrame>& keyframes);

	// True when the placement changes while the shutter is open.
	bool moves() const { return moving; }
	Placement at(double time) const;

private:
	struct Key
	{
		double time;
		Vec3d position;
		Vec3d axis;
		double angle;
		double q[4];  // the rotation as a unit quaternion: w, x, y, z
	};
	static Placement placementOf(const Key& key);

	std::vector<Key> keys;
	bool moving = false;
};

} // namespace Standin
} // namespace Velorn
