#pragma once

class BaseMaterial;

// Fills target, a material of the plug-in, from source, one of the host's
// standard materials: the kind from the transparency, reflection and
// specular channels (in that order of precedence), colour, emission, the
// texture channels with copies of the source's shaders, and last the
// channel switches of the kind.
//
// The target always takes the source's name; a source of any other type
// leaves the target's values as they are. The shader copies are owned by
// the target. False when either material is null.
bool convertMaterial(BaseMaterial* source, BaseMaterial* target);
