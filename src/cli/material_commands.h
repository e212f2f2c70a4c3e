#pragma once

#include <string>

// The work behind `velorn import-material`: the plug-in's command
// "Import .vlm" on a host document in the headless host, with the file
// answered to its file requester.
namespace MaterialCommands
{

struct ImportOptions
{
	// The material file (.vlm) or packed material file (.pvlm).
	std::string file;
	std::string document;
	// Where the document goes; empty: back to where it was read from.
	std::string out;
	std::string plugins;
};

// Runs the import and saves the document. The report holds the console
// lines of the import, the text of its warnings dialog and where the
// document went. A plug-in without the command, or a document that cannot
// be read or written, throws the library's exception.
std::string importMaterial(const ImportOptions& options);

} // namespace MaterialCommands
