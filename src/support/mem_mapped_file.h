#pragma once

#include <cstddef>
#include <string>

namespace Velorn
{

// A whole file mapped read-only into memory, for readers that want to walk
// its bytes without copying them. An empty file maps to size 0 and a null
// view. Throws PlatformUtilsExcep when the file cannot be opened or mapped,
// and for files of 4 GiB or more, which are mapped as one view.
class MemMappedFile
{
public:
	explicit MemMappedFile(const std::string& path);
	~MemMappedFile();
	MemMappedFile(const MemMappedFile&) = delete;
	MemMappedFile& operator=(const MemMappedFile&) = delete;

	size_t fileSize() const { return size; }
	const void* fileData() const { return view; }

private:
#ifdef _WIN32
	// The file's handle and the mapping's, each null when not open.
	void* file_handle = nullptr;
	void* mapping_handle = nullptr;
#else
	int file_handle = -1;
#endif
	void* view = nullptr;
	size_t size = 0;
};

} // namespace Velorn
