#include "cli/host_session.h"

#include "c4d/console.h"
#include "c4d/document_checks.h"
#include "c4d/document_file.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

namespace
{

// The text of the document file, checked to be JSON. Whether its nodes are
// right can only be known once the plug-in has registered its types.
std::string readDocumentText(const std::string& document)
{
	std::string text;
	Velorn::FileUtils::readEntireFile(document, text);
	DocumentChecks::parse(text, document);
	return text;
}

} // namespace

HostSession::HostSession(const std::string& plugins, const std::string& document)
{
	HostConsole::get().clear();
	const std::string text = readDocumentText(document);
	if(modules.start(Filename(String(plugins))) == 0)
		throw Velorn::FileUtilsExcep("No plug-in module started from '" + plugins + "'.");
	doc.reset(ReadDocumentText(text, Filename(String(document))));
}

std::string HostSession::consoleText()
{
	std::string text;
	if(quiet_console)
		return text;
	for(const String& line : HostConsole::get().texts(HostConsole::Kind::Print))
		text += line.GetStdString() + "\n";
	return text;
}
