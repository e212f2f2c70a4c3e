#include "c4d/document_checks.h"

#include <algorithm>
#include <limits>

namespace
{

// The line and column (from 1) of the byte at offset in text.
std::string lineAndColumn(const std::string& text, size_t offset)
{
	offset = std::min(offset, text.size());
	size_t line = 1, lineStart = 0;
	for(size_t i = 0; i < offset; ++i)
		if(text[i] == '\n')
			++line, lineStart = i + 1;
	return std::to_string(line) + ":" + std::to_string(offset - lineStart + 1);
}

} // namespace

DocumentChecks::Json DocumentChecks::parse(const std::string& text, const std::string& file)
{
	try
	{
		return Json::parse(text);
	}
	catch(const Json::parse_error& e)
	{
		// e.byte counts from 1 and points at the byte where reading stopped.
		throw DocumentFileExcep(file + ":" + lineAndColumn(text, e.byte ? e.byte - 1 : 0) + ": not valid JSON");
	}
}

std::string DocumentChecks::member(const std::string& place, const char* key)
{
	return place.empty() ? std::string(key) : place + "." + key;
}

std::string DocumentChecks::element(const std::string& place, size_t i)
{
	return place + "[" + std::to_string(i) + "]";
}

void DocumentChecks::fail(const std::string& place, const std::string& what) const
{
	throw DocumentFileExcep(file + ": " + (place.empty() ? what : place + ": " + what));
}

const DocumentChecks::Json* DocumentChecks::find(const Json& j, const char* key)
{
	const auto found = j.find(key);
	return found == j.end() ? nullptr : &*found;
}

const DocumentChecks::Json& DocumentChecks::required(const Json& j, const std::string& place, const char* key) const
{
	const Json* found = find(j, key);
	if(!found)
		fail(place, std::string("missing key '") + key + "'");
	return *found;
}

void DocumentChecks::checkKeys(const Json& j, const std::string& place,
	std::initializer_list<const char*> allowed) const
{
	if(!j.is_object())
		fail(place, "expected an object");
	for(const auto& item : j.items())
	{
		const bool known = std::any_of(allowed.begin(), allowed.end(),
			[&](const char* key) { return item.key() == key; });
		if(!known)
			fail(place, "unknown key '" + item.key() + "'");
	}
}

const DocumentChecks::Json& DocumentChecks::array(const Json& j, const std::string& place) const
{
	if(!j.is_array())
		fail(place, "expected an array");
	return j;
}

std::string DocumentChecks::text(const Json& j, const std::string& place) const
{
	if(!j.is_string())
		fail(place, "expected a string");
	return j.get<std::string>();
}

bool DocumentChecks::boolean(const Json& j, const std::string& place) const
{
	if(!j.is_boolean())
		fail(place, "expected true or false");
	return j.get<bool>();
}

double DocumentChecks::number(const Json& j, const std::string& place) const
{
	if(!j.is_number())
		fail(place, "expected a number");
	return j.get<double>();
}

int32_t DocumentChecks::integer(const Json& j, const std::string& place) const
{
	if(!j.is_number_integer())
		fail(place, "expected an integer");
	// Unsigned values beyond the signed range are too large either way.
	const int64_t value = j.is_number_unsigned()
		? (int64_t)std::min<uint64_t>(j.get<uint64_t>(), (uint64_t)std::numeric_limits<int64_t>::max())
		: j.get<int64_t>();
	if(value < std::numeric_limits<int32_t>::min() || value > std::numeric_limits<int32_t>::max())
		fail(place, "the integer " + j.dump() + " does not fit 32 bits");
	return (int32_t)value;
}

Vector DocumentChecks::vector(const Json& j, const std::string& place) const
{
	if(!j.is_array() || j.size() != 3)
		fail(place, "expected an array of three numbers");
	return Vector(number(j[0], element(place, 0)), number(j[1], element(place, 1)), number(j[2], element(place, 2)));
}

BaseTime DocumentChecks::time(const Json& j, const std::string& place) const
{
	if(!j.is_array() || j.size() != 2)
		fail(place, "expected [numerator, denominator]");
	const double denominator = number(j[1], element(place, 1));
	if(!(denominator > 0))
		fail(element(place, 1), "the denominator must be positive");
	return BaseTime(number(j[0], element(place, 0)), denominator);
}
