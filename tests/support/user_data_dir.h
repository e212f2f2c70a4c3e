#pragma once

#include <string>

namespace VelornTest
{

// Points the user's application data directory (what
// PlatformUtils::getAPPDataDirPath() returns) at a directory of the test for
// the life of the object: XDG_CONFIG_HOME on Linux, the current user's
// shell folder "AppData" in the registry on Windows.
class UserDataDirectory
{
public:
	explicit UserDataDirectory(const std::string& dir);
	~UserDataDirectory();
	UserDataDirectory(const UserDataDirectory&) = delete;
	UserDataDirectory& operator=(const UserDataDirectory&) = delete;

private:
	std::string saved;
	bool was_set = false;
};

} // namespace VelornTest
