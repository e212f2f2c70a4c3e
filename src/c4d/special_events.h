#pragma once

#include "c4d/c4d_string.h"

#include <cstdint>

// A message plug-in: the host calls CoreMessage on the main thread for every
// special event posted under the plug-in's id. The registry owns the one
// instance.
class MessageData
{
public:
	virtual ~MessageData() = default;

	// An event posted with SpecialEventAdd(id, p1, p2); true when handled.
	virtual bool CoreMessage(int32_t id, uintptr_t p1, uintptr_t p2) = 0;
};

// The registry takes handler; it is deleted at once when the call fails.
bool RegisterMessagePlugin(int32_t id, const String& name, int32_t info, MessageData* handler);

// Posts an event for the main thread; any thread may call it, and it
// returns at once. The event waits in a queue until the main thread runs
// RunMainThreadEvents.
void SpecialEventAdd(int32_t id, uintptr_t p1 = 0, uintptr_t p2 = 0);

// Hands every waiting event, oldest first, to the message plug-in of its id,
// on the calling thread, which stands for the application's main thread.
// An event whose id has no message plug-in is dropped. The number of events
// taken from the queue.
int32_t RunMainThreadEvents();
// Events posted and not yet run.
int32_t PendingMainThreadEvents();
