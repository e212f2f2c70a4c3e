#pragma once

#include "c4d/base_container.h"
#include "c4d/filename.h"
#include "c4d/ge_data.h"
#include "c4d/node_data.h"

#include <functional>
#include <initializer_list>
#include <utility>

// The flag the plug-in's tags register with: the tag shows in the object's
// tag list.
enum
{
	TAG_VISIBLE = 1,
};

// Runs registration with the resource string of nameId. A plug-in whose
// name is missing from the resource is skipped: that counts as success.
bool registerNamed(int32_t nameId, const std::function<bool(const String&)>& registration);

// Registers one of the plug-in's tags: visible, named by the resource
// string nameId (skipped when missing), with its description and the icon
// of the module's res folder.
bool registerTag(int32_t id, int32_t nameId, DataAllocator* allocator, const char* description, const char* icon);

// The file of the module's res folder, where icons and resources lie.
Filename moduleResourceFile(const char* name);

// Sets the values of an Init table; booleans are longs 0 and 1.
void setParameters(BaseContainer& data, std::initializer_list<std::pair<int32_t, GeData>> values);
