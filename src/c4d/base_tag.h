#pragma once

#include "c4d/base_list.h"

class BaseObject;

// Tag types, by the application's numbering.
enum
{
	Tpoint = 5600,
	Tpolygon = 5604,
	Tphong = 5612,
	Ttexture = 5616,
	Tmotionblur = 5636,
	Tuvw = 5671,
	Tpolygonselection = 5673,
};

// A tag: data attached to one object, in the object's tag list.
class BaseTag : public TypedList2D<BaseTag>
{
public:
	using TypedList2D::TypedList2D;

	// A free tag of the given type with its defaults; null when the type
	// is neither a host tag nor a registered tag plug-in.
	static BaseTag* Alloc(int32_t type);

	// The object whose tag list holds this tag; null for a free tag.
	BaseObject* GetObject() const;
};
