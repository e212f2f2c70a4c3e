#pragma once

#include "scene/scene_node.h"

#include <cstdint>

namespace Velorn
{

// A surface given by a program in the renderer's shader language, sampled
// num_u by num_v times. It has no copy.
class SceneNodeParametricSurface : public SceneNode
{
public:
	// Named "ParametricSurface " and a running number of the process,
	// counted from 0.
	SceneNodeParametricSurface();

	unsigned getType() const override { return SceneNodeType::ParametricSurface; }
	Reference<SceneNode> clone() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	bool doIsEqual(const SceneNode& other) const override;

	String shader;
	int32_t num_u = 0;
	int32_t num_v = 0;
};

} // namespace Velorn
