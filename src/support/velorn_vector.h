#pragma once

#include <cstddef>
#include <initializer_list>
#include <new>
#include <utility>

namespace Velorn
{

// The library's growable array: a pointer, a length and a capacity, the form
// in which arrays cross the renderer library's boundary. Growth goes to the
// larger of what is needed and one and a half times the capacity; the old
// storage is freed after its elements have moved over.
template <class T>
class Vector
{
public:
	typedef T value_type;
	typedef T* iterator;
	typedef const T* const_iterator;

	Vector() = default;
	explicit Vector(size_t n) { resize(n); }
	Vector(size_t n, const T& value) { resize(n, value); }
	Vector(std::initializer_list<T> values)
	{
		reserve(values.size());
		for(const T& v : values)
			push_back(v);
	}
	Vector(const Vector& other)
	{
		reserve(other.len);
		for(size_t i = 0; i < other.len; ++i)
			new(e + i) T(other.e[i]);
		len = other.len;
	}
	Vector(Vector&& other) noexcept : e(other.e), len(other.len), cap(other.cap)
	{
		other.e = nullptr;
		other.len = other.cap = 0;
	}
	~Vector()
	{
		clear();
		::operator delete(e);
	}

	Vector& operator=(const Vector& other)
	{
		if(this != &other)
		{
			Vector copy(other);
			swap(copy);
		}
		return *this;
	}
	Vector& operator=(Vector&& other) noexcept
	{
		Vector moved(std::move(other));
		swap(moved);
		return *this;
	}

	void swap(Vector& other) noexcept
	{
		std::swap(e, other.e);
		std::swap(len, other.len);
		std::swap(cap, other.cap);
	}

	size_t size() const { return len; }
	size_t capacity() const { return cap; }
	bool empty() const { return len == 0; }

	T* data() { return e; }
	const T* data() const { return e; }
	T& operator[](size_t i) { return e[i]; }
	const T& operator[](size_t i) const { return e[i]; }
	T& back() { return e[len - 1]; }
	const T& back() const { return e[len - 1]; }

	iterator begin() { return e; }
	iterator end() { return e + len; }
	const_iterator begin() const { return e; }
	const_iterator end() const { return e + len; }

	void reserve(size_t n)
	{
		if(n > cap)
			reallocate(n);
	}

	void push_back(const T& value)
	{
		if(len == cap)
		{
			// The value may live inside this vector: copy it before growing.
			T copy(value);
			grow(len + 1);
			new(e + len) T(std::move(copy));
		}
		else
			new(e + len) T(value);
		++len;
	}
	void push_back(T&& value)
	{
		if(len == cap)
		{
			T moved(std::move(value));
			grow(len + 1);
			new(e + len) T(std::move(moved));
		}
		else
			new(e + len) T(std::move(value));
		++len;
	}

	// Appends copies of the n elements from first on.
	void append(const T* first, size_t n)
	{
		if(n != 0 && first >= e && first < e + len)
		{
			// The source lives in this vector and would move with it.
			Vector copy;
			copy.append(first, n);
			append(copy.data(), n);
			return;
		}
		grow(len + n);
		for(size_t i = 0; i < n; ++i)
			new(e + len + i) T(first[i]);
		len += n;
	}

	void pop_back()
	{
		--len;
		e[len].~T();
	}

	// New elements are value-initialised: zero for numbers and plain structs.
	void resize(size_t n)
	{
		if(n > len)
		{
			grow(n);
			for(size_t i = len; i < n; ++i)
				new(e + i) T();
			len = n;
		}
		else
			truncate(n);
	}
	void resize(size_t n, const T& value)
	{
		if(n > len)
		{
			T copy(value);
			grow(n);
			for(size_t i = len; i < n; ++i)
				new(e + i) T(copy);
			len = n;
		}
		else
			truncate(n);
	}

	void clear() { truncate(0); }

	bool operator==(const Vector& other) const
	{
		if(len != other.len)
			return false;
		for(size_t i = 0; i < len; ++i)
			if(!(e[i] == other.e[i]))
				return false;
		return true;
	}
	bool operator!=(const Vector& other) const { return !(*this == other); }

private:
	void grow(size_t needed)
	{
		if(needed > cap)
		{
			const size_t one_and_a_half = cap + cap / 2;
			reallocate(needed > one_and_a_half ? needed : one_and_a_half);
		}
	}

	void reallocate(size_t new_cap)
	{
		T* new_e = static_cast<T*>(::operator new(new_cap * sizeof(T)));
		for(size_t i = 0; i < len; ++i)
		{
			new(new_e + i) T(std::move(e[i]));
			e[i].~T();
		}
		::operator delete(e);
		e = new_e;
		cap = new_cap;
	}

	void truncate(size_t n)
	{
		while(len > n)
			pop_back();
	}

	T* e = nullptr;
	size_t len = 0;
	size_t cap = 0;
};

} // namespace Velorn
