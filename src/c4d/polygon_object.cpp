#include "c4d/polygon_object.h"

#include "c4d/plugin_registry.h"

PolygonObject* PolygonObject::Alloc(int32_t pcnt, int32_t vcnt)
{
	if(pcnt < 0 || vcnt < 0)
		return nullptr;
	PolygonObject* op = InitOrFree(new PolygonObject(), NodeClass::Object);
	if(op)
		op->ResizeObject(pcnt, vcnt);
	return op;
}

bool PolygonObject::ResizeObject(int32_t pcnt, int32_t vcnt)
{
	if(pcnt < 0 || vcnt < 0)
		return false;
	points.resize(pcnt);
	polygons.resize(vcnt);
	return true;
}
