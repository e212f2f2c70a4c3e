#include "scene/transform_bounds.h"

namespace Velorn
{

namespace
{

void growByTransformedBox(VisitOperation& op, const Vec3d& box_min, const Vec3d& box_max, const Matrix3d& m, const Vec3d& offset)
{
	for(int corner = 0; corner < 8; ++corner)
	{
		const Vec3d p((corner & 1) ? box_max.x : box_min.x, (corner & 2) ? box_max.y : box_min.y, (corner & 4) ? box_max.z : box_min.z);
		const Vec3d w = m * p;
		op.growBounds((float)(w.x + offset.x), (float)(w.y + offset.y), (float)(w.z + offset.z));
	}
}

} // namespace

void growBoundsByMovingBox(VisitOperation& op, const Vec3d& box_min, const Vec3d& box_max, const Matrix3d& linear,
	const Vector<KeyFrame>& keyframes)
{
	if(keyframes.empty())
	{
		growByTransformedBox(op, box_min, box_max, linear, Vec3d());
		return;
	}
	for(const KeyFrame& keyframe : keyframes)
		growByTransformedBox(op, box_min, box_max, Matrix3d::axisAngle(keyframe.rotation_axis, keyframe.rotation_angle) * linear,
			keyframe.pos);
}

} // namespace Velorn
