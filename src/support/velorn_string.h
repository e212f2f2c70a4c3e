#pragma once

#include "support/velorn_vector.h"

#include <cstring>
#include <ostream>
#include <string>

namespace Velorn
{

// The library's string: bytes (UTF-8 by convention) with a length and a
// capacity and no terminating zero, the form in which text crosses the
// renderer library's boundary. std::string is used inside the library and is
// converted at the edges.
class String
{
public:
	String() = default;
	String(const char* text) { append(text, std::strlen(text)); }
	String(const char* text, size_t n) { append(text, n); }
	String(const std::string& text) { append(text.data(), text.size()); }

	size_t size() const { return bytes.size(); }
	size_t length() const { return bytes.size(); }
	bool empty() const { return bytes.empty(); }
	const char* data() const { return bytes.data(); }
	char operator[](size_t i) const { return bytes[i]; }
	const char* begin() const { return bytes.begin(); }
	const char* end() const { return bytes.end(); }

	std::string str() const { return std::string(bytes.data(), bytes.size()); }

	void reserve(size_t n) { bytes.reserve(n); }
	void clear() { bytes.clear(); }
	void push_back(char c) { bytes.push_back(c); }
	void append(const char* text, size_t n) { bytes.append(text, n); }
	void append(const String& other) { append(other.data(), other.size()); }

	String& operator+=(const String& other)
	{
		append(other);
		return *this;
	}
	String& operator+=(const char* text)
	{
		append(text, std::strlen(text));
		return *this;
	}
	String& operator+=(char c)
	{
		push_back(c);
		return *this;
	}

	friend String operator+(String a, const String& b) { return a += b; }
	friend String operator+(String a, const char* b) { return a += b; }
	friend String operator+(const char* a, const String& b) { return String(a) += b; }

	friend bool operator==(const String& a, const String& b)
	{
		return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size()) == 0);
	}
	friend bool operator!=(const String& a, const String& b) { return !(a == b); }
	friend bool operator==(const String& a, const char* b) { return a == String(b); }
	friend bool operator!=(const String& a, const char* b) { return !(a == String(b)); }
	friend bool operator<(const String& a, const String& b) { return a.str() < b.str(); }

	friend std::ostream& operator<<(std::ostream& os, const String& s) { return os.write(s.data(), (std::streamsize)s.size()); }

private:
	Vector<char> bytes;
};

} // namespace Velorn
