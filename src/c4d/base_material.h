#pragma once

#include "c4d/base_list.h"
#include "c4d/plugin_registry.h"

// The application's standard material.
enum
{
	Mmaterial = 5703,
};

// A material of the document's material list; texture tags link to one.
class BaseMaterial : public TypedList2D<BaseMaterial>
{
public:
	using TypedList2D::TypedList2D;

	// A free material of the given type with its defaults; null when the
	// type is neither the host's material nor a registered material plug-in.
	static BaseMaterial* Alloc(int32_t type) { return InitOrFree(new BaseMaterial(type), NodeClass::Material); }
};
