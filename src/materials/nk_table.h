#pragma once

#include "c4d/base_container.h"
#include "c4d/c4d_string.h"
#include "materials/material_ids.h"

#include <cstdint>

// The fixed list of n-k data files that MAT_PHONG_NK_FILE indexes.

// The number of files in the list (203).
int32_t NkFileCount();
// The file name at index; null outside the list.
const char* NkFileName(int32_t index);
// The index of name in the list, compared after the host's case folding of
// both; -1 when no file matches.
int32_t FindNkFile(const String& name);

// Brings the n-k choice of a material's container up to date: a file name
// left in MAT_PHONG_NK_NAME by an older document becomes the index of that
// file (when the list has it) and is removed; an index below 0 or above the
// count of the list is set to 0. True when the container changed.
bool MigrateNkName(BaseContainer& data);
