#pragma once

#include "scene/math_types.h"
#include "scene/rotation.h"
#include "support/exceptions.h"
#include "support/reference.h"

#include <tinyxml.h>

#include <cstdint>
#include <string>
#include <utility>

// Reading values out of scene XML. Every function takes the parent element
// and the name of the child to read. Failures throw SceneParseUtilsExcep with
// a sentence followed by the place in the file (errorContext).
namespace Velorn
{
namespace SceneParseUtils
{

// "  (In element '<name>', around line <row>, column <column>)"
std::string errorContext(const TiXmlElement& element);

// The joined text of all text and CDATA nodes directly in element; comments
// and other nodes are skipped without interrupting.
std::string elementText(const TiXmlElement& element);

std::string parseString(const TiXmlElement& parent, const char* name);
std::string parseStringWithDefault(const TiXmlElement& parent, const char* name, const std::string& default_value);
int32_t parseInt(const TiXmlElement& parent, const char* name);
int32_t parseIntWithDefault(const TiXmlElement& parent, const char* name, int32_t default_value);
uint32_t parseUInt(const TiXmlElement& parent, const char* name);
// The unsigned integer in the text of element itself, as parseUInt reads a child's.
uint32_t parseUIntText(const TiXmlElement& element);
uint32_t parseUIntWithDefault(const TiXmlElement& parent, const char* name, uint32_t default_value);
double parseDouble(const TiXmlElement& parent, const char* name);
double parseDoubleWithDefault(const TiXmlElement& parent, const char* name, double default_value);
Vec2d parseVec2(const TiXmlElement& parent, const char* name);
Vec3d parseVec3(const TiXmlElement& parent, const char* name);
// Four numbers, row by row, in the child name (which is "matrix" in the
// files the writer makes).
Matrix2d parseMatrix2(const TiXmlElement& parent, const char* name);
bool parseBool(const TiXmlElement& parent, const char* name);
bool parseBoolWithDefault(const TiXmlElement& parent, const char* name, bool default_value);
void checkElementExists(const TiXmlElement& parent, const char* name);
const TiXmlElement* getFirstChildElement(const TiXmlElement& parent, const char* name);
// A matrix or axis_rotation element inside the child name.
Reference<Rotation> parseRotation(const TiXmlElement& parent, const char* name);
// The identity when the child is absent.
Reference<Rotation> parseRotationWithDefault(const TiXmlElement& parent, const char* name);

// Calls visit with each child element of parent called name, in order.
template <class Visit>
void forEachChildElement(const TiXmlElement& parent, const char* name, Visit visit)
{
	for(const TiXmlElement* child = parent.FirstChildElement(name); child; child = child->NextSiblingElement(name))
		visit(*child);
}

// The place of name in the null-terminated list names; the length of the
// list when it is not there.
size_t nameIndex(const char* const* names, const char* name);

// allowed and names are null-terminated lists of element names.
void checkForUnexpectedElements(const TiXmlElement& element, const char* const* allowed);
void checkForDuplicateElements(const TiXmlElement& element, const char* const* names);
// The first child element, which must be one of names, with no second one
// of names after it; returns it.
const TiXmlElement& checkMutuallyExclusive(const TiXmlElement& element, const char* const* names);

// Numbers one after another in a text, separated by white space, as in the
// value lists of spectra and tables. Reads no further than the text.
class NumberScanner
{
public:
	explicit NumberScanner(std::string text_) : text(std::move(text_)) {}

	// The next number; false when none stands there: at the end of the text,
	// on something that is not a number, or right after the previous number
	// without white space between them.
	bool next(double& value);
	// True when nothing but white space is left.
	bool atEnd();
	// The most numbers that the rest of the text can hold, which bounds what
	// a reader reserves for numbers it is told to expect.
	size_t maxRemaining() const { return (text.size() - pos + 1) / 2; }

private:
	// Skips white space and tells whether there was any.
	bool skipSpace();

	std::string text;
	size_t pos = 0;
	bool after_number = false;
};

} // namespace SceneParseUtils

// The helpers in the form the scene parser gives its callers: the result of
// function, with a SceneParseUtilsExcep thrown again as a SceneParserExcep
// with the same message. For example parserCall(SceneParseUtils::parseInt,
// element, "width"), or parserCall([&] { return several(); }).
template <class Function>
auto parserCall(Function&& function) -> decltype(function())
{
	try
	{
		return function();
	}
	catch(const SceneParseUtilsExcep& e)
	{
		throw SceneParserExcep(e.what());
	}
}

template <class Result, class... Params, class... Args>
Result parserCall(Result (*helper)(Params...), Args&&... args)
{
	return parserCall([&]() -> Result { return helper(std::forward<Args>(args)...); });
}

} // namespace Velorn
