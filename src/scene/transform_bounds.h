#pragma once

#include "scene/keyframe.h"
#include "scene/math_types.h"
#include "scene/visit_operation.h"
#include "support/velorn_vector.h"

namespace Velorn
{

// Grows the walk's bounds by an object-space box carried through a linear
// map and then along a transform path: at each keyframe the box is rotated
// by the keyframe's axis and angle and moved to its position. With no
// keyframes the box stays at the origin.
void growBoundsByMovingBox(VisitOperation& op, const Vec3d& box_min, const Vec3d& box_max, const Matrix3d& linear,
	const Vector<KeyFrame>& keyframes);

} // namespace Velorn
