#pragma once

#include <cstdint>

// The plug-in's start, end and messages, which c4d_main hands on.

// Loads the SDK, registers the plug-ins in their fixed order, adds the
// material preview scenes and prints the banner. False when a registration
// fails: the host then unloads the module.
bool PluginStart();
void PluginEnd();
// True when the message was handled.
bool PluginMessage(int32_t id, void* data);

// The plug-in's entries in the host's main menus; each adds nothing that is
// there already.
void EnhanceMaterialManagerMenu();
void EnhancePictureViewerMenu();
