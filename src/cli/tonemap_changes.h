#pragma once

#include "c4d/dialog_script.h"
#include "scene/scene_node_root.h"
#include "support/reference.h"

#include <string>
#include <vector>

// `velorn render --in-host --tonemap KEY=VALUE`: changes made through the
// tone mapping dialog while the render runs, as a user would make them.
class TonemapChanges
{
public:
	// The keys, one a line with what they take, for the command's help.
	static const char* const help;

	// Reads the settings; a bad key or value throws the library's exception
	// with one line that names it.
	explicit TonemapChanges(const std::vector<std::string>& settings);

	// What a user does in the dialog for one KEY=VALUE; throws as above.
	static DialogAction actionOf(const std::string& setting);

	bool empty() const { return actions.empty(); }
	// Opens the dialog through its command, as the user would.
	void open();
	// One round of the main thread while the render runs: the dialog gets
	// its messages, and once it has followed the render's start, the
	// changes.
	void poll();
	// After the render: throws when the dialog refused a change (a layer the
	// render does not have) or the changes did not reach the render.
	void check() const;
	// One line a change made.
	std::string report() const;

private:
	std::vector<std::string> settings;
	std::vector<DialogAction> actions;
	bool made = false;
	Velorn::Reference<Velorn::SceneNodeRoot> root;
};
