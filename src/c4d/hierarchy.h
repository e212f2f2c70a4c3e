#pragma once

#include "c4d/base_document.h"
#include "c4d/base_thread.h"
#include "c4d/vector_matrix.h"

#include <cstdint>

// The host's walk over a document's objects. A subclass gets Do for each
// object, in tree order (an object, then its children, then its next
// sibling), with the object's world matrix, until Do returns false.
//
// Each level of the tree may carry data of the subclass: Alloc makes it for
// the children of an object, CopyTo fills it from the level above, and Free
// lets it go when the children are done. The default Alloc returns null, and
// then the children see the data of the level above. The walk needs an
// object to call Do with: a document without objects never calls it.
class Hierarchy
{
public:
	virtual ~Hierarchy() = default;

	virtual void* Alloc() { return nullptr; }
	virtual void Free(void* data);
	virtual void CopyTo(void* src, void* dst);
	// controlobject is set for objects that only steer a generator; the
	// headless host walks no generator caches, so it is always false.
	virtual bool Do(void* data, BaseObject* op, const Matrix& mg, bool controlobject) = 0;

	// Walks doc from its first object with startdata as the data of the top
	// level. spline, lod and flags tell the application how to build the
	// caches it walks; the headless host walks the objects themselves. False
	// when there is no document or the thread asked to stop, true when the
	// walk ended or Do stopped it.
	bool Run(BaseDocument* doc, bool spline, double lod, int32_t flags, void* startdata, BaseThread* thread);

private:
	enum class Walk
	{
		Go,
		Stopped,
		Broken,
	};

	Walk walk(BaseObject* first, void* data, BaseThread* thread);
};
