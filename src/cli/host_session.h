#pragma once

#include "c4d/base_document.h"
#include "c4d/plugin_modules.h"

#include <memory>
#include <string>

// What every command of the velorn tool that works on a host document starts
// with: the headless host loads and starts the plug-in modules, then reads
// the document, whose nodes may be of the plug-in's types. The document goes
// before the modules end, since their code frees those nodes.
class HostSession
{
public:
	// Empties the host's console first. Throws the library's exception when
	// no module starts or the document cannot be read; a document file that
	// is missing or not JSON fails before any module starts, so that its
	// error does not come after the plug-in's start-up lines.
	HostSession(const std::string& plugins, const std::string& document);

	BaseDocument& document() const { return *doc; }

	// The console lines the host recorded, one a line; nothing when quiet.
	static std::string consoleText();
	// Whether commands leave the plug-in's console lines out of their
	// output (velorn --quiet).
	static void setQuiet(bool on) { quiet_console = on; }
	static bool quiet() { return quiet_console; }

private:
	struct FreeDocument
	{
		void operator()(BaseDocument* d) const { BaseDocument::Free(d); }
	};

	static inline bool quiet_console = false;
	PluginModules modules;
	std::unique_ptr<BaseDocument, FreeDocument> doc;
};
