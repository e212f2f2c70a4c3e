#pragma once

#include "scene/ostream.h"
#include "scene/xml_write.h"
#include "support/reference.h"

// Helpers shared by the value classes of scenes: spectra, parameters,
// textures, materials and media.
namespace Velorn
{

// The wrapped form of an optional value: nothing when it is null; else the
// element name opened at depth + 1, the value's own text at depth + 2 and the
// element closed at depth + 1. The context goes to values whose writeXML
// takes one (parameters, textures); spectra and tables are written without.
template <class Value, class... Context>
void writeWrapped(OStream& stream, unsigned depth, const char* name, const Reference<Value>& value, Context&... context)
{
	if(value.isNull())
		return;
	XMLWrite::writeOpenTag(stream, depth + 1, name);
	value->writeXML(stream, depth + 2, context...);
	XMLWrite::writeCloseTag(stream, depth + 1, name);
}

// Numbers in the scene form, each followed by one blank (the last one too),
// the way value lists stand in scene files.
inline void writeNumberList(OStream& stream, const double* values, size_t count)
{
	for(size_t i = 0; i < count; ++i)
		stream.write(XMLWrite::numberText(values[i]) + " ");
}

// A deep copy of an optional value: null stays null.
template <class Value>
Reference<Value> cloneOrNull(const Reference<Value>& value)
{
	return value.nonNull() ? Reference<Value>(value->clone()) : Reference<Value>();
}

// The name of a node that holds a named value (a material, a medium) is
// the value's; a node without one uses its own.
template <class Value>
void setHeldName(const Reference<Value>& held, String& own_name, const String& new_name)
{
	(held.nonNull() ? held->name : own_name) = new_name;
}

template <class Value>
const String& heldName(const Reference<Value>& held, const String& own_name)
{
	return held.nonNull() ? held->name : own_name;
}

// Implements clone of a value class by its copy constructor. Classes that
// hold other values give themselves a copy constructor that copies those
// deeply. Family is the base whose clone is implemented, when Base is a
// class between it and Derived.
template <class Derived, class Base, class Family = Base>
class CopyCloned : public Base
{
public:
	using Base::Base;
	Reference<Family> clone() const override { return Reference<Family>(new Derived(static_cast<const Derived&>(*this))); }
};

} // namespace Velorn
