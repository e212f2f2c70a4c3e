#include "support/mutex.h"

#include <cstdint>

namespace Velorn
{

Mutex::Mutex() : handle(Platform::createMutex()) {}

Mutex::~Mutex() { Platform::destroyMutex(handle); }

void Mutex::acquire() { Platform::lockMutex(handle); }

void Mutex::release() { Platform::unlockMutex(handle); }

namespace
{

// Whole milliseconds of a time-out, within what a wait of the system takes.
uint32_t timeoutMilliseconds(double seconds)
{
	const double ms = seconds * 1000.0;
	if(!(ms > 0.0))
		return 0;
	return ms >= 4294967295.0 ? 4294967295u : (uint32_t)ms;
}

} // namespace

Condition::Condition() : event(Platform::createEvent()) {}

Condition::~Condition() { Platform::destroyEvent(event); }

void Condition::notify() { Platform::setEvent(event); }

void Condition::resetToFalse() { Platform::resetEvent(event); }

bool Condition::wait(Mutex& mutex, bool infinite, double timeout_seconds)
{
	mutex.release();
	const bool woken = Platform::waitEvent(event, infinite, timeoutMilliseconds(timeout_seconds));
	mutex.acquire();
	return woken;
}

} // namespace Velorn
