#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Numbers to text and back in one fixed way, whatever the process locale is,
// and the few byte-level string helpers that the scene library needs.
// Failures throw VelornException.
namespace Velorn
{

// Text to numbers. The floating point forms go through double-conversion
// and fail on anything but a whole number text ("NaN" included); the integer
// form follows strtol and fails only when nothing was consumed.
float stringToFloat(const std::string& s);
double stringToDouble(const std::string& s);
int stringToInt(const std::string& s);
uint64_t stringToUInt64(const std::string& s);
// The number at the start of text, for readers that go on after it. consumed
// is how many bytes the number took; false when no number starts there. The
// double form follows double-conversion (no "NaN" or "Infinity"); the integer
// form is an optional sign and decimal digits, false when the value does not
// fit into 64 bits. Neither skips white space.
bool parseDoublePrefix(const char* text, size_t length, double& value, size_t& consumed);
bool parseInt64Prefix(const char* text, size_t length, int64_t& value, size_t& consumed);
// "0x" and one to eight hex digits; anything else gives 0.
uint32_t hexStringToUInt32(const std::string& s);
// Pairs of hex digits to bytes; a character that is not a hex digit counts as 0.
std::vector<unsigned char> hexStringToBytes(const std::string& s);

std::string toString(int32_t i);
std::string toString(int64_t i);
std::string toString(uint32_t i);
std::string toString(uint64_t i);
std::string toString(bool b);
std::string toHexString(uint64_t i);

// The shortest text that reads back to the same value, in the form of the
// ECMAScript number converter ("Infinity", "1e+21").
std::string doubleToString(double d);
std::string floatToString(float f);

// The number form of scene files: "0" for any zero, otherwise the shortest
// text that reads back to the same value, with "Inf" and "NaN" for the
// values that have no number text.
std::string sceneNumberText(double d);
std::string sceneNumberText(float f);

std::string toLowerCase(const std::string& s);
// True when path ends in "." + extension, compared without case.
bool hasExtension(const std::string& path, const std::string& extension);

// Path conversion for the wide calls of the Windows platform layer.
std::u16string UTF8ToUTF16(const std::string& s);
std::string UTF16ToUTF8(const std::u16string& s);

} // namespace Velorn
