#pragma once

#include "support/velorn_string.h"

namespace Velorn
{

// Told how far a long write has come.
class ProgressListener
{
public:
	virtual ~ProgressListener() = default;
	// fraction runs from 0 to 1.
	virtual void setProgress(float fraction) = 0;
};

// What writeXML needs to know of the file being written.
struct WriteContext
{
	String scene_path;                  // the file being written
	String scene_dir;                   // its directory
	bool write_absolute_paths = false;  // paths joined to scene_dir on writing
	bool write_uids = true;             // false: references are written by name
	ProgressListener* progress = nullptr;
};

} // namespace Velorn
