#pragma once

#include "scene/emission_overrides.h"
#include "scene/material.h"
#include "scene/scene_node.h"

namespace Velorn
{

// What lies behind everything: a material without a node of its own (sun
// and sky, or an environment) and an optional scale of its emission.
class SceneNodeBackgroundSettings : public SceneNode
{
public:
	SceneNodeBackgroundSettings();

	unsigned getType() const override { return SceneNodeType::BackgroundSettings; }
	// Base fields only; the copy has no material and no scale.
	Reference<SceneNode> clone() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	unsigned getHighestEmissionLayer() const override;
	bool doIsEqual(const SceneNode& other) const override;

	Reference<EmissionScale> emission_scale;
	Reference<Material> background_material;
};

} // namespace Velorn
