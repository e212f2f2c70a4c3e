#pragma once

#include "c4d/bake_texture.h"

class BaseBitmap;
class BaseDocument;
class BaseShader;

// Renders shader into target through the host's baking service, over the UV
// square of a unit plane: each pixel of the (already initialised) target
// takes the shader's colour at its centre's UV, v = 0 being the top row.
// The shader itself is left as it is; a copy of it is baked, in a temporary
// document that takes its file path and time from sourceDocument (which may
// be null), so that the images a shader names are found as in the source.
// BAKE_TEX_ERR_NONE on success; otherwise the service's error, and the
// target holds what the bake reached.
BAKE_TEX_ERR bakeShaderToBitmap(BaseBitmap* target, BaseShader* shader, BaseDocument* sourceDocument);
