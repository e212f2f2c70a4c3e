#pragma once

#include <string>

// The text of a number in shader programs: fixed notation with five digits
// after the point, no exponent, the point always '.', whatever the process
// locale ("1.00000", "-0.25000", "1234567.00000"). The value is rounded to
// the nearest text of five decimals of its exact binary value.
std::string shaderNumberText(double value);
