#pragma once

#include "c4d/base_container.h"
#include "c4d/ge_data.h"
#include "c4d/c4d_string.h"
#include "c4d/node_data.h"

#include <cstdint>
#include <list>
#include <memory>

class BaseDocument;
class BaseShader;
class DescID;
class Description;
class GeListHead;
class LayerObject;

// Bits of a node's state that the application keeps besides its parameters.
enum
{
	BIT_ACTIVE = 1 << 1,
	// Set on the materials a node uses by MSG_MULTI_MARKMATERIALS.
	BIT_MATMARK = 1 << 2,
};

// The base types that BaseList2D::IsInstanceOf answers for every node of a
// class, whatever its own type.
enum
{
	Mbase = 5702,
	Xbase = 5707,
};

// What SetDirty and GetDirty count.
enum
{
	DIRTYFLAGS_DATA = 1 << 1,
};

// A node of a list tree. The nodes of one list are siblings (GetNext,
// GetPred); each node has a list of children of its own (GetDown).
//
// Ownership: a list owns its nodes, so a node owns its children, and the
// nodes of a top-level list are owned by its GeListHead. A node that is in no
// list is free and belongs to whoever holds the pointer: Alloc gives a free
// node, Remove makes a node free again and hands it to the caller, and an
// insert passes it to the list. Free deletes a node with all its children,
// taking it out of its list first, so it may be called on a node in a list.
// A node is never deleted otherwise.
class GeListNode
{
public:
	explicit GeListNode(int32_t type_) : type(type_) {}
	GeListNode(const GeListNode&) = delete;
	GeListNode& operator=(const GeListNode&) = delete;
	// Releases the children (releaseAll) before they go.
	virtual ~GeListNode();

	// Deletes node and its children, and sets the pointer to null; a null
	// node is allowed.
	template<typename T>
	static void Free(T*& node)
	{
		freeNode(node);
		node = nullptr;
	}

	// The kind of node, a registered id such as Opolygon.
	int32_t GetType() const { return type; }

	GeListNode* GetNext() const;
	GeListNode* GetPred() const;
	// The node this one is a child of; null at the top of a list head.
	GeListNode* GetUp() const { return up; }
	GeListNode* GetDown() const;
	GeListNode* GetDownLast() const;
	// The head of the top-level list this node is in; null for a child.
	GeListHead* GetListHead() const { return head; }

	// Each insert first takes the node out of the list it is in. The node must
	// not be inserted under itself or its own children.
	void InsertUnder(GeListNode* parent);
	void InsertUnderLast(GeListNode* parent);
	void InsertAfter(GeListNode* pred);
	void InsertBefore(GeListNode* next);
	// Takes the node out of its list; the caller owns it afterwards.
	void Remove();

	// Runs beforeFree on the node's children, deepest first, then on the
	// node, while all of them are whole and in their places: Free does it,
	// and so do a list and a node before the nodes they own are deleted.
	void releaseAll();

protected:
	// What a node lets go of before it is deleted; it can still see where
	// it was.
	virtual void beforeFree() {}

private:
	friend class GeListHead;
	using NodeList = std::list<std::unique_ptr<GeListNode>>;

	static void freeNode(GeListNode* node);
	// Puts the free node into list before pos.
	void link(NodeList& list, NodeList::iterator pos, GeListNode* up, GeListHead* head);

	int32_t type;
	NodeList children;
	// The list this node is in and its place there; list is null for a free node.
	NodeList* list = nullptr;
	NodeList::iterator self;
	GeListNode* up = nullptr;
	GeListHead* head = nullptr;
};

// The start of a top-level list, such as the objects or the materials of a
// document. It owns its nodes and belongs to its main node (the document,
// or the object of a tag list), which its nodes do not see as GetUp.
class GeListHead
{
public:
	explicit GeListHead(GeListNode* main_) : main(main_) {}
	// Releases its nodes (releaseAll) before they go.
	~GeListHead();
	GeListHead(const GeListHead&) = delete;
	GeListHead& operator=(const GeListHead&) = delete;

	GeListNode* GetMain() const { return main; }
	GeListNode* GetFirst() const { return nodes.empty() ? nullptr : nodes.front().get(); }
	GeListNode* GetLast() const { return nodes.empty() ? nullptr : nodes.back().get(); }
	// As the inserts of a node: the node is first taken out of its list.
	void InsertFirst(GeListNode* node);
	void InsertLast(GeListNode* node);
	// After pred, a node of this list, or first when pred is null.
	void Insert(GeListNode* node, GeListNode* pred);

private:
	GeListNode* main;
	GeListNode::NodeList nodes;
};

// A list node with a name, a container of parameters, info flags (fixed by
// the kind of node, such as OBJECT_CAMERADEPENDENT) and state bits.
//
// A node of a plug-in type also carries the plug-in's NodeData, which it
// owns and lets go (NodeData::Free) when it is released: before it leaves
// its list when Free is called on it or on a node above it, or before its
// list or parent deletes it.
//
// Any node can own shaders, such as the ones its parameters link to. They
// are released with the node, before the node's own NodeData, so that both
// see each other whole.
class BaseList2D : public GeListNode
{
public:
	explicit BaseList2D(int32_t type_) : GeListNode(type_), shaders(this) {}

	// The plug-in's data of the node; null for the host's own types.
	NodeData* GetNodeData() const { return nodeData.get(); }
	// The host hands a new node its plug-in data (InitNode).
	void SetNodeData(std::unique_ptr<NodeData> data) { nodeData = std::move(data); }

	const String& GetName() const { return name; }
	void SetName(const String& name_) { name = name_; }

	BaseContainer* GetDataInstance() { return &data; }
	const BaseContainer* GetDataInstance() const { return &data; }
	BaseContainer GetData() const { return data; }
	void SetData(const BaseContainer& data_) { data = data_; }

	// Whether the node is of type id, or of a class whose base type is id
	// (Mbase for materials, Xbase for shaders).
	virtual bool IsInstanceOf(int32_t id) const { return GetType() == id; }

	// The document the node is in, through its lists and owners (an
	// object's tags, a node's shaders); null for a free node.
	BaseDocument* GetDocument() const;

	// A parameter by its description address, as the attribute manager and
	// the plug-ins read and write them: the node's plug-in sees the call
	// first (GetDParameter, SetDParameter), then the container. False when
	// the plug-in refuses.
	bool GetParameter(const DescID& id, GeData& t_data, int32_t flags = 0);
	bool SetParameter(const DescID& id, const GeData& t_data, int32_t flags = 0);
	// The node's description as the attribute manager asks for it: through
	// its plug-in's GetDDescription, or the description of its type for the
	// host's own nodes. False when it cannot be had.
	bool GetDescription(Description* description, int32_t flags = 0);
	// Whether the attribute manager lets the user edit the parameter now
	// (the plug-in's GetDEnabling, given the value and its settings in
	// description); true for nodes without a plug-in. Without a description
	// the node's own is built for the call, so a caller that asks for many
	// parameters passes the one it built.
	bool IsParameterEnabled(const DescID& id, const Description* description = nullptr);
	// Sends a message to the node's plug-in; true for nodes without one.
	bool Message(int32_t type, void* data = nullptr);

	// Counts changes of the node: SetDirty(DIRTYFLAGS_DATA) raises the count
	// that GetDirty(DIRTYFLAGS_DATA) returns.
	void SetDirty(int32_t flags);
	uint32_t GetDirty(int32_t flags) const;

	// The layer is one of the document's layers; the document argument is
	// the one the node is in, as in the application. A layer that has been
	// freed reads as none.
	LayerObject* GetLayerObject(BaseDocument* doc) const;
	void SetLayerObject(LayerObject* layer);

	int32_t GetInfo() const { return info; }
	// The host sets the info flags of a node from the registration of its kind.
	void SetInfo(int32_t info_) { info = info_; }

	bool GetBit(int32_t mask) const { return (bits & mask) != 0; }
	void SetBit(int32_t mask) { bits |= mask; }
	void DelBit(int32_t mask) { bits &= ~mask; }
	int32_t GetAllBits() const { return bits; }

	// The first of the shaders the node owns; GetNext gives the others.
	BaseShader* GetFirstShader() const;
	// Puts the free shader sh after pred, one of the node's shaders, or first
	// when pred is null; the node owns it.
	void InsertShader(BaseShader* sh, BaseShader* pred = nullptr);

	// What the node's GeData links hold besides the pointer: a token that
	// expires when the node is deleted, so that a link to a freed node
	// reads as empty.
	const std::shared_ptr<const char>& liveness() const { return alive; }

protected:
	void beforeFree() override;
	// Copies name, parameters, bits, layer and the owned shaders (with their
	// children) of this node to copy, a new node of the same type with its
	// defaults; links of the copied parameters that point to a copied shader
	// point to its copy. The GetClone of the node classes use it.
	void cloneInto(BaseList2D& copy) const;
	// A shader keeps the shaders it owns as its children (GetDown); other
	// nodes keep them in a list of their own.
	virtual bool ownsShadersAsChildren() const { return false; }

private:
	String name;
	BaseContainer data;
	int32_t info = 0;
	int32_t bits = 0;
	std::unique_ptr<NodeData> nodeData;
	GeListHead shaders;
	std::shared_ptr<const char> alive = std::make_shared<const char>(0);
	uint32_t dirty = 0;
	// Held as a link, so that a freed layer reads as none.
	GeData layer;
};

// Navigation typed as T, for node classes whose lists hold only their own
// kind (objects, tags, materials, ...).
template<typename T, typename Base = BaseList2D>
class TypedList2D : public Base
{
public:
	using Base::Base;

	T* GetNext() const { return static_cast<T*>(GeListNode::GetNext()); }
	T* GetPred() const { return static_cast<T*>(GeListNode::GetPred()); }
	T* GetUp() const { return static_cast<T*>(GeListNode::GetUp()); }
	T* GetDown() const { return static_cast<T*>(GeListNode::GetDown()); }
	T* GetDownLast() const { return static_cast<T*>(GeListNode::GetDownLast()); }
};
