// The module's entry point: the host starts, messages and ends the plug-in
// through c4d_main.

#include "c4d/host_startup.h"
#include "c4d/plugin_entry.h"
#include "c4d/resources.h"
#include "host/module/plugin_start.h"
#include "host/plugin_globals.h"

#include <cstdint>
#include <new>

namespace
{

// How often the host has initialised the module; the module ends when the
// count falls back to 0.
int32_t init_count = 0;

int32_t initSystem(void* function_table, void* module_path)
{
	if(++init_count > 1)
		return 1;
	const HostFunctionTable* table = static_cast<const HostFunctionTable*>(function_table);
	if(!table || table->version < HOST_API_VERSION || !module_path)
		return C4DPL_ERROR_VERSION;
	plugin_path = new(std::nothrow) Filename(*static_cast<const Filename*>(module_path));
	return 1;
}

int32_t end()
{
	if(--init_count != 0)
		return 1;
	PluginEnd();
	HostResources::get().clear();
	delete plugin_path;
	plugin_path = nullptr;
	return 1;
}

} // namespace

bool PluginMessage(int32_t id, void*)
{
	switch(id)
	{
	case 0:
		return true;
	case C4DPL_INIT_SYS:
		return plugin_path && HostResources::get().init(*plugin_path);
	case C4DPL_BUILDMENU:
		if(GeGetVersionType() & 1)
		{
			EnhanceMaterialManagerMenu();
			EnhancePictureViewerMenu();
		}
		return true;
	}
	return false;
}

extern "C" int32_t c4d_main(int32_t action, void* p1, void* p2, void* p3)
{
	switch(action)
	{
	case C4DPL_INIT_SYS:
		return initSystem(p1, p3);
	case C4DPL_INIT:
		return PluginStart();
	case C4DPL_END:
		return end();
	case C4DPL_INIT_VERSION:
		return 3;
	case C4DPL_MESSAGE:
		return PluginMessage((int32_t)reinterpret_cast<intptr_t>(p1), p2) ? 1 : -1;
	}
	return -1;
}
