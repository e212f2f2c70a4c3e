#pragma once

#include <cstdint>

class BaseDocument;
class GeListNode;

// The plug-in's part of a node of a registered plug-in type. The host makes
// one per node with the allocator the plug-in registered, calls Init right
// after the node is made (so Init sets the defaults that a document's values
// then override), and Free before the node goes away. The node owns it.
class NodeData
{
public:
	virtual ~NodeData() = default;

	// Sets the node's defaults; false makes the allocation fail.
	virtual bool Init(GeListNode* node);
	virtual void Free(GeListNode* node);
	// A message sent to the node; true when handled or nothing needed doing.
	virtual bool Message(GeListNode* node, int32_t type, void* data);
};

// The plug-in kinds whose nodes carry NodeData.
class TagData : public NodeData
{
};

class ObjectData : public NodeData
{
};

class VideoPostData : public NodeData
{
};

class ShaderData : public NodeData
{
};

// Makes the NodeData of a new node; registered once per plug-in type.
using DataAllocator = NodeData*();

// A command of a menu or a palette. The registry owns the one instance.
class CommandData
{
public:
	virtual ~CommandData() = default;

	// Runs the command on the active document; false on failure.
	virtual bool Execute(BaseDocument* doc);
};
