#pragma once

#include <string>
#include <vector>

// The work behind `velorn command` and `velorn describe`: what a user does
// in the application's managers, on a host document in the headless host.
namespace DocumentCommands
{

struct CommandOptions
{
	std::string document;
	std::string plugins;
	// The command: its registered id, its name or its help text.
	std::string command;
	// The buttons the user presses in the question boxes the command asks,
	// in order (true: yes).
	std::vector<bool> answers;
	// The files the user chooses in the file requesters the command opens,
	// in order.
	std::vector<std::string> files;
	// What the user does in the dialog the command opens: first the values
	// typed into its items, each "ID=VALUE" (a check box takes on or off),
	// then the buttons clicked, by id.
	std::vector<std::string> sets;
	std::vector<int32_t> presses;
	// Where the changed document is saved; empty: it is not saved.
	std::string out;
};

// Runs a registered command on the document, as a click in a menu would,
// and reports the questions it asked with their answers, what was done in
// the dialogs it opened (which then run until nothing more happens in them,
// such as a bake they started), its undo entries, its console lines and
// where the document went. An unknown command, one that is disabled for the
// document (what it works on is not selected) or one that fails throws the
// library's exception.
std::string runCommand(const CommandOptions& options);

// What the attribute manager shows of the node named node (a material, an
// object or a tag, looked up in that order, or a shader of a material):
// every group and parameter the node's description leaves visible, one a
// line, indented by group, with its id, value and whether it can be edited.
std::string describe(const std::string& plugins, const std::string& document, const std::string& node);

} // namespace DocumentCommands
