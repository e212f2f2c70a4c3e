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
	// no module starts or the document cannot be read.
	HostSession(const std::string& plugins, const std::string& document);

	BaseDocument& document() const { return *doc; }

	// The console lines the host recorded, one a line.
	static std::string consoleText();

private:
	struct FreeDocument
	{
		void operator()(BaseDocument* d) const { BaseDocument::Free(d); }
	};

	PluginModules modules;
	std::unique_ptr<BaseDocument, FreeDocument> doc;
};
