#include "scene/ostream.h"

#include "support/exceptions.h"
#include "support/platform.h"
#include "support/string_utils.h"

#include <locale>

namespace Velorn
{

OFStream::OFStream(const std::string& path_) : path(path_)
{
	Platform::openFileStream(file, path, std::ios::out | std::ios::binary | std::ios::trunc);
	if(!file.is_open())
		throw VelornException("Failed to open file '" + path + "' for writing.");
	file.imbue(std::locale::classic());
}

void OFStream::write(const String& s)
{
	if(!s.empty())
		file.write(s.data(), (std::streamsize)s.size());
}

void OFStream::write(double d) { file << d; }

void OFStream::close()
{
	file.close();
	if(file.fail())
		throw VelornException("Error while writing to '" + path + "'.");
}

void BufferOStream::write(const String& s) { buffer.append(s); }

void BufferOStream::write(double d) { buffer += sceneNumberText(d).c_str(); }

} // namespace Velorn
