#pragma once

#include <tinyxml.h>

#include <string>

namespace Velorn
{

// An XML document read from a file (or made in memory with an empty path),
// kept with the path it came from for messages. White space in text is kept
// as it stands. Failures throw VelornException.
class VelornXMLDoc
{
public:
	// An empty in-memory document.
	VelornXMLDoc();
	// Opens and parses the file at path (UTF-8).
	explicit VelornXMLDoc(const std::string& path);

	// The first element of the document.
	TiXmlElement* getRootElement();
	// The first top-level element called name.
	TiXmlElement* getRootElement(const std::string& name);
	void saveDocument(const std::string& path);

	TiXmlDocument doc;
	std::string path;
};

} // namespace Velorn
