#include "scene/scene_node_background_settings.h"

#include "scene/xml_write.h"

namespace Velorn
{

SceneNodeBackgroundSettings::SceneNodeBackgroundSettings() { name = "Background Settings"; }

Reference<SceneNode> SceneNodeBackgroundSettings::clone() const
{
	printNotImplemented("SceneNodeBackgroundSettings::clone() not yet implemented");
	Reference<SceneNodeBackgroundSettings> copy(new SceneNodeBackgroundSettings());
	copyBaseFieldsTo(*copy);
	return copy;
}

void SceneNodeBackgroundSettings::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	using namespace XMLWrite;
	writeOpenTag(stream, depth, "background_settings");
	writeUIDAndName(stream, depth + 1);
	if(emission_scale.nonNull())
		emission_scale->writeXML(stream, depth + 1);
	if(background_material.nonNull())
	{
		// The one material that stands without a node, and so without a uid.
		writeOpenTag(stream, depth + 1, "background_material");
		writeOpenTag(stream, depth + 2, "material");
		writeString(stream, depth + 3, "name", background_material->name);
		writeMaterialBody(*background_material, stream, depth + 2, context);
		writeCloseTag(stream, depth + 2, "material");
		writeCloseTag(stream, depth + 1, "background_material");
	}
	writeCloseTag(stream, depth, "background_settings");
}

void SceneNodeBackgroundSettings::doVisit(VisitOperation& op)
{
	if(op.type == VisitOperation::OffsetUIDs)
		uid = uid + op.uid_offset;
	if(background_material.nonNull())
		visitMaterial(*background_material, op, this);
}

unsigned SceneNodeBackgroundSettings::getHighestEmissionLayer() const
{
	return background_material.nonNull() ? background_material->getLayer() : 0;
}

bool SceneNodeBackgroundSettings::doIsEqual(const SceneNode& other) const
{
	return equalByBaseFieldsOnly(other, "TODO: IMPLEMENT SceneNodeBackgroundSettings::doIsEqual()");
}

} // namespace Velorn
