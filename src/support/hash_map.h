#pragma once

#include "support/velorn_string.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Velorn
{

// The hash of the library's string-keyed tables. It decides the order in
// which keyed elements stand in a scene file, so it is kept exactly as the
// files were always written: start with 1 and multiply (in 32 bits,
// wrapping) by each byte's signed value plus one.
inline uint32_t stringHash(const char* bytes, size_t n)
{
	uint32_t h = 1;
	for(size_t i = 0; i < n; ++i)
		h *= (uint32_t)((int32_t)(signed char)bytes[i] + 1);
	return h;
}

struct StringHash
{
	uint32_t operator()(const String& s) const { return stringHash(s.data(), s.size()); }
	uint32_t operator()(const std::string& s) const { return stringHash(s.data(), s.size()); }
};

// Keys that are their own hash (UIDs and plain numbers).
struct IdentityHash
{
	template <class K>
	uint32_t operator()(const K& key) const { return (uint32_t)key; }
};

// The library's small hash table. Each bucket is a list of key and value
// pairs; a key goes to bucket hash modulo bucket count, a new pair to the end
// of its bucket. Iteration runs over the buckets from 0 up, each from its
// start, which is the order in which keyed elements are written. When the
// element count divided by the bucket count (integer division) exceeds 8 the
// bucket count doubles and all pairs are placed anew.
template <class K, class V, class Hash = IdentityHash>
class HashMap
{
public:
	typedef std::pair<K, V> Pair;

	explicit HashMap(size_t num_buckets = 4) : buckets(num_buckets) {}

	size_t size() const { return num_elements; }
	size_t numBuckets() const { return buckets.size(); }

	// Inserts the pair, or overwrites the value of an existing key.
	void insert(const K& key, const V& value)
	{
		if(V* existing = find(key))
		{
			*existing = value;
			return;
		}
		++num_elements;
		if(num_elements / buckets.size() > 8)
			rehash(buckets.size() * 2);
		bucketFor(key).push_back(Pair(key, value));
	}

	V* find(const K& key)
	{
		for(Pair& p : bucketFor(key))
			if(p.first == key)
				return &p.second;
		return nullptr;
	}
	const V* find(const K& key) const { return const_cast<HashMap*>(this)->find(key); }
	bool contains(const K& key) const { return find(key) != nullptr; }

	// Calls f(key, value) for every pair in bucket order.
	template <class F>
	void forEach(F f) const
	{
		for(const std::vector<Pair>& bucket : buckets)
			for(const Pair& p : bucket)
				f(p.first, p.second);
	}

	// Removal rebuilds the table without the key; the table has no cheaper
	// removal and needs none.
	void erase(const K& key)
	{
		HashMap rebuilt(buckets.size());
		forEach([&](const K& k, const V& v) {
			if(!(k == key))
				rebuilt.insert(k, v);
		});
		*this = std::move(rebuilt);
	}

	void clear()
	{
		for(std::vector<Pair>& bucket : buckets)
			bucket.clear();
		num_elements = 0;
	}

private:
	std::vector<Pair>& bucketFor(const K& key) { return buckets[Hash()(key) % buckets.size()]; }

	void rehash(size_t new_num_buckets)
	{
		std::vector<std::vector<Pair>> old;
		old.swap(buckets);
		buckets.resize(new_num_buckets);
		for(std::vector<Pair>& bucket : old)
			for(Pair& p : bucket)
				bucketFor(p.first).push_back(std::move(p));
	}

	std::vector<std::vector<Pair>> buckets;
	size_t num_elements = 0;
};

} // namespace Velorn
