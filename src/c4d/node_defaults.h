#pragma once

#include "c4d/base_list.h"

#include <cstdint>
#include <functional>

// What a node kind's Init sets: the parameter values a fresh node of that
// type starts with. A plug-in registers one per node type it brings; the
// document loader runs it on every node it allocates, before the file's
// values go on top, as the application does when it reads a document.
using NodeDefaults = std::function<void(BaseList2D&)>;

// Replaces the defaults of type; an empty function removes them.
void RegisterNodeDefaults(int32_t type, NodeDefaults init);
// Runs the defaults registered for the node's type; nothing when there are none.
void ApplyNodeDefaults(BaseList2D& node);
