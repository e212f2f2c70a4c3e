#include "c4d/base_list.h"

#include "c4d/base_shader.h"

#include <iterator>

GeListNode* GeListNode::GetNext() const
{
	if(!list)
		return nullptr;
	const auto next = std::next(self);
	return next == list->end() ? nullptr : next->get();
}

GeListNode* GeListNode::GetPred() const
{
	if(!list || self == list->begin())
		return nullptr;
	return std::prev(self)->get();
}

GeListNode* GeListNode::GetDown() const
{
	return children.empty() ? nullptr : children.front().get();
}

GeListNode* GeListNode::GetDownLast() const
{
	return children.empty() ? nullptr : children.back().get();
}

void GeListNode::InsertUnder(GeListNode* parent)
{
	Remove();
	link(parent->children, parent->children.begin(), parent, nullptr);
}

void GeListNode::InsertUnderLast(GeListNode* parent)
{
	Remove();
	link(parent->children, parent->children.end(), parent, nullptr);
}

void GeListNode::InsertAfter(GeListNode* pred)
{
	if(pred == this)
		return;
	Remove();
	link(*pred->list, std::next(pred->self), pred->up, pred->head);
}

void GeListNode::InsertBefore(GeListNode* next)
{
	if(next == this)
		return;
	Remove();
	link(*next->list, next->self, next->up, next->head);
}

void GeListNode::Remove()
{
	if(!list)
		return;
	self->release();
	list->erase(self);
	list = nullptr;
	up = nullptr;
	head = nullptr;
}

GeListNode::~GeListNode()
{
	for(const auto& child : children)
		child->releaseAll();
}

void GeListNode::releaseAll()
{
	for(const auto& child : children)
		child->releaseAll();
	beforeFree();
}

GeListHead::~GeListHead()
{
	for(const auto& node : nodes)
		node->releaseAll();
}

void GeListNode::freeNode(GeListNode* node)
{
	if(!node)
		return;
	node->releaseAll();
	node->Remove();
	delete node;
}

void GeListNode::link(NodeList& into, NodeList::iterator pos, GeListNode* up_, GeListHead* head_)
{
	self = into.insert(pos, std::unique_ptr<GeListNode>(this));
	list = &into;
	up = up_;
	head = head_;
}

void GeListHead::InsertFirst(GeListNode* node)
{
	node->Remove();
	node->link(nodes, nodes.begin(), nullptr, this);
}

void GeListHead::InsertLast(GeListNode* node)
{
	node->Remove();
	node->link(nodes, nodes.end(), nullptr, this);
}

void GeListHead::Insert(GeListNode* node, GeListNode* pred)
{
	if(pred)
		node->InsertAfter(pred);
	else
		InsertFirst(node);
}

BaseShader* BaseList2D::GetFirstShader() const
{
	return static_cast<BaseShader*>(ownsShadersAsChildren() ? GetDown() : shaders.GetFirst());
}

void BaseList2D::InsertShader(BaseShader* sh, BaseShader* pred)
{
	if(pred)
		sh->InsertAfter(pred);
	else if(ownsShadersAsChildren())
		sh->InsertUnder(this);
	else
		shaders.InsertFirst(sh);
}

void BaseList2D::beforeFree()
{
	for(GeListNode* sh = shaders.GetFirst(); sh; sh = sh->GetNext())
		sh->releaseAll();
	if(!nodeData)
		return;
	nodeData->Free(this);
	nodeData.reset();
}
