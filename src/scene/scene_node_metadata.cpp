#include "scene/scene_node_metadata.h"

#include "scene/xml_write.h"

namespace Velorn
{

SceneNodeMetaData::SceneNodeMetaData() { name = "Metadata"; }

Reference<SceneNode> SceneNodeMetaData::clone() const
{
	Reference<SceneNodeMetaData> copy(new SceneNodeMetaData());
	copyBaseFieldsTo(*copy);
	copy->exporter = exporter;
	copy->author = author;
	copy->description = description;
	copy->created_date = created_date;
	copy->platform = platform;
	copy->exporter_specific = exporter_specific;
	return copy;
}

void SceneNodeMetaData::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	using namespace XMLWrite;
	writeOpenTag(stream, depth, "metadata");
	writeUIDAndName(stream, depth + 1);
	writeString(stream, depth + 1, "exporter", exporter);
	writeString(stream, depth + 1, "author", author);
	writeString(stream, depth + 1, "description", description);
	writeString(stream, depth + 1, "created_date", created_date);
	writeString(stream, depth + 1, "platform", platform);
	writeString(stream, depth + 1, "exporter_specific", exporter_specific);
	writeCloseTag(stream, depth, "metadata");
}

void SceneNodeMetaData::doVisit(VisitOperation& op)
{
	if(op.type == VisitOperation::OffsetUIDs)
		uid = uid + op.uid_offset;
}

bool SceneNodeMetaData::doIsEqual(const SceneNode& other) const
{
	if(!baseFieldsEqual(other) || other.getType() != getType())
		return false;
	const SceneNodeMetaData& o = static_cast<const SceneNodeMetaData&>(other);
	return exporter == o.exporter && author == o.author && description == o.description && created_date == o.created_date &&
		   platform == o.platform && exporter_specific == o.exporter_specific;
}

} // namespace Velorn
