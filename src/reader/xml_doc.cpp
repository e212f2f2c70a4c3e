#include "reader/xml_doc.h"

#include "support/exceptions.h"
#include "support/platform.h"

#include <cerrno>
#include <cstdio>

namespace Velorn
{

namespace
{

// Closes the file when the reading is over, whatever happens.
struct FileCloser
{
	FILE* file;
	~FileCloser()
	{
		if(file)
			std::fclose(file);
	}
};

} // namespace

VelornXMLDoc::VelornXMLDoc() = default;

VelornXMLDoc::VelornXMLDoc(const std::string& path_) : path(path_)
{
	// White space inside text is meaningful in scene files (CDATA keeps it
	// on writing); TinyXML must not collapse it on reading.
	TiXmlBase::SetCondenseWhiteSpace(false);
	FileCloser file{Platform::openFile(path, "rb")};
	if(!file.file)
		throw VelornException("Failed to open XML doc from path '" + path + "': " + Platform::lastErrorString());
	if(!doc.LoadFile(file.file))
		throw VelornException("failed to load XML doc from path '" + path + "': " + doc.ErrorDesc() + "  (Line " +
							  std::to_string(doc.ErrorRow()) + ", column " + std::to_string(doc.ErrorCol()) + ".)");
}

TiXmlElement* VelornXMLDoc::getRootElement()
{
	TiXmlElement* root = doc.RootElement();
	if(!root)
		throw VelornException("Could not root element in file '" + path + "'.");
	return root;
}

TiXmlElement* VelornXMLDoc::getRootElement(const std::string& name)
{
	TiXmlElement* root = doc.FirstChildElement(name.c_str());
	if(!root)
		throw VelornException("Could not find root '" + name + "' element in file '" + path + "'.");
	return root;
}

void VelornXMLDoc::saveDocument(const std::string& save_path)
{
	FileCloser file{Platform::openFile(save_path, "wb")};
	if(!file.file || !doc.SaveFile(file.file))
		throw VelornException("Failed to save XML document to '" + save_path + "': " + Platform::lastErrorString());
}

} // namespace Velorn
