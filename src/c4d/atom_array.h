#pragma once

#include <cstdint>
#include <vector>

class BaseList2D;

// A list of nodes that the caller does not own, such as the active
// materials of a document.
class AtomArray
{
public:
	int32_t GetCount() const { return (int32_t)nodes.size(); }
	// The node at index; null outside the list.
	BaseList2D* GetIndex(int32_t index) const;
	void Append(BaseList2D* node) { nodes.push_back(node); }
	void Flush() { nodes.clear(); }

private:
	std::vector<BaseList2D*> nodes;
};
