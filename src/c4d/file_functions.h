#pragma once

#include "c4d/filename.h"

// The host's file functions on names of the platform.

// Whether something exists under name; with isdir, whether it is a
// directory.
bool GeFExist(const Filename& name, bool isdir = false);

// What GeFKill may delete.
enum
{
	// A directory, not only a file.
	GE_FKILL_DIRECTORY = 1,
	// A directory with everything in it.
	GE_FKILL_RECURSIVE = 2,
};

// Deletes a file, or with the flags a directory (an empty one, or with
// GE_FKILL_RECURSIVE everything in it first). False when anything is left.
bool GeFKill(const Filename& name, int32_t flags = 0);
// Makes one directory; false when it is not there afterwards.
bool GeFCreateDir(const Filename& name);
