#pragma once

#include "scene/scene_node.h"

#include <mutex>

namespace Velorn
{

// The top of a scene tree, the scene element of a file. It hands out UIDs to
// the nodes added below it, finishes a tree for use (finalise), checks it
// (validate) and writes it.
class SceneNodeRoot : public SceneNode
{
public:
	SceneNodeRoot();

	unsigned getType() const override { return SceneNodeType::Root; }
	Reference<SceneNode> clone() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	bool doIsEqual(const SceneNode& other) const override;

	// The first direct child of each kind, or null.
	Reference<SceneNode> getCameraNode() const;
	Reference<SceneNode> getRenderSettingsNode() const;
	Reference<SceneNode> getToneMappingNode() const;
	Reference<SceneNode> getBackgroundSettingsNode() const;
	Reference<SceneNode> getMetaDataNode() const;
	// Every medium (material) node, appended to the vector.
	void getMediumNodes(Vector<Reference<SceneNode>>& out) const;
	void getMaterialNodes(Vector<Reference<SceneNode>>& out) const;

	uint32_t getNextUID() { return ++next_uid; }
	void setNextUID(uint32_t value) { next_uid = value; }

	// Loads what is held as paths, then binds references. Exceptions of
	// either step pass out and leave the tree half bound.
	void finalise(const String& scene_path);
	// Writes the scene file at path, and the mesh files beside it.
	void writeToFile(const String& path, bool write_absolute_paths, ProgressListener* progress);
	// Throws VelornException when two direct children share a UID or when
	// one of the single nodes (settings, tone mapping, camera, background,
	// metadata) stands more than once.
	void validate() const;
	// Replaces nodes by UID with the given ones, points surviving references
	// at them, and adds the ones that are new.
	void updateNodes(const Vector<Reference<SceneNode>>& nodes);
	// Clears the flags of every direct child not changed after stamp.
	void clearChangeFlags(uint64_t stamp);

	uint32_t next_uid = 0;
	std::mutex mutex;
	bool finalised = false;

private:
	Reference<SceneNode> firstChildOfType(unsigned type) const;
	void appendChildrenOfType(unsigned type, Vector<Reference<SceneNode>>& out) const;
};

} // namespace Velorn
