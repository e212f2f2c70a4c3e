#include "c4d/node_data.h"

#include "c4d/base_list.h"
#include "c4d/description.h"

bool NodeData::Init(GeListNode*)
{
	return true;
}

void NodeData::Free(GeListNode*)
{
}

bool NodeData::Message(GeListNode*, int32_t, void*)
{
	return true;
}

bool NodeData::GetDDescription(GeListNode* node, Description* description, int32_t& flags)
{
	// A plug-in that built its description itself sets the flag before it
	// calls the base, which then leaves the description as it is.
	if(flags & DESCFLAGS_DESC_LOADED)
		return true;
	if(!description->LoadDescription(node->GetType()))
		return false;
	flags |= DESCFLAGS_DESC_LOADED;
	return true;
}

bool NodeData::GetDParameter(GeListNode*, const DescID&, GeData&, int32_t&)
{
	return true;
}

bool NodeData::SetDParameter(GeListNode*, const DescID&, const GeData&, int32_t&)
{
	return true;
}

bool NodeData::GetDEnabling(GeListNode*, const DescID&, const GeData&, int32_t, const BaseContainer*)
{
	return true;
}

int32_t ShaderData::GetRenderInfo(BaseShader*)
{
	return 0;
}

INITRENDERRESULT ShaderData::InitRender(BaseShader*, const InitRenderStruct&)
{
	return INITRENDERRESULT_OK;
}

void ShaderData::FreeRender(BaseShader*)
{
}

Vector ShaderData::Output(BaseShader*, ChannelData*)
{
	return Vector();
}

int32_t MaterialData::GetRenderInfo(BaseMaterial*)
{
	return 0;
}

INITRENDERRESULT MaterialData::InitRender(BaseMaterial*, const InitRenderStruct&)
{
	return INITRENDERRESULT_OK;
}

void MaterialData::FreeRender(BaseMaterial*)
{
}

void MaterialData::CalcSurface(BaseMaterial*, VolumeData*)
{
}

void MaterialData::CalcTransparency(BaseMaterial*, VolumeData*)
{
}

bool MaterialData::InitGLImage(BaseMaterial*, BaseDocument*, BaseThread*, BaseBitmap*)
{
	return false;
}

int32_t CommandData::GetState(BaseDocument*)
{
	return CMD_ENABLED;
}

bool CommandData::RestoreLayout(void*)
{
	return false;
}

bool CommandData::Execute(BaseDocument*)
{
	return false;
}

bool TagData::Draw(BaseTag*, BaseObject*, BaseDraw*, BaseDrawHelp*)
{
	return true;
}

DRAWRESULT ObjectData::Draw(BaseObject*, DRAWPASS, BaseDraw*, BaseDrawHelp*)
{
	return DRAWRESULT_SKIP;
}

void ObjectData::GetDimension(BaseObject*, Vector* mp, Vector* rad)
{
	*mp = Vector();
	*rad = Vector();
}

BaseObject* ObjectData::GetVirtualObjects(BaseObject*, HierarchyHelp*)
{
	return nullptr;
}

int32_t VideoPostData::Execute(BaseVideoPost*, VideoPostStruct*)
{
	return 0;
}
