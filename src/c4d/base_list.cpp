#include "c4d/base_list.h"

#include "c4d/base_document.h"
#include "c4d/base_shader.h"
#include "c4d/description.h"
#include "c4d/layer_object.h"

#include <iterator>
#include <map>

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

BaseDocument* BaseList2D::GetDocument() const
{
	const GeListNode* node = this;
	while(node)
	{
		while(node->GetUp())
			node = node->GetUp();
		const GeListHead* head = node->GetListHead();
		if(!head)
			return node->GetType() == Tbasedocument ? static_cast<BaseDocument*>(const_cast<GeListNode*>(node)) : nullptr;
		node = head->GetMain();
	}
	return nullptr;
}

bool BaseList2D::GetParameter(const DescID& id, GeData& t_data, int32_t flags)
{
	if(nodeData && !nodeData->GetDParameter(this, id, t_data, flags))
		return false;
	if(!(flags & DESCFLAGS_GET_PARAM_GET))
		t_data = data.GetData(id[0].id);
	return true;
}

bool BaseList2D::SetParameter(const DescID& id, const GeData& t_data, int32_t flags)
{
	if(nodeData && !nodeData->SetDParameter(this, id, t_data, flags))
		return false;
	if(!(flags & DESCFLAGS_SET_PARAM_SET))
		data.SetData(id[0].id, t_data);
	return true;
}

bool BaseList2D::GetDescription(Description* description, int32_t flags)
{
	if(nodeData)
		return nodeData->GetDDescription(this, description, flags);
	return description->LoadDescription(GetType());
}

bool BaseList2D::IsParameterEnabled(const DescID& id, const Description* description)
{
	if(!nodeData)
		return true;
	Description own;
	if(!description && GetDescription(&own))
		description = &own;
	const DescriptionEntry* entry = description ? description->find(id) : nullptr;
	const BaseContainer* itemdesc = entry ? &entry->settings : nullptr;
	GeData value;
	GetParameter(id, value);
	return nodeData->GetDEnabling(this, id, value, DESCFLAGS_ENABLE_NONE, itemdesc);
}

bool BaseList2D::Message(int32_t type, void* message)
{
	return nodeData ? nodeData->Message(this, type, message) : true;
}

void BaseList2D::SetDirty(int32_t flags)
{
	if(flags & DIRTYFLAGS_DATA)
		++dirty;
}

uint32_t BaseList2D::GetDirty(int32_t flags) const
{
	return (flags & DIRTYFLAGS_DATA) ? dirty : 0;
}

LayerObject* BaseList2D::GetLayerObject(BaseDocument*) const
{
	return static_cast<LayerObject*>(layer.GetLink());
}

void BaseList2D::SetLayerObject(LayerObject* layer_)
{
	layer = GeData(static_cast<BaseList2D*>(layer_));
}

namespace
{

using CloneMap = std::map<const BaseList2D*, BaseList2D*>;

// Points the links of bc that name a copied node to its copy, in nested
// containers too.
void relinkCopies(BaseContainer& bc, const CloneMap& copies)
{
	for(int32_t i = 0; i < bc.GetCount(); ++i)
	{
		GeData* value = bc.GetIndexData(i);
		if(BaseContainer* nested = value->GetContainerInstance())
			relinkCopies(*nested, copies);
		else if(value->GetType() == DA_ALIASLINK)
		{
			const auto found = copies.find(value->GetLink());
			if(found != copies.end())
				*value = GeData(found->second);
		}
	}
}

// Copies the shaders that from owns to to, entering each pair in copies.
// A shader whose type is no longer known is left out.
void cloneShaders(const BaseList2D& from, BaseList2D& to, CloneMap& copies)
{
	BaseShader* pred = nullptr;
	for(BaseShader* sh = from.GetFirstShader(); sh; sh = sh->GetNext())
	{
		BaseShader* copy = BaseShader::Alloc(sh->GetType());
		if(!copy)
			continue;
		to.InsertShader(copy, pred);
		pred = copy;
		copies[sh] = copy;
		copy->SetName(sh->GetName());
		copy->SetData(sh->GetData());
		cloneShaders(*sh, *copy, copies);
	}
}

void relinkTree(BaseList2D& node, const CloneMap& copies)
{
	relinkCopies(*node.GetDataInstance(), copies);
	for(BaseShader* sh = node.GetFirstShader(); sh; sh = sh->GetNext())
		relinkTree(*sh, copies);
}

} // namespace

void BaseList2D::cloneInto(BaseList2D& copy) const
{
	copy.SetName(name);
	copy.SetData(data);
	copy.bits = bits;
	copy.layer = layer;
	CloneMap copies;
	cloneShaders(*this, copy, copies);
	relinkTree(copy, copies);
}
