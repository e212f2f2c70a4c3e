#include "support/platform.h"

#include <cerrno>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace Velorn
{
namespace Platform
{

char preferredSeparator() { return '/'; }

bool isSeparator(char c) { return c == '/'; }

bool isAbsolutePath(const std::string& path) { return !path.empty() && path[0] == '/'; }

std::string currentWorkingDirectory()
{
	char buf[4096];
	return ::getcwd(buf, sizeof(buf)) ? std::string(buf) : std::string();
}

bool pathExists(const std::string& path)
{
	struct stat info;
	return ::stat(path.c_str(), &info) == 0;
}

bool isDirectory(const std::string& path)
{
	struct stat info;
	return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool makeDirectory(const std::string& path)
{
	if(::mkdir(path.c_str(), 0777) == 0)
		return true;
	return errno == EEXIST && isDirectory(path);
}

void openFileStream(std::ofstream& stream, const std::string& path, std::ios::openmode mode) { stream.open(path, mode); }

void openFileStream(std::ifstream& stream, const std::string& path, std::ios::openmode mode) { stream.open(path, mode); }

} // namespace Platform
} // namespace Velorn
