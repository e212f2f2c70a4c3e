#pragma once

#include "scene/scene_node.h"

namespace Velorn
{

// Who made the scene, when and how: six strings, written even when empty.
class SceneNodeMetaData : public SceneNode
{
public:
	SceneNodeMetaData();

	unsigned getType() const override { return SceneNodeType::MetaData; }
	Reference<SceneNode> clone() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	bool doIsEqual(const SceneNode& other) const override;

	String exporter;
	String author;
	String description;
	String created_date;
	String platform;
	String exporter_specific;
};

} // namespace Velorn
