#include "support/string_utils.h"

#include "support/exceptions.h"

#include <double-conversion/double-conversion.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <limits>

namespace Velorn
{

using double_conversion::DoubleToStringConverter;
using double_conversion::StringBuilder;
using double_conversion::StringToDoubleConverter;

namespace
{

const StringToDoubleConverter& textToNumberConverter()
{
	// Empty text and junk both give NaN, which is what the callers test for.
	static const StringToDoubleConverter converter(StringToDoubleConverter::NO_FLAGS,
		std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN(), nullptr, nullptr);
	return converter;
}

// As above, but the number may be followed by anything.
const StringToDoubleConverter& prefixConverter()
{
	static const StringToDoubleConverter converter(StringToDoubleConverter::ALLOW_TRAILING_JUNK,
		std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN(), nullptr, nullptr);
	return converter;
}

// The scene file converter: no flags, "Inf", "NaN", decimal notation from
// 1e-6 up to below 1e21.
const DoubleToStringConverter& sceneConverter()
{
	static const DoubleToStringConverter converter(DoubleToStringConverter::NO_FLAGS, "Inf", "NaN", 'e', -6, 21, 0, 0);
	return converter;
}

int hexDigitValue(char c)
{
	if(c >= '0' && c <= '9')
		return c - '0';
	if(c >= 'a' && c <= 'f')
		return c - 'a' + 10;
	if(c >= 'A' && c <= 'F')
		return c - 'A' + 10;
	return -1;
}

} // namespace

float stringToFloat(const std::string& s)
{
	int processed = 0;
	const float f = textToNumberConverter().StringToFloat(s.data(), (int)s.size(), &processed);
	if(f != f)
		throw VelornException("Failed to convert '" + s + "' to a float.");
	return f;
}

double stringToDouble(const std::string& s)
{
	int processed = 0;
	const double d = textToNumberConverter().StringToDouble(s.data(), (int)s.size(), &processed);
	if(d != d)
		throw VelornException("Failed to convert '" + s + "' to a double.");
	return d;
}

int stringToInt(const std::string& s)
{
	const char* start = s.c_str();
	char* end = nullptr;
	const long value = std::strtol(start, &end, 10);
	if(end == start)
		throw VelornException("Failed to convert '" + s + "' to an int.");
	return (int)value;
}

uint64_t stringToUInt64(const std::string& s)
{
	const uint64_t max = std::numeric_limits<uint64_t>::max();
	uint64_t sum = 0;
	uint64_t place = 1;
	bool place_too_large = false; // the place value itself has passed 2^64
	for(size_t i = s.size(); i-- > 0;)
	{
		const char c = s[i];
		if(c < '0' || c > '9')
			throw VelornException("Failed to convert '" + s + "' to an uint64: Invalid character '" + std::string(1, c) + "'.");
		const uint64_t digit = (uint64_t)(c - '0');
		if(digit != 0 && (place_too_large || place > max / digit))
			throw VelornException("Failed to convert '" + s + "' to an uint64: Value is too large.");
		const uint64_t term = digit * place;
		if(sum > max - term)
			throw VelornException("Failed to convert '" + s + "' to an uint64: Value is too large.");
		sum += term;
		if(place > max / 10)
			place_too_large = true;
		else
			place *= 10;
	}
	return sum;
}

bool parseDoublePrefix(const char* text, size_t length, double& value, size_t& consumed)
{
	// The converter counts in int; a number never needs more than that.
	const int limited = (int)std::min<size_t>(length, (size_t)std::numeric_limits<int>::max());
	int processed = 0;
	value = prefixConverter().StringToDouble(text, limited, &processed);
	consumed = (size_t)processed;
	return processed > 0;
}

bool parseInt64Prefix(const char* text, size_t length, int64_t& value, size_t& consumed)
{
	size_t i = 0;
	const bool negative = length > 0 && text[0] == '-';
	if(length > 0 && (text[0] == '-' || text[0] == '+'))
		++i;
	const size_t first_digit = i;
	// The magnitude is gathered as unsigned so that the smallest int64 fits.
	const uint64_t limit = negative ? (uint64_t)std::numeric_limits<int64_t>::max() + 1 : (uint64_t)std::numeric_limits<int64_t>::max();
	uint64_t magnitude = 0;
	for(; i < length && text[i] >= '0' && text[i] <= '9'; ++i)
	{
		const uint64_t digit = (uint64_t)(text[i] - '0');
		if(magnitude > (limit - digit) / 10)
			return false;
		magnitude = magnitude * 10 + digit;
	}
	if(i == first_digit)
		return false;
	value = negative ? (int64_t)(0 - magnitude) : (int64_t)magnitude;
	consumed = i;
	return true;
}

uint32_t hexStringToUInt32(const std::string& s)
{
	if(s.size() < 3 || s.size() > 10 || s[0] != '0' || s[1] != 'x')
		return 0;
	uint32_t value = 0;
	for(size_t i = 2; i < s.size(); ++i)
	{
		const int digit = hexDigitValue(s[i]);
		if(digit < 0)
			return 0;
		value = value * 16 + (uint32_t)digit;
	}
	return value;
}

std::vector<unsigned char> hexStringToBytes(const std::string& s)
{
	if(s.size() % 2 != 0)
		throw VelornException("Hex string must have an even number of hex chars.");
	std::vector<unsigned char> bytes(s.size() / 2);
	for(size_t i = 0; i < bytes.size(); ++i)
	{
		const int hi = hexDigitValue(s[2 * i]);
		const int lo = hexDigitValue(s[2 * i + 1]);
		bytes[i] = (unsigned char)((hi < 0 ? 0 : hi) * 16 + (lo < 0 ? 0 : lo));
	}
	return bytes;
}

namespace
{

std::string unsignedToString(uint64_t value)
{
	char buf[24];
	char* p = buf + sizeof(buf);
	do
	{
		*--p = (char)('0' + value % 10);
		value /= 10;
	} while(value != 0);
	return std::string(p, buf + sizeof(buf));
}

// Magnitude of a negative value without overflow for the smallest one.
uint64_t negativeMagnitude(int64_t i) { return (uint64_t)(-(i + 1)) + 1; }

} // namespace

std::string toString(int32_t i)
{
	return i < 0 ? "-" + unsignedToString(negativeMagnitude(i)) : unsignedToString((uint64_t)i);
}
std::string toString(int64_t i)
{
	return i < 0 ? "-" + unsignedToString(negativeMagnitude(i)) : unsignedToString((uint64_t)i);
}
std::string toString(uint32_t i) { return unsignedToString(i); }
std::string toString(uint64_t i) { return unsignedToString(i); }
std::string toString(bool b) { return b ? "true" : "false"; }

std::string toHexString(uint64_t i)
{
	std::string reversed;
	do
	{
		const unsigned digit = (unsigned)(i % 16);
		reversed.push_back((char)(digit < 10 ? '0' + digit : 'a' + digit - 10));
		i /= 16;
	} while(i != 0);
	return std::string(reversed.rbegin(), reversed.rend());
}

std::string doubleToString(double d)
{
	char buf[128];
	StringBuilder builder(buf, sizeof(buf));
	DoubleToStringConverter::EcmaScriptConverter().ToShortest(d, &builder);
	return builder.Finalize();
}

std::string floatToString(float f)
{
	char buf[64];
	StringBuilder builder(buf, sizeof(buf));
	DoubleToStringConverter::EcmaScriptConverter().ToShortestSingle(f, &builder);
	return builder.Finalize();
}

std::string sceneNumberText(double d)
{
	if(d == 0)
		return "0";
	char buf[128];
	StringBuilder builder(buf, sizeof(buf));
	sceneConverter().ToShortest(d, &builder);
	return builder.Finalize();
}

std::string sceneNumberText(float f)
{
	if(f == 0)
		return "0";
	char buf[64];
	StringBuilder builder(buf, sizeof(buf));
	sceneConverter().ToShortestSingle(f, &builder);
	return builder.Finalize();
}

std::string toLowerCase(const std::string& s)
{
	std::string lower(s);
	for(char& c : lower)
		if(c >= 'A' && c <= 'Z')
			c = (char)(c - 'A' + 'a');
	return lower;
}

bool hasExtension(const std::string& path, const std::string& extension)
{
	if(path.size() < extension.size() + 1)
		return false;
	const std::string tail = toLowerCase(path.substr(path.size() - extension.size() - 1));
	return tail == "." + toLowerCase(extension);
}

std::u16string UTF8ToUTF16(const std::string& s)
{
	std::u16string out;
	out.reserve(s.size());
	size_t i = 0;
	while(i < s.size())
	{
		const unsigned char lead = (unsigned char)s[i];
		uint32_t code = 0xFFFD; // what an ill-formed sequence decodes to
		size_t n = 1;
		if(lead < 0x80)
			code = lead;
		else if(lead >= 0xC2 && lead < 0xF5)
		{
			const size_t expected = lead < 0xE0 ? 2 : (lead < 0xF0 ? 3 : 4);
			uint32_t value = lead & (0xFF >> (expected + 1));
			size_t k = 1;
			for(; k < expected && i + k < s.size(); ++k)
			{
				const unsigned char c = (unsigned char)s[i + k];
				if((c & 0xC0) != 0x80)
					break;
				value = (value << 6) | (c & 0x3F);
			}
			if(k == expected)
			{
				static const uint32_t smallest[5] = {0, 0, 0x80, 0x800, 0x10000};
				const bool valid = value >= smallest[expected] && value <= 0x10FFFF && !(value >= 0xD800 && value <= 0xDFFF);
				if(valid)
					code = value;
			}
			n = k;
		}
		if(code >= 0x10000)
		{
			code -= 0x10000;
			out.push_back((char16_t)(0xD800 + (code >> 10)));
			out.push_back((char16_t)(0xDC00 + (code & 0x3FF)));
		}
		else
			out.push_back((char16_t)code);
		i += n;
	}
	return out;
}

std::string UTF16ToUTF8(const std::u16string& s)
{
	std::string out;
	out.reserve(s.size());
	for(size_t i = 0; i < s.size(); ++i)
	{
		uint32_t code = s[i];
		if(code >= 0xD800 && code <= 0xDBFF && i + 1 < s.size() && s[i + 1] >= 0xDC00 && s[i + 1] <= 0xDFFF)
		{
			code = 0x10000 + ((code - 0xD800) << 10) + (s[i + 1] - 0xDC00);
			++i;
		}
		else if(code >= 0xD800 && code <= 0xDFFF)
			code = 0xFFFD; // a lone surrogate
		if(code < 0x80)
			out.push_back((char)code);
		else if(code < 0x800)
		{
			out.push_back((char)(0xC0 | (code >> 6)));
			out.push_back((char)(0x80 | (code & 0x3F)));
		}
		else if(code < 0x10000)
		{
			out.push_back((char)(0xE0 | (code >> 12)));
			out.push_back((char)(0x80 | ((code >> 6) & 0x3F)));
			out.push_back((char)(0x80 | (code & 0x3F)));
		}
		else
		{
			out.push_back((char)(0xF0 | (code >> 18)));
			out.push_back((char)(0x80 | ((code >> 12) & 0x3F)));
			out.push_back((char)(0x80 | ((code >> 6) & 0x3F)));
			out.push_back((char)(0x80 | (code & 0x3F)));
		}
	}
	return out;
}

} // namespace Velorn
