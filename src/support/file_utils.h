#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Files and paths over UTF-8 strings. Failures throw FileUtilsExcep. Separators are those of the platform;
// joined paths get its preferred one.
namespace Velorn
{
namespace FileUtils
{

// a, separator, b; an empty a gives b, an absolute b stays as it is.
std::string join(const std::string& a, const std::string& b);
// Everything before the last separator; empty when there is none.
std::string getDirectory(const std::string& path);
// Everything after the last separator.
std::string getFilename(const std::string& path);
// The path without its last extension ("a/b.c.vls" gives "a/b.c").
std::string eatExtension(const std::string& path);
// Turns every separator into the platform's preferred one.
std::string toPlatformSeparators(const std::string& path);
// path as seen from the directory base. Both must have 4 to 2048 characters, else the result is empty;
// a path on another drive (another first letter) stays as it is. Below base, the rest of path after
// base; elsewhere one ".." step per directory of base past their last common directory, then the rest
// of path after that directory. A result longer than 2048 characters is relative_path_too_long.
std::string relativePath(const std::string& base, const std::string& path);
extern const char* const relative_path_too_long;

// The path joined to the working directory, unless it is absolute already.
std::string makeAbsolute(const std::string& path);

bool fileExists(const std::string& path);

// The names of the entries of a directory (files and directories).
std::vector<std::string> getFilesInDir(const std::string& path);
uint64_t getFileSize(const std::string& path);
void writeEntireFile(const std::string& path, const std::string& text);
void writeEntireFile(const std::string& path, const std::vector<unsigned char>& data);
void writeEntireFile(const std::string& path, const char* data, size_t size);
void writeEntireFile(const std::string& path, const unsigned char* data, size_t size);
void readEntireFile(const std::string& path, std::string& out);
void readEntireFile(const std::string& path, std::vector<unsigned char>& out);
void copyFile(const std::string& from, const std::string& to);
void moveFile(const std::string& from, const std::string& to);
void deleteFile(const std::string& path);
void deleteEmptyDirectory(const std::string& path);
// Makes every directory of the path that does not exist yet; the last
// component counts as a directory too. Throws FileUtilsExcep on failure.
void createDirsForPath(const std::string& path);

} // namespace FileUtils
} // namespace Velorn
