#include "scene/scene_node_parametric_surface.h"

#include "scene/xml_write.h"
#include "support/string_utils.h"

#include <atomic>

namespace Velorn
{

namespace
{

std::atomic<uint32_t> next_surface_number(0);

} // namespace

SceneNodeParametricSurface::SceneNodeParametricSurface()
{
	name = String("ParametricSurface ") + String(toString(next_surface_number.fetch_add(1)));
}

Reference<SceneNode> SceneNodeParametricSurface::clone() const
{
	printNotImplemented("SceneNodeParametricSurface::clone() not yet implemented");
	return Reference<SceneNode>();
}

void SceneNodeParametricSurface::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	using namespace XMLWrite;
	const unsigned d = depth + 1;
	writeOpenTag(stream, depth, "parametric_surface");
	writeUIDAndName(stream, d);
	writeWrappedString(stream, d, "shader", shader);
	writeInt(stream, d, "num_u", num_u);
	writeInt(stream, d, "num_v", num_v);
	writeCloseTag(stream, depth, "parametric_surface");
}

void SceneNodeParametricSurface::doVisit(VisitOperation& op)
{
	if(op.type == VisitOperation::OffsetUIDs)
		uid = uid + op.uid_offset;
}

bool SceneNodeParametricSurface::doIsEqual(const SceneNode& other) const
{
	return equalByBaseFieldsOnly(other, "TODO: IMPLEMENT SceneNodeParametricSurface::doIsEqual()\n");
}

} // namespace Velorn
