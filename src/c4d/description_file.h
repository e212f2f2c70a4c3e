#pragma once

#include "c4d/description.h"
#include "c4d/filename.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// A label of a description file: a text as it is, or the id of a string of
// the module's string table, looked up each time the description is loaded
// so that it follows the table the host has then.
struct DescriptionText
{
	String text;
	std::optional<int32_t> resource;

	// The text, or the string of the resource id (empty when the table has
	// none).
	String get() const;
};

// One entry of a description file. Its settings hold everything but the
// texts: the range, the hide flag, the parent group and the accepted types.
struct DescriptionFileEntry
{
	DescriptionEntry entry;
	DescriptionText name;
	// A long's cycle: value and label, in file order. An empty cycle is
	// still a cycle, one that the plug-in fills at run time.
	std::optional<std::vector<std::pair<int32_t, DescriptionText>>> cycle;
};

// The description of one node type as its file gives it; docs/
// description-format.md describes the form. A module keeps one file per
// type, <module directory>/res/description/<symbol>.json.
struct DescriptionFile
{
	String symbol;
	std::vector<DescriptionFileEntry> entries;

	// Reads text of the file form; file names the file in messages, symbol
	// is the one the file must declare. A bad file throws DocumentFileExcep
	// "<file>: <place>: <what is wrong>", the place a path into the JSON text
	// such as entries[3].cycle[1][0].
	static DescriptionFile parse(const std::string& text, const std::string& file, const String& symbol);
	// Reads the file; an unreadable file throws FileUtilsExcep.
	static DescriptionFile load(const Filename& file, const String& symbol);

	// The entries with their texts looked up, as a Description holds them.
	std::vector<DescriptionEntry> resolve() const;
};
