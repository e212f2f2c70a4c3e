#include "host/plugin_globals.h"

int32_t realtime_edition = 0;
