#include "host/section_plane.h"

#include "c4d/base_draw.h"
#include "c4d/description.h"
#include "c4d/plugin_registry.h"
#include "host/description_visibility.h"
#include "host/plugin_globals.h"
#include "host/plugin_ids.h"
#include "host/registration.h"

bool SectionPlane::Init(GeListNode* node)
{
	setParameters(*static_cast<BaseList2D*>(node)->GetDataInstance(), {
		{sp_cull_geometry, 1},
		{sp_use_list, 1},
		{sp_list_mode, sp_list_exclude},
	});
	return true;
}

bool SectionPlane::GetDDescription(GeListNode* node, Description* description, int32_t& flags)
{
	if(!description->LoadDescription(node->GetType()))
		return false;
	if(realtime_edition)
		hide(description, {sp_object_list, sp_list_mode, sp_use_list});
	flags |= DESCFLAGS_DESC_LOADED;
	return true;
}

bool SectionPlane::GetDEnabling(
	GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags, const BaseContainer* itemdesc)
{
	switch(id[0].id)
	{
	case sp_object_list:
	case sp_list_mode:
	case sp_use_list:
		return static_cast<BaseList2D*>(node)->GetDataInstance()->GetBool(sp_cull_geometry);
	default:
		return ObjectData::GetDEnabling(node, id, t_data, flags, itemdesc);
	}
}

DRAWRESULT SectionPlane::Draw(BaseObject* op, DRAWPASS pass, BaseDraw* bd, BaseDrawHelp* bh)
{
	if(pass == DRAWPASS_OBJECT)
	{
		bd->SetMatrix_Matrix(op, op->GetMg());
		bd->SetDrawParam(DRAW_PARAMETER_SETTING, GeData(-200));
		const Vector corners[4] = {
			Vector(-1000, -1000, 0), Vector(-1000, 1000, 0), Vector(1000, 1000, 0), Vector(1000, -1000, 0)};
		const Vector colors[4] = {Vector(1, 1, 1), Vector(1, 1, 1), Vector(1, 1, 1), Vector(1, 1, 1)};
		const Vector normals[4] = {Vector(0, 0, 1), Vector(0, 0, 1), Vector(0, 0, 1), Vector(0, 0, 1)};
		bd->DrawPolygon(corners, colors, normals, 4);
	}
	return ObjectData::Draw(op, pass, bd, bh);
}

bool RegisterSectionPlane()
{
	return registerNamed(10026, [](const String& name) {
		return RegisterObjectPlugin(ID_SECTION_PLANE, name, 0, SectionPlane::Alloc, String("Ovelornsectionplane"),
			moduleResourceFile("instance.tif"), 0);
	});
}
