#include "c4d/variable_tags.h"

#include "c4d/plugin_registry.h"

#include <cmath>

UVWTag* UVWTag::Alloc(int32_t count)
{
	if(count < 0)
		return nullptr;
	UVWTag* tag = InitOrFree(new UVWTag(), NodeClass::Tag);
	if(tag)
		tag->Resize(count);
	return tag;
}

bool UVWTag::Resize(int32_t count)
{
	if(count < 0)
		return false;
	records.resize(count);
	return true;
}

UVWTag* UVWTag::GetClone() const
{
	UVWTag* copy = static_cast<UVWTag*>(BaseTag::GetClone());
	if(copy)
		copy->records = records;
	return copy;
}

SelectionTag* SelectionTag::Alloc(int32_t type)
{
	if(type != Tpolygonselection && type != Tpointselection)
		return nullptr;
	return InitOrFree(new SelectionTag(type), NodeClass::Tag);
}

SelectionTag* SelectionTag::GetClone() const
{
	SelectionTag* copy = static_cast<SelectionTag*>(BaseTag::GetClone());
	if(copy)
		copy->selection = selection;
	return copy;
}

void SetPhongTagDefaults(BaseContainer& data)
{
	data.SetBool(PHONGTAG_PHONG_ANGLELIMIT, true);
	data.SetFloat(PHONGTAG_PHONG_ANGLE, 80.0 * M_PI / 180.0);
	data.SetBool(PHONGTAG_PHONG_USEEDGES, false);
}
