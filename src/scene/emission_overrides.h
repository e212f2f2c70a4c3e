#pragma once

#include "scene/ostream.h"
#include "scene/uid.h"
#include "scene/write_context.h"
#include "support/reference.h"
#include "support/velorn_string.h"

#include <cstdint>

namespace Velorn
{

class SceneNodeMaterial;

// States that the light of one material of a model has a measured
// distribution, given by an IES file.
class IESProfile : public RefCounted
{
public:
	String material_name;
	String path;
	Reference<SceneNodeMaterial> material;
	UID material_uid;

	// The UID of the bound material, else the stored one.
	UID materialUID() const;
	void writeXML(OStream& stream, unsigned depth, const WriteContext& context) const;
};

// Scales the emission of one material of a model, or of the background, so
// that it gives the stated photometric quantity.
class EmissionScale : public RefCounted
{
public:
	enum Measure : int32_t
	{
		LuminousFlux = 0,
		LuminousIntensity = 1,
		Luminance = 2,
		LuminousEmittance = 3,
		NoMeasure = 4 // writes nothing at all
	};

	int32_t measure = LuminousFlux;
	double value = 1;
	String material_name;
	Reference<SceneNodeMaterial> material;
	UID material_uid;

	UID materialUID() const;
	// "luminous_flux" ... "luminous_emittance"; empty for any other measure.
	static const char* measureText(int32_t measure);
	void writeXML(OStream& stream, unsigned depth) const;
};

} // namespace Velorn
