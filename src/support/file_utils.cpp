#include "support/file_utils.h"

#include "support/exceptions.h"
#include "support/platform.h"

namespace Velorn
{
namespace FileUtils
{

namespace
{

size_t lastSeparator(const std::string& path)
{
	for(size_t i = path.size(); i-- > 0;)
		if(Platform::isSeparator(path[i]))
			return i;
	return std::string::npos;
}

} // namespace

std::string join(const std::string& a, const std::string& b)
{
	if(a.empty() || Platform::isAbsolutePath(b))
		return b;
	if(Platform::isSeparator(a.back()))
		return a + b;
	return a + Platform::preferredSeparator() + b;
}

std::string getDirectory(const std::string& path)
{
	const size_t sep = lastSeparator(path);
	return sep == std::string::npos ? std::string() : path.substr(0, sep);
}

std::string getFilename(const std::string& path)
{
	const size_t sep = lastSeparator(path);
	return sep == std::string::npos ? path : path.substr(sep + 1);
}

std::string eatExtension(const std::string& path)
{
	const size_t sep = lastSeparator(path);
	const size_t dot = path.rfind('.');
	if(dot == std::string::npos || (sep != std::string::npos && dot < sep))
		return path;
	return path.substr(0, dot);
}

std::string toPlatformSeparators(const std::string& path)
{
	std::string result(path);
	for(char& c : result)
		if(Platform::isSeparator(c))
			c = Platform::preferredSeparator();
	return result;
}

std::string makeAbsolute(const std::string& path) { return join(Platform::currentWorkingDirectory(), path); }

bool fileExists(const std::string& path) { return Platform::pathExists(path); }

void createDirsForPath(const std::string& path)
{
	if(path.empty() || Platform::isDirectory(path))
		return;
	createDirsForPath(getDirectory(path));
	if(!Platform::makeDirectory(path))
		throw FileUtilsExcep("Failed to create directory '" + path + "'");
}

} // namespace FileUtils
} // namespace Velorn
