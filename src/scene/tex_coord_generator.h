#pragma once

#include "scene/math_types.h"
#include "scene/ostream.h"
#include "scene/rotation.h"
#include "scene/value_helpers.h"
#include "support/reference.h"

namespace Velorn
{

// How a texture finds its coordinates on a surface.
class TexCoordGenerator : public RefCounted
{
public:
	virtual ~TexCoordGenerator();
	virtual void writeXML(OStream& stream, unsigned depth) const = 0;
	virtual unsigned getType() const = 0;
	virtual Reference<TexCoordGenerator> clone() const = 0;
};

// The surface's own UV coordinates, carried through matrix and translation.
class UVTexCoordGenerator : public CopyCloned<UVTexCoordGenerator, TexCoordGenerator>
{
public:
	void writeXML(OStream& stream, unsigned depth) const override;
	unsigned getType() const override { return 0; }

	Matrix2d matrix;
	Vec2d translation;
};

// What the two spherical projections share: an optional rotation of the
// sphere. Copies are deep.
class SphericalProjection : public TexCoordGenerator
{
public:
	SphericalProjection() = default;
	SphericalProjection(const SphericalProjection& other);

	Reference<Rotation> rotation;

protected:
	// The element; the rotation's own text stands two levels inside its
	// rotation element, as files have always had it.
	void writeProjection(OStream& stream, unsigned depth, const char* element) const;
};

class SphericalTexCoordGenerator : public CopyCloned<SphericalTexCoordGenerator, SphericalProjection, TexCoordGenerator>
{
public:
	void writeXML(OStream& stream, unsigned depth) const override { writeProjection(stream, depth, "spherical"); }
	unsigned getType() const override { return 1; }
};

// The spherical projection of environment maps.
class SphericalEnvTexCoordGenerator : public CopyCloned<SphericalEnvTexCoordGenerator, SphericalProjection, TexCoordGenerator>
{
public:
	void writeXML(OStream& stream, unsigned depth) const override { writeProjection(stream, depth, "spherical_environment"); }
	unsigned getType() const override { return 2; }
};

} // namespace Velorn
