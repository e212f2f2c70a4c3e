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
