#include "support/file_utils.h"

#include "support/exceptions.h"
#include "support/platform.h"

#include <cstdio>

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

const char* const relative_path_too_long = "(relative path too long)";

std::string relativePath(const std::string& base, const std::string& path)
{
	const size_t shortest = 4, longest = 2048;
	if(base.size() < shortest || path.size() < shortest || base.size() > longest || path.size() > longest)
		return std::string();
	if(base[0] != path[0])
		return path;
	size_t common = 0;
	while(common < base.size() && common < path.size() && base[common] == path[common])
		++common;
	const bool base_is_prefix =
		common == base.size() && (common == path.size() || Platform::isSeparator(path[common]) ||
									 Platform::isSeparator(base[common - 1]));
	if(base_is_prefix)
	{
		size_t rest = common;
		while(rest < path.size() && Platform::isSeparator(path[rest]))
			++rest;
		return path.substr(rest);
	}
	// The last directory boundary that both share: a separator inside the
	// common part, or base's separator right where path ends.
	size_t boundary = std::string::npos;
	if(common == path.size() && common < base.size() && Platform::isSeparator(base[common]))
		boundary = common;
	else
		for(size_t i = common; i-- > 0;)
			if(Platform::isSeparator(base[i]))
			{
				boundary = i;
				break;
			}
	if(boundary == std::string::npos)
		return path;
	std::string result;
	bool in_directory = false;
	for(size_t i = boundary + 1; i < base.size(); ++i)
	{
		const bool separator = Platform::isSeparator(base[i]);
		if(!separator && !in_directory)
			result += std::string("..") + Platform::preferredSeparator();
		in_directory = !separator;
	}
	if(boundary + 1 < path.size())
		result += path.substr(boundary + 1);
	return result.size() > longest ? std::string(relative_path_too_long) : result;
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

std::vector<std::string> getFilesInDir(const std::string& path)
{
	std::vector<std::string> names;
	if(!Platform::listDirectory(path, names))
		throw FileUtilsExcep("Failed to open dir '" + path + "'");
	return names;
}

uint64_t getFileSize(const std::string& path)
{
	uint64_t size = 0;
	if(!Platform::fileSize(path, size))
		throw FileUtilsExcep("CreateFile failed: " + Platform::lastErrorString());
	return size;
}

void writeEntireFile(const std::string& path, const char* data, size_t size)
{
	FILE* file = Platform::openFile(path, "wb");
	if(!file)
		throw FileUtilsExcep("Could not open '" + path + "' for writing.");
	const bool written = std::fwrite(data, 1, size, file) == size;
	if(std::fclose(file) != 0 || !written)
		throw FileUtilsExcep("Write to '" + path + "' failed.");
}

void writeEntireFile(const std::string& path, const unsigned char* data, size_t size)
{
	writeEntireFile(path, reinterpret_cast<const char*>(data), size);
}

void writeEntireFile(const std::string& path, const std::string& text) { writeEntireFile(path, text.data(), text.size()); }

void writeEntireFile(const std::string& path, const std::vector<unsigned char>& data)
{
	writeEntireFile(path, data.data(), data.size());
}

namespace
{

template <class Bytes>
void readWholeFile(const std::string& path, Bytes& out)
{
	FILE* file = Platform::openFile(path, "rb");
	if(!file)
		throw FileUtilsExcep("could not open '" + path + "' for reading.");
	out.clear();
	char buf[65536];
	size_t n;
	while((n = std::fread(buf, 1, sizeof(buf), file)) > 0)
		out.insert(out.end(), buf, buf + n);
	std::fclose(file);
}

} // namespace

void readEntireFile(const std::string& path, std::string& out) { readWholeFile(path, out); }

void readEntireFile(const std::string& path, std::vector<unsigned char>& out) { readWholeFile(path, out); }

void copyFile(const std::string& from, const std::string& to)
{
	std::vector<unsigned char> data;
	try
	{
		readEntireFile(from, data);
		writeEntireFile(to, data);
	}
	catch(const FileUtilsExcep&)
	{
		throw FileUtilsExcep("Failed to copy file '" + from + "' to '" + to + "'");
	}
}

void moveFile(const std::string& from, const std::string& to)
{
	if(!Platform::renamePath(from, to))
		throw FileUtilsExcep("Failed to move file '" + from + "' to '" + to + "'");
}

void deleteFile(const std::string& path)
{
	if(!Platform::removeFile(path))
		throw FileUtilsExcep("Failed to delete file '" + path + "'");
}

void deleteEmptyDirectory(const std::string& path)
{
	if(!Platform::removeEmptyDirectory(path))
		throw FileUtilsExcep("Failed to delete directory '" + path + "'");
}

} // namespace FileUtils
} // namespace Velorn
