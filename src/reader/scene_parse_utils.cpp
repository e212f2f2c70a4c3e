#include "reader/scene_parse_utils.h"

#include "support/string_utils.h"

#include <cstring>
#include <limits>

namespace Velorn
{
namespace SceneParseUtils
{

namespace
{

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

size_t skipSpace(const std::string& text, size_t pos)
{
	while(pos < text.size() && isSpace(text[pos]))
		++pos;
	return pos;
}

[[noreturn]] void fail(const std::string& message, const TiXmlElement& place)
{
	throw SceneParseUtilsExcep(message + errorContext(place));
}

const TiXmlElement& requireChild(const TiXmlElement& parent, const char* name)
{
	const TiXmlElement* child = parent.FirstChildElement(name);
	if(!child)
		fail("could not find element '" + std::string(name) + "'.", parent);
	return *child;
}

// The two texts of a number that cannot be read: nothing readable where a
// number should start, or something left over after the numbers.
[[noreturn]] void numberFailure(const TiXmlElement& element, const std::string& text, const char* what, bool left_over)
{
	const std::string start = left_over ? "Parse error while parsing " : "Failed to parse ";
	fail(start + what + " from '" + text + "'.", element);
}

// count numbers making up the whole text of element, white space around and
// between them.
void readNumbers(const TiXmlElement& element, const char* what, double* values, size_t count)
{
	const std::string text = elementText(element);
	NumberScanner scanner(text);
	for(size_t i = 0; i < count; ++i)
		if(!scanner.next(values[i]))
			numberFailure(element, text, what, false);
	if(!scanner.atEnd())
		numberFailure(element, text, what, true);
}

// count numbers making up the whole text of element, or the one message
// for any fault.
void readNumbers(const TiXmlElement& element, double* values, size_t count, const char* message)
{
	NumberScanner scanner(elementText(element));
	for(size_t i = 0; i < count; ++i)
		if(!scanner.next(values[i]))
			fail(message, element);
	if(!scanner.atEnd())
		fail(message, element);
}

// A whole number text from min to max; what names it in the messages.
int64_t readInteger(const TiXmlElement& element, const char* what, int64_t min, int64_t max)
{
	const std::string text = elementText(element);
	const size_t start = skipSpace(text, 0);
	int64_t value = 0;
	size_t consumed = 0;
	if(!parseInt64Prefix(text.data() + start, text.size() - start, value, consumed) || value < min || value > max)
		numberFailure(element, text, what, false);
	if(skipSpace(text, start + consumed) != text.size())
		numberFailure(element, text, what, true);
	return value;
}

Reference<Rotation> readMatrixRotation(const TiXmlElement& element)
{
	Matrix3d matrix;
	readNumbers(element, matrix.e, 9, "syntax error while parsing Matrix.");
	return new MatrixRotation(matrix);
}

Reference<Rotation> readAxisRotation(const TiXmlElement& element)
{
	static const char* const allowed[] = {"axis", "angle", nullptr};
	checkForUnexpectedElements(element, allowed);
	return new AxisRotation(parseVec3(element, "axis"), parseDouble(element, "angle"));
}

std::string joinedNames(const char* const* names)
{
	std::string joined;
	for(const char* const* name = names; *name; ++name)
		joined += (name == names ? "'" : "', '") + std::string(*name);
	return joined + "'";
}

} // namespace

std::string errorContext(const TiXmlElement& element)
{
	return "  (In element '" + std::string(element.Value()) + "', around line " + toString((int32_t)element.Row()) + ", column " +
		   toString((int32_t)element.Column()) + ")";
}

std::string elementText(const TiXmlElement& element)
{
	std::string text;
	for(const TiXmlNode* node = element.FirstChild(); node; node = node->NextSibling())
		if(const TiXmlText* part = node->ToText())
			text += part->Value();
	return text;
}

size_t nameIndex(const char* const* names, const char* name)
{
	size_t i = 0;
	while(names[i] && std::strcmp(names[i], name) != 0)
		++i;
	return i;
}

std::string parseString(const TiXmlElement& parent, const char* name) { return elementText(requireChild(parent, name)); }

std::string parseStringWithDefault(const TiXmlElement& parent, const char* name, const std::string& default_value)
{
	return parent.FirstChildElement(name) ? parseString(parent, name) : default_value;
}

int32_t parseInt(const TiXmlElement& parent, const char* name)
{
	return (int32_t)readInteger(
		requireChild(parent, name), "integer", std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
}

int32_t parseIntWithDefault(const TiXmlElement& parent, const char* name, int32_t default_value)
{
	return parent.FirstChildElement(name) ? parseInt(parent, name) : default_value;
}

uint32_t parseUInt(const TiXmlElement& parent, const char* name) { return parseUIntText(requireChild(parent, name)); }

uint32_t parseUIntText(const TiXmlElement& element)
{
	return (uint32_t)readInteger(element, "unsigned integer", 0, std::numeric_limits<uint32_t>::max());
}

uint32_t parseUIntWithDefault(const TiXmlElement& parent, const char* name, uint32_t default_value)
{
	return parent.FirstChildElement(name) ? parseUInt(parent, name) : default_value;
}

double parseDouble(const TiXmlElement& parent, const char* name)
{
	double value = 0;
	readNumbers(requireChild(parent, name), "double", &value, 1);
	return value;
}

double parseDoubleWithDefault(const TiXmlElement& parent, const char* name, double default_value)
{
	return parent.FirstChildElement(name) ? parseDouble(parent, name) : default_value;
}

Vec2d parseVec2(const TiXmlElement& parent, const char* name)
{
	double e[2];
	readNumbers(requireChild(parent, name), "Vec2", e, 2);
	return Vec2d(e[0], e[1]);
}

Vec3d parseVec3(const TiXmlElement& parent, const char* name)
{
	double e[3];
	readNumbers(requireChild(parent, name), "Vec3", e, 3);
	return Vec3d(e[0], e[1], e[2]);
}

Matrix2d parseMatrix2(const TiXmlElement& parent, const char* name)
{
	Matrix2d matrix;
	readNumbers(requireChild(parent, name), matrix.e, 4, "syntax error while parsing Matrix2.");
	return matrix;
}

bool parseBool(const TiXmlElement& parent, const char* name)
{
	const TiXmlElement& child = requireChild(parent, name);
	const std::string text = elementText(child);
	if(text != "true" && text != "false")
		fail("Invalid boolean value (Should be 'true' or 'false').", child);
	return text == "true";
}

bool parseBoolWithDefault(const TiXmlElement& parent, const char* name, bool default_value)
{
	return parent.FirstChildElement(name) ? parseBool(parent, name) : default_value;
}

void checkElementExists(const TiXmlElement& parent, const char* name) { getFirstChildElement(parent, name); }

const TiXmlElement* getFirstChildElement(const TiXmlElement& parent, const char* name)
{
	const TiXmlElement* child = parent.FirstChildElement(name);
	if(!child)
		fail("Failed to find expected element '" + std::string(name) + "'.", parent);
	return child;
}

Reference<Rotation> parseRotation(const TiXmlElement& parent, const char* name)
{
	static const char* const forms[] = {"matrix", "axis_rotation", nullptr};
	const TiXmlElement& form = checkMutuallyExclusive(*getFirstChildElement(parent, name), forms);
	switch(nameIndex(forms, form.Value()))
	{
	case 0:
		return readMatrixRotation(form);
	case 1:
		return readAxisRotation(form);
	}
	throw SceneParseUtilsExcep("Internal Error.");
}

Reference<Rotation> parseRotationWithDefault(const TiXmlElement& parent, const char* name)
{
	return parent.FirstChildElement(name) ? parseRotation(parent, name) : Reference<Rotation>(new MatrixRotation());
}

void checkForUnexpectedElements(const TiXmlElement& element, const char* const* allowed)
{
	for(const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement())
		if(!allowed[nameIndex(allowed, child->Value())])
			fail("Found unexpected element '" + std::string(child->Value()) + "'.", element);
}

void checkForDuplicateElements(const TiXmlElement& element, const char* const* names)
{
	size_t count = 0;
	while(names[count])
		++count;
	std::string seen(count, '\0'); // one mark for each name of the list
	for(const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement())
	{
		const size_t i = nameIndex(names, child->Value());
		if(i == count)
			continue;
		if(seen[i])
		{
			const std::string name = child->Value();
			throw SceneParseUtilsExcep("Found unexpected element '" + name + "' (Already parsed element called '" + name +
									   "') in element '" + element.Value() + "'. (Around line " +
									   toString((int32_t)child->Row()) + ", column " + toString((int32_t)child->Column()) + ")");
		}
		seen[i] = 1;
	}
}

const TiXmlElement& checkMutuallyExclusive(const TiXmlElement& element, const char* const* names)
{
	const TiXmlElement* first = element.FirstChildElement();
	if(!first)
		fail("Failed to find child for element '" + std::string(element.Value()) + "' - Child should be one of " +
				 joinedNames(names) + ".",
			element);
	if(!names[nameIndex(names, first->Value())])
		fail("Found unexpected element '" + std::string(first->Value()) + "'.", element);
	for(const TiXmlElement* child = first->NextSiblingElement(); child; child = child->NextSiblingElement())
		if(names[nameIndex(names, child->Value())])
			fail("Found unexpected element '" + std::string(child->Value()) + ",  already parsed mutually exclusive element '" +
					 first->Value() + "'.",
				element);
	return *first;
}

bool NumberScanner::skipSpace()
{
	const size_t start = pos;
	pos = SceneParseUtils::skipSpace(text, pos);
	return pos != start;
}

bool NumberScanner::next(double& value)
{
	const bool separated = skipSpace();
	if(after_number && !separated)
		return false;
	size_t consumed = 0;
	if(!parseDoublePrefix(text.data() + pos, text.size() - pos, value, consumed))
		return false;
	pos += consumed;
	after_number = true;
	return true;
}

bool NumberScanner::atEnd()
{
	skipSpace();
	return pos == text.size();
}

} // namespace SceneParseUtils
} // namespace Velorn
