#include "c4d/c4d_string.h"

#include "support/exceptions.h"
#include "support/string_utils.h"

#include <limits>

namespace
{

bool isContinuationByte(char c)
{
	return ((unsigned char)c & 0xC0) == 0x80;
}

// The byte offset of the character that lies index characters after byte
// from in text; the size of text past its end.
size_t byteOffset(const std::string& text, size_t from, int32_t index)
{
	size_t offset = from;
	for(int32_t seen = 0; offset < text.size(); ++offset)
		if(!isContinuationByte(text[offset]) && seen++ == index)
			return offset;
	return text.size();
}

// The number of characters that begin in the first bytes bytes of text.
int32_t characterCount(const std::string& text, size_t bytes)
{
	int32_t count = 0;
	for(size_t i = 0; i < bytes && i < text.size(); ++i)
		count += isContinuationByte(text[i]) ? 0 : 1;
	return count;
}

template<typename T>
T failedNumber(bool* error)
{
	if(error)
		*error = true;
	return 0;
}

template<typename T>
T parsedNumber(T value, bool* error)
{
	if(error)
		*error = false;
	return value;
}

} // namespace

String String::IntToString(int32_t i)
{
	return String(Velorn::toString(i));
}

String String::FloatToString(double d)
{
	return String(Velorn::doubleToString(d));
}

int32_t String::GetLength() const
{
	return characterCount(text, text.size());
}

String String::SubStr(int32_t start, int32_t count) const
{
	if(start < 0 || count <= 0)
		return String();
	const size_t from = byteOffset(text, 0, start);
	return String(text.substr(from, byteOffset(text, from, count) - from));
}

bool String::FindFirst(const String& cs, int32_t* pos, int32_t start) const
{
	const size_t found = text.find(cs.text, byteOffset(text, 0, start < 0 ? 0 : start));
	if(found == std::string::npos)
		return false;
	*pos = characterCount(text, found);
	return true;
}

int32_t String::ToLong(bool* error) const
{
	int64_t value = 0;
	size_t consumed = 0;
	if(!Velorn::parseInt64Prefix(text.data(), text.size(), value, consumed) || consumed != text.size()
		|| value < std::numeric_limits<int32_t>::min() || value > std::numeric_limits<int32_t>::max())
		return failedNumber<int32_t>(error);
	return parsedNumber((int32_t)value, error);
}

double String::ToReal(bool* error) const
{
	try
	{
		return parsedNumber(Velorn::stringToDouble(text), error);
	}
	catch(const Velorn::VelornException&)
	{
		return failedNumber<double>(error);
	}
}

String& String::operator+=(const String& o)
{
	text += o.text;
	return *this;
}

String operator+(String a, const String& b)
{
	return a += b;
}

String String::ToLower() const
{
	// Latin-1's capitals U+00C0 to U+00DE (but U+00D7, the multiplication
	// sign) are the two bytes C3 80 to C3 9E; their small letters lie 0x20
	// above in the second byte.
	std::string folded = text;
	for(size_t i = 0; i < folded.size(); ++i)
	{
		unsigned char& c = reinterpret_cast<unsigned char&>(folded[i]);
		if(c >= 'A' && c <= 'Z')
			c = (unsigned char)(c + 0x20);
		else if(c == 0xC3 && i + 1 < folded.size())
		{
			unsigned char& next = reinterpret_cast<unsigned char&>(folded[++i]);
			if(next >= 0x80 && next <= 0x9E && next != 0x97)
				next = (unsigned char)(next + 0x20);
		}
	}
	return String(std::move(folded));
}
