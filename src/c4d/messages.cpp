#include "c4d/messages.h"

#include "c4d/base_shader.h"

bool HandleShaderMessage(GeListNode*, BaseShader* shader, int32_t type, void* data)
{
	return shader ? shader->Message(type, data) : true;
}
