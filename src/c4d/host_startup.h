#pragma once

#include <cstdint>

// The bits of the kind of the application's build, which plug-ins test
// before they change the managers' menus. The headless host reports bit 0
// set, unless a test sets other bits.
int32_t GeGetVersionType();
void SetVersionType(int32_t bits);

// Puts what plug-ins are offered at start-up back as the host starts: the
// version type, the main menus, and no preview scenes.
void ResetStartupServices();
