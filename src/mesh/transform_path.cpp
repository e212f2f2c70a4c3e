#include "mesh/transform_path.h"

#include "support/exceptions.h"

namespace Velorn
{

namespace
{

void checkFrameTimes(const std::vector<TransformKeyframe>& keyframes)
{
	if(keyframes.size() == 1)
		return;
	if(!(keyframes.front().time <= 0.0))
		throw TransformPathExcep("First frame must have time <= 0.0");
	if(!(keyframes.back().time >= 1.0))
		throw TransformPathExcep("Last frame must have time >= 1.0");
	for(size_t i = 1; i < keyframes.size(); ++i)
		if(!(keyframes[i].time > keyframes[i - 1].time))
			throw TransformPathExcep("Frame times must be strictly increasing.");
}

} // namespace

TransformPath::TransformPath(const Matrix4f& ob_to_world, const std::vector<TransformKeyframe>& keyframes)
	: ob_to_world(ob_to_world), keyframes(keyframes)
{
	if(keyframes.empty())
		throw TransformPathExcep("Must be at least one frame.");
	if(!invert(ob_to_world, world_to_ob))
		throw TransformPathExcep("transformation matrix is not invertible");
	checkFrameTimes(keyframes);
}

} // namespace Velorn
