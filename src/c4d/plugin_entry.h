#pragma once

#include <cstdint>

// What passes between the host and a plug-in module: the module exports one
// function, c4d_main, and the host calls it with these actions.
enum
{
	// Action: p1 is the host's HostFunctionTable, p3 the module's directory
	// as a const Filename*. Also the message that has the module load its
	// resource.
	C4DPL_INIT_SYS = 1,
	// Action: the module starts; a result of 0 or below refuses.
	C4DPL_INIT = 2,
	// Action: the module ends; it is unloaded afterwards.
	C4DPL_END = 3,
	C4DPL_INIT_VERSION = 4,
	// Action: p1 is the message id, as a pointer-sized integer, and p2 the
	// message's data.
	C4DPL_MESSAGE = 6,
	// Message: the module adds its entries to the menus.
	C4DPL_BUILDMENU = 1001188,
	// The result of C4DPL_INIT_SYS of a module that the host is too old for.
	C4DPL_ERROR_VERSION = -3,
};

// The plug-in API level of the headless host.
const int32_t HOST_API_VERSION = 9800;

// What the host hands a module with C4DPL_INIT_SYS.
struct HostFunctionTable
{
	int32_t version;
};

// The entry point that a module defines.
extern "C" int32_t c4d_main(int32_t action, void* p1, void* p2, void* p3);
using C4DMainFunction = int32_t (*)(int32_t action, void* p1, void* p2, void* p3);
