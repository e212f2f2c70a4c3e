#pragma once

#include <atomic>

// A thread as the host's long operations see it: they ask TestBreak now and
// then and stop early when it answers true. Whoever runs the thread asks it
// to stop with End.
class BaseThread
{
public:
	virtual ~BaseThread() = default;

	// True once the thread has been asked to stop.
	virtual bool TestBreak() { return stop.load(); }
	void End() { stop.store(true); }

private:
	std::atomic<bool> stop{false};
};
