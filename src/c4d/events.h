#pragma once

#include <cstdint>

// Tells the application that something changed, so that it redraws the
// views and managers once the current command is done. The headless host
// counts the calls, so that tests can see that a change was announced, and
// its dialog loop sends the open dialogs the core message EVMSG_CHANGE.
void EventAdd(int32_t flags = 0);
// True, once, when EventAdd was called since the last time it was asked.
bool TakeChangeEvent();
// How many times EventAdd was called since the start (or the last reset).
int32_t EventCount();
void ResetEventCount();
