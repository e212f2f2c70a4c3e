#pragma once

#include "c4d/base_shader.h"
#include "c4d/c4d_string.h"
#include "scene/shader_info.h"
#include "scene/texture.h"
#include "support/reference.h"
#include "support/velorn_vector.h"

#include <cstdint>

// The definitions that every expression shader's program starts with: the
// helpers its text calls beyond the renderer's own functions.
extern const char* const kShaderPrologue;

// The renderer's program for one of the plug-in's shaders in a material
// channel; null for a null shader.
//
// An expression shader gives the prologue, then header (the head of the
// channel's eval, such as "def eval(vec3 pos) vec3: "), then its expression
// for outputKind. The free-text shader gives its text as the user wrote
// it; each of its image files that is set becomes a texture appended to
// textures, and the text's mark of that file ("$tex01$" to "$tex03$") is
// replaced by the texture's index in the list.
Velorn::Reference<Velorn::ShaderInfo> translateShader(BaseShader* shader, Velorn::Vector<Velorn::Texture>& textures,
	const String& header, int32_t outputKind);
