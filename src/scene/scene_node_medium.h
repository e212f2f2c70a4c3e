#pragma once

#include "scene/medium.h"
#include "scene/scene_node.h"

namespace Velorn
{

// A medium's place in the scene, beside the materials that name it as
// their inside. Its name is the medium's.
class SceneNodeMedium : public SceneNode
{
public:
	// Holds a new BasicMedium named "Medium".
	SceneNodeMedium();
	explicit SceneNodeMedium(const Reference<Medium>& medium_);

	unsigned getType() const override { return SceneNodeType::Medium; }
	void setName(const String& new_name) override;
	const String& getName() const override;
	// Base fields only: the copy holds a new BasicMedium with this node's
	// name.
	Reference<SceneNode> clone() const override;
	// precedence and the medium's element stand one level further in than
	// name, as files have always had them.
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	// Only OffsetUIDs acts; the values of a medium are not walked.
	void doVisit(VisitOperation& op) override;
	// Compares UID and name only.
	bool doIsEqual(const SceneNode& other) const override;

	Reference<Medium> medium;
};

} // namespace Velorn
