#pragma once

#include "c4d/base_document.h"
#include "c4d/ge_data.h"

#include <cstdint>

// The names that document files use for host constants, shared by the reader
// and the writer so that both spell them the same way.
namespace DocumentTables
{

struct Name
{
	int32_t value;
	const char* name;
};

// Parameter types; "bool" is read into a long and written back as one,
// since the container keeps no separate boolean type.
inline constexpr Name paramTypes[] = {
	{DA_NIL, "none"},
	{DA_LONG, "long"},
	{DA_REAL, "real"},
	{DA_TIME, "time"},
	{DA_VECTOR, "vector"},
	{DA_STRING, "string"},
	{DA_FILENAME, "filename"},
	{DA_CONTAINER, "container"},
	{DA_ALIASLINK, "link"},
};

inline constexpr Name units[] = {
	{DOCUMENT_UNIT_KM, "km"},
	{DOCUMENT_UNIT_M, "m"},
	{DOCUMENT_UNIT_CM, "cm"},
	{DOCUMENT_UNIT_MM, "mm"},
};

inline constexpr Name modes[] = {
	{MODE_ON, "on"},
	{MODE_OFF, "off"},
	{MODE_UNDEF, "parent"},
};

// The form of document files this code reads and writes.
inline constexpr int32_t formatVersion = 1;

} // namespace DocumentTables
