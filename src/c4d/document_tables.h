#pragma once

#include "c4d/base_document.h"
#include "c4d/base_tag.h"
#include "c4d/ge_data.h"
#include "c4d/keyframe_track.h"

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

// The tag types whose own data a file holds, under the key named. The
// reader refuses the keys on tags of other types.
inline constexpr Name tagData[] = {
	{Tuvw, "uvw"},
	{Tpolygonselection, "selection"},
	{Tpointselection, "selection"},
	{Ttexture, "matrix"},
};

// The key of the data of tags of the type; null for a type without.
inline const char* tagDataKey(int32_t type)
{
	for(const Name& entry : tagData)
		if(entry.value == type)
			return entry.name;
	return nullptr;
}

// An object's keyframe tracks and their keys in the object's "tracks".
struct Track
{
	KeyframeTrack ObjectTracks::*track;
	const char* name;
};

inline constexpr Track tracks[] = {
	{&ObjectTracks::position, "position"},
	{&ObjectTracks::rotation, "rotation"},
	{&ObjectTracks::scale, "scale"},
};

// The form of document files this code reads and writes.
inline constexpr int32_t formatVersion = 1;

} // namespace DocumentTables
