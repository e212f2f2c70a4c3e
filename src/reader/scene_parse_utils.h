#pragma once

#include "scene/math_types.h"
#include "scene/rotation.h"
#include "support/reference.h"

#include <tinyxml.h>

#include <cstdint>
#include <string>

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
double parseDouble(const TiXmlElement& parent, const char* name);
double parseDoubleWithDefault(const TiXmlElement& parent, const char* name, double default_value);
Vec2d parseVec2(const TiXmlElement& parent, const char* name);
Vec3d parseVec3(const TiXmlElement& parent, const char* name);
// Four numbers in the child element "matrix" of the child name.
Matrix2d parseMatrix2(const TiXmlElement& parent, const char* name);
bool parseBool(const TiXmlElement& parent, const char* name);
bool parseBoolWithDefault(const TiXmlElement& parent, const char* name, bool default_value);
void checkElementExists(const TiXmlElement& parent, const char* name);
const TiXmlElement* getFirstChildElement(const TiXmlElement& parent, const char* name);
// A matrix or axis_rotation element inside the child name.
Reference<Rotation> parseRotation(const TiXmlElement& parent, const char* name);
// The identity when the child is absent.
Reference<Rotation> parseRotationWithDefault(const TiXmlElement& parent, const char* name);

// allowed and names are null-terminated lists of element names.
void checkForUnexpectedElements(const TiXmlElement& element, const char* const* allowed);
void checkForDuplicateElements(const TiXmlElement& element, const char* const* names);
// Exactly one child element, from names; returns it.
const TiXmlElement& checkMutuallyExclusive(const TiXmlElement& element, const char* const* names);

} // namespace SceneParseUtils
} // namespace Velorn
