#include "shaders/shader_number.h"

#include "support/decimal_comma_locale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <limits>
#include <string>

TEST(ShaderNumber, FixedFiveDecimalsWhateverTheLocale)
{
	// By hand: five decimals of the exact binary value, rounded to the
	// nearest, an exact tie to the even digit.
	const std::pair<double, const char*> cases[] = {{1.0, "1.00000"}, {-0.25, "-0.25000"}, {0.123456, "0.12346"},
		{0.123454, "0.12345"}, {-9.999996, "-10.00000"}, {0.015625, "0.01562"}, {-1e-7, "-0.00000"},
		{1e20, "100000000000000000000.00000"}};
	const std::string saved = std::setlocale(LC_ALL, nullptr);
	for(const bool comma : {false, true})
	{
		SCOPED_TRACE(comma ? "decimal comma" : "C");
		if(comma)
			ASSERT_NE(VelornTest::useDecimalCommaLocale(), nullptr) << "scripts/install-deps makes de_DE.UTF-8";
		else
			ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
		for(const auto& [value, text] : cases)
			EXPECT_EQ(shaderNumberText(value), text);
		// Near-ties at the fifth decimal and the largest double (309 digits)
		// against the C library's text, its decimal comma made a point.
		for(double value : {5e-6, 4.999999e-6, 123.456785, 1e15 / 3, std::numeric_limits<double>::max()})
		{
			char buffer[400];
			std::snprintf(buffer, sizeof(buffer), "%.5f", value);
			std::string expected = buffer;
			std::replace(expected.begin(), expected.end(), ',', '.');
			EXPECT_EQ(shaderNumberText(value), expected) << value;
		}
	}
	// The comma was in force.
	char comma[32];
	std::snprintf(comma, sizeof(comma), "%.5f", 1.5);
	EXPECT_STREQ(comma, "1,50000");
	std::setlocale(LC_ALL, saved.c_str());
}
