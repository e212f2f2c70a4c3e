#include "support/user_data_dir.h"

#include "support/exceptions.h"
#include "support/platform.h"
#include "support/platform_utils.h"

#include <gtest/gtest.h>

namespace VelornTest
{

#ifdef _WIN32

namespace
{

const char* const shell_folders = "\"HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders\"";

void setAppData(const std::string& value)
{
	int code = -1;
	const std::string reg =
		Velorn::PlatformUtils::getEnvironmentVariable("SystemRoot") + "\\system32\\reg.exe";
	EXPECT_TRUE(Velorn::Platform::runProcess(reg,
		"reg.exe add " + std::string(shell_folders) + " /v AppData /t REG_EXPAND_SZ /d \"" + value + "\" /f", false,
		code));
	EXPECT_EQ(code, 0);
}

} // namespace

UserDataDirectory::UserDataDirectory(const std::string& dir) { setAppData(dir); }

// The value that Windows gives a new user, left unexpanded in the registry.
UserDataDirectory::~UserDataDirectory() { setAppData("%USERPROFILE%\\AppData\\Roaming"); }

#else

UserDataDirectory::UserDataDirectory(const std::string& dir)
{
	try
	{
		saved = Velorn::PlatformUtils::getEnvironmentVariable("XDG_CONFIG_HOME");
		was_set = true;
	}
	catch(const Velorn::PlatformUtilsExcep&)
	{
	}
	Velorn::PlatformUtils::setEnvironmentVariable("XDG_CONFIG_HOME", dir);
}

UserDataDirectory::~UserDataDirectory()
{
	// An empty value counts as not set, as the variable's readers take it.
	Velorn::PlatformUtils::setEnvironmentVariable("XDG_CONFIG_HOME", was_set ? saved : "");
}

#endif

} // namespace VelornTest
