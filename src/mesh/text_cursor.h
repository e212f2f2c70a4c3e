#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Velorn
{

// A read position in text held in memory, for the line-based model formats.
// Lines end at '\n'; a '\r' before it (or anywhere) also ends what is read
// on a line. Numbers are read without the process locale: decimal text
// with an optional sign, fraction and exponent, and no "inf" or "nan".
// Floats come out as the correctly rounded value of their text.
class TextCursor
{
public:
	TextCursor(const char* begin, const char* end) : p(begin), end(end) {}

	bool atEnd() const { return p == end; }
	// True at '\n', '\r' or the end of the text.
	bool atLineEnd() const { return p == end || *p == '\n' || *p == '\r'; }
	// True at a space, tab, line end or the end of the text.
	bool atTokenEnd() const { return p == end || *p == ' ' || *p == '\t' || *p == '\n' || *p == '\r'; }
	const char* position() const { return p; }

	// Skips spaces and tabs.
	void skipBlanks()
	{
		while(p != end && (*p == ' ' || *p == '\t'))
			++p;
	}
	// Skips spaces, tabs and line ends.
	void skipWhitespace();
	// Moves past the next '\n', or to the end of the text.
	void skipLine();
	// Moves past c if it is next.
	bool skipChar(char c)
	{
		if(p == end || *p != c)
			return false;
		++p;
		return true;
	}
	// Moves past text if it comes next.
	bool skipText(const char* text, size_t length)
	{
		if((size_t)(end - p) < length)
			return false;
		for(size_t i = 0; i < length; ++i)
			if(p[i] != text[i])
				return false;
		p += length;
		return true;
	}
	// Reads up to the next space, tab or line end; empty at one of those.
	std::string readToken();
	// True when the next token is exactly text; the cursor then stands after it.
	bool skipToken(const char* text, size_t length)
	{
		const char* start = p;
		if(skipText(text, length) && atTokenEnd())
			return true;
		p = start;
		return false;
	}

	// Decimal digits; values above the range saturate at the maximum.
	bool readUInt(uint64_t& value)
	{
		if(p == end || *p < '0' || *p > '9')
			return false;
		// Nineteen digits always fit; only longer numbers need the overflow test.
		const char* fast_end = (size_t)(end - p) < 19 ? end : p + 19;
		uint64_t v = 0;
		for(; p != fast_end && *p >= '0' && *p <= '9'; ++p)
			v = v * 10 + (unsigned)(*p - '0');
		if(p != end && *p >= '0' && *p <= '9')
			readLongUInt(v);
		value = v;
		return true;
	}
	// An optional sign, then decimal digits, saturating at the range ends.
	bool readInt(int64_t& value);
	bool readFloat(float& value);
	bool readDouble(double& value);

private:
	// Carries on reading digits into value, saturating.
	void readLongUInt(uint64_t& value);

	const char* p;
	const char* end;
};

} // namespace Velorn
