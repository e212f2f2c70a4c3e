#include "c4d/filename.h"

#include "support/file_utils.h"

namespace FileUtils = Velorn::FileUtils;

Filename Filename::GetFile() const
{
	return String(FileUtils::getFilename(path.GetStdString()));
}

Filename Filename::GetDirectory() const
{
	return String(FileUtils::getDirectory(path.GetStdString()));
}

String Filename::GetSuffix() const
{
	const std::string& full = path.GetStdString();
	const size_t stem = FileUtils::eatExtension(full).size();
	return String(stem == full.size() ? std::string() : full.substr(stem + 1));
}

void Filename::SetSuffix(const String& suffix)
{
	const std::string stem = FileUtils::eatExtension(path.GetStdString());
	path = String(suffix.Content() ? stem + "." + suffix.GetStdString() : stem);
}

Filename& Filename::operator+=(const Filename& part)
{
	path = String(FileUtils::join(path.GetStdString(), part.path.GetStdString()));
	return *this;
}

Filename operator+(Filename a, const Filename& part)
{
	return a += part;
}
