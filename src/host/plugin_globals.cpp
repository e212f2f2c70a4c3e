#include "host/plugin_globals.h"

Filename* plugin_path = nullptr;
Velorn::Reference<Velorn::VelornContext> g_context;
int32_t realtime_edition = 0;
std::vector<GPUDeviceInfo> gpu_devices;
