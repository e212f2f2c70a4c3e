#include "c4d/events.h"

#include <atomic>

namespace
{

std::atomic<int32_t> events{0};
std::atomic<bool> changePending{false};

} // namespace

void EventAdd(int32_t)
{
	++events;
	changePending = true;
}

bool TakeChangeEvent()
{
	return changePending.exchange(false);
}

int32_t EventCount()
{
	return events;
}

void ResetEventCount()
{
	events = 0;
}
