#include "c4d/base_select.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

// The ranges of s as "a-b a-b", below maxElements.
std::string rangesOf(const BaseSelect& s, int32_t maxElements = 1000)
{
	std::string text;
	int32_t a = 0, b = 0;
	for(int32_t seg = 0; s.GetRange(seg, maxElements, &a, &b); ++seg)
		text += (text.empty() ? "" : " ") + std::to_string(a) + "-" + std::to_string(b);
	return text;
}

} // namespace

TEST(BaseSelect, RangesMergeAndSplit)
{
	// Each step acts on the selection the steps before left.
	const struct
	{
		const char* step;
		bool select;
		int32_t min, max;
		const char* ranges;
		int32_t count;
	} steps[] = {
		{"one index", true, 5, 5, "5-5", 1},
		{"apart", true, 8, 9, "5-5 8-9", 3},
		{"touching below joins", true, 7, 7, "5-5 7-9", 4},
		{"filling the gap joins all", true, 6, 6, "5-9", 5},
		{"again changes nothing", true, 6, 8, "5-9", 5},
		{"before", true, 0, 2, "0-2 5-9", 8},
		{"over two", true, 1, 12, "0-12", 13},
		{"hole in the middle", false, 4, 6, "0-3 7-12", 10},
		{"past the end", false, 11, 50, "0-3 7-10", 8},
		{"first element", false, 0, 0, "1-3 7-10", 7},
		{"across both", false, 2, 8, "1-1 9-10", 3},
		{"where nothing is", false, 20, 30, "1-1 9-10", 3},
		{"all", false, 0, 100, "", 0},
	};
	BaseSelect s;
	for(const auto& t : steps)
	{
		SCOPED_TRACE(t.step);
		EXPECT_TRUE(t.select ? s.SelectAll(t.min, t.max) : s.DeselectAll(t.min, t.max));
		EXPECT_EQ(rangesOf(s), t.ranges);
		EXPECT_EQ(s.GetCount(), t.count);
	}
}

TEST(BaseSelect, SingleIndices)
{
	BaseSelect s;
	for(int32_t i : {3, 1, 2, 7, 2})
		EXPECT_TRUE(s.Select(i));
	EXPECT_EQ(rangesOf(s), "1-3 7-7");
	EXPECT_TRUE(s.IsSelected(2));
	EXPECT_FALSE(s.IsSelected(4));
	EXPECT_TRUE(s.Deselect(2));
	EXPECT_EQ(rangesOf(s), "1-1 3-3 7-7");
	EXPECT_EQ(s.GetSegments(), 3);
	EXPECT_FALSE(s.Select(-1));
	EXPECT_FALSE(s.SelectAll(5, 4));
	EXPECT_FALSE(s.Deselect(-3));
	EXPECT_EQ(s.GetCount(), 3);
	s.DeselectAll();
	EXPECT_EQ(s.GetCount(), 0);
	EXPECT_FALSE(s.IsSelected(1));
}

TEST(BaseSelect, RangesClipToElementCount)
{
	BaseSelect s;
	s.SelectAll(2, 4);
	s.SelectAll(8, 20);
	EXPECT_EQ(rangesOf(s, 10), "2-4 8-9");
	EXPECT_EQ(rangesOf(s, 8), "2-4");
	EXPECT_EQ(rangesOf(s, 0), "");
	int32_t a = 0, b = 0;
	EXPECT_FALSE(s.GetRange(-1, 100, &a, &b));
	EXPECT_FALSE(s.GetRange(2, 100, &a, &b));
	// The top index does not overflow when ranges touch it.
	s.SelectAll(2147483646, 2147483647);
	s.Select(2147483645);
	EXPECT_EQ(s.GetSegments(), 3);
	EXPECT_TRUE(s.IsSelected(2147483647));
	s.SelectAll(0, 2147483647);
	EXPECT_EQ(s.GetCount(), 2147483647);
}

TEST(BaseSelect, Equality)
{
	BaseSelect a, b;
	a.SelectAll(0, 3);
	b.Select(0);
	EXPECT_NE(a, b);
	b.SelectAll(1, 3);
	EXPECT_EQ(a, b);
}
