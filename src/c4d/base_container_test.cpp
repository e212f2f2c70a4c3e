#include "c4d/base_container.h"
#include "c4d/base_object.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

// A container that holds one value of every kind, by id: 1 long, 2 real,
// 3 vector, 4 string, 5 filename, 6 time, 7 container, 8 link.
BaseContainer everyKind(BaseList2D* node)
{
	BaseContainer inner(99);
	inner.SetInt32(1, 5);
	BaseContainer bc(7);
	bc.SetInt32(1, 42);
	bc.SetFloat(2, 0.25);
	bc.SetVector(3, Vector(1, 2, 3));
	bc.SetString(4, "text");
	bc.SetFilename(5, Filename("/tmp/a.vls"));
	bc.SetTime(6, BaseTime(3, 25));
	bc.SetContainer(7, inner);
	bc.SetLink(8, node);
	return bc;
}

std::vector<int32_t> idsOf(const BaseContainer& bc)
{
	std::vector<int32_t> ids;
	for(const auto& entry : bc)
		ids.push_back(entry.first);
	return ids;
}

} // namespace

TEST(BaseContainer, TypedGettersGiveTheDefaultForOtherTypes)
{
	BaseList2D node(Onull), preset(Onull);
	const BaseContainer bc = everyKind(&node);
	const Vector vectorPreset(9, 9, 9);
	const Filename filenamePreset("preset");
	const BaseTime timePreset(1, 2);
	BaseList2D* linkPreset = &preset;
	const struct
	{
		int32_t id;
		int32_t type;
	} stored[] = {{1, DA_LONG}, {2, DA_REAL}, {3, DA_VECTOR}, {4, DA_STRING}, {5, DA_FILENAME},
		{6, DA_TIME}, {7, DA_CONTAINER}, {8, DA_ALIASLINK}, {100, DA_NIL}};
	for(const auto& t : stored)
	{
		SCOPED_TRACE(t.id);
		EXPECT_EQ(bc.GetData(t.id).GetType(), t.type);
		// Each getter gives the stored value for its own id only; numbers
		// convert between long and real (0.25 truncates to 0).
		EXPECT_EQ(bc.GetInt32(t.id, -1), t.id == 1 ? 42 : t.id == 2 ? 0 : -1);
		EXPECT_EQ(bc.GetBool(t.id, false), t.id == 1);
		EXPECT_EQ(bc.GetFloat(t.id, -1.5), t.id == 2 ? 0.25 : t.id == 1 ? 42.0 : -1.5);
		EXPECT_EQ(bc.GetVector(t.id, vectorPreset), t.id == 3 ? Vector(1, 2, 3) : vectorPreset);
		EXPECT_EQ(bc.GetString(t.id, "preset"), String(t.id == 4 ? "text" : "preset"));
		EXPECT_EQ(bc.GetFilename(t.id, filenamePreset), t.id == 5 ? Filename("/tmp/a.vls") : filenamePreset);
		EXPECT_EQ(bc.GetTime(t.id, timePreset), t.id == 6 ? BaseTime(3, 25) : timePreset);
		EXPECT_EQ(bc.GetContainer(t.id).GetInt32(1), t.id == 7 ? 5 : 0);
		EXPECT_EQ(bc.GetLink(t.id, linkPreset), t.id == 8 ? &node : linkPreset);
		EXPECT_EQ(bc.GetDataPointer(t.id) != nullptr, t.id != 100);
	}
	EXPECT_EQ(bc.GetContainer(7).GetId(), 99);
}

TEST(BaseContainer, BoolsAreLongs)
{
	BaseContainer bc;
	bc.SetBool(1, true);
	bc.SetBool(2, false);
	EXPECT_EQ(bc.GetData(1).GetType(), DA_LONG);
	EXPECT_EQ(bc.GetInt32(1), 1);
	EXPECT_FALSE(bc.GetBool(2, true));
}

TEST(BaseContainer, InsertionOrder)
{
	BaseContainer bc;
	for(int32_t id : {30, 10, 20})
		bc.SetInt32(id, id);
	EXPECT_EQ(idsOf(bc), (std::vector<int32_t>{30, 10, 20}));
	// Setting again, even with another type, keeps the place.
	bc.SetString(10, "ten");
	EXPECT_EQ(idsOf(bc), (std::vector<int32_t>{30, 10, 20}));
	EXPECT_EQ(bc.GetString(10), String("ten"));
	EXPECT_TRUE(bc.RemoveData(30));
	EXPECT_FALSE(bc.RemoveData(30));
	bc.SetInt32(30, 3);
	EXPECT_EQ(idsOf(bc), (std::vector<int32_t>{10, 20, 30}));
	EXPECT_EQ(bc.GetCount(), 3);
	bc.FlushAll();
	EXPECT_EQ(bc.GetCount(), 0);
}

TEST(BaseContainer, CopiesAndEquality)
{
	const BaseContainer original = everyKind(nullptr);
	BaseContainer copy(3);
	copy.SetInt32(500, 1);
	original.CopyTo(&copy);
	EXPECT_EQ(copy, original);
	EXPECT_EQ(copy.GetId(), 7);
	EXPECT_EQ(copy.GetDataPointer(500), nullptr);

	// Order does not matter; id, keys, types and values do.
	BaseContainer a, b;
	a.SetInt32(1, 1);
	a.SetFloat(2, 1);
	b.SetFloat(2, 1);
	b.SetInt32(1, 1);
	EXPECT_EQ(a, b);
	b.SetId(5);
	EXPECT_NE(a, b);
	b.SetId(0);
	b.SetFloat(1, 1);
	EXPECT_NE(a, b);

	// A nested container is a value: changing the source later changes nothing.
	BaseContainer inner;
	inner.SetInt32(1, 1);
	BaseContainer outer;
	outer.SetContainer(9, inner);
	inner.SetInt32(1, 2);
	EXPECT_EQ(outer.GetContainer(9).GetInt32(1), 1);
	BaseContainer same;
	same.SetContainer(9, inner);
	EXPECT_NE(outer, same);
	inner.SetInt32(1, 1);
	same.SetContainer(9, inner);
	EXPECT_EQ(outer, same);
}

TEST(BaseContainer, RepeatedIdsAndInsertingBehindAnEntry)
{
	BaseContainer bc;
	GeData* a = bc.InsData(3, "a");
	bc.InsData(3, "b");
	bc.InsData(4, "t");
	GeData* c = bc.InsDataAfter(3, "c", a);
	bc.InsDataAfter(5, 1, bc.GetIndexData(3)); // behind the last: at the end
	bc.InsDataAfter(6, 2, nullptr);
	BaseContainer other;
	bc.InsDataAfter(7, 3, other.InsData(3, "x")); // not an entry of bc: at the end
	EXPECT_EQ(idsOf(bc), (std::vector<int32_t>{3, 3, 3, 4, 5, 6, 7}));
	const char* texts[] = {"a", "c", "b", "t"};
	for(int32_t i = 0; i < 4; ++i)
		EXPECT_EQ(bc.GetIndexData(i)->GetString(), String(texts[i])) << i;
	// Inserting moved nothing.
	EXPECT_EQ(bc.GetIndexData(0), a);
	EXPECT_EQ(bc.GetIndexData(1), c);
	EXPECT_EQ(bc.GetIndexId(6), 7);
	EXPECT_EQ(bc.GetIndexId(7), -1);
	EXPECT_EQ(bc.GetIndexId(-1), -1);
	EXPECT_EQ(bc.GetIndexData(7), nullptr);
	EXPECT_EQ(static_cast<const BaseContainer&>(bc).GetIndexData(-1), nullptr);

	// Everything by id takes the first entry of the id.
	EXPECT_EQ(bc.GetString(3), String("a"));
	bc.SetString(3, "A");
	EXPECT_EQ(bc.GetIndexData(0)->GetString(), String("A"));
	EXPECT_EQ(bc.GetIndexData(1)->GetString(), String("c"));
	EXPECT_TRUE(bc.RemoveData(3));
	EXPECT_EQ(bc.GetString(3), String("c"));
	EXPECT_EQ(bc.GetCount(), 6);

	// An entry put in front of an id's first entry becomes its first, in
	// copies too.
	BaseContainer front;
	GeData* t = front.InsData(4, "t");
	front.InsData(3, "a");
	front.InsDataAfter(3, "z", t);
	EXPECT_EQ(front.GetString(3), String("z"));
	const BaseContainer copy = front;
	EXPECT_EQ(copy.GetString(3), String("z"));
}

TEST(BaseContainer, EqualityComparesTheEntriesOfAnIdInOrder)
{
	const auto make = [](std::vector<std::pair<int32_t, const char*>> entries) {
		BaseContainer bc;
		for(const auto& e : entries)
			bc.InsData(e.first, e.second);
		return bc;
	};
	EXPECT_NE(make({{3, "a"}, {3, "a"}}), make({{3, "a"}, {3, "b"}}));
	EXPECT_NE(make({{3, "a"}, {3, "b"}}), make({{3, "a"}, {3, "a"}}));
	EXPECT_NE(make({{3, "a"}, {3, "b"}}), make({{3, "b"}, {3, "a"}}));
	EXPECT_NE(make({{3, "a"}, {3, "b"}}), make({{3, "a"}, {4, "b"}}));
	EXPECT_EQ(make({{3, "a"}, {4, "t"}, {3, "b"}}), make({{4, "t"}, {3, "a"}, {3, "b"}}));
}

TEST(BaseContainer, ContainerInstancesChangeTheStoredContainerOnly)
{
	BaseContainer inner;
	inner.SetInt32(1, 1);
	BaseContainer outer;
	outer.SetContainer(9, inner);
	outer.SetInt32(8, 1);
	const BaseContainer before = outer;

	BaseContainer* instance = outer.GetContainerInstance(9);
	ASSERT_NE(instance, nullptr);
	instance->SetInt32(1, 2);
	EXPECT_EQ(outer.GetContainer(9).GetInt32(1), 2);
	EXPECT_EQ(before.GetContainer(9).GetInt32(1), 1);
	EXPECT_EQ(inner.GetInt32(1), 1);
	// Once it is this container's own, asking again gives the same one.
	EXPECT_EQ(outer.GetContainerInstance(9), instance);
	EXPECT_EQ(outer.GetIndexData(0)->GetContainerInstance(), instance);
	EXPECT_EQ(outer.GetContainerInstance(8), nullptr);
	EXPECT_EQ(outer.GetContainerInstance(7), nullptr);
}

TEST(GeData, Values)
{
	EXPECT_EQ(GeData().GetType(), DA_NIL);
	EXPECT_EQ(GeData(3).GetFloat(), 3.0);
	EXPECT_EQ(GeData(1800.0).GetInt32(), 1800);
	EXPECT_EQ(GeData(-2.75).GetInt32(), -2);
	EXPECT_EQ(GeData("s").GetType(), DA_STRING);
	EXPECT_NE(GeData(3), GeData(3.0));
	EXPECT_NE(GeData(), GeData(0));
	EXPECT_EQ(GeData(), GeData());
	EXPECT_EQ(GeData(3).GetContainer(), nullptr);
	EXPECT_NE(GeData(BaseContainer()), GeData());
}
