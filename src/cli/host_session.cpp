#include "cli/host_session.h"

#include "c4d/console.h"
#include "c4d/document_file.h"
#include "support/exceptions.h"

HostSession::HostSession(const std::string& plugins, const std::string& document)
{
	HostConsole::get().clear();
	if(modules.start(Filename(String(plugins))) == 0)
		throw Velorn::FileUtilsExcep("No plug-in module started from '" + plugins + "'.");
	doc.reset(LoadDocumentFile(Filename(String(document))));
}

std::string HostSession::consoleText()
{
	std::string text;
	for(const String& line : HostConsole::get().texts(HostConsole::Kind::Print))
		text += line.GetStdString() + "\n";
	return text;
}
