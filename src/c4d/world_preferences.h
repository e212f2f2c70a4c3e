#pragma once

#include "c4d/base_container.h"

#include <cstdint>

// Items of the host's general preferences.
enum
{
	// The length unit, one of the DOCUMENT_UNIT_ constants.
	WPREF_UNITS = 10000,
};

// The host's general preferences, one container for the whole application,
// as plug-ins read them. The length unit lives here: documents have no unit
// of their own, so BaseDocument's unit is this preference.
BaseContainer* GetWorldContainerInstance();
BaseContainer GetWorldContainer();
// Back to the host's defaults (unit: centimetres).
void ResetWorldPreferences();

// The number of threads the host renders with: the machine's cores, unless
// a test fixed the number (0 returns to the machine's).
int32_t GeGetCurrentThreadCount();
void FixHostThreadCount(int32_t count);
