#pragma once

#include "c4d/c4d_string.h"
#include "c4d/filename.h"
#include "sdk/velorn_context.h"
#include "support/reference.h"

#include <cstdint>
#include <vector>

// State of the plug-in module that its parts share for as long as it is
// loaded.

// The module's directory as the host gave it at start; null before the
// start and after the end.
extern Filename* plugin_path;

// The renderer's SDK library, made at start and dropped at the end; it may
// have failed to load (isLoaded).
extern Velorn::Reference<Velorn::VelornContext> g_context;

// 1 when the renderer's SDK library is absent from the renderer directory,
// so that the plug-in drives the realtime edition.
extern int32_t realtime_edition;

// One GPU that the renderer's SDK offers: its name and the subsystem that
// drives it (1 CUDA, 2 OpenCL).
struct GPUDeviceInfo
{
	String device_name;
	int32_t subsystem = 0;
};

// The GPUs asked of the SDK at start-up, in its order; empty without the SDK.
extern std::vector<GPUDeviceInfo> gpu_devices;
