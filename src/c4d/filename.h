#pragma once

#include "c4d/c4d_string.h"

// The host's file name: a path as a string, with the parts the plug-in asks
// for. Separators are those of the platform.
class Filename
{
public:
	Filename() = default;
	Filename(const String& path_) : path(path_) {}
	Filename(const char* path_) : path(path_) {}

	const String& GetString() const { return path; }
	bool Content() const { return path.Content(); }
	// The last part of the path ("a/b.vls" gives "b.vls").
	Filename GetFile() const;
	// Everything before the last part ("a/b.vls" gives "a"); empty for a bare name.
	Filename GetDirectory() const;
	// The text after the last dot of the last part; empty when there is none.
	String GetSuffix() const;
	// Replaces the suffix of the last part, or adds one; an empty suffix removes it.
	void SetSuffix(const String& suffix);

	// The path with part appended after a separator; an absolute part replaces it.
	Filename& operator+=(const Filename& part);
	bool operator==(const Filename& o) const { return path == o.path; }
	bool operator!=(const Filename& o) const { return path != o.path; }

private:
	String path;
};

Filename operator+(Filename a, const Filename& part);
