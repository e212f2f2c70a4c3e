#pragma once

#include "c4d/base_container.h"
#include "c4d/base_document.h"

// The parameters of the first enabled video post of the renderer in the
// document's active render data; null if there is none.
BaseContainer* findVideoPostContainer(BaseDocument* doc);

// Metres per host unit of a scene: by the unit of the renderer's video post
// (its parameters, null without one), or by the host's unit preference when
// the document has no such video post. The export scales positions by it,
// and shaders that sample world positions by the same number.
float sceneUnitScale(const BaseContainer* video_post_container);
// sceneUnitScale for the video post of doc.
float documentSceneScale(BaseDocument* doc);
