#include "support/string_utils.h"

#include "support/exceptions.h"
#include "support/failures.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <limits>

using namespace Velorn;


TEST(StringUtils, TextToNumbersIgnoresTheLocale)
{
	// A locale with a decimal comma must change nothing. The C library's
	// own reading shows that the locale is in force.
	const char* old = std::setlocale(LC_ALL, nullptr);
	const std::string saved = old ? old : "C";
#ifdef _WIN32
	// The C runtime of Windows names its locales by language and country.
	ASSERT_NE(std::setlocale(LC_ALL, "German_Germany.1252"), nullptr);
#else
	ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr) << "scripts/install-deps makes this locale";
#endif
	EXPECT_EQ(std::strtod("1,5", nullptr), 1.5);
	EXPECT_EQ(stringToDouble("1.5"), 1.5);
	EXPECT_EQ(stringToFloat("1.5"), 1.5f);
	EXPECT_EQ(sceneNumberText(1.5), "1.5");
	std::setlocale(LC_ALL, saved.c_str());

	EXPECT_EQ(VelornTest::failureOf([] { stringToDouble("1,5"); }), "Failed to convert '1,5' to a double.");
	EXPECT_EQ(VelornTest::failureOf([] { stringToFloat(""); }), "Failed to convert '' to a float.");
	EXPECT_EQ(VelornTest::failureOf([] { stringToFloat("NaN"); }), "Failed to convert 'NaN' to a float.");
	EXPECT_EQ(VelornTest::failureOf([] { stringToDouble("2x"); }), "Failed to convert '2x' to a double.");
	EXPECT_EQ(stringToDouble("-1e-7"), -1e-7);
}

TEST(StringUtils, Integers)
{
	EXPECT_EQ(stringToInt("12abc"), 12);
	EXPECT_EQ(stringToInt("-42"), -42);
	EXPECT_EQ(VelornTest::failureOf([] { stringToInt(""); }), "Failed to convert '' to an int.");
	EXPECT_EQ(VelornTest::failureOf([] { stringToInt("abc"); }), "Failed to convert 'abc' to an int.");

	EXPECT_EQ(stringToUInt64(""), 0u);
	EXPECT_EQ(stringToUInt64("18446744073709551615"), std::numeric_limits<uint64_t>::max());
	EXPECT_EQ(stringToUInt64("000000000000000000000000042"), 42u);
	EXPECT_EQ(VelornTest::failureOf([] { stringToUInt64("18446744073709551616"); }),
		"Failed to convert '18446744073709551616' to an uint64: Value is too large.");
	EXPECT_EQ(VelornTest::failureOf([] { stringToUInt64("100000000000000000000"); }),
		"Failed to convert '100000000000000000000' to an uint64: Value is too large.");
	EXPECT_EQ(VelornTest::failureOf([] { stringToUInt64("12a4"); }),
		"Failed to convert '12a4' to an uint64: Invalid character 'a'.");

	EXPECT_EQ(toString((int32_t)-2147483647 - 1), "-2147483648");
	EXPECT_EQ(toString((int32_t)0), "0");
	EXPECT_EQ(toString((int64_t)std::numeric_limits<int64_t>::min()), "-9223372036854775808");
	EXPECT_EQ(toString((uint32_t)4294967295u), "4294967295");
	EXPECT_EQ(toString(std::numeric_limits<uint64_t>::max()), "18446744073709551615");
	EXPECT_EQ(toString(true), "true");
	EXPECT_EQ(toString(false), "false");
}

TEST(StringUtils, Hex)
{
	EXPECT_EQ(hexStringToUInt32("0x"), 0u);
	EXPECT_EQ(hexStringToUInt32("0x1"), 1u);
	EXPECT_EQ(hexStringToUInt32("0xFFffFFff"), 0xFFFFFFFFu);
	EXPECT_EQ(hexStringToUInt32("0x123456789"), 0u); // eleven characters
	EXPECT_EQ(hexStringToUInt32("1x10"), 0u);
	EXPECT_EQ(hexStringToUInt32("0x1g"), 0u);
	EXPECT_EQ(toHexString(0), "0");
	EXPECT_EQ(toHexString(0x1a2bu), "1a2b");

	EXPECT_EQ(hexStringToBytes("00ff7A"), (std::vector<unsigned char>{0x00, 0xff, 0x7a}));
	EXPECT_EQ(hexStringToBytes("zz1q"), (std::vector<unsigned char>{0x00, 0x10}));
	EXPECT_EQ(VelornTest::failureOf([] { hexStringToBytes("abc"); }),
		"Hex string must have an even number of hex chars.");
}

TEST(StringUtils, NumberTexts)
{
	// The scene form: plain zero, no '+' in exponents, Inf and NaN words.
	EXPECT_EQ(sceneNumberText(0.0), "0");
	EXPECT_EQ(sceneNumberText(-0.0), "0");
	EXPECT_EQ(sceneNumberText(0.5), "0.5");
	EXPECT_EQ(sceneNumberText(1.0), "1");
	EXPECT_EQ(sceneNumberText(1e-7), "1e-7");
	EXPECT_EQ(sceneNumberText(0.000001), "0.000001");
	EXPECT_EQ(sceneNumberText(1e21), "1e21");
	EXPECT_EQ(sceneNumberText(123456789012345678901.0), "123456789012345680000");
	EXPECT_EQ(sceneNumberText((double)0.3f), "0.30000001192092896");
	EXPECT_EQ(sceneNumberText(0.3f), "0.3");
	EXPECT_EQ(sceneNumberText(std::numeric_limits<double>::infinity()), "Inf");
	EXPECT_EQ(sceneNumberText(-std::numeric_limits<double>::infinity()), "-Inf");
	EXPECT_EQ(sceneNumberText(std::numeric_limits<double>::quiet_NaN()), "NaN");

	// The general form follows the ECMAScript converter.
	EXPECT_EQ(doubleToString(1e21), "1e+21");
	EXPECT_EQ(doubleToString(-0.0), "0");
	EXPECT_EQ(doubleToString(std::numeric_limits<double>::infinity()), "Infinity");
	EXPECT_EQ(floatToString(0.1f), "0.1");
}

TEST(StringUtils, BytesAndPaths)
{
	EXPECT_EQ(toLowerCase("AbC\xC3\x84z"), "abc\xC3\x84z");
	EXPECT_TRUE(hasExtension("model.OBJ", "obj"));
	EXPECT_TRUE(hasExtension("a.b.VlMesh", "VLMESH"));
	EXPECT_FALSE(hasExtension("obj", "obj"));
	EXPECT_FALSE(hasExtension("a.objx", "obj"));
	EXPECT_FALSE(hasExtension("aobj", "obj"));

	const std::string utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
	const std::u16string utf16 = UTF8ToUTF16(utf8);
	EXPECT_EQ(utf16, (std::u16string{u'a', 0x00E9, 0x20AC, 0xD83D, 0xDE00}));
	EXPECT_EQ(UTF16ToUTF8(utf16), utf8);
	// Broken sequences become the replacement character instead of failing.
	EXPECT_EQ(UTF8ToUTF16("\xC3"), (std::u16string{0xFFFD}));
	EXPECT_EQ(UTF8ToUTF16("\xE2\x82x"), (std::u16string{0xFFFD, u'x'}));
	EXPECT_EQ(UTF16ToUTF8(std::u16string{0xD800}), "\xEF\xBF\xBD");
}

// Each prefix reader against its cases: whether it reads a number, and if
// so the number and how far it went.
template <class T>
struct PrefixCase
{
	const char* text;
	bool ok;
	T value;
	size_t consumed;
};

template <class T, size_t N, class Parse>
void expectPrefixes(const PrefixCase<T> (&cases)[N], Parse parse)
{
	for(const PrefixCase<T>& c : cases)
	{
		SCOPED_TRACE(c.text);
		T value = 0;
		size_t consumed = 0;
		ASSERT_EQ(parse(c.text, std::strlen(c.text), value, consumed), c.ok);
		if(c.ok)
		{
			EXPECT_EQ(value, c.value);
			EXPECT_EQ(consumed, c.consumed);
		}
	}
}

// The prefix forms report how far the number went, for readers that go on.
TEST(StringUtils, NumberPrefixes)
{
	const PrefixCase<double> doubles[] = {
		{"3.5x", true, 3.5, 3},
		{"-1e-7 2", true, -1e-7, 5},
		{"1,5", true, 1, 1},
		{"1e", true, 1, 1},
		{"", false, 0, 0},
		{" 1", false, 0, 0},
		{"NaN", false, 0, 0},
		{"x1", false, 0, 0},
	};
	expectPrefixes(doubles, parseDoublePrefix);
	// The length bounds the reading: "12" of "123".
	double value = 0;
	size_t consumed = 0;
	ASSERT_TRUE(parseDoublePrefix("123", 2, value, consumed));
	EXPECT_EQ(value, 12);

	const PrefixCase<int64_t> ints[] = {
		{"12abc", true, 12, 2},
		{"-42 ", true, -42, 3},
		{"+7", true, 7, 2},
		{"9223372036854775807", true, std::numeric_limits<int64_t>::max(), 19},
		{"-9223372036854775808", true, std::numeric_limits<int64_t>::min(), 20},
		{"9223372036854775808", false, 0, 0},
		{"-9223372036854775809", false, 0, 0},
		{"-", false, 0, 0},
		{"", false, 0, 0},
		{" 1", false, 0, 0},
	};
	expectPrefixes(ints, parseInt64Prefix);
}
