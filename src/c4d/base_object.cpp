#include "c4d/base_object.h"

#include "c4d/layer_object.h"
#include "c4d/plugin_registry.h"
#include "c4d/polygon_object.h"

namespace
{

// The top of the tree that op is in: a top-level object or the top of a cache.
const BaseObject* topOf(const BaseObject* op)
{
	while(op->GetUp())
		op = op->GetUp();
	return op;
}

} // namespace

BaseObject::BaseObject(int32_t type_) : TypedList2D(type_), tags(this)
{
}

BaseObject* BaseObject::Alloc(int32_t type)
{
	if(type == Opolygon)
		return PolygonObject::Alloc(0, 0);
	return InitOrFree(new BaseObject(type), NodeClass::Object);
}

BaseObject* BaseObject::GetClone() const
{
	BaseObject* copy = Alloc(GetType());
	if(!copy)
		return nullptr;
	cloneInto(*copy);
	copy->ml = ml;
	copy->renderMode = renderMode;
	copy->editorMode = editorMode;
	copy->deformMode = deformMode;
	copy->tracks = tracks;
	BaseTag* lastTag = nullptr;
	for(const BaseTag* tag = GetFirstTag(); tag; tag = tag->GetNext())
	{
		if(BaseTag* tagCopy = tag->GetClone())
		{
			copy->InsertTag(tagCopy, lastTag);
			lastTag = tagCopy;
		}
	}
	for(const BaseObject* child = GetDown(); child; child = child->GetNext())
	{
		if(BaseObject* childCopy = child->GetClone())
			childCopy->InsertUnderLast(copy);
	}
	return copy;
}

BaseObject* BaseObject::matrixParent() const
{
	BaseObject* parent = GetUp();
	return parent ? parent : cacheParent;
}

Matrix BaseObject::GetMg() const
{
	return GetUpMg() * ml;
}

Matrix BaseObject::GetUpMg() const
{
	const BaseObject* parent = matrixParent();
	return parent ? parent->GetMg() : Matrix();
}

BaseTag* BaseObject::GetTag(int32_t type, int32_t nr) const
{
	for(BaseTag* tag = GetFirstTag(); tag; tag = tag->GetNext())
	{
		if(tag->GetType() == type && nr-- == 0)
			return tag;
	}
	return nullptr;
}

BaseTag* BaseObject::MakeTag(int32_t type, BaseTag* pred)
{
	BaseTag* tag = BaseTag::Alloc(type);
	if(tag)
		InsertTag(tag, pred);
	return tag;
}

BaseObject* BaseObject::GetOrigin(bool) const
{
	BaseObject* origin = nullptr;
	for(BaseObject* generator = topOf(this)->cacheParent; generator; generator = topOf(generator)->cacheParent)
		origin = generator;
	return origin;
}

const LayerData* BaseObject::GetLayerData(BaseDocument* doc) const
{
	const LayerObject* layer = GetLayerObject(doc);
	return layer ? &layer->GetLayerData() : nullptr;
}

void BaseObject::adopt(std::unique_ptr<BaseObject>& slot, BaseObject* c)
{
	if(c == slot.get())
		return;
	if(c)
	{
		c->Remove();
		c->cacheParent = this;
	}
	slot.reset(c);
}
