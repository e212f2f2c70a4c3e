#pragma once

#include "c4d/filename.h"

#include "support/exceptions.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

struct DescriptionFile;

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

// The resources of the loaded module: its directory, the string table read
// by GeLoadString, and the description files of its node types, each read
// on first use and kept. Render threads look strings up too: every member
// locks.
class HostResources
{
public:
	// The host's one resource.
	static HostResources& get();

	// The file of the string table below a module's directory.
	static Filename stringsFile(const Filename& module_dir);
	// The description file of the node type whose plug-in registered symbol.
	static Filename descriptionFile(const Filename& module_dir, const String& symbol);

	// Keeps module_dir as the module's directory, forgets the descriptions
	// read before and loads the table of stringsFile(module_dir). On failure
	// the table is empty, error() tells why and the result is false; the
	// directory is kept all the same, since a module may have descriptions
	// without strings.
	bool init(const Filename& module_dir);
	void setStrings(const StringTable& table);
	// Empties the table, the error, the module directory and the
	// descriptions read.
	void clear();

	bool find(int32_t id, String& out) const;
	// Why the last init failed; empty after a success.
	String error() const;
	// The directory given to init; empty before init and after clear.
	Filename moduleDirectory() const;

	// The description file of symbol below the module directory, read on
	// the first call and kept until init or clear, a failure as well. Null
	// when it cannot be read: the call that tried sets failure to why, later
	// calls leave failure empty, so that the reason is told once.
	std::shared_ptr<const DescriptionFile> description(const String& symbol, String& failure);

private:
	mutable std::mutex mutex;
	StringTable table;
	String last_error;
	Filename module_dir;
	// Apart from the strings, so that lookups of strings from render threads
	// do not wait while a description file is read.
	std::mutex descriptions_mutex;
	// The files read by symbol; null for one that could not be read.
	std::map<String, std::shared_ptr<const DescriptionFile>> descriptions;
};

// The string of id in the loaded resource; an empty string when the
// resource has none (HostResources::find tells the two apart).
String GeLoadString(int32_t id);
