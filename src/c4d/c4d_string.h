#pragma once

#include <cstdint>
#include <string>

// The host's string. The text is kept as UTF-8; lengths and positions count
// characters (code points), as the application's own string does, so that a
// cut never splits a character.
class String
{
public:
	String() = default;
	String(const char* text_) : text(text_ ? text_ : "") {}
	String(std::string text_) : text(std::move(text_)) {}

	static String IntToString(int32_t i);
	// The shortest text that reads back to the same value.
	static String FloatToString(double d);

	int32_t GetLength() const;
	bool Content() const { return !text.empty(); }
	// count characters from start, clipped to the text.
	String SubStr(int32_t start, int32_t count) const;
	// The first position at or after start where cs occurs; false if none.
	bool FindFirst(const String& cs, int32_t* pos, int32_t start = 0) const;

	// The whole text as a number, whatever the process locale is; anything
	// else (empty, trailing characters, out of range) gives 0 and sets
	// *error when given.
	int32_t ToLong(bool* error = nullptr) const;
	double ToReal(bool* error = nullptr) const;

	// The host's case folding: letters of ASCII and of Latin-1 to lower
	// case, everything else as it is.
	String ToLower() const;

	const std::string& GetStdString() const { return text; }

	String& operator+=(const String& o);
	bool operator==(const String& o) const { return text == o.text; }
	bool operator!=(const String& o) const { return text != o.text; }
	bool operator<(const String& o) const { return text < o.text; }

private:
	std::string text;
};

String operator+(String a, const String& b);
