#pragma once

#include "c4d/base_container.h"
#include "c4d/base_document.h"

// The parameters of the first enabled video post of the renderer in the
// document's active render data; null if there is none.
BaseContainer* findVideoPostContainer(BaseDocument* doc);
