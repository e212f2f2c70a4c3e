#pragma once

#include "scene/math_types.h"
#include "scene/ostream.h"
#include "scene/texture.h"
#include "scene/value_helpers.h"
#include "scene/visit_operation.h"
#include "scene/write_context.h"
#include "support/reference.h"
#include "support/velorn_string.h"
#include "support/velorn_vector.h"

#include <cstdint>
#include <string>

namespace Velorn
{

// A named value that a shader program reads through a definition in the
// shader language.
class ShaderParam : public RefCounted
{
public:
	virtual ~ShaderParam();
	virtual unsigned getType() const = 0;
	virtual Reference<ShaderParam> clone() const = 0;
	virtual void writeXML(OStream& stream, unsigned depth) const = 0;
	// "def param<name>() ..." with the value, for the shader program. Throws
	// VelornException when the name holds anything but ASCII letters,
	// digits and underscores; writeXML does not check it.
	virtual String getShaderDefinition() const = 0;

	String name;
	String description;

protected:
	// <param>, the element of the kind and the name and description in it.
	void writeOpening(OStream& stream, unsigned depth, const char* kind) const;
	void writeClosing(OStream& stream, unsigned depth, const char* kind) const;
	// The definition with the given type and value text, after the check of
	// the name.
	String definition(const std::string& type_and_value) const;
};

// The kinds with a range: a value between min and max, written and
// defined as Number.
template <class Derived, class Number>
class RangedShaderParam : public CopyCloned<Derived, ShaderParam>
{
public:
	void writeXML(OStream& stream, unsigned depth) const override;
	String getShaderDefinition() const override;

	Number min = 0;
	Number max = 0;
	Number value = 0;
};

// The element and the type in the shader language are "real".
class RealShaderParam : public RangedShaderParam<RealShaderParam, double>
{
public:
	unsigned getType() const override { return 0; }
	static const char* kind() { return "real"; }
};

// The element and the type in the shader language are "int".
class IntShaderParam : public RangedShaderParam<IntShaderParam, int32_t>
{
public:
	unsigned getType() const override { return 1; }
	static const char* kind() { return "int"; }
};

// Type number 2 is not used.
class Colour3ShaderParam : public CopyCloned<Colour3ShaderParam, ShaderParam>
{
public:
	unsigned getType() const override { return 3; }
	void writeXML(OStream& stream, unsigned depth) const override;
	String getShaderDefinition() const override;

	Vec3d value;
};

// A program in the renderer's shader language with what it needs: its
// parameters, the files it includes and its textures.
class ShaderInfo : public RefCounted
{
public:
	virtual ~ShaderInfo();

	// No parameters, no includes and no program text; textures do not count.
	bool isEmpty() const;
	// Everything one level inside depth: the caller's element around it is
	// at depth - 1, so the content stands two levels inside that element.
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const;
	// Takes part in GetDependencies and UpdatePaths with the includes, then
	// the texture paths.
	void doVisit(VisitOperation& op);
	Reference<ShaderInfo> clone() const;

	Vector<Reference<ShaderParam>> params;
	Vector<String> includes;
	Vector<Texture> textures;
	String shader;
};

} // namespace Velorn
