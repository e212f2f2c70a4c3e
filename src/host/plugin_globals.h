#pragma once

#include <cstdint>

// State of the plug-in module that its parts share for as long as it is
// loaded.

// 1 when the renderer's SDK library is absent from the renderer directory,
// so that the plug-in drives the realtime edition.
extern int32_t realtime_edition;
