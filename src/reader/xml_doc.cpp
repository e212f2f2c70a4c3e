#include "reader/xml_doc.h"

#include "reader/xml_nesting.h"

#include "support/exceptions.h"
#include "support/file_utils.h"
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

// The whole file, with its line ends made single newlines as TinyXML's own
// file loading does.
std::string readText(const std::string& path)
{
	std::string raw;
	try
	{
		FileUtils::readEntireFile(path, raw);
	}
	catch(const FileUtilsExcep&)
	{
		throw VelornException("Failed to open XML doc from path '" + path + "': " + Platform::lastErrorString());
	}
	std::string text;
	text.reserve(raw.size());
	for(size_t i = 0; i < raw.size(); ++i)
	{
		if(raw[i] != '\r')
			text.push_back(raw[i]);
		else if(i + 1 >= raw.size() || raw[i + 1] != '\n')
			text.push_back('\n');
	}
	return text;
}

} // namespace

VelornXMLDoc::VelornXMLDoc() = default;

VelornXMLDoc::VelornXMLDoc(const std::string& path_) : path(path_)
{
	// White space inside text is meaningful in scene files (CDATA keeps it
	// on writing); TinyXML must not collapse it on reading.
	TiXmlBase::SetCondenseWhiteSpace(false);
	std::string text = readText(path);
	// TinyXML reads elements recursively: a text that nests too deep is
	// refused before it can run the thread out of stack.
	XMLNestingCheck::checkText(text, "'" + path + "'");
	doc.Parse(text.c_str(), nullptr, TIXML_DEFAULT_ENCODING);
	if(doc.Error())
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
