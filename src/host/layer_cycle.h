#pragma once

#include "c4d/base_container.h"
#include "c4d/base_document.h"
#include "c4d/description.h"

// The cycle of light layers that a material's or a light tag's layer
// parameter offers: values 0 to 9 labelled "Layer 1" to "Layer 10". With an
// enabled render settings video post in the document, each label is
// followed by ": " and that layer's name from the video post (parameters
// 1410 to 1419), even when the name is empty.
BaseContainer layerCycle(BaseDocument* doc);

// Installs layerCycle(doc) as the cycle of the long id in description.
// False when the description has no entry id.
bool setLayerCycle(Description* description, int32_t id, BaseDocument* doc);
