#include "scene/visit_operation.h"

#include "support/exceptions.h"

#include <algorithm>

namespace Velorn
{

String VisitOperation::mappedPath(const String& old_path) const
{
	const std::string* mapped = path_map.find(old_path.str());
	if(!mapped)
		throw VelornException("While updating dependencies: Missing mapping for old path '" + old_path.str() + "'.");
	return String(*mapped);
}

void VisitOperation::growBounds(float x, float y, float z)
{
	const float p[3] = {x, y, z};
	for(int i = 0; i < 3; ++i)
	{
		bounds_min[i] = std::min(bounds_min[i], p[i]);
		bounds_max[i] = std::max(bounds_max[i], p[i]);
	}
}

} // namespace Velorn
