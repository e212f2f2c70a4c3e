#pragma once

#include "scene/ostream.h"
#include "scene/uid.h"
#include "scene/visit_operation.h"
#include "scene/write_context.h"
#include "support/hash_map.h"
#include "support/reference.h"
#include "support/velorn_string.h"
#include "support/velorn_vector.h"

#include <cstdint>

namespace Velorn
{

// The numbers that SceneNode::getType returns.
namespace SceneNodeType
{
enum : unsigned
{
	Root = 0,
	Camera = 1,
	RenderSettings = 2,
	Material = 3,
	Mesh = 4,
	Model = 5,
	Sphere = 6,
	Medium = 7,
	Tonemapping = 8,
	RectangleLight = 9, // no class in this library
	BackgroundSettings = 10,
	MetaData = 11,
	ParametricSurface = 12,
	Scatter = 13,
	SectionPlane = 14
};
} // namespace SceneNodeType

// "Root", "Camera", ... for a type number; "Unknown type" for any other.
const char* sceneNodeTypeName(unsigned type);

class SceneNode;
class SceneNodeRoot;
class SceneNodeMaterial;
class SceneNodeMedium;

typedef HashMap<UID, Reference<SceneNode>, UIDHash> SceneNodeMap;

// A node of the scene tree: the in-memory form of one element of a scene
// file. Nodes are reference counted; a node holds its children, a child only
// points back at its parent.
class SceneNode : public ThreadSafeRefCounted
{
public:
	SceneNode() = default;
	virtual ~SceneNode();

	virtual unsigned getType() const = 0;
	virtual void setName(const String& new_name);
	virtual const String& getName() const;
	virtual bool isSameNode(const SceneNode* other) const;
	// A new node with this one's content; null where a class has no copy.
	virtual Reference<SceneNode> clone() const = 0;
	// Takes new targets from the map where a reference's UID is in it with
	// a node of the right type.
	virtual void updateReferences(const SceneNodeMap& map);
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const = 0;
	virtual void doVisit(VisitOperation& op) = 0;
	// Allocate and free a walk in this library's heap, for callers on the
	// far side of a module boundary.
	virtual VisitOperation* createVisitOperation(VisitOperation::Type type, const String& scene_path, const String& scene_dir);
	virtual void destroyVisitOperation(VisitOperation* op);
	virtual unsigned getHighestEmissionLayer() const;
	// True if this node directly refers to the given one.
	virtual bool references(const SceneNode* node) const;
	// The UIDs of the nodes this one refers to, in an order in which writing
	// them never refers forward.
	virtual Vector<UID> getDependencyUIDs() const;
	virtual bool doIsEqual(const SceneNode& other) const = 0;

	// Tree operations.
	void addChildNode(Reference<SceneNode> child);
	void removeChildNode(Reference<SceneNode> child);
	const Vector<Reference<SceneNode>>& getChildren() const { return children; }
	SceneNode* getParent() const { return parent; }
	// The root at the top of the parent chain, or null when the top is not a root.
	SceneNodeRoot* getRoot() const;
	unsigned getNumChildrenOfType(unsigned type) const;
	// This node if uid is its own, else the direct child with that UID, else null.
	SceneNode* findChild(UID uid) const;
	SceneNodeMaterial* findMaterial(UID uid) const;
	SceneNodeMedium* findMedium(UID uid) const;
	// Depth first, parent before children.
	void visitTree(VisitOperation& op);
	// Appends nodes of the given types whose names hold the query, compared
	// in lower case; stops after the subtree that brings the count to 64.
	void findNodesByName(const String& query, Vector<Reference<SceneNode>>& results, const Vector<unsigned>& types);
	unsigned getHighestEmissionLayerInTree() const;
	bool isReferencedInTree(const SceneNode* node) const;
	bool isEqual(const SceneNode& other) const;
	String toXMLString() const;

	void writeUIDAndName(OStream& stream, unsigned depth) const;
	void copyBaseFieldsTo(SceneNode& other) const;
	// Same UID and same name: the fields by which two nodes are told apart.
	bool baseFieldsEqual(const SceneNode& other) const;
	// The comparison of a class whose full comparison is not written yet:
	// the base fields alone, and when they are equal the reminder that says
	// so is printed.
	bool equalByBaseFieldsOnly(const SceneNode& other, const char* reminder) const;

	void setFlags(uint32_t f) { flags = f; }
	uint32_t getFlags() const { return flags; }
	bool testFlags(uint32_t mask) const { return (flags & mask) != 0; }
	void setChangeStamp(uint64_t stamp) { change_stamp = stamp; }
	uint64_t getChangeStamp() const { return change_stamp; }
	// Takes the next change stamp of the root; does nothing when detached.
	void markChanged();

	SceneNode* parent = nullptr;
	String name;
	UID uid;
	uint32_t flags = 0;  // bit 1 marks a change for the in-host update path
	uint64_t change_stamp = 0;
	Vector<Reference<SceneNode>> children;
	HashMap<UID, SceneNode*, UIDHash> child_index;

private:
	void findNodesByNameLowered(const std::string& lowered_query, Vector<Reference<SceneNode>>& results,
		const Vector<unsigned>& types);
};

// Prints the line that an operation not finished in this library prints on
// standard output.
void printNotImplemented(const char* message);

} // namespace Velorn
