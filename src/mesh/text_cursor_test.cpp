#include "mesh/text_cursor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

using namespace Velorn;

namespace
{

// Reads one number from the whole of text; fails the test when the cursor
// does not take it all.
template <class T>
T numberOf(const std::string& text, bool (TextCursor::*read)(T&))
{
	TextCursor cursor(text.data(), text.data() + text.size());
	T value = -12345;
	EXPECT_TRUE((cursor.*read)(value)) << text;
	EXPECT_TRUE(cursor.atEnd()) << text;
	return value;
}

uint32_t bitsOf(float f)
{
	uint32_t bits;
	std::memcpy(&bits, &f, sizeof(bits));
	return bits;
}

// The C library's strtof and strtod round correctly in the "C" locale that
// tests run in; they are the reference for every text here.
void expectSameAsCLibrary(const std::string& text)
{
	SCOPED_TRACE(text);
	EXPECT_EQ(bitsOf(numberOf(text, &TextCursor::readFloat)), bitsOf(std::strtof(text.c_str(), nullptr)));
	const double expected = std::strtod(text.c_str(), nullptr);
	const double actual = numberOf(text, &TextCursor::readDouble);
	EXPECT_EQ(std::memcmp(&actual, &expected, sizeof(double)), 0) << actual << " against " << expected;
}

// Reads one number from the start of text; checks the outcome and where
// the cursor stops.
template <class T>
void expectNumber(const char* text, bool (TextCursor::*read)(T&), bool ok, T expected, const char* rest)
{
	SCOPED_TRACE(text);
	TextCursor cursor(text, text + std::strlen(text));
	T value = 0;
	EXPECT_EQ((cursor.*read)(value), ok);
	if(ok)
	{
		EXPECT_EQ(value, expected);
	}
	EXPECT_STREQ(cursor.position(), rest);
}

} // namespace

TEST(TextCursor, FloatsRoundCorrectly)
{
	const char* texts[] = {"0", "-0", "+1", "1.", ".5", "-.5e-3", "0.1", "3.14159265358979323846", "1e10", "1E2",
		"2.e1", "123.456789", "-12.345678", "0.000001", "16777217", "16777216.5",
		// Exactly halfway between two floats, or just above or below: the
		// cases where rounding through double goes wrong.
		"1.00000005960464477539062500", "1.000000059604644775390625000000000001", "1.0000000596046447753906249",
		"33554435", "33554433", "9007199254740993", "0.500000014901161193847656250",
		// Long texts, extreme exponents, subnormals, overflow.
		"0.30000000000000000000000000000000000000000000000001", "12345678901234567890123", "1e38", "3.4028235e38",
		"3.4028236e38", "1e39", "1e-38", "1.4e-45", "7e-46", "1e-50", "1e400", "-1e400", "1e-400", "0e999999999999",
		"000000000000000000000000000123.5", "4.9406564584124654e-324", "2.2250738585072011e-308"};
	for(const char* text : texts)
		expectSameAsCLibrary(text);
}

TEST(TextCursor, RandomFloatTextsRoundLikeTheCLibrary)
{
	std::mt19937_64 random(20240611);
	std::uniform_int_distribution<int> digit_count(1, 20);
	std::uniform_int_distribution<int> digit(0, 9);
	std::uniform_int_distribution<int> exponent(-50, 40);
	for(int i = 0; i < 200000; ++i)
	{
		std::string text = (i % 2) ? "-" : "";
		const int whole = digit_count(random) % 8;
		for(int d = 0; d < whole; ++d)
			text += (char)('0' + digit(random));
		text += '.';
		const int fraction = digit_count(random);
		for(int d = 0; d < fraction; ++d)
			text += (char)('0' + digit(random));
		if(i % 3 == 0)
			text += "e" + std::to_string(exponent(random));
		expectSameAsCLibrary(text);
		if(HasFailure())
			return;
	}
}

TEST(TextCursor, NumberTextEndsWhereTheSyntaxEnds)
{
	struct Case
	{
		const char* text;
		bool ok;
		float value;
		const char* rest;
	};
	const Case cases[] = {
		{"1e", true, 1, "e"},
		{"1e+", true, 1, "e+"},
		{"3.1+e2", true, 3.1f, "+e2"},
		{"2.5/3", true, 2.5f, "/3"},
		{"-", false, 0, "-"},
		{".", false, 0, "."},
		{"+.e5", false, 0, "+.e5"},
		{"nan", false, 0, "nan"},
		{"inf", false, 0, "inf"},
		{"", false, 0, ""},
		{" 1", false, 0, " 1"},
	};
	for(const Case& c : cases)
		expectNumber(c.text, &TextCursor::readFloat, c.ok, c.value, c.rest);
}

TEST(TextCursor, IntegersSaturate)
{
	struct Case
	{
		const char* text;
		bool ok;
		int64_t value;
		const char* rest;
	};
	const Case cases[] = {{"0", true, 0, ""}, {"-17 ", true, -17, " "}, {"+17", true, 17, ""},
		{"9223372036854775807", true, INT64_MAX, ""}, {"9223372036854775808", true, INT64_MAX, ""},
		{"-9223372036854775808", true, INT64_MIN, ""}, {"-99999999999999999999999x", true, INT64_MIN, "x"},
		{"-", false, 0, "-"}, {"+x", false, 0, "+x"}, {"x", false, 0, "x"}};
	for(const Case& c : cases)
		expectNumber(c.text, &TextCursor::readInt, c.ok, c.value, c.rest);

	const std::string huge = "123456789012345678901234567890";
	TextCursor cursor(huge.data(), huge.data() + huge.size());
	uint64_t value = 0;
	EXPECT_TRUE(cursor.readUInt(value));
	EXPECT_EQ(value, std::numeric_limits<uint64_t>::max());
}

TEST(TextCursor, LinesTokensAndBlanks)
{
	const std::string text = " \tusemtl  red green\r\nv\tx\n\nlast";
	TextCursor cursor(text.data(), text.data() + text.size());
	cursor.skipBlanks();
	EXPECT_FALSE(cursor.skipToken("use", 3)); // a prefix is not the token
	EXPECT_TRUE(cursor.skipToken("usemtl", 6));
	cursor.skipBlanks();
	EXPECT_EQ(cursor.readToken(), "red");
	cursor.skipBlanks();
	EXPECT_EQ(cursor.readToken(), "green");
	EXPECT_TRUE(cursor.atLineEnd());
	EXPECT_EQ(cursor.readToken(), "");
	cursor.skipLine();
	EXPECT_TRUE(cursor.skipToken("v", 1));
	EXPECT_TRUE(cursor.skipChar('\t'));
	EXPECT_FALSE(cursor.skipChar('y'));
	cursor.skipLine();
	EXPECT_TRUE(cursor.atLineEnd());
	cursor.skipWhitespace();
	EXPECT_TRUE(cursor.skipText("la", 2));
	EXPECT_FALSE(cursor.skipText("stx", 3));
	cursor.skipLine();
	EXPECT_TRUE(cursor.atEnd());
	EXPECT_TRUE(cursor.atTokenEnd());
}
