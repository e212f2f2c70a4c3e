#include "scene/aperture_shape.h"

#include "scene/xml_write.h"

namespace Velorn
{

namespace
{

const char* const element = "aperture_shape";

} // namespace

void ApertureCircular::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	XMLWrite::writeOpenTag(stream, depth, element);
	XMLWrite::writeEmptyTag(stream, depth + 1, "circular");
	XMLWrite::writeCloseTag(stream, depth, element);
}

Reference<ApertureShape> ApertureCircular::clone() const { return Reference<ApertureShape>(new ApertureCircular()); }

void ApertureGenerated::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	XMLWrite::writeOpenTag(stream, depth, element);
	XMLWrite::writeOpenTag(stream, depth + 1, "generated");
	XMLWrite::writeInt(stream, depth + 2, "num_blades", num_blades);
	XMLWrite::writeDouble(stream, depth + 2, "blade_offset", blade_offset);
	XMLWrite::writeDouble(stream, depth + 2, "blade_curvature_radius", blade_curvature_radius);
	XMLWrite::writeDouble(stream, depth + 2, "start_angle", start_angle);
	XMLWrite::writeCloseTag(stream, depth + 1, "generated");
	XMLWrite::writeCloseTag(stream, depth, element);
}

Reference<ApertureShape> ApertureGenerated::clone() const { return Reference<ApertureShape>(new ApertureGenerated(*this)); }

void ApertureImage::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	XMLWrite::writeOpenTag(stream, depth, element);
	XMLWrite::writeOpenTag(stream, depth + 1, "image");
	XMLWrite::writePath(stream, depth + 2, "path", path, context);
	XMLWrite::writeCloseTag(stream, depth + 1, "image");
	XMLWrite::writeCloseTag(stream, depth, element);
}

Reference<ApertureShape> ApertureImage::clone() const { return Reference<ApertureShape>(new ApertureImage(path)); }

} // namespace Velorn
