#include "c4d/base_shader.h"

#include "c4d/plugin_registry.h"

BaseShader* BaseShader::Alloc(int32_t type)
{
	return InitOrFree(new BaseShader(type), NodeClass::Shader);
}

BaseShader* BaseShader::GetClone() const
{
	BaseShader* copy = Alloc(GetType());
	if(copy)
		cloneInto(*copy);
	return copy;
}

ShaderData* BaseShader::shaderData() const
{
	return dynamic_cast<ShaderData*>(GetNodeData());
}

INITRENDERRESULT BaseShader::InitRender(const InitRenderStruct& irs)
{
	ShaderData* data = shaderData();
	return data ? data->InitRender(this, irs) : INITRENDERRESULT_OK;
}

void BaseShader::FreeRender()
{
	if(ShaderData* data = shaderData())
		data->FreeRender(this);
}

Vector BaseShader::Sample(ChannelData* cd)
{
	if(ShaderData* data = shaderData())
		return data->Output(this, cd);
	if(GetType() == Xcolor)
		return GetDataInstance()->GetVector(COLORSHADER_COLOR);
	// Xbitmap: sampling its image needs the image decoding that the host
	// does not have yet, so it answers black like an unknown shader.
	return Vector();
}

int32_t BaseShader::GetRenderInfo()
{
	ShaderData* data = shaderData();
	return data ? data->GetRenderInfo(this) : 0;
}
