#include "c4d/base_tag.h"

#include "c4d/base_object.h"
#include "c4d/plugin_registry.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

BaseTag* BaseTag::Alloc(int32_t type)
{
	switch(type)
	{
	case Tuvw:
		return UVWTag::Alloc(0);
	case Tpolygonselection:
	case Tpointselection:
		return SelectionTag::Alloc(type);
	case Ttexture:
		return TextureTag::Alloc();
	default:
		return InitOrFree(new BaseTag(type), NodeClass::Tag);
	}
}

BaseTag* BaseTag::GetClone() const
{
	BaseTag* copy = Alloc(GetType());
	if(copy)
	{
		copy->SetName(GetName());
		copy->SetData(GetData());
	}
	return copy;
}

BaseObject* BaseTag::GetObject() const
{
	const GeListHead* head = GetListHead();
	return head ? static_cast<BaseObject*>(head->GetMain()) : nullptr;
}
