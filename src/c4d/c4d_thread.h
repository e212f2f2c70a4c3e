#pragma once

#include "c4d/base_thread.h"
#include "c4d/c4d_string.h"

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

// A thread of the plug-in: a derived class puts its work into Main, which
// Start runs on a thread of its own. Main asks TestBreak now and then and
// returns early once it answers true. The object is also the BaseThread
// that host services take (Get), so that a bake or an animation run inside
// Main stops when the thread is asked to.
//
// A derived class whose Main reads its own fields calls End(true) in its
// destructor: the base destructor joins as well, but by then the derived
// part is gone.
class C4DThread : public BaseThread
{
public:
	C4DThread() = default;
	~C4DThread() override;
	C4DThread(const C4DThread&) = delete;
	C4DThread& operator=(const C4DThread&) = delete;

	// Runs Main on a new thread under the given name. False when the thread
	// is still running or the system makes no thread. A thread that has
	// ended may be started again; the request to stop is forgotten then.
	bool Start(const String& name = String());

	// True once End was asked, or from whatever a derived class adds.
	bool TestBreak() override;
	// Asks Main to stop; with wait, returns when it has.
	void End(bool wait = true);
	// Returns when Main has returned (at once when the thread never ran).
	void Wait();
	// Between Start and the return of Main.
	bool IsRunning() const { return running.load(); }

	// The name given to Start.
	virtual String GetThreadName() const;
	// What host services take to learn that the thread should stop.
	BaseThread* Get() { return this; }

protected:
	virtual void Main() = 0;

private:
	void join();

	std::mutex mutex;
	std::thread thread;
	std::atomic<bool> running{false};
	std::atomic<bool> stopping{false};
	String name;
};
