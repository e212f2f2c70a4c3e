#include "support/hash_map.h"
#include "support/reference.h"
#include "support/velorn_string.h"
#include "support/velorn_vector.h"

#include <gtest/gtest.h>

using namespace Velorn;

namespace
{

struct Tracked : public RefCounted
{
	explicit Tracked(int& alive_) : alive(alive_) { ++alive; }
	~Tracked() override { --alive; }
	int& alive;
};

struct TrackedShared : public ThreadSafeRefCounted
{
	explicit TrackedShared(int& alive_) : alive(alive_) { ++alive; }
	~TrackedShared() override { --alive; }
	int& alive;
};

} // namespace

TEST(Containers, VectorGrowsByHalfItsCapacity)
{
	// The second push makes max(2, 1 + 1 / 2) = 2.
	Vector<int> v;
	const size_t capacities[] = {1, 2, 3, 4, 6};
	for(int i = 0; i < 5; ++i)
	{
		v.push_back(i + 1);
		EXPECT_EQ(v.capacity(), capacities[i]) << i;
	}
	v.resize(20);
	EXPECT_EQ(v.capacity(), 20u);
	EXPECT_EQ(v[19], 0);
	EXPECT_EQ(v[4], 5);

	// Pushing an element of the vector itself survives the reallocation.
	Vector<String> s;
	s.push_back("first");
	s.push_back(s[0]);
	EXPECT_EQ(s[1], "first");

	Vector<String> copy(s);
	copy.resize(1);
	EXPECT_EQ(s.size(), 2u);
	EXPECT_NE(copy, s);
	copy.push_back("first");
	EXPECT_EQ(copy, s);
}

TEST(Containers, StringIsBytesWithoutTerminator)
{
	String a("ab");
	a += String("\0c", 2);
	EXPECT_EQ(a.size(), 4u);
	EXPECT_EQ(a.str(), std::string("ab\0c", 4));
	EXPECT_NE(a, "ab");
	EXPECT_EQ(String() + "x" + String("y"), "xy");
	String twice("ab");
	twice += twice;
	EXPECT_EQ(twice, "abab");
	EXPECT_TRUE(String().empty());
}

TEST(Containers, ReferencesCountAndRelease)
{
	int alive = 0;
	{
		Tracked* raw = new Tracked(alive);
		EXPECT_EQ(raw->getRefCount(), 0u); // objects start at 0
		Reference<Tracked> a(raw);
		EXPECT_EQ(raw->getRefCount(), 1u);
		{
			Reference<Tracked> b = a;
			EXPECT_EQ(raw->getRefCount(), 2u);
		}
		a = a; // counting up first keeps a self assignment alive
		EXPECT_EQ(alive, 1);
		a = Reference<Tracked>(new Tracked(alive));
		EXPECT_EQ(alive, 1);
	}
	EXPECT_EQ(alive, 0);

	{
		Reference<TrackedShared> shared(new TrackedShared(alive));
		Vector<Reference<TrackedShared>> holders(3, shared);
		EXPECT_EQ(shared->getRefCount(), 4u);
		holders.clear();
		EXPECT_EQ(shared->getRefCount(), 1u);
	}
	EXPECT_EQ(alive, 0);
}

TEST(Containers, HashMapBucketOrderAndGrowth)
{
	// Keys land in key modulo 4 and stand in insertion order within a bucket.
	HashMap<uint32_t, int> map;
	for(uint32_t k : {5u, 2u, 1u, 4u, 8u})
		map.insert(k, (int)k * 10);
	std::vector<uint32_t> order;
	map.forEach([&](uint32_t k, int) { order.push_back(k); });
	EXPECT_EQ(order, (std::vector<uint32_t>{4, 8, 5, 1, 2}));

	map.insert(5, 7); // overwrite keeps the place and the count
	EXPECT_EQ(*map.find(5), 7);
	EXPECT_EQ(map.size(), 5u);

	// 36 elements in 4 buckets is 9 a bucket: the count doubles at the 36th.
	HashMap<uint32_t, int> big;
	for(uint32_t k = 0; k < 35; ++k)
		big.insert(k, 0);
	EXPECT_EQ(big.numBuckets(), 4u);
	big.insert(35, 0);
	EXPECT_EQ(big.numBuckets(), 8u);

	big.erase(3);
	EXPECT_FALSE(big.contains(3));
	EXPECT_EQ(big.size(), 35u);
}

TEST(Containers, StringHashKeepsTheFileOrderRule)
{
	EXPECT_EQ(stringHash("", 0), 1u);
	EXPECT_EQ(stringHash("a", 1), 98u);
	EXPECT_EQ(stringHash("ab", 2), 98u * 99u);
	EXPECT_EQ(stringHash("x\xFFy", 3), 0u); // byte 255 counts as -1 + 1
	const char high = (char)0x80;         // signed -128, so the factor is -127
	EXPECT_EQ(stringHash(&high, 1), (uint32_t)-127);
}
