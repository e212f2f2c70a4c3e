#pragma once

#include <cstdint>
#include <string>

// What the scene library asks of the operating system beyond files.
// Failures throw PlatformUtilsExcep; no call returns an error code.
namespace Velorn
{

struct CPUInfo
{
	char vendor[12];     // from leaf 0, in the order EBX, EDX, ECX
	bool htt;            // always false
	bool mmx, sse1, sse2, sse3, sse4_1, sse4_2;
	uint32_t stepping, model, family;
	char proc_brand[48]; // leaves 0x80000002 to 0x80000004
};

namespace PlatformUtils
{

void getCPUInfo(CPUInfo& out);
// The user's application data directory (on Windows the roaming one).
std::string getAPPDataDirPath();
std::string getTempDirPath();
std::string getCurrentWorkingDirPath();
// getAPPDataDirPath() + separator + "Velorn Renderer", made if missing.
std::string getOrCreateAppDataDirectory();
// The file of the module that holds this code.
std::string getFullPathToLib();
// Shows the file in the system's file browser.
void openFileBrowserWindowAtLocation(const std::string& path);
std::string getLastErrorString();
std::string getErrorString(int code);
// 0: below normal, 1: normal.
void setThisProcessPriority(int level);
// The priority of this process in the same terms: 0 below normal, 1
// normal, -1 for any other.
int getThisProcessPriority();
std::string getEnvironmentVariable(const std::string& name);
void setEnvironmentVariable(const std::string& name, const std::string& value);
// A text value of a key under the current user's hive of the system
// registry, or an empty text when the key, the value or the registry itself
// is missing (as on systems that have none).
std::string readUserRegistryString(const std::string& key, const std::string& value_name);
std::string getLoggedInUserName();

} // namespace PlatformUtils
} // namespace Velorn
