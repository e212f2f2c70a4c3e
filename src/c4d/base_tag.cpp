#include "c4d/base_tag.h"

#include "c4d/base_object.h"

BaseObject* BaseTag::GetObject() const
{
	const GeListHead* head = GetListHead();
	return head ? static_cast<BaseObject*>(head->GetMain()) : nullptr;
}
