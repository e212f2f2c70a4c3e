#include "c4d/events.h"

#include <atomic>

namespace
{

std::atomic<int32_t> events{0};

} // namespace

void EventAdd(int32_t)
{
	++events;
}

int32_t EventCount()
{
	return events;
}

void ResetEventCount()
{
	events = 0;
}
