#pragma once

#include "c4d/base_list.h"

// Holds a free node and frees it (GeListNode::Free) when it goes out of
// scope, unless Release hands the node on.
template<typename T>
class AutoFree
{
public:
	explicit AutoFree(T* node_ = nullptr) : node(node_) {}
	~AutoFree() { GeListNode::Free(node); }
	AutoFree(const AutoFree&) = delete;
	AutoFree& operator=(const AutoFree&) = delete;

	T* Get() const { return node; }
	T* operator->() const { return node; }
	explicit operator bool() const { return node != nullptr; }
	// Frees the node held so far and holds the new one.
	void Set(T* node_)
	{
		GeListNode::Free(node);
		node = node_;
	}
	T* Release()
	{
		T* released = node;
		node = nullptr;
		return released;
	}

private:
	T* node;
};
