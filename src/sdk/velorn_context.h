#pragma once

#include "support/platform.h"
#include "support/reference.h"
#include "support/velorn_string.h"

#include <string>

namespace Velorn
{

class InterfaceBase;

// The renderer's SDK library, loaded once for the whole life of the plug-in
// and shared by every object that is made inside it. It stays loaded until
// the last reference goes.
class VelornContext : public ThreadSafeRefCounted
{
public:
	// The library's entry points.
	using CreateInstanceFunction = int (*)(const String& class_name, Reference<InterfaceBase>& out);
	using GlobalInitFunction = void (*)(const String* sdk_dir);
	using GlobalShutdownFunction = void (*)();

	// Result codes of load.
	enum
	{
		LOAD_OK = 0,
		LOAD_MISSING_PROCEDURE = 1,
		LOAD_NO_LIBRARY = 20,
		LOAD_LIBRARY_REFUSED = 22,
	};

	VelornContext() = default;
	VelornContext(const VelornContext&) = delete;
	VelornContext& operator=(const VelornContext&) = delete;
	// Shuts the library down if it was initialised, then unloads it.
	~VelornContext() override;

	// Loads "velorn_sdk.dll", or else "velorn_rt_sdk.dll", from sdk_dir, finds
	// the three entry points and initialises the library with sdk_dir. The
	// result is one of the codes above; on failure error_out tells why.
	// A library that lacks an entry point stays loaded until the destructor.
	// Called once per context.
	int load(const std::string& sdk_dir, const std::string& appdata_dir, std::string& error_out);
	// True when all three entry points were found.
	bool isLoaded() const;

	// Handed to every object that the library initialises.
	String sdk_dir;
	String appdata_dir;
	Platform::LibraryHandle module = nullptr;
	CreateInstanceFunction create_instance = nullptr;
	GlobalInitFunction global_init = nullptr;
	GlobalShutdownFunction global_shutdown = nullptr;
};

} // namespace Velorn
