// A plug-in module for the tests of the host's module loading. It prints
// every call it gets on the host's console, behind its name MODULE_NAME.
// The build sets what it answers to C4DPL_INIT_SYS (INIT_SYS_RESULT) and to
// C4DPL_INIT (INIT_RESULT), and the name of its entry point (ENTRY_NAME).
#include "c4d/console.h"
#include "c4d/filename.h"
#include "c4d/plugin_entry.h"

#include <cstdint>

namespace
{

void record(const String& what)
{
	GePrint(String(MODULE_NAME ": ") + what);
}

// Shows when the host unloads the module.
struct UnloadRecorder
{
	~UnloadRecorder() { record("unloaded"); }
} unload_recorder;

} // namespace

extern "C" int32_t ENTRY_NAME(int32_t action, void* p1, void* p2, void* p3)
{
	switch(action)
	{
	case C4DPL_INIT_SYS:
	{
		const auto* host = static_cast<const HostFunctionTable*>(p1);
		const auto* dir = static_cast<const Filename*>(p3);
		record("init sys, version " + String::IntToString(host->version) + ", directory " + dir->GetString());
		return INIT_SYS_RESULT;
	}
	case C4DPL_INIT:
		record("init");
		return INIT_RESULT;
	case C4DPL_END:
		record("end");
		return 1;
	case C4DPL_MESSAGE:
	{
		const auto id = (int32_t)reinterpret_cast<intptr_t>(p1);
		record("message " + String::IntToString(id) + (p2 ? " with data" : ""));
		// Answers only the messages of the start-up.
		return id == C4DPL_INIT_SYS || id == C4DPL_BUILDMENU ? 1 : -1;
	}
	}
	return -1;
}
