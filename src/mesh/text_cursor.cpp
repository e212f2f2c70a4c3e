#include "mesh/text_cursor.h"

#include <double-conversion/double-conversion.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace Velorn
{

namespace
{

using double_conversion::StringToDoubleConverter;

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isTokenEnd(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

const uint64_t MAX_UINT64 = std::numeric_limits<uint64_t>::max();
// The mantissa keeps up to 19 significant digits; any more are dropped and
// the text goes to the exact converter.
const int MAX_MANTISSA_DIGITS = 19;
// Exponents beyond this make the value infinite or zero anyway; capping them
// keeps the arithmetic in range.
const int MAX_EXPONENT = 100000;

const double POWERS_OF_TEN[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
	1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
const float FLOAT_POWERS_OF_TEN[] = {1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f, 1e8f, 1e9f, 1e10f};

// The pieces of a decimal number text: value = mantissa * 10^exponent, and
// whether digits were dropped from the mantissa.
struct Decimal
{
	const char* begin;
	const char* end;
	uint64_t mantissa = 0;
	int exponent = 0;
	bool negative = false;
	bool truncated = false;
};

// Reads digits into the mantissa and returns how many there were. Leading
// zeros count for nothing (in the fraction they shift the exponent); digits
// beyond what the mantissa holds are dropped and remembered. The exponent
// grows by one for each dropped digit of the whole part and shrinks by one
// for each kept digit of the fraction.
template <bool is_fraction>
inline size_t scanDigits(const char*& p, const char* end, Decimal& d, int& significant)
{
	const char* start = p;
	if(d.mantissa == 0)
		for(; p != end && *p == '0'; ++p)
			d.exponent -= is_fraction ? 1 : 0;
	// Digits that still fit the mantissa, without a test per digit.
	const char* kept_start = p;
	const char* kept_end = p + std::min<size_t>((size_t)(end - p), (size_t)(MAX_MANTISSA_DIGITS - significant));
	for(; p != kept_end && isDigit(*p); ++p)
		d.mantissa = d.mantissa * 10 + (unsigned)(*p - '0');
	const int kept = (int)(p - kept_start);
	significant += kept;
	d.exponent -= is_fraction ? kept : 0;
	for(; p != end && isDigit(*p); ++p)
	{
		d.exponent += is_fraction ? 0 : 1;
		d.truncated |= *p != '0';
	}
	return (size_t)(p - start);
}

// An exponent part "e", optional sign, digits; left unread when no digit follows.
void scanExponent(const char*& p, const char* end, Decimal& d)
{
	if(p == end || (*p != 'e' && *p != 'E'))
		return;
	const char* q = p + 1;
	bool negative = false;
	if(q != end && (*q == '+' || *q == '-'))
		negative = *q++ == '-';
	if(q == end || !isDigit(*q))
		return;
	int exponent = 0;
	for(; q != end && isDigit(*q); ++q)
		if(exponent < MAX_EXPONENT)
			exponent = exponent * 10 + (*q - '0');
	d.exponent += negative ? -exponent : exponent;
	p = q;
}

// Scans [sign] digits [. digits] [exponent] with at least one digit.
inline bool scanDecimal(const char*& p, const char* end, Decimal& d)
{
	const char* q = p;
	d.begin = q;
	if(q != end && (*q == '+' || *q == '-'))
		d.negative = *q++ == '-';
	int significant = 0;
	size_t digits = scanDigits<false>(q, end, d, significant);
	if(q != end && *q == '.')
	{
		++q;
		digits += scanDigits<true>(q, end, d, significant);
	}
	if(digits == 0)
		return false;
	scanExponent(q, end, d);
	d.end = q;
	p = q;
	return true;
}

const StringToDoubleConverter& exactConverter()
{
	static const StringToDoubleConverter converter(StringToDoubleConverter::NO_FLAGS, 0.0, 0.0, nullptr, nullptr);
	return converter;
}

int textLength(const Decimal& d) { return (int)std::min<size_t>((size_t)(d.end - d.begin), (size_t)std::numeric_limits<int>::max()); }

// True when the value is mantissa * 10^exponent with both factors exact in
// double, so that one multiplication or division rounds it correctly.
bool fitsDoubleFastPath(const Decimal& d)
{
	return !d.truncated && d.mantissa <= ((uint64_t)1 << 53) && d.exponent >= -22 && d.exponent <= 22;
}

double fastDouble(const Decimal& d)
{
	double value = (double)d.mantissa;
	value = d.exponent < 0 ? value / POWERS_OF_TEN[-d.exponent] : value * POWERS_OF_TEN[d.exponent];
	return d.negative ? -value : value;
}

double toDouble(const Decimal& d)
{
	if(fitsDoubleFastPath(d))
		return fastDouble(d);
	int processed = 0;
	return exactConverter().StringToDouble(d.begin, textLength(d), &processed);
}

// A correctly rounded double is rounded once more to float. That gives the
// correctly rounded float unless the double lies exactly halfway between two
// floats, where the text may be just above or below the middle.
bool roundsToFloatExactly(double value, float& out)
{
	const float f = (float)value;
	out = f;
	if((double)f == value)
		return true;
	const float neighbour = std::nextafter(f, value > f ? std::numeric_limits<float>::infinity() : -std::numeric_limits<float>::infinity());
	return ((double)f + (double)neighbour) * 0.5 != value;
}

float toFloat(const Decimal& d)
{
	if(!d.truncated && d.mantissa <= ((uint64_t)1 << 24) && d.exponent >= -10 && d.exponent <= 10)
	{
		// Both factors are exact floats: one operation rounds correctly.
		float value = (float)d.mantissa;
		value = d.exponent < 0 ? value / FLOAT_POWERS_OF_TEN[-d.exponent] : value * FLOAT_POWERS_OF_TEN[d.exponent];
		return d.negative ? -value : value;
	}
	float value;
	if(fitsDoubleFastPath(d) && roundsToFloatExactly(fastDouble(d), value))
		return value;
	int processed = 0;
	return exactConverter().StringToFloat(d.begin, textLength(d), &processed);
}

template <class T>
bool readNumber(const char*& p, const char* end, T& value, T (*convert)(const Decimal&))
{
	Decimal d;
	if(!scanDecimal(p, end, d))
		return false;
	value = convert(d);
	return true;
}

} // namespace

void TextCursor::skipWhitespace()
{
	while(p != end && isTokenEnd(*p))
		++p;
}

void TextCursor::skipLine()
{
	const void* newline = std::memchr(p, '\n', (size_t)(end - p));
	p = newline ? static_cast<const char*>(newline) + 1 : end;
}

std::string TextCursor::readToken()
{
	const char* start = p;
	while(p != end && !isTokenEnd(*p))
		++p;
	return std::string(start, p);
}

void TextCursor::readLongUInt(uint64_t& value)
{
	for(; p != end && isDigit(*p); ++p)
	{
		const unsigned digit = (unsigned)(*p - '0');
		value = value > (MAX_UINT64 - digit) / 10 ? MAX_UINT64 : value * 10 + digit;
	}
}

bool TextCursor::readInt(int64_t& value)
{
	const char* start = p;
	const bool negative = skipChar('-');
	if(!negative)
		skipChar('+');
	uint64_t magnitude;
	if(!readUInt(magnitude))
	{
		p = start;
		return false;
	}
	const uint64_t limit = negative ? (uint64_t)std::numeric_limits<int64_t>::max() + 1 : (uint64_t)std::numeric_limits<int64_t>::max();
	magnitude = std::min(magnitude, limit);
	value = negative ? (int64_t)(0 - magnitude) : (int64_t)magnitude;
	return true;
}

bool TextCursor::readFloat(float& value) { return readNumber(p, end, value, toFloat); }

bool TextCursor::readDouble(double& value) { return readNumber(p, end, value, toDouble); }

} // namespace Velorn
