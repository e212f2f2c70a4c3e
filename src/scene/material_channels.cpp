#include "scene/material_channels.h"

#include "scene/scene_node_root.h"
#include "scene/value_helpers.h"
#include "scene/xml_write.h"

namespace Velorn
{

using namespace XMLWrite;

void ChannelWriter::operator()(const char* name, const Reference<TabulatedSpectralData>& table) const
{
	writeWrapped(stream, depth, name, table);
}

void ChannelWriter::operator()(const char* stem, const Reference<SceneNodeMedium>& medium) const
{
	const std::string s(stem);
	writeBoundReference(stream, depth + 1, (s + "_uid").c_str(), (s + "_name").c_str(), medium.getPointer(), context);
}

void ChannelWriter::operator()(const char* stem, UID uid, const Reference<SceneNodeMaterial>& target) const
{
	const std::string s(stem);
	if(target.isNull() && context.write_uids)
		writeUID(stream, depth + 1, (s + "_uid").c_str(), uid);
	else
		writeBoundReference(stream, depth + 1, (s + "_uid").c_str(), (s + "_name").c_str(), target.getPointer(), context);
}

void ChannelWriter::operator()(const char* name, bool value) const { writeBool(stream, depth + 1, name, value); }

void ChannelWriter::operator()(const char* name, unsigned value) const { writeInt(stream, depth + 1, name, (int32_t)value); }

void ChannelWriter::operator()(const char* name, int value) const { writeInt(stream, depth + 1, name, value); }

void ChannelWriter::operator()(const char* name, double value) const { writeDouble(stream, depth + 1, name, value); }

void ChannelWriter::operator()(const char* name, const String& value) const { writeString(stream, depth + 1, name, value); }

void ChannelWriter::operator()(const char* name, const Vec3d& value) const { writeVec3(stream, depth + 1, name, value); }

UID targetUID(UID stored, const SceneNode* target) { return target ? target->uid : stored; }

void bindTarget(Reference<SceneNodeMaterial>& target, UID uid, VisitOperation& op, SceneNode* owner)
{
	if(op.type == VisitOperation::Bind && target.isNull())
		target = owner->getRoot()->findMaterial(uid);
}

void bindTarget(Reference<SceneNodeMedium>& target, UID uid, VisitOperation& op, SceneNode* owner)
{
	if(op.type == VisitOperation::Bind && target.isNull())
		target = owner->getRoot()->findMedium(uid);
}

void shiftUID(UID& uid, const VisitOperation& op)
{
	if(op.type == VisitOperation::OffsetUIDs)
		uid = uid + op.uid_offset;
}

void handWalkOn(const Reference<SceneNodeMaterial>& target, VisitOperation& op)
{
	if(target.nonNull() && op.type != VisitOperation::OffsetUIDs)
		target->doVisit(op);
}

void appendTargetDependencies(Vector<UID>& uids, UID stored, const SceneNode* target)
{
	if(target)
		for(const UID& uid : target->getDependencyUIDs())
			uids.push_back(uid);
	const UID own = targetUID(stored, target);
	if(own.valid())
		uids.push_back(own);
}

Vector<UID> targetDependencies(UID stored, const SceneNode* target)
{
	Vector<UID> uids;
	appendTargetDependencies(uids, stored, target);
	return uids;
}

bool targetReferences(const SceneNode* target, const SceneNode* node)
{
	return target && (target == node || target->isReferencedInTree(node));
}

void writeBoundReference(OStream& stream, unsigned depth, const char* uid_name, const char* name_name, const SceneNode* target,
	const WriteContext& context)
{
	if(!target)
		return;
	if(context.write_uids)
		writeUID(stream, depth, uid_name, target->uid);
	else
		writeString(stream, depth, name_name, target->getName());
}

} // namespace Velorn
