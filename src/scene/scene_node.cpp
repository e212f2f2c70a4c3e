#include "scene/scene_node.h"

#include "scene/scene_node_material.h"
#include "scene/scene_node_medium.h"
#include "scene/scene_node_root.h"
#include "scene/xml_write.h"
#include "support/exceptions.h"
#include "support/string_utils.h"

#include <algorithm>
#include <cstdio>

namespace Velorn
{

const char* sceneNodeTypeName(unsigned type)
{
	static const char* const names[] = {"Root", "Camera", "Render Settings", "Material", "Mesh", "Object", "Sphere", "Medium",
		"Tone Mapping", "Rectangle Light", "Background Settings", "Metadata", "Parametric Surface", "Scatter", "Section Plane"};
	return type < sizeof(names) / sizeof(names[0]) ? names[type] : "Unknown type";
}

void printNotImplemented(const char* message)
{
	std::fputs(message, stdout);
	std::fflush(stdout);
}

SceneNode::~SceneNode() = default;

void SceneNode::setName(const String& new_name) { name = new_name; }

const String& SceneNode::getName() const { return name; }

bool SceneNode::isSameNode(const SceneNode* other) const { return this == other; }

void SceneNode::updateReferences(const SceneNodeMap&) {}

VisitOperation* SceneNode::createVisitOperation(VisitOperation::Type type, const String& scene_path, const String& scene_dir)
{
	return new VisitOperation(type, scene_path, scene_dir);
}

void SceneNode::destroyVisitOperation(VisitOperation* op) { delete op; }

unsigned SceneNode::getHighestEmissionLayer() const { return 0; }

bool SceneNode::references(const SceneNode*) const { return false; }

Vector<UID> SceneNode::getDependencyUIDs() const { return Vector<UID>(); }

void SceneNode::addChildNode(Reference<SceneNode> child)
{
	children.push_back(child);
	child->parent = this;

	const SceneNode* top = child.getPointer();
	while(top->parent)
		top = top->parent;

	if(top->getType() == SceneNodeType::Root)
	{
		SceneNodeRoot* root = const_cast<SceneNodeRoot*>(static_cast<const SceneNodeRoot*>(top));
		if(child->uid.valid())
			root->setNextUID(std::max(root->next_uid + 1, child->uid.value()));
		else
			child->uid = UID(root->getNextUID());
	}
	child_index.insert(child->uid, child.getPointer());
}

void SceneNode::removeChildNode(Reference<SceneNode> child)
{
	Vector<Reference<SceneNode>> kept;
	for(const Reference<SceneNode>& c : children)
		if(c.getPointer() != child.getPointer())
			kept.push_back(c);
	children = kept;
	child_index.erase(child->uid);
}

SceneNodeRoot* SceneNode::getRoot() const
{
	const SceneNode* top = this;
	while(top->parent)
		top = top->parent;
	if(top->getType() != SceneNodeType::Root)
		return nullptr;
	return const_cast<SceneNodeRoot*>(static_cast<const SceneNodeRoot*>(top));
}

unsigned SceneNode::getNumChildrenOfType(unsigned type) const
{
	unsigned count = 0;
	for(const Reference<SceneNode>& c : children)
		if(c->getType() == type)
			++count;
	return count;
}

SceneNode* SceneNode::findChild(UID child_uid) const
{
	if(child_uid == uid)
		return const_cast<SceneNode*>(this);
	SceneNode* const* found = child_index.find(child_uid);
	return found ? *found : nullptr;
}

namespace
{

SceneNode* findNodeOfType(const SceneNode& parent, UID uid, unsigned type, const char* wrong_type_text)
{
	SceneNode* node = parent.findChild(uid);
	if(!node)
		throw VelornException("Failed to find node with UID " + uid.toString());
	if(node->getType() != type)
		throw VelornException("Node with UID " + uid.toString() + wrong_type_text);
	return node;
}

} // namespace

SceneNodeMaterial* SceneNode::findMaterial(UID material_uid) const
{
	return static_cast<SceneNodeMaterial*>(
		findNodeOfType(*this, material_uid, SceneNodeType::Material, " was not a material node."));
}

SceneNodeMedium* SceneNode::findMedium(UID medium_uid) const
{
	return static_cast<SceneNodeMedium*>(
		findNodeOfType(*this, medium_uid, SceneNodeType::Medium, " was not a medium node."));
}

void SceneNode::visitTree(VisitOperation& op)
{
	doVisit(op);
	for(size_t i = 0; i < children.size(); ++i)
		children[i]->visitTree(op);
}

void SceneNode::findNodesByName(const String& query, Vector<Reference<SceneNode>>& results, const Vector<unsigned>& types)
{
	findNodesByNameLowered(toLowerCase(query.str()), results, types);
}

void SceneNode::findNodesByNameLowered(const std::string& lowered_query, Vector<Reference<SceneNode>>& results,
	const Vector<unsigned>& types)
{
	const bool type_wanted = std::find(types.begin(), types.end(), getType()) != types.end();
	if(type_wanted && toLowerCase(getName().str()).find(lowered_query) != std::string::npos)
		results.push_back(Reference<SceneNode>(this));
	for(size_t i = 0; i < children.size(); ++i)
	{
		children[i]->findNodesByNameLowered(lowered_query, results, types);
		if(results.size() >= 64)
			return;
	}
}

unsigned SceneNode::getHighestEmissionLayerInTree() const
{
	unsigned highest = getHighestEmissionLayer();
	for(const Reference<SceneNode>& c : children)
		highest = std::max(highest, c->getHighestEmissionLayerInTree());
	return highest;
}

bool SceneNode::isReferencedInTree(const SceneNode* node) const
{
	if(references(node))
		return true;
	for(const Reference<SceneNode>& c : children)
		if(c->isReferencedInTree(node))
			return true;
	return false;
}

bool SceneNode::isEqual(const SceneNode& other) const
{
	if(!doIsEqual(other))
		return false;
	if(children.size() != other.children.size())
		return false;
	for(size_t i = 0; i < children.size(); ++i)
		if(children[i]->getType() != other.children[i]->getType() || !children[i]->isEqual(*other.children[i]))
			return false;
	return true;
}

String SceneNode::toXMLString() const
{
	BufferOStream stream;
	WriteContext context;
	writeXML(stream, 0, context);
	return stream.getBuffer();
}

void SceneNode::writeUIDAndName(OStream& stream, unsigned depth) const
{
	XMLWrite::writeUID(stream, depth, "uid", uid);
	XMLWrite::writeString(stream, depth, "name", getName());
}

void SceneNode::copyBaseFieldsTo(SceneNode& other) const
{
	other.uid = uid;
	other.setName(getName());
	other.flags = flags;
	other.change_stamp = change_stamp;
}

bool SceneNode::baseFieldsEqual(const SceneNode& other) const { return uid == other.uid && getName() == other.getName(); }

bool SceneNode::equalByBaseFieldsOnly(const SceneNode& other, const char* reminder) const
{
	if(!baseFieldsEqual(other))
		return false;
	printNotImplemented(reminder);
	return true;
}

void SceneNode::markChanged()
{
	SceneNodeRoot* root = getRoot();
	if(root)
	{
		root->change_stamp++;
		change_stamp = root->change_stamp;
	}
}

} // namespace Velorn
