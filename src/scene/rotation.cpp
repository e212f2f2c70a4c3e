#include "scene/rotation.h"

#include "scene/xml_write.h"

namespace Velorn
{

using namespace XMLWrite;

Rotation::~Rotation() = default;

void MatrixRotation::writeXML(OStream& stream, unsigned depth) const
{
	writeOpenTag(stream, depth, "matrix");
	writeTabs(stream, depth + 1);
	writeNumberList(stream, matrix.e, 9);
	stream.write("\n");
	writeCloseTag(stream, depth, "matrix");
}

void AxisRotation::writeXML(OStream& stream, unsigned depth) const
{
	writeOpenTag(stream, depth, "axis_rotation");
	writeVec3(stream, depth + 1, "axis", axis);
	writeDouble(stream, depth + 1, "angle", angle);
	writeCloseTag(stream, depth, "axis_rotation");
}

} // namespace Velorn
