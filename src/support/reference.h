#pragma once

#include <mutex>

namespace Velorn
{

// A plain reference count for objects that belong to one thread at a time
// (spectra, parameters, materials, meshes). Objects start at 0 and reach 1
// when a Reference first holds them.
class RefCounted
{
public:
	RefCounted() = default;
	// A copy is a new object: it does not inherit the count.
	RefCounted(const RefCounted&) {}
	RefCounted& operator=(const RefCounted&) { return *this; }
	virtual ~RefCounted() = default;

	void incRefCount() const { ++ref_count; }
	// Counts down and deletes the object when nobody holds it any more.
	void decRefCount() const
	{
		if(--ref_count == 0)
			delete this;
	}
	unsigned int getRefCount() const { return ref_count; }

private:
	mutable unsigned int ref_count = 0;
};

// A reference count that may be changed from several threads. Every change
// takes the object's own mutex and reads the new count back under it; the
// mutex guards the count only, never the object's other fields.
class ThreadSafeRefCounted
{
public:
	ThreadSafeRefCounted() = default;
	ThreadSafeRefCounted(const ThreadSafeRefCounted&) {}
	ThreadSafeRefCounted& operator=(const ThreadSafeRefCounted&) { return *this; }
	virtual ~ThreadSafeRefCounted() = default;

	void incRefCount() const
	{
		std::lock_guard<std::mutex> lock(mutex);
		++ref_count;
	}
	void decRefCount() const
	{
		unsigned int remaining;
		{
			std::lock_guard<std::mutex> lock(mutex);
			remaining = --ref_count;
		}
		if(remaining == 0)
			delete this;
	}
	unsigned int getRefCount() const
	{
		std::lock_guard<std::mutex> lock(mutex);
		return ref_count;
	}

private:
	mutable std::mutex mutex;
	mutable unsigned int ref_count = 0;
};

// The smart pointer over both counted bases. Null is allowed. Assignment
// counts the new object up before the old one down, so that assigning an
// object to a reference that already holds it is safe.
template <class T>
class Reference
{
public:
	Reference() = default;
	Reference(T* object) : ptr(object)
	{
		if(ptr)
			ptr->incRefCount();
	}
	Reference(const Reference& other) : Reference(other.ptr) {}
	template <class U>
	Reference(const Reference<U>& other) : Reference(other.getPointer()) {}
	Reference(Reference&& other) noexcept : ptr(other.ptr) { other.ptr = nullptr; }
	~Reference()
	{
		if(ptr)
			ptr->decRefCount();
	}

	Reference& operator=(const Reference& other)
	{
		assign(other.ptr);
		return *this;
	}
	Reference& operator=(Reference&& other) noexcept
	{
		if(this != &other)
		{
			T* old = ptr;
			ptr = other.ptr;
			other.ptr = nullptr;
			if(old)
				old->decRefCount();
		}
		return *this;
	}
	Reference& operator=(T* object)
	{
		assign(object);
		return *this;
	}

	T* operator->() const { return ptr; }
	T& operator*() const { return *ptr; }
	T* getPointer() const { return ptr; }
	bool isNull() const { return ptr == nullptr; }
	bool nonNull() const { return ptr != nullptr; }
	explicit operator bool() const { return ptr != nullptr; }

	// The held object as a U, or null when it is not one.
	template <class U>
	Reference<U> downcast() const { return Reference<U>(dynamic_cast<U*>(ptr)); }

	template <class U>
	bool operator==(const Reference<U>& other) const { return ptr == other.getPointer(); }
	template <class U>
	bool operator!=(const Reference<U>& other) const { return ptr != other.getPointer(); }

private:
	void assign(T* object)
	{
		if(object)
			object->incRefCount();
		T* old = ptr;
		ptr = object;
		if(old)
			old->decRefCount();
	}

	T* ptr = nullptr;
};

} // namespace Velorn
