#include "sdk/velorn_context.h"

#include "support/file_utils.h"

namespace Velorn
{

namespace
{

// The two builds of the library, in the order they are looked for: the full
// renderer first, then the realtime edition. The names are those of the
// renderer's installation on every platform.
const char* const library_names[] = {"velorn_sdk.dll", "velorn_rt_sdk.dll"};

// The first candidate that exists in sdk_dir, or an empty path. The separator
// is a forward slash on every platform, as the renderer's own loader has it.
std::string findLibrary(const std::string& sdk_dir)
{
	for(const char* name : library_names)
	{
		const std::string path = sdk_dir + "/" + name;
		if(FileUtils::fileExists(path))
			return path;
	}
	return std::string();
}

// Looks up one entry point into out; false, with the message in error_out,
// when the library has none of that name.
template <class Function>
bool findEntry(Platform::LibraryHandle module, const char* name, Function& out, std::string& error_out)
{
	out = reinterpret_cast<Function>(Platform::findSymbol(module, name));
	if(!out)
		error_out = std::string("unable to get address of procedure '") + name + "'";
	return out != nullptr;
}

} // namespace

VelornContext::~VelornContext()
{
	if(global_shutdown)
		global_shutdown();
	if(module)
		Platform::freeLibrary(module);
}

int VelornContext::load(const std::string& sdk_dir_, const std::string& appdata_dir_, std::string& error_out)
{
	error_out.clear();
	sdk_dir = String(sdk_dir_);
	appdata_dir = String(appdata_dir_);

	// The library's own dependencies lie beside it.
	Platform::setLibrarySearchDirectory(sdk_dir_);

	const std::string path = findLibrary(sdk_dir_);
	if(path.empty())
	{
		// The code is that of the failed existence test of the last candidate.
		const int code = Platform::lastErrorCode();
		error_out = "Failed to load DLL from '" + sdk_dir_ + "' (Error code: " + std::to_string(code) + ")";
		return LOAD_NO_LIBRARY;
	}

	module = Platform::loadLibrary(path);
	if(!module)
	{
		error_out = Platform::libraryErrorString();
		return LOAD_LIBRARY_REFUSED;
	}

	if(!findEntry(module, "velornCreateInstance", create_instance, error_out) ||
		!findEntry(module, "velornGlobalLibraryInit", global_init, error_out) ||
		!findEntry(module, "velornGlobalLibraryShutdown", global_shutdown, error_out))
		return LOAD_MISSING_PROCEDURE;

	global_init(&sdk_dir);
	return LOAD_OK;
}

bool VelornContext::isLoaded() const
{
	return create_instance && global_init && global_shutdown;
}

} // namespace Velorn
