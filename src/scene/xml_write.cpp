#include "scene/xml_write.h"

#include "support/file_utils.h"
#include "support/string_utils.h"

#include <initializer_list>

namespace Velorn
{
namespace XMLWrite
{

namespace
{

bool isWhitespace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

void writeOpening(OStream& stream, unsigned depth, const char* name)
{
	writeTabs(stream, depth);
	stream.write(String("<") + name + ">");
}

void writeClosing(OStream& stream, const char* name) { stream.write(String("</") + name + ">\n"); }

// Numbers separated by one blank.
String numberList(std::initializer_list<double> values)
{
	std::string text;
	for(double v : values)
	{
		if(!text.empty())
			text += ' ';
		text += sceneNumberText(v);
	}
	return String(text);
}

} // namespace

void writeTabs(OStream& stream, unsigned depth)
{
	String tabs;
	tabs.reserve(depth);
	for(unsigned i = 0; i < depth; ++i)
		tabs.push_back('\t');
	stream.write(tabs);
}

String numberText(double d) { return String(sceneNumberText(d)); }

void writeOpenTag(OStream& stream, unsigned depth, const char* name)
{
	writeOpening(stream, depth, name);
	stream.write("\n");
}

void writeCloseTag(OStream& stream, unsigned depth, const char* name)
{
	writeTabs(stream, depth);
	writeClosing(stream, name);
}

void writeEmptyTag(OStream& stream, unsigned depth, const char* name)
{
	writeTabs(stream, depth);
	stream.write(String("<") + name + "/>\n");
}

void writeElement(OStream& stream, unsigned depth, const char* name, const String& text)
{
	writeOpening(stream, depth, name);
	stream.write(text);
	writeClosing(stream, name);
}

void writeDouble(OStream& stream, unsigned depth, const char* name, double value)
{
	writeElement(stream, depth, name, numberText(value));
}

void writeInt(OStream& stream, unsigned depth, const char* name, int32_t value)
{
	writeElement(stream, depth, name, String(toString(value)));
}

void writeUID(OStream& stream, unsigned depth, const char* name, UID value)
{
	writeElement(stream, depth, name, String(value.toString()));
}

void writeBool(OStream& stream, unsigned depth, const char* name, bool value)
{
	writeElement(stream, depth, name, value ? "true" : "false");
}

bool needsCDATA(const String& text)
{
	if(text.empty())
		return false;
	if(isWhitespace(text[0]) || isWhitespace(text[text.size() - 1]))
		return true;
	for(size_t i = 1; i < text.size(); ++i)
		if(isWhitespace(text[i - 1]) && isWhitespace(text[i]))
			return true;
	return false;
}

String escapeText(const String& text)
{
	// TinyXML's text encoding, kept by hand because distribution builds of
	// the library differ in how they treat numeric references: '&' followed
	// by "#x" copies everything up to the next ';' unchanged (the ';' itself
	// then goes through the loop as an ordinary byte).
	const size_t n = text.size();
	String out;
	out.reserve(n);
	size_t i = 0;
	while(i < n)
	{
		const unsigned char c = (unsigned char)text[i];
		if(c == '&' && i + 2 < n && text[i + 1] == '#' && text[i + 2] == 'x')
		{
			while(i + 1 < n)
			{
				out.push_back(text[i]);
				++i;
				if(text[i] == ';')
					break;
			}
			continue;
		}
		switch(c)
		{
		case '&': out += "&amp;"; break;
		case '<': out += "&lt;"; break;
		case '>': out += "&gt;"; break;
		case '"': out += "&quot;"; break;
		case '\'': out += "&apos;"; break;
		default:
			if(c < 32)
			{
				static const char hex[] = "0123456789ABCDEF";
				const char reference[] = {'&', '#', 'x', hex[c >> 4], hex[c & 15], ';'};
				out.append(reference, sizeof(reference));
			}
			else
				out.push_back((char)c);
		}
		++i;
	}
	return out;
}

void writeString(OStream& stream, unsigned depth, const char* name, const String& value)
{
	if(needsCDATA(value))
	{
		writeOpening(stream, depth, name);
		stream.write("<![CDATA[");
		stream.write(value);
		stream.write("]]>");
		writeClosing(stream, name);
	}
	else
		writeElement(stream, depth, name, escapeText(value));
}

void writeWrappedString(OStream& stream, unsigned depth, const char* name, const String& value)
{
	writeOpenTag(stream, depth, name);
	writeString(stream, depth + 1, name, value);
	writeCloseTag(stream, depth, name);
}

void writePath(OStream& stream, unsigned depth, const char* name, const String& path, const WriteContext& context)
{
	if(!path.empty() && context.write_absolute_paths)
		writeString(stream, depth, name, String(FileUtils::join(context.scene_dir.str(), path.str())));
	else
		writeString(stream, depth, name, path);
}

void writeVec2(OStream& stream, unsigned depth, const char* name, const Vec2d& v)
{
	writeElement(stream, depth, name, numberList({v.x, v.y}));
}

void writeVec3(OStream& stream, unsigned depth, const char* name, const Vec3d& v)
{
	writeElement(stream, depth, name, numberList({v.x, v.y, v.z}));
}

void writeMatrix2(OStream& stream, unsigned depth, const char* name, const Matrix2d& m)
{
	writeElement(stream, depth, name, numberList({m.e[0], m.e[1], m.e[2], m.e[3]}));
}

} // namespace XMLWrite
} // namespace Velorn
