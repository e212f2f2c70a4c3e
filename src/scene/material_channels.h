#pragma once

#include "scene/material.h"
#include "scene/math_types.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_medium.h"
#include "scene/wavelength_values.h"

// The machinery the material classes share. Each class lists its fields in
// the order of its element as one table, a generic lambda that calls
// f(name, field) for each field (f(stem, uid, node) for a material target);
// the same table then writes the fields (ChannelWriter) and walks the
// channels (ChannelVisitor). Node targets are bound and shifted before the
// channels are walked, by the target helpers below.
namespace Velorn
{

// Writes each field of a table at the class's depth: parameters and tables
// wrapped, plain values one level in.
class ChannelWriter
{
public:
	ChannelWriter(OStream& stream_, unsigned depth_, WriteContext& context_) : stream(stream_), depth(depth_), context(context_) {}

	template <class Param>
	void operator()(const char* name, const Reference<Param>& param) const
	{
		writeWrapped(stream, depth, name, param, context);
	}
	void operator()(const char* name, const Reference<TabulatedSpectralData>& table) const;
	// The internal medium by UID or by name; nothing while it is not bound.
	void operator()(const char* stem, const Reference<SceneNodeMedium>& medium) const;
	// A material target by UID or by name; unbound, its stored UID.
	void operator()(const char* stem, UID uid, const Reference<SceneNodeMaterial>& target) const;
	void operator()(const char* name, bool value) const;
	void operator()(const char* name, unsigned value) const;
	void operator()(const char* name, int value) const;
	void operator()(const char* name, double value) const;
	void operator()(const char* name, const String& value) const;
	void operator()(const char* name, const Vec3d& value) const;

private:
	OStream& stream;
	unsigned depth;
	WriteContext& context;
};

// Hands a walk to each parameter of a table that is set, with the owner
// node. Plain values, tables and node targets take no part.
class ChannelVisitor
{
public:
	ChannelVisitor(VisitOperation& op_, SceneNode* owner_) : op(op_), owner(owner_) {}

	template <class Param>
	void operator()(const char*, const Reference<Param>& param) const
	{
		if(param.nonNull())
			param->doVisit(op, owner);
	}
	void operator()(const char*, const Reference<TabulatedSpectralData>&) const {}
	void operator()(const char*, const Reference<SceneNodeMedium>&) const {}
	template <class... Values>
	void operator()(const char*, const Values&...) const
	{}

private:
	VisitOperation& op;
	SceneNode* owner;
};

// Runs a class's table with a ChannelWriter or a ChannelVisitor.
template <class Table, class M>
void writeChannels(const Table& table, const M& material, OStream& stream, unsigned depth, WriteContext& context)
{
	ChannelWriter writer(stream, depth, context);
	table(material, writer);
}

template <class Table, class M>
void visitChannels(const Table& table, const M& material, VisitOperation& op, SceneNode* owner)
{
	ChannelVisitor visitor(op, owner);
	table(material, visitor);
}

// The channels of SurfaceMaterial, in the order all classes write them.
template <class F>
void surfaceChannels(const SurfaceMaterial& m, F& f)
{
	f("bump", m.bump);
	f("displacement", m.displacement);
	f("base_emission", m.base_emission);
	f("emission", m.emission);
	f("normal_map", m.normal_map);
}

// Node targets.

// The UID a target is known by: the bound node's, else the stored one.
UID targetUID(UID stored, const SceneNode* target);
// On Bind, an unbound reference takes the node of its stored UID from the
// owner's root. A missing root is the caller's fault and not checked.
void bindTarget(Reference<SceneNodeMaterial>& target, UID uid, VisitOperation& op, SceneNode* owner);
void bindTarget(Reference<SceneNodeMedium>& target, UID uid, VisitOperation& op, SceneNode* owner);
// On OffsetUIDs, a stored UID takes the offset unless it is invalid.
void shiftUID(UID& uid, const VisitOperation& op);
// Passes a walk on to a bound target material node, except OffsetUIDs: the
// tree's own walk shifts the target, and it must not be shifted twice.
void handWalkOn(const Reference<SceneNodeMaterial>& target, VisitOperation& op);
// The target's own dependencies, then its UID; for an unbound target its
// stored UID if valid.
void appendTargetDependencies(Vector<UID>& uids, UID stored, const SceneNode* target);
// The dependencies of a material with one target.
Vector<UID> targetDependencies(UID stored, const SceneNode* target);
// True if the target is the node or refers to it.
bool targetReferences(const SceneNode* target, const SceneNode* node);

// A reference by UID (uid_name) or by name (name_name) as the context asks;
// nothing while it is not bound.
void writeBoundReference(OStream& stream, unsigned depth, const char* uid_name, const char* name_name, const SceneNode* target,
	const WriteContext& context);

} // namespace Velorn
