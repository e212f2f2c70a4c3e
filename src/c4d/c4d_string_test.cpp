#include "c4d/c4d_string.h"

#include "support/decimal_comma_locale.h"

#include <gtest/gtest.h>

#include <clocale>

TEST(String, CharactersNotBytes)
{
	const String s("Grüße, 東京"); // 9 characters in 15 bytes
	EXPECT_EQ(s.GetLength(), 9);
	EXPECT_EQ(s.SubStr(2, 3), String("üße"));
	EXPECT_EQ(s.SubStr(7, 100), String("東京"));
	EXPECT_EQ(s.SubStr(20, 1), String());
	EXPECT_EQ(s.SubStr(-1, 3), String());
	int32_t pos = -1;
	EXPECT_TRUE(s.FindFirst("京", &pos));
	EXPECT_EQ(pos, 8);
	EXPECT_TRUE(s.FindFirst("e", &pos, 1));
	EXPECT_EQ(pos, 4);
	EXPECT_FALSE(s.FindFirst("e", &pos, 5));
	EXPECT_FALSE(s.FindFirst("x", &pos));
	EXPECT_EQ(pos, 4); // untouched on failure
}

TEST(String, Operations)
{
	String s = String("scene") + "_frame" + String::IntToString(-12);
	s += ".vls";
	EXPECT_EQ(s, String("scene_frame-12.vls"));
	EXPECT_TRUE(s.Content());
	EXPECT_FALSE(String().Content());
	EXPECT_FALSE(String(nullptr).Content());
	EXPECT_EQ(String::FloatToString(0.1).GetStdString(), "0.1");
}

TEST(String, Numbers)
{
	const struct
	{
		const char* text;
		bool longOk;
		int32_t longValue;
		bool realOk;
		double realValue;
	} cases[] = {
		{"42", true, 42, true, 42},
		{"-7", true, -7, true, -7},
		{"1.5", false, 0, true, 1.5},
		{"1,5", false, 0, false, 0},
		{"-2.5e-3", false, 0, true, -2.5e-3},
		{"2147483647", true, 2147483647, true, 2147483647.0},
		{"2147483648", false, 0, true, 2147483648.0},
		{"-2147483648", true, -2147483647 - 1, true, -2147483648.0},
		{"12abc", false, 0, false, 0},
		{"", false, 0, false, 0},
		{"NaN", false, 0, false, 0},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.text);
		bool error = t.longOk; // the opposite of what must come out
		EXPECT_EQ(String(t.text).ToLong(&error), t.longValue);
		EXPECT_EQ(error, !t.longOk);
		error = t.realOk;
		EXPECT_EQ(String(t.text).ToReal(&error), t.realValue);
		EXPECT_EQ(error, !t.realOk);
	}
	EXPECT_EQ(String("3").ToLong(), 3);
}

TEST(String, NumbersIgnoreTheLocale)
{
	// A locale with a decimal comma must change nothing.
	const std::string saved = std::setlocale(LC_ALL, nullptr);
	if(!VelornTest::useDecimalCommaLocale())
		GTEST_SKIP() << "no locale with a decimal comma is installed";
	const double real = String("1.5").ToReal();
	const String text = String::FloatToString(1.5);
	std::setlocale(LC_ALL, saved.c_str());
	EXPECT_EQ(real, 1.5);
	EXPECT_EQ(text.GetStdString(), "1.5");
}
