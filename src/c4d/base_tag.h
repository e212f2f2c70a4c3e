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
	Tpointselection = 5674,
};

// Parameters of the motion blur tag (Tmotionblur).
enum
{
	// Real: the share of the exposure the object is blurred over; 1.0 when made.
	MOTIONBLURTAG_STRENGTH = 1000,
};

// A tag: data attached to one object, in the object's tag list.
class BaseTag : public TypedList2D<BaseTag>
{
public:
	using TypedList2D::TypedList2D;

	// A free tag of the given type with its defaults; null when the type
	// is neither a host tag nor a registered tag plug-in. The host's tags
	// with data of their own come as their classes: Tuvw as a UVWTag, the
	// selections as SelectionTag, Ttexture as a TextureTag.
	static BaseTag* Alloc(int32_t type);

	// A free tag of the same type with the same name and parameters, and the
	// data of its class. A plug-in tag gets its Init first, then the
	// parameters of this one. Null when the type is no longer known.
	virtual BaseTag* GetClone() const;

	// The object whose tag list holds this tag; null for a free tag.
	BaseObject* GetObject() const;
};
