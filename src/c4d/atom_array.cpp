#include "c4d/atom_array.h"

BaseList2D* AtomArray::GetIndex(int32_t index) const
{
	return index >= 0 && index < GetCount() ? nodes[index] : nullptr;
}
