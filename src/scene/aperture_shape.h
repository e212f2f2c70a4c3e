#pragma once

#include "scene/ostream.h"
#include "scene/write_context.h"
#include "support/reference.h"
#include "support/velorn_string.h"

#include <cstdint>

namespace Velorn
{

// The shape of a camera's aperture. Each kind writes the whole
// aperture_shape element with its own body inside.
class ApertureShape : public RefCounted
{
public:
	enum Type
	{
		Circular = 0,
		Generated = 1,
		Image = 2
	};

	virtual unsigned getType() const = 0;
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const = 0;
	virtual Reference<ApertureShape> clone() const = 0;
};

class ApertureCircular : public ApertureShape
{
public:
	unsigned getType() const override { return Circular; }
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	Reference<ApertureShape> clone() const override;
};

// A polygonal diaphragm of straight or curved blades.
class ApertureGenerated : public ApertureShape
{
public:
	ApertureGenerated(int32_t num_blades_, double blade_offset_, double blade_curvature_radius_, double start_angle_)
		: num_blades(num_blades_), blade_offset(blade_offset_), blade_curvature_radius(blade_curvature_radius_),
		  start_angle(start_angle_)
	{}

	unsigned getType() const override { return Generated; }
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	Reference<ApertureShape> clone() const override;

	int32_t num_blades;
	double blade_offset;
	double blade_curvature_radius;
	double start_angle;
};

// An aperture given by an image file, which the scene depends on.
class ApertureImage : public ApertureShape
{
public:
	explicit ApertureImage(const String& path_) : path(path_) {}

	unsigned getType() const override { return Image; }
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	Reference<ApertureShape> clone() const override;

	String path;
};

} // namespace Velorn
