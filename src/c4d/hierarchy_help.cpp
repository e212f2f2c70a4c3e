#include "c4d/hierarchy_help.h"

#include "c4d/base_object.h"
#include "c4d/polygon_object.h"

#include <algorithm>

void GetObjectDimension(BaseObject* op, Vector* mp, Vector* rad)
{
	*mp = Vector();
	*rad = Vector();
	if(!op)
		return;
	if(ObjectData* data = dynamic_cast<ObjectData*>(op->GetNodeData()))
	{
		data->GetDimension(op, mp, rad);
		return;
	}
	if(op->GetType() == Opolygon)
	{
		const PolygonObject* poly = static_cast<const PolygonObject*>(op);
		const int32_t count = poly->GetPointCount();
		if(count == 0)
			return;
		const Vector* p = poly->GetPointR();
		Vector lo = p[0], hi = p[0];
		for(int32_t i = 1; i < count; ++i)
		{
			lo = Vector(std::min(lo.x, p[i].x), std::min(lo.y, p[i].y), std::min(lo.z, p[i].z));
			hi = Vector(std::max(hi.x, p[i].x), std::max(hi.y, p[i].y), std::max(hi.z, p[i].z));
		}
		*mp = (lo + hi) * 0.5;
		*rad = (hi - lo) * 0.5;
		return;
	}
	if(BaseObject* cache = op->GetDeformCache() ? op->GetDeformCache() : op->GetCache())
		GetObjectDimension(cache, mp, rad);
}
