#include "shaders/shader_number.h"

#include <charconv>
#include <cmath>

std::string shaderNumberText(double value)
{
	// to_chars never looks at the locale. The largest double has 309 digits
	// before the point; 5 after, a sign and a point fit in 330.
	if(!std::isfinite(value))
		return std::isnan(value) ? "nan" : (value < 0 ? "-inf" : "inf");
	char buffer[330];
	const std::to_chars_result result =
		std::to_chars(buffer, buffer + sizeof(buffer), value, std::chars_format::fixed, 5);
	return std::string(buffer, result.ptr);
}
