#include "scene/scene_node_medium.h"

#include "scene/value_helpers.h"
#include "scene/xml_write.h"

namespace Velorn
{

using namespace XMLWrite;

SceneNodeMedium::SceneNodeMedium() : medium(new BasicMedium()) { medium->name = "Medium"; }

SceneNodeMedium::SceneNodeMedium(const Reference<Medium>& medium_) : medium(medium_) {}

void SceneNodeMedium::setName(const String& new_name) { setHeldName(medium, name, new_name); }

const String& SceneNodeMedium::getName() const { return heldName(medium, name); }

Reference<SceneNode> SceneNodeMedium::clone() const
{
	Reference<SceneNodeMedium> copy(new SceneNodeMedium());
	copyBaseFieldsTo(*copy);
	return copy;
}

void SceneNodeMedium::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeOpenTag(stream, depth, "medium");
	if(context.write_uids)
		writeUID(stream, depth + 1, "uid", uid);
	writeString(stream, depth + 1, "name", getName());
	if(medium.nonNull())
	{
		writeInt(stream, depth + 2, "precedence", medium->precedence);
		medium->writeXML(stream, depth + 2, context);
	}
	writeCloseTag(stream, depth, "medium");
}

void SceneNodeMedium::doVisit(VisitOperation& op)
{
	if(op.type == VisitOperation::OffsetUIDs)
		uid = uid + op.uid_offset;
}

bool SceneNodeMedium::doIsEqual(const SceneNode& other) const
{
	return equalByBaseFieldsOnly(other, "TODO: IMPLEMENT SceneNodeMedium::doIsEqual()\n");
}

} // namespace Velorn
