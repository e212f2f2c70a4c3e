#pragma once

#include <CLI/CLI.hpp>

#include <string>

// The example that ends the --help of each command of the velorn tool, so
// that a new user sees one working line: the files named are those of the
// repository (examples/, docs/) or the ones an earlier example writes.
namespace CommandExamples
{

struct Example
{
	// The command as typed after "velorn", such as "mesh info"; empty for
	// velorn itself.
	const char* command;
	const char* line;
};

inline constexpr Example examples[] = {
	{"", "velorn export examples/studio.json -o out/studio.vls"},
	{"sample", "velorn sample -o out"},
	{"scene", "velorn scene check out/sample.vls"},
	{"scene check", "velorn scene check out/sample.vls"},
	{"scene format", "velorn scene format out/sample.vls -o out/formatted.vls"},
	{"mesh", "velorn mesh info examples/models/torus.obj"},
	{"mesh info", "velorn mesh info examples/models/torus.obj"},
	{"mesh convert", "velorn mesh convert examples/models/torus.obj out/torus.vlmesh"},
	{"export", "velorn export examples/studio.json -o out/studio.vls"},
	{"command", "velorn command examples/studio.json \"Convert Materials\" --answer yes -o out/converted.json"},
	{"describe", "velorn describe out/converted.json \"Crate Paint\""},
	{"import-material", "velorn import-material examples/materials.vlm examples/studio.json -o out/imported.json"},
	{"render", "velorn render examples/studio.json --in-host -o out/studio.png --spp 4"},
	{"draw", "velorn draw examples/editor_view.json -o out/view.png"},
};

// Gives app, as the command path, and each of its commands the footer
// "Example: <line>" of its row above; commands without a row keep theirs.
inline void addExamples(CLI::App& app, const std::string& path = "")
{
	for(const Example& example : examples)
		if(path == example.command)
			app.footer(std::string("Example: ") + example.line);
	for(CLI::App* sub : app.get_subcommands({}))
		addExamples(*sub, path.empty() ? sub->get_name() : path + " " + sub->get_name());
}

} // namespace CommandExamples
