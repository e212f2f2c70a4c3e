#pragma once

#include "c4d/plugin_registry.h"

class BaseDocument;

// What came of a click on a command.
enum class COMMANDRESULT
{
	// Execute ran and succeeded.
	OK,
	// Execute ran and reported a failure.
	FAILED,
	// The command's state lacked CMD_ENABLED: the menu shows it greyed out,
	// so no click reaches it, and Execute did not run.
	DISABLED,
};

// What the application does when the user picks a registered command on
// doc: it asks the command's state, and runs Execute only when the state
// has CMD_ENABLED.
COMMANDRESULT RunCommand(const PluginRecord& record, BaseDocument* doc);
