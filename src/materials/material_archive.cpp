#include "materials/material_archive.h"

#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform.h"

#include <zip.h>

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

namespace
{

// More than this, unpacked, is no material: it guards the disk against an
// archive whose entries expand without bound.
const uint64_t max_unpacked_bytes = uint64_t(1) << 30;

struct CloseArchive
{
	void operator()(zip_t* archive) const { zip_discard(archive); }
};
using Archive = std::unique_ptr<zip_t, CloseArchive>;

struct CloseEntry
{
	void operator()(zip_file_t* file) const { zip_fclose(file); }
};

struct CloseFile
{
	void operator()(FILE* file) const { std::fclose(file); }
};

std::string openError(int code)
{
	zip_error_t error;
	zip_error_init_with_code(&error, code);
	const std::string text = zip_error_strerror(&error);
	zip_error_fini(&error);
	return text;
}

bool endsWithVlm(const std::string& name)
{
	if(name.size() < 4)
		return false;
	std::string suffix = name.substr(name.size() - 4);
	for(char& c : suffix)
		c = (char)std::tolower((unsigned char)c);
	return suffix == ".vlm";
}

// One entry of the archive as it will be unpacked.
struct Entry
{
	zip_uint64_t index;
	std::string name;
	bool directory;
	uint64_t size;
};

// Writes one entry's bytes to path; the reason on failure.
std::string unpackEntry(zip_t* archive, const Entry& entry, const std::string& path)
{
	std::unique_ptr<zip_file_t, CloseEntry> source(zip_fopen_index(archive, entry.index, 0));
	if(!source)
		return zip_strerror(archive);
	std::unique_ptr<FILE, CloseFile> target(Velorn::Platform::openFile(path, "wb"));
	if(!target)
		return "cannot write '" + path + "': " + Velorn::Platform::lastErrorString();
	std::vector<char> buffer(1 << 16);
	uint64_t total = 0;
	for(;;)
	{
		const zip_int64_t got = zip_fread(source.get(), buffer.data(), buffer.size());
		if(got < 0)
			return zip_file_strerror(source.get());
		if(got == 0)
			break;
		total += (uint64_t)got;
		// The stated size bounds what is written, whatever the data claims.
		if(total > entry.size)
			return "the entry holds more data than its stated size";
		if(std::fwrite(buffer.data(), 1, (size_t)got, target.get()) != (size_t)got)
			return "cannot write '" + path + "'";
	}
	if(total != entry.size)
		return "the entry holds less data than its stated size";
	if(std::fclose(target.release()) != 0)
		return "cannot write '" + path + "'";
	return std::string();
}

std::string unpackAll(zip_t* archive, const std::vector<Entry>& entries, const std::string& folder)
{
	for(const Entry& entry : entries)
	{
		std::string relative = entry.name;
		if(entry.directory)
			relative.pop_back();
		const std::string path = Velorn::FileUtils::join(folder, Velorn::FileUtils::toPlatformSeparators(relative));
		try
		{
			Velorn::FileUtils::createDirsForPath(entry.directory ? path : Velorn::FileUtils::getDirectory(path));
		}
		catch(const Velorn::FileUtilsExcep& e)
		{
			return "entry '" + entry.name + "': " + e.what();
		}
		if(entry.directory)
			continue;
		const std::string failure = unpackEntry(archive, entry, path);
		if(!failure.empty())
			return "entry '" + entry.name + "': " + failure;
	}
	return std::string();
}

} // namespace

std::string unsafeEntryReason(const std::string& name)
{
	if(name.empty())
		return "an empty name";
	if(name[0] == '/')
		return "an absolute path";
	if(name.find('\\') != std::string::npos)
		return "a backslash";
	if(name.find(':') != std::string::npos)
		return "a drive letter or colon";
	// A folder entry ends in "/"; every part before must be a real name.
	const std::string body = name.back() == '/' ? name.substr(0, name.size() - 1) : name;
	size_t start = 0;
	for(;;)
	{
		const size_t end = body.find('/', start);
		const std::string part = body.substr(start, end == std::string::npos ? std::string::npos : end - start);
		if(part.empty())
			return "an empty part";
		if(part == "..")
			return "a \"..\" part";
		if(end == std::string::npos)
			return std::string();
		start = end + 1;
	}
}

ArchiveUnpack unpackMaterialArchive(const std::string& archive_path, const std::string& folder)
{
	ArchiveUnpack result;
	const std::string subject = "Material archive '" + archive_path + "'";
	int code = 0;
	Archive archive(zip_open(archive_path.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &code));
	if(!archive)
	{
		result.message = subject + " cannot be read: " + openError(code) + ".";
		return result;
	}

	// Every name is checked before anything is written, so that a refused
	// archive leaves nothing behind.
	const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
	std::vector<Entry> entries;
	uint64_t total = 0;
	for(zip_int64_t i = 0; i < count; ++i)
	{
		zip_stat_t stat;
		zip_stat_init(&stat);
		if(zip_stat_index(archive.get(), (zip_uint64_t)i, 0, &stat) != 0 || !(stat.valid & ZIP_STAT_NAME) ||
			!(stat.valid & ZIP_STAT_SIZE))
		{
			result.message = subject + " is damaged: " + zip_strerror(archive.get()) + ".";
			return result;
		}
		const std::string name = stat.name;
		const std::string reason = unsafeEntryReason(name);
		if(!reason.empty())
		{
			result.message = subject + " was refused: its entry '" + name + "' would unpack outside the folder (" +
				reason + "); nothing of it was kept.";
			return result;
		}
		total += stat.size;
		if(total > max_unpacked_bytes)
		{
			result.message = subject + " was refused: it unpacks to more than 1 GiB.";
			return result;
		}
		entries.push_back({(zip_uint64_t)i, name, name.back() == '/', stat.size});
	}

	for(const Entry& entry : entries)
		if(!entry.directory && entry.name.find('/') == std::string::npos && endsWithVlm(entry.name))
		{
			result.material_file = Velorn::FileUtils::join(folder, entry.name);
			break;
		}
	if(result.material_file.empty())
	{
		result.message = subject + " holds no .vlm file at its top.";
		return result;
	}

	if(Velorn::Platform::pathExists(folder))
	{
		result.material_file.clear();
		result.message = subject + " was not unpacked: the folder '" + folder + "' exists already.";
		return result;
	}
	const std::string failure = unpackAll(archive.get(), entries, folder);
	if(!failure.empty())
	{
		removeTree(folder);
		result.material_file.clear();
		result.message = subject + " is damaged (" + failure + "); nothing of it was kept.";
		return result;
	}
	result.ok = true;
	return result;
}

void removeTree(const std::string& path)
{
	if(Velorn::Platform::isDirectory(path))
	{
		std::vector<std::string> names;
		Velorn::Platform::listDirectory(path, names);
		for(const std::string& name : names)
			removeTree(Velorn::FileUtils::join(path, name));
		Velorn::Platform::removeEmptyDirectory(path);
	}
	else
		Velorn::Platform::removeFile(path);
}
