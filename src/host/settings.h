#pragma once

#include "c4d/filename.h"

#include <cstdint>

// Where the renderer is installed. The registry of the system is asked
// first; the plug-in's own settings file, filled by asking the user once,
// is the fallback. No message is shown for an unreadable key or file: each
// counts as absent.

// The plug-in's data directory: the user's application data directory and
// "Velorn for Cinema 4D", made if it does not exist.
Filename evelornDataDir();

// The renderer's directory as the installer recorded it, or an empty name.
Filename registryInstallDir();
// The choice between the two recorded directories: the renderer's, unless
// the realtime edition is in use and recorded, or the renderer's is empty.
Filename chooseInstallDir(const String& renderer_dir, const String& realtime_dir, int32_t realtime);

// True when the renderer's executable is found; out is then the full path
// of "velorn_console.exe" when console is set, else of "velorn.exe".
bool findRenderer(bool console, Filename& out);

// Records the renderer's directory in the settings file.
void saveRendererDir(const Filename& path);

// Asks for the renderer's directory until one holding "velorn.exe" is
// chosen (true, and it is saved) or the requester is cancelled (false).
bool askRendererDir();
