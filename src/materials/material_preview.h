#pragma once

#include "c4d/base_document.h"
#include "c4d/base_material.h"

#include <cstdint>
#include <map>

// The material's side of the host's preview protocol: the thumbnail in the
// material manager is rendered by the renderer, through the video post in
// preview mode, in a copy of the host's preview scene that the material
// prepares.

// Whether type is one of the four messages of the preview protocol.
bool isPreviewMessage(int32_t type);

// Answers a preview message for material. preview_failed is the material's
// latch: set when a preview failed or was switched off, after which every
// request for a picture is refused at once.
bool answerPreviewMessage(BaseMaterial* material, int32_t type, void* data, uint8_t& preview_failed);

// The clones made so far, by original, so that a material linked twice (or
// in a loop) is cloned once.
using MaterialClones = std::map<const BaseMaterial*, BaseMaterial*>;

// Clones material into doc with the materials its kind links to, each
// clone's links set to the clones: a blend its inputs, a coating its
// substrate, a double sided material its two sides, the specular and glossy
// transparent kinds (and a transmitter with its medium on) the medium
// source, and every kind but blend with the blend factor on its second
// material. The clones belong to doc. Null when a clone could not be made.
BaseMaterial* cloneWithLinks(const BaseMaterial* material, BaseDocument* doc, MaterialClones& clones);

// The samples per pixel of a preview quality; an unknown one is medium.
int32_t previewSamplesPerPixel(int32_t quality);
