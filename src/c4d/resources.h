#pragma once

#include "c4d/filename.h"

#include "support/exceptions.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

// A string table file that cannot be read as one.
class ResourceExcep : public Velorn::MessageException
{
public:
	using MessageException::MessageException;
};

// A module's strings by numeric id. The file form, UTF-8, one string a line:
//
//   // Command names
//   1000 "Velorn Renderer"
//   1001 "Say \"hello\"\nand a second line"
//
// Blank lines and lines whose first non-blank characters are // are skipped.
// Any other line is an id (a decimal integer that fits 32 bits), white
// space, and the text in double quotes, where \" stands for a quote, \\ for
// a backslash and \n for a line break. Only white space may follow the
// closing quote. An id may be given once.
class StringTable
{
public:
	// Reads text in the form above. Failures throw ResourceExcep with
	// "source:line: " in front of the message.
	static StringTable parse(const std::string& text, const std::string& source);
	// Reads the file; an unreadable file throws FileUtilsExcep.
	static StringTable load(const Filename& file);

	void set(int32_t id, const String& text);
	// The text of id in out; false, out untouched, when the table has none.
	bool find(int32_t id, String& out) const;
	size_t size() const { return strings.size(); }

private:
	std::map<int32_t, String> strings;
};

// The string table of the loaded module's resource, read by GeLoadString.
// Render threads look strings up too: every member locks.
class HostResources
{
public:
	// The host's one resource.
	static HostResources& get();

	// The file of the string table below a module's directory.
	static Filename stringsFile(const Filename& module_dir);

	// Loads the table of stringsFile(module_dir). On failure the table is
	// empty, error() tells why and the result is false.
	bool init(const Filename& module_dir);
	void setStrings(const StringTable& table);
	// Empties the table and the error.
	void clear();

	bool find(int32_t id, String& out) const;
	// Why the last init failed; empty after a success.
	String error() const;

private:
	mutable std::mutex mutex;
	StringTable table;
	String last_error;
};

// The string of id in the loaded resource; an empty string when the
// resource has none (HostResources::find tells the two apart).
String GeLoadString(int32_t id);
