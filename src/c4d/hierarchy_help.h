#pragma once

#include "c4d/vector_matrix.h"

#include <cstdint>

class BaseDocument;
class BaseObject;

// What the host tells a generator when it asks for its cache
// (ObjectData::GetVirtualObjects): the document and the bits of the build.
class HierarchyHelp
{
public:
	HierarchyHelp(BaseDocument* doc_, int32_t flags_) : doc(doc_), flags(flags_) {}

	BaseDocument* GetDocument() const { return doc; }
	// The bits the build runs with; their meaning is the application's.
	int32_t GetFlags() const { return flags; }

private:
	BaseDocument* doc;
	int32_t flags;
};

// The centre and the half size of op's box in its own coordinates, as the
// editor sizes it: a plug-in object's GetDimension, the points of a polygon
// object, else the box of its deform cache or cache; 0 and 0 for anything
// else.
void GetObjectDimension(BaseObject* op, Vector* mp, Vector* rad);
