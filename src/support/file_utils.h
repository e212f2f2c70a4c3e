#pragma once

#include <string>

// Path handling over UTF-8 strings. Separators are those of the platform;
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

// The path joined to the working directory, unless it is absolute already.
std::string makeAbsolute(const std::string& path);

bool fileExists(const std::string& path);
// Makes every directory of the path that does not exist yet; the last
// component counts as a directory too. Throws FileUtilsExcep on failure.
void createDirsForPath(const std::string& path);

} // namespace FileUtils
} // namespace Velorn
