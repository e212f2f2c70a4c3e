#pragma once

#include "c4d/filename.h"
#include "c4d/plugin_entry.h"

#include "support/platform.h"

#include <cstdint>
#include <vector>

// The plug-in modules of the host: loaded from a plug-in directory and
// started the way the application starts them, sent messages, and ended.
// Modules link the host's libraries, so they print on the host's console and
// register in the host's registries. Everything here runs on the main thread.
class PluginModules
{
public:
	PluginModules() = default;
	PluginModules(const PluginModules&) = delete;
	PluginModules& operator=(const PluginModules&) = delete;
	// Ends the modules that are still loaded.
	~PluginModules();

	// Loads the modules, files ending in ".cdl", of dir and of its direct
	// sub-directories, in the order of their names, and starts each: action
	// C4DPL_INIT_SYS, the message C4DPL_INIT_SYS, action C4DPL_INIT. Once all
	// are started, each gets the message C4DPL_BUILDMENU. A module that cannot
	// be loaded, has no c4d_main or refuses one of the two actions is reported
	// on the console and unloaded; one that refused C4DPL_INIT gets C4DPL_END
	// first. Returns the number of modules started.
	int32_t start(const Filename& dir);
	// Sends the message to every started module, in the order they started.
	// Returns how many answered that they handled it.
	int32_t sendMessage(int32_t id, void* data);
	// The files of the started modules, in the order they started.
	std::vector<Filename> modules() const;
	// Frees the preview scenes, whose documents may hold the modules' nodes,
	// sends C4DPL_END to every module, the last started first, and unloads
	// them all.
	void end();

private:
	struct Module
	{
		Filename file;
		Velorn::Platform::LibraryHandle library;
		C4DMainFunction main;
		// The plug-ins it registered: their allocators and commands are the
		// module's code, so they leave the registry before it is unloaded.
		std::vector<int32_t> plugins;
	};

	// Loads and starts one module; false, reported, when it did not start.
	bool startModule(const Filename& file);

	std::vector<Module> started;
};
