#include "scene/keyframe.h"

#include "scene/xml_write.h"

namespace Velorn
{

void KeyFrame::writeXML(OStream& stream, unsigned depth) const
{
	using namespace XMLWrite;
	writeOpenTag(stream, depth, "keyframe");
	writeDouble(stream, depth + 1, "time", time);
	writeVec3(stream, depth + 1, "pos", pos);
	writeOpenTag(stream, depth + 1, "rotation_quaternion");
	writeVec3(stream, depth + 2, "axis", rotation_axis);
	writeDouble(stream, depth + 2, "angle", rotation_angle);
	writeCloseTag(stream, depth + 1, "rotation_quaternion");
	writeCloseTag(stream, depth, "keyframe");
}

} // namespace Velorn
