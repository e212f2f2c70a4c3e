#include "c4d/file_functions.h"

#include "support/platform.h"

#include <string>
#include <vector>

namespace
{

std::string pathOf(const Filename& name)
{
	return name.GetString().GetStdString();
}

// Deletes everything in the directory at path, then the directory.
bool removeTree(const std::string& path)
{
	std::vector<std::string> names;
	if(!Velorn::Platform::listDirectory(path, names))
		return false;
	bool whole = true;
	for(const std::string& entry : names)
	{
		const std::string child = path + Velorn::Platform::preferredSeparator() + entry;
		whole = (Velorn::Platform::isDirectory(child) ? removeTree(child) : Velorn::Platform::removeFile(child)) && whole;
	}
	return Velorn::Platform::removeEmptyDirectory(path) && whole;
}

} // namespace

bool GeFExist(const Filename& name, bool isdir)
{
	const std::string path = pathOf(name);
	return isdir ? Velorn::Platform::isDirectory(path) : Velorn::Platform::pathExists(path);
}

bool GeFKill(const Filename& name, int32_t flags)
{
	const std::string path = pathOf(name);
	if(!Velorn::Platform::isDirectory(path))
		return Velorn::Platform::removeFile(path);
	if(!(flags & GE_FKILL_DIRECTORY))
		return false;
	return (flags & GE_FKILL_RECURSIVE) ? removeTree(path) : Velorn::Platform::removeEmptyDirectory(path);
}

bool GeFCreateDir(const Filename& name)
{
	return Velorn::Platform::makeDirectory(pathOf(name));
}
