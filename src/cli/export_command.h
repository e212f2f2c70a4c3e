#pragma once

#include <optional>
#include <string>

// The work behind `velorn export`: the headless host loads the plug-in
// modules and the document, the plug-in exports one frame, and the scene is
// finalised and written with its meshes.
namespace ExportCommand
{

struct Options
{
	std::string document;
	// The scene file; empty: the document's name with ".vls", in the
	// working directory.
	std::string scene;
	// The host's plug-in directory.
	std::string plugins;
	// The frame to export; the document's current frame when not given.
	std::optional<int> frame;
};

// Runs the export and returns the line naming what was written. Whatever
// the plug-in printed on the host's console is in consoleText() afterwards,
// also when the export failed. A document that cannot be read, a directory
// that cannot be made or a document with nothing to export throws the
// library's exception; nothing is written then.
std::string run(const Options& options);

// The console lines the host recorded, one a line.
std::string consoleText();

} // namespace ExportCommand
