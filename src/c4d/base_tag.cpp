#include "c4d/base_tag.h"

#include "c4d/base_object.h"
#include "c4d/plugin_registry.h"

BaseTag* BaseTag::Alloc(int32_t type)
{
	return InitOrFree(new BaseTag(type), NodeClass::Tag);
}

BaseObject* BaseTag::GetObject() const
{
	const GeListHead* head = GetListHead();
	return head ? static_cast<BaseObject*>(head->GetMain()) : nullptr;
}
