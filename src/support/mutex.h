#pragma once

#include "support/platform.h"

namespace Velorn
{

// A lock held on the heap through the platform layer. The thread that holds
// it may take it again.
class Mutex
{
public:
	Mutex();
	~Mutex();
	Mutex(const Mutex&) = delete;
	Mutex& operator=(const Mutex&) = delete;

	void acquire();
	void release();

private:
	Platform::MutexHandle handle;
};

// Holds a mutex for the time of a scope.
class Lock
{
public:
	explicit Lock(Mutex& mutex_) : mutex(mutex_) { mutex.acquire(); }
	~Lock() { mutex.release(); }
	Lock(const Lock&) = delete;
	Lock& operator=(const Lock&) = delete;

private:
	Mutex& mutex;
};

// A manual-reset event: notify() sets it and it stays set, so that a waiter
// that comes late still sees it, until resetToFalse(). A waiter checks its
// own state under the mutex, resets the event while that state says "not
// yet", and waits; whoever changes the state does so under the same mutex
// and then notifies, so that no wake-up is lost.
class Condition
{
public:
	Condition();
	~Condition();
	Condition(const Condition&) = delete;
	Condition& operator=(const Condition&) = delete;

	void notify();
	void resetToFalse();
	// Frees the mutex, which the caller holds, waits for the event (forever
	// when infinite is set, else for timeout_seconds, in whole milliseconds)
	// and takes the mutex again. False on a time-out.
	bool wait(Mutex& mutex, bool infinite, double timeout_seconds);

private:
	Platform::EventHandle event;
};

} // namespace Velorn
