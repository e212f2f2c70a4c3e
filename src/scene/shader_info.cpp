#include "scene/shader_info.h"

#include "scene/xml_write.h"
#include "support/exceptions.h"
#include "support/string_utils.h"

namespace Velorn
{

using namespace XMLWrite;

namespace
{

bool isNameCharacter(char c)
{
	return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

// The number forms of the two ranged kinds.
void writeNumber(OStream& stream, unsigned depth, const char* name, double value) { writeDouble(stream, depth, name, value); }
void writeNumber(OStream& stream, unsigned depth, const char* name, int32_t value) { writeInt(stream, depth, name, value); }
std::string numberString(double value) { return sceneNumberText(value); }
std::string numberString(int32_t value) { return toString(value); }

} // namespace

ShaderParam::~ShaderParam() = default;

void ShaderParam::writeOpening(OStream& stream, unsigned depth, const char* kind) const
{
	writeOpenTag(stream, depth, "param");
	writeOpenTag(stream, depth + 1, kind);
	writeString(stream, depth + 2, "name", name);
	writeString(stream, depth + 2, "description", description);
}

void ShaderParam::writeClosing(OStream& stream, unsigned depth, const char* kind) const
{
	writeCloseTag(stream, depth + 1, kind);
	writeCloseTag(stream, depth, "param");
}

String ShaderParam::definition(const std::string& type_and_value) const
{
	for(char c : name)
		if(!isNameCharacter(c))
			throw VelornException(
				"Invalid character in shader parameter name: Only alphanumeric and underscore allowed: '" + name.str() + "'");
	return String("def param" + name.str() + "() " + type_and_value + "\n");
}

template <class Derived, class Number>
void RangedShaderParam<Derived, Number>::writeXML(OStream& stream, unsigned depth) const
{
	this->writeOpening(stream, depth, Derived::kind());
	writeNumber(stream, depth + 2, "min", min);
	writeNumber(stream, depth + 2, "max", max);
	writeNumber(stream, depth + 2, "value", value);
	this->writeClosing(stream, depth, Derived::kind());
}

template <class Derived, class Number>
String RangedShaderParam<Derived, Number>::getShaderDefinition() const
{
	return this->definition(std::string(Derived::kind()) + " : " + numberString(value));
}

template class RangedShaderParam<RealShaderParam, double>;
template class RangedShaderParam<IntShaderParam, int32_t>;

void Colour3ShaderParam::writeXML(OStream& stream, unsigned depth) const
{
	writeOpening(stream, depth, "colour3");
	writeVec3(stream, depth + 2, "value", value);
	writeClosing(stream, depth, "colour3");
}

String Colour3ShaderParam::getShaderDefinition() const
{
	return definition(
		"vec3 : vec3(" + sceneNumberText(value.x) + ", " + sceneNumberText(value.y) + ", " + sceneNumberText(value.z) + ")");
}

ShaderInfo::~ShaderInfo() = default;

bool ShaderInfo::isEmpty() const { return params.empty() && includes.empty() && shader.empty(); }

void ShaderInfo::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	for(const Reference<ShaderParam>& param : params)
		param->writeXML(stream, depth + 1);
	for(const String& include : includes)
		writeString(stream, depth + 1, "include", include);
	for(const Texture& texture : textures)
		texture.writeXML(stream, depth + 1, context);
	writeTabs(stream, depth + 1);
	stream.write("<shader><![CDATA[");
	stream.write(shader);
	stream.write("]]></shader>\n");
}

void ShaderInfo::doVisit(VisitOperation& op)
{
	for(String& include : includes)
		visitPath(include, op);
	visitTexturePaths(textures, op);
}

Reference<ShaderInfo> ShaderInfo::clone() const
{
	Reference<ShaderInfo> copy(new ShaderInfo());
	for(const Reference<ShaderParam>& param : params)
		copy->params.push_back(param->clone());
	copy->includes = includes;
	for(const Texture& texture : textures)
		copy->textures.push_back(texture.copyDeep());
	copy->shader = shader;
	return copy;
}

} // namespace Velorn
