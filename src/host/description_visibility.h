#pragma once

#include "c4d/description.h"

#include <cstdint>
#include <initializer_list>

// Hides or shows description entries of the plug-in's nodes. Hiding sets
// the entry's DESC_HIDE flag, so the values stay stored; an id that the
// description does not hold is passed over.
inline void setHidden(Description* description, std::initializer_list<int32_t> ids, bool hidden)
{
	for(int32_t id : ids)
		if(BaseContainer* settings = description->GetParameterI(DescID(id)))
			settings->SetBool(DESC_HIDE, hidden);
}

inline void hide(Description* description, std::initializer_list<int32_t> ids) { setHidden(description, ids, true); }
inline void show(Description* description, std::initializer_list<int32_t> ids) { setHidden(description, ids, false); }
