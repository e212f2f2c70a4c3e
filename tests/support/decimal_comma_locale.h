#pragma once

namespace VelornTest
{

// Switches the C library to a locale that writes and reads a decimal comma,
// by the names that Linux and Windows give the German and French ones.
// Returns the name taken, or null when the system has none of them.
const char* useDecimalCommaLocale();

} // namespace VelornTest
