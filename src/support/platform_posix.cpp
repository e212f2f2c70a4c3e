#include "support/platform.h"

#include "support/exceptions.h"
#include "support/mem_mapped_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
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

FILE* openFile(const std::string& path, const char* mode) { return std::fopen(path.c_str(), mode); }

void openFileStream(std::ofstream& stream, const std::string& path, std::ios::openmode mode) { stream.open(path, mode); }

void openFileStream(std::ifstream& stream, const std::string& path, std::ios::openmode mode) { stream.open(path, mode); }

std::string errorString(int code) { return std::string(std::strerror(code)) + " (error code=" + std::to_string(code) + ")"; }

std::string lastErrorString() { return errorString(errno); }

} // namespace Platform

MemMappedFile::MemMappedFile(const std::string& path)
{
	file_handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
	if(file_handle < 0)
		throw PlatformUtilsExcep("CreateFile failed for path '" + path + "': " + Platform::lastErrorString());
	struct stat info;
	if(::fstat(file_handle, &info) != 0)
	{
		const std::string error = Platform::lastErrorString();
		::close(file_handle);
		throw PlatformUtilsExcep("GetFileSizeEx failed: " + error);
	}
	if((uint64_t)info.st_size >= ((uint64_t)1 << 32))
	{
		::close(file_handle);
		throw PlatformUtilsExcep("File is too large.");
	}
	size = (size_t)info.st_size;
	if(size == 0)
		return; // nothing to map: readers see an empty buffer
	view = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file_handle, 0);
	if(view == MAP_FAILED)
	{
		const std::string error = Platform::lastErrorString();
		view = nullptr;
		::close(file_handle);
		throw PlatformUtilsExcep("MapViewOfFile failed: " + error);
	}
}

MemMappedFile::~MemMappedFile()
{
	if(view)
		::munmap(view, size);
	if(file_handle >= 0)
		::close(file_handle);
}

} // namespace Velorn
