#pragma once

#include "c4d/base_object.h"
#include "export/export_settings.h"
#include "scene/keyframe.h"
#include "support/velorn_vector.h"

#include <vector>

// The rotation of the host matrix m in the renderer's space, as an axis
// and an angle: the scale of m's axes is removed first (a zero axis stays
// zero). The renderer's rotation about the axis by the angle equals the
// rotation part of the model placement that m gives statically (y and z
// exchanged in both axes and vectors).
void rotationAxisAngle(const Matrix& m, Velorn::Vec3d& axis, double& angle);

// A keyframe of the placement m: its position is m's offset times scale
// minus offset, in the renderer's axis order.
Velorn::KeyFrame placementKeyFrame(const Matrix& m, double time, double scale, const Vector& offset);

// The objects whose local matrices give op's world matrix: op's parents
// (and, in a cache, the generators above it), topmost first, then op.
std::vector<BaseObject*> objectChain(BaseObject* op);

// Keyframes over the exposure of settings' frame for an object under a
// host motion blur tag (on the object or any object above it): the
// document is animated to the times within the exposure, and the world
// matrix formed from the local matrices of chain (topmost first). The
// document is animated back at the frame afterwards. False, with keyframes
// unchanged, when chain is empty or no motion blur tag applies. offset is
// subtracted from every position but the last (zero for all but cameras).
bool exportMotionBlur(Velorn::Vector<Velorn::KeyFrame>& keyframes, BaseObject* object, const Matrix& mg,
	const ExportSettings& settings, const std::vector<BaseObject*>& chain, const Vector& offset);
