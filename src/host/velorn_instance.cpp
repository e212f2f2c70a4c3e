#include "host/velorn_instance.h"

#include "c4d/base_document.h"
#include "c4d/base_draw.h"
#include "c4d/description.h"
#include "c4d/hierarchy_help.h"
#include "c4d/plugin_registry.h"
#include "c4d/polygon_object.h"
#include "host/plugin_ids.h"
#include "host/registration.h"

namespace
{

// A bit of the host's on an object whose instances do not draw it.
const int32_t kBitNoInstanceDraw = 0x200;

// The bits of HierarchyHelp::GetFlags that the instance answers: with the
// first it makes no cache, with the second (and a target) the empty one.
const int32_t kBuildNoCache = 2;
const int32_t kBuildCache = 4;

// Instances inside instances are drawn this deep at most, so that two
// instances that hold each other's targets cannot draw without end.
const int32_t kMaxNesting = 32;

// Whether node, or anything below it or after it, is instance.
bool holds(const BaseObject* node, const BaseObject* instance)
{
	for(; node; node = node->GetNext())
		if(node == instance || holds(node->GetDown(), instance))
			return true;
	return false;
}

// The twelve edges of the box around mp with the half sizes rad.
void drawBox(BaseDraw* bd, const Vector& mp, const Vector& rad)
{
	Vector corner[8];
	for(int i = 0; i < 8; ++i)
		corner[i] = mp + Vector(i & 1 ? rad.x : -rad.x, i & 2 ? rad.y : -rad.y, i & 4 ? rad.z : -rad.z);
	const int edges[12][2] = {{0, 1}, {2, 3}, {4, 5}, {6, 7}, {0, 2}, {1, 3}, {4, 6}, {5, 7}, {0, 4}, {1, 5},
		{2, 6}, {3, 7}};
	for(const auto& e : edges)
		bd->DrawLine(corner[e[0]], corner[e[1]]);
}

void drawPolygonObject(BaseDraw* bd, BaseDrawHelp* bh, PolygonObject* poly, int32_t mode, const Matrix& m)
{
	bd->SetMatrix_Matrix(poly, m);
	if(mode == INSTANCE_DRAW_SHADED)
	{
		bd->DrawPolygonObject(bh, poly);
		return;
	}
	bd->SetPen(bd->GetObjectColor(bh, poly));
	if(mode == INSTANCE_DRAW_WIRES)
	{
		const Vector* p = poly->GetPointR();
		const CPolygon* polygons = poly->GetPolygonR();
		for(int32_t i = 0; i < poly->GetPolygonCount(); ++i)
		{
			const CPolygon& q = polygons[i];
			bd->DrawLine(p[q.a], p[q.b]);
			bd->DrawLine(p[q.b], p[q.c]);
			if(q.c != q.d)
			{
				bd->DrawLine(p[q.c], p[q.d]);
				bd->DrawLine(p[q.d], p[q.a]);
			}
			else
				bd->DrawLine(p[q.c], p[q.a]);
		}
		return;
	}
	Vector mp, rad;
	GetObjectDimension(poly, &mp, &rad);
	drawBox(bd, mp, rad);
}

void drawWires(BaseObject* op, BaseDraw* bd, BaseDrawHelp* bh, int32_t mode, const Matrix& up, int32_t depth)
{
	for(; op; op = op->GetNext())
	{
		const Matrix m = up * op->GetMl();
		BaseObject* target = op->GetType() == ID_VELORN_INSTANCE ? instanceTarget(op) : nullptr;
		BaseObject* cache = op->GetDeformCache() ? op->GetDeformCache() : op->GetCache();
		if(target)
		{
			if(depth < kMaxNesting)
				drawWires(target, bd, bh, mode, m, depth + 1);
		}
		else if(cache)
			drawWires(cache, bd, bh, mode, m, depth);
		else if(op->GetType() == Opolygon)
			drawPolygonObject(bd, bh, static_cast<PolygonObject*>(op), mode, m);
		drawWires(op->GetDown(), bd, bh, mode, m, depth);
	}
}

} // namespace

int32_t instanceDrawMode(const BaseObject* instance)
{
	switch(instance->GetDataInstance()->GetInt32(inst_display))
	{
	case inst_display_wires:
		return INSTANCE_DRAW_WIRES;
	case inst_display_shaded:
		return INSTANCE_DRAW_SHADED;
	default:
		return INSTANCE_DRAW_BOX;
	}
}

BaseObject* instanceTarget(const BaseObject* instance)
{
	BaseObject* target = static_cast<BaseObject*>(instance->GetDataInstance()->GetLink(inst_link));
	return target && !holds(target, instance) ? target : nullptr;
}

void drawInstanceWires(BaseObject* op, BaseDraw* bd, BaseDrawHelp* bh, int32_t mode, const Matrix& up)
{
	drawWires(op, bd, bh, mode, up, 0);
}

bool VelornInstance::Init(GeListNode* node)
{
	static_cast<BaseList2D*>(node)->GetDataInstance()->SetInt32(inst_display, inst_display_shaded);
	return true;
}

bool VelornInstance::GetDDescription(GeListNode* node, Description* description, int32_t& flags)
{
	if(!description->LoadDescription(node->GetType()))
		return false;
	flags |= DESCFLAGS_DESC_LOADED;
	return true;
}

void VelornInstance::GetDimension(BaseObject* op, Vector* mp, Vector* rad)
{
	*mp = Vector();
	*rad = Vector();
	const BaseObject* link = static_cast<BaseObject*>(op->GetDataInstance()->GetLink(inst_link));
	if(!link)
	{
		*rad = Vector(50, 50, 50);
		return;
	}
	if(BaseObject* target = instanceTarget(op))
		GetObjectDimension(target, mp, rad);
}

DRAWRESULT VelornInstance::Draw(BaseObject* op, DRAWPASS pass, BaseDraw* bd, BaseDrawHelp* bh)
{
	if(pass == DRAWPASS_OBJECT)
	{
		BaseObject* target = instanceTarget(op);
		if(target && !op->GetBit(kBitNoInstanceDraw) && op->GetDocument())
			drawInstanceWires(target, bd, bh, instanceDrawMode(op), op->GetMg());
	}
	return ObjectData::Draw(op, pass, bd, bh);
}

BaseObject* VelornInstance::GetVirtualObjects(BaseObject* op, HierarchyHelp* hh)
{
	const int32_t flags = hh->GetFlags();
	if(flags & kBuildNoCache)
		return nullptr;
	if(!(flags & kBuildCache) || !hh->GetDocument() || !op->GetDataInstance()->GetLink(inst_link))
		return nullptr;
	BaseObject* cache = BaseObject::Alloc(Oemptycache);
	if(cache)
		cache->SetMl(Matrix());
	return cache;
}

bool RegisterVelornInstance()
{
	return registerNamed(10011, [](const String& name) {
		return RegisterObjectPlugin(ID_VELORN_INSTANCE, name, 0x20000004, VelornInstance::Alloc, String("Ovelorninstance"),
			moduleResourceFile("instance.tif"), 0);
	});
}
