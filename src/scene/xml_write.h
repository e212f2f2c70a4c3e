#pragma once

#include "scene/math_types.h"
#include "scene/ostream.h"
#include "scene/uid.h"
#include "scene/write_context.h"
#include "support/velorn_string.h"

#include <cstdint>

// The element helpers of scene file text. Every element stands on a line of
// its own, indented by depth tabs, with no attributes; line ends are a single
// newline on every platform. Numbers take the shortest form that reads back
// to the same double ("0" for any zero).
namespace Velorn
{
namespace XMLWrite
{

void writeTabs(OStream& stream, unsigned depth);
// The scene number form of a double.
String numberText(double d);

// tabs <name> newline
void writeOpenTag(OStream& stream, unsigned depth, const char* name);
// tabs </name> newline
void writeCloseTag(OStream& stream, unsigned depth, const char* name);
// tabs <name/> newline
void writeEmptyTag(OStream& stream, unsigned depth, const char* name);

// tabs <name>text</name> newline, with the text as it is.
void writeElement(OStream& stream, unsigned depth, const char* name, const String& text);

void writeDouble(OStream& stream, unsigned depth, const char* name, double value);
void writeInt(OStream& stream, unsigned depth, const char* name, int32_t value);
void writeUID(OStream& stream, unsigned depth, const char* name, UID value);
void writeBool(OStream& stream, unsigned depth, const char* name, bool value);
// Plain escaped text, or CDATA when white space at an end or two white space
// bytes together would be lost to the reader.
void writeString(OStream& stream, unsigned depth, const char* name, const String& value);
// As writeString, with the path joined to the scene's directory when the
// context asks for absolute paths.
// <name> on its own line, the string as an element of the same name one
// level in, </name>: the form of shader programs in nodes.
void writeWrappedString(OStream& stream, unsigned depth, const char* name, const String& value);
void writePath(OStream& stream, unsigned depth, const char* name, const String& path, const WriteContext& context);
void writeVec2(OStream& stream, unsigned depth, const char* name, const Vec2d& v);
void writeVec3(OStream& stream, unsigned depth, const char* name, const Vec3d& v);
void writeMatrix2(OStream& stream, unsigned depth, const char* name, const Matrix2d& m);

// TinyXML's escaping of element text.
String escapeText(const String& text);
// True when the text needs the CDATA form to keep its white space.
bool needsCDATA(const String& text);

} // namespace XMLWrite
} // namespace Velorn
