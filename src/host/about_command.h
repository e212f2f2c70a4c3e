#pragma once

// The About command shows the plug-in's version text. Registered under its
// resource name, skipped when the resource has none.
bool RegisterAboutCommand();

// A command without a name that does nothing: it keeps the plug-in's place
// in the command palette.
bool RegisterPlaceholderCommand();
