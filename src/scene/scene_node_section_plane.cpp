#include "scene/scene_node_section_plane.h"

#include "scene/xml_write.h"

namespace Velorn
{

Reference<SceneNode> SceneNodeSectionPlane::clone() const
{
	Reference<SceneNodeSectionPlane> copy(new SceneNodeSectionPlane());
	copyBaseFieldsTo(*copy);
	copy->point = point;
	copy->normal = normal;
	copy->enabled = enabled;
	copy->cull_geometry = cull_geometry;
	copy->object_list_type = object_list_type;
	copy->object_list = object_list;
	return copy;
}

void SceneNodeSectionPlane::writeObjectList(OStream& stream, unsigned depth) const
{
	XMLWrite::writeOpenTag(stream, depth, "object_list");
	for(const UID& object_uid : object_list)
		XMLWrite::writeUID(stream, depth + 1, "uid", object_uid);
	XMLWrite::writeCloseTag(stream, depth, "object_list");
}

void SceneNodeSectionPlane::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	using namespace XMLWrite;
	const unsigned d = depth + 1;
	writeOpenTag(stream, depth, "section_plane");
	writeUIDAndName(stream, d);
	writeVec3(stream, d, "point", point);
	writeVec3(stream, d, "normal", normal);
	writeBool(stream, d, "enabled", enabled);
	writeBool(stream, d, "cull_geometry", cull_geometry);
	if(object_list_type != Exclude)
		writeString(stream, d, "object_list_type", "include");
	if(!object_list.empty())
		writeObjectList(stream, d);
	writeCloseTag(stream, depth, "section_plane");
}

void SceneNodeSectionPlane::doVisit(VisitOperation& op)
{
	if(op.type == VisitOperation::OffsetUIDs)
		uid = uid + op.uid_offset;
}

bool SceneNodeSectionPlane::doIsEqual(const SceneNode& other) const
{
	if(!baseFieldsEqual(other) || other.getType() != getType())
		return false;
	const SceneNodeSectionPlane& o = static_cast<const SceneNodeSectionPlane&>(other);
	return point == o.point && normal == o.normal && enabled == o.enabled && cull_geometry == o.cull_geometry &&
		   object_list_type == o.object_list_type && object_list == o.object_list;
}

} // namespace Velorn
