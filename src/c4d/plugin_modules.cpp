#include "c4d/plugin_modules.h"

#include "c4d/console.h"
#include "c4d/plugin_registry.h"
#include "c4d/preview_scenes.h"

#include "support/file_utils.h"

#include <algorithm>

namespace Platform = Velorn::Platform;

namespace
{

// The suffix of module files, the application's on every platform.
const String module_suffix = "cdl";

// Modules only read the table, though the call passes it as void*.
const HostFunctionTable host_functions{HOST_API_VERSION};

// The module files of dir in the order of their names, with those of each
// direct sub-directory in its place when subdirectories is true.
void findModules(const std::string& dir, bool subdirectories, std::vector<Filename>& out)
{
	std::vector<std::string> names;
	if(!Platform::listDirectory(dir, names))
		return;
	std::sort(names.begin(), names.end());
	for(const std::string& name : names)
	{
		const std::string path = Velorn::FileUtils::join(dir, name);
		if(Platform::isDirectory(path))
		{
			if(subdirectories)
				findModules(path, false, out);
		}
		else if(Filename(String(path)).GetSuffix() == module_suffix)
			out.push_back(String(path));
	}
}

void report(const Filename& file, const String& what)
{
	GePrint("Plug-in module " + file.GetString() + " " + what);
}

void reportRefusal(const Filename& file, int32_t action, int32_t result)
{
	report(file, "refused to start (action " + String::IntToString(action) + " returned " + String::IntToString(result) + ")");
}

// A message id travels in the pointer p1 of C4DPL_MESSAGE.
void* messageParameter(int32_t id)
{
	return reinterpret_cast<void*>(static_cast<intptr_t>(id));
}

// The ids registered since the registry held before.
std::vector<int32_t> registeredSince(const std::vector<int32_t>& before)
{
	std::vector<int32_t> added;
	for(int32_t id : PluginRegistry::get().ids())
		if(std::find(before.begin(), before.end(), id) == before.end())
			added.push_back(id);
	return added;
}

// C4DPL_END, the module's plug-ins out of the registry, then the unloading.
void endModule(C4DMainFunction main, Platform::LibraryHandle library, const std::vector<int32_t>& plugins)
{
	main(C4DPL_END, nullptr, nullptr, nullptr);
	for(int32_t id : plugins)
		PluginRegistry::get().remove(id);
	Platform::freeLibrary(library);
}

} // namespace

PluginModules::~PluginModules()
{
	end();
}

int32_t PluginModules::start(const Filename& dir)
{
	std::vector<Filename> files;
	findModules(Velorn::FileUtils::makeAbsolute(dir.GetString().GetStdString()), true, files);
	int32_t count = 0;
	for(const Filename& file : files)
		count += startModule(file) ? 1 : 0;
	sendMessage(C4DPL_BUILDMENU, nullptr);
	return count;
}

bool PluginModules::startModule(const Filename& file)
{
	const Platform::LibraryHandle library = Platform::loadLibrary(file.GetString().GetStdString());
	if(!library)
	{
		report(file, "could not be loaded: " + String(Platform::libraryErrorString()));
		return false;
	}
	const auto main = reinterpret_cast<C4DMainFunction>(Platform::findSymbol(library, "c4d_main"));
	if(!main)
	{
		report(file, "has no c4d_main");
		Platform::freeLibrary(library);
		return false;
	}

	Filename dir = file.GetDirectory();
	const int32_t init_sys = main(C4DPL_INIT_SYS, const_cast<HostFunctionTable*>(&host_functions), nullptr, &dir);
	if(init_sys <= 0)
	{
		// The module never started, so it is not ended either.
		reportRefusal(file, C4DPL_INIT_SYS, init_sys);
		Platform::freeLibrary(library);
		return false;
	}
	main(C4DPL_MESSAGE, messageParameter(C4DPL_INIT_SYS), nullptr, nullptr);
	const std::vector<int32_t> before = PluginRegistry::get().ids();
	const int32_t init = main(C4DPL_INIT, nullptr, nullptr, nullptr);
	const std::vector<int32_t> plugins = registeredSince(before);
	if(init <= 0)
	{
		reportRefusal(file, C4DPL_INIT, init);
		endModule(main, library, plugins);
		return false;
	}
	started.push_back({file, library, main, plugins});
	return true;
}

int32_t PluginModules::sendMessage(int32_t id, void* data)
{
	int32_t handled = 0;
	for(const Module& m : started)
		handled += m.main(C4DPL_MESSAGE, messageParameter(id), data, nullptr) == 1 ? 1 : 0;
	return handled;
}

std::vector<Filename> PluginModules::modules() const
{
	std::vector<Filename> files;
	for(const Module& m : started)
		files.push_back(m.file);
	return files;
}

void PluginModules::end()
{
	PreviewScenes::get().clear();
	for(auto m = started.rbegin(); m != started.rend(); ++m)
		endModule(m->main, m->library, m->plugins);
	started.clear();
}
