#pragma once

#include <cstdint>

// Tells the application that something changed, so that it redraws the
// views and managers once the current command is done. The headless host
// only counts the calls, so that tests can see that a change was announced.
void EventAdd(int32_t flags = 0);
// How many times EventAdd was called since the start (or the last reset).
int32_t EventCount();
void ResetEventCount();
