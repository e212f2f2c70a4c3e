#include "c4d/base_time.h"

#include <gtest/gtest.h>

TEST(BaseTime, FramesAndSeconds)
{
	const struct
	{
		BaseTime time;
		double fps;
		double seconds;
		int32_t frame;
	} cases[] = {
		{BaseTime(), 25, 0, 0},
		{BaseTime(12, 25), 25, 0.48, 12},
		{BaseTime(12, 25), 30, 0.48, 14}, // 14.4 frames at 30 per second
		{BaseTime(1.5), 24, 1.5, 36},
		{BaseTime(-1, 25), 25, -0.04, -1},
		{BaseTime(-1, 50), 25, -0.02, -1}, // floor, not truncation
		{BaseTime(299, 300), 30, 299.0 / 300, 29},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.time.Get());
		EXPECT_DOUBLE_EQ(t.time.Get(), t.seconds);
		EXPECT_EQ(t.time.GetFrame(t.fps), t.frame);
	}
}

TEST(BaseTime, ComparesByValue)
{
	EXPECT_EQ(BaseTime(1, 25), BaseTime(2, 50));
	EXPECT_NE(BaseTime(1, 25), BaseTime(1, 24));
	EXPECT_LT(BaseTime(1, 25), BaseTime(1, 24));
	EXPECT_FALSE(BaseTime(2, 50) < BaseTime(1, 25));
	// Kept as given, not reduced: documents write both.
	EXPECT_EQ(BaseTime(2, 50).GetNumerator(), 2);
	EXPECT_EQ(BaseTime(2, 50).GetDenominator(), 50);
}
