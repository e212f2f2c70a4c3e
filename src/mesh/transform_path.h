#pragma once

#include "mesh/matrix4.h"

#include <vector>

namespace Velorn
{

// The object-to-world transformation at one scene time, from 0 (shutter
// open) to 1 (shutter closed).
struct TransformKeyframe
{
	double time;
	Matrix4f transform;
};

// How a moving object is placed over the shutter interval: its
// object-to-world matrix at time 0 with the inverse, and the keyframes.
// A single keyframe stands for all times; with more, they must cover 0 to 1
// in strictly increasing order. Failures throw TransformPathExcep.
class TransformPath
{
public:
	TransformPath(const Matrix4f& ob_to_world, const std::vector<TransformKeyframe>& keyframes);

	const Matrix4f& getObToWorld() const { return ob_to_world; }
	const Matrix4f& getWorldToOb() const { return world_to_ob; }
	const std::vector<TransformKeyframe>& getKeyframes() const { return keyframes; }

private:
	Matrix4f ob_to_world;
	Matrix4f world_to_ob;
	std::vector<TransformKeyframe> keyframes;
};

} // namespace Velorn
