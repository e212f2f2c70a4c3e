#pragma once

#include "c4d/filename.h"

#include <cstdint>

// The folders of the application that plug-ins ask for by number.
enum
{
	// The user's preference folder of the application, where plug-ins keep
	// their own files.
	C4D_PATH_PREFS = 1,
};

// The folder whichpath names; an empty name for a number the host does not
// know. The headless host keeps its preferences in "Cinema 4D Headless" in
// the user's application data directory; the folder is not made here.
Filename GeGetC4DPath(int32_t whichpath);
