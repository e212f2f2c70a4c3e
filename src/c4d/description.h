#pragma once

#include "c4d/base_container.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class AtomArray;

// One level of a parameter's address: its id, and the data type and
// creator that the application keeps beside it.
struct DescLevel
{
	DescLevel(int32_t id_, int32_t dtype_ = 0, int32_t creator_ = 0) : id(id_), dtype(dtype_), creator(creator_) {}

	int32_t id;
	int32_t dtype;
	int32_t creator;
};

// The address of a parameter in a description. The plug-in's parameters
// sit at the top level, so an address here has one level.
class DescID
{
public:
	DescID(int32_t id) : level(id) {}
	DescID(const DescLevel& level_) : level(level_) {}

	const DescLevel& operator[](int32_t) const { return level; }
	int32_t GetDepth() const { return 1; }

	bool operator==(const DescID& o) const { return level.id == o.level.id; }
	bool operator!=(const DescID& o) const { return !(*this == o); }

private:
	DescLevel level;
};

// The fields of a parameter's settings container, by the application's numbers.
enum
{
	DESC_NAME = 1,
	DESC_SHORT_NAME = 2,
	DESC_MIN = 5,
	DESC_MAX = 6,
	DESC_STEP = 9,
	DESC_PARENTGROUP = 13,
	// A container of the node types a link accepts (type → type), such as
	// Xbase for any shader or Mbase for any material.
	DESC_ACCEPT = 17,
	// A container of value → label, the entries of a cycle.
	DESC_CYCLE = 14,
	DESC_HIDE = 15,
	DESC_DEFAULT = 16,
	DESC_MINSLIDER = 27,
	DESC_MAXSLIDER = 28,
};

// The kinds of description entries, by the application's numbers.
enum
{
	DTYPE_GROUP = 1,
	DTYPE_COLOR = 3,
	DTYPE_LONG = 15,
	DTYPE_REAL = 19,
	DTYPE_VECTOR = 23,
	DTYPE_STRING = 130,
	DTYPE_FILENAME = 131,
	DTYPE_BASELISTLINK = 133,
	DTYPE_BOOL = 400006001,
	// A button: it holds no value, and a press sends the node
	// MSG_DESCRIPTION_COMMAND.
	DTYPE_BUTTON = 8,
	// A gadget that shows a picture (bitmap_gadget.h).
	CUSTOMDATATYPE_BITMAP_GADGET = 1001053,
};

// Flags of GetDDescription, GetDParameter and SetDParameter.
enum
{
	DESCFLAGS_DESC_NONE = 0,
	// Set by GetDDescription once the description is loaded and complete.
	DESCFLAGS_DESC_LOADED = 1 << 1,
	DESCFLAGS_GET_NONE = 0,
	// Set by GetDParameter when it filled the value itself.
	DESCFLAGS_GET_PARAM_GET = 1 << 1,
	DESCFLAGS_SET_NONE = 0,
	// Set by SetDParameter when it stored the value itself.
	DESCFLAGS_SET_PARAM_SET = 1 << 1,
	DESCFLAGS_ENABLE_NONE = 0,
};

// One entry of a description: a parameter or a group, with its settings
// (name, range, cycle, hide flag, ...) and the group it belongs to.
struct DescriptionEntry
{
	DescID id;
	int32_t dtype;
	BaseContainer settings;
	// The id of the group the entry sits in; 0 at the top.
	int32_t parent = 0;
};

// What the attribute manager shows of a node: its parameters and groups in
// order, each with a settings container. A node's description comes from
// the module's resources (LoadDescription); the node's plug-in then changes
// it at run time in GetDDescription (cycles filled, entries hidden,
// entries added).
class Description
{
public:
	// Replaces the entries with the description that the plug-in of the
	// node type registered, read from the module's res/description folder
	// (description_file.h). False when the type has no description or its
	// file cannot be read; the entries are then unchanged.
	bool LoadDescription(int32_t type);

	// The settings of the entry id, to be changed in place; null when the
	// description has none. ar is accepted for the application's signature.
	BaseContainer* GetParameterI(const DescID& id, AtomArray* ar = nullptr);
	const DescriptionEntry* find(const DescID& id) const;
	// Adds the entry at the end of group, or replaces the one of that id in
	// place; false for id 0. The settings are kept with DESC_PARENTGROUP set
	// to the group's id. Pointers from GetParameterI and find stay good
	// only until an entry is added.
	bool SetParameter(const DescID& id, int32_t dtype, const BaseContainer& settings, const DescID& group);
	// The ids of the entries whose group is group (0 for the top), in
	// order; entries of groups inside it are not included.
	std::vector<DescID> groupEntries(const DescID& group) const;

	// The entries in order.
	const std::vector<DescriptionEntry>& entries() const { return items; }
	// Whether the entry is hidden itself or sits in a hidden group; false
	// for an id the description does not hold.
	bool IsHidden(const DescID& id) const;

private:
	// Whether entry sits in group, directly or through groups inside it.
	bool isInside(const DescriptionEntry& entry, int32_t group) const;

	std::vector<DescriptionEntry> items;
};

// The settings a new entry of the kind starts with: its name empty, no
// range, not hidden.
BaseContainer GetCustomDataTypeDefault(int32_t dtype);
