#pragma once

#include "support/platform.h"
#include "support/reference.h"

namespace Velorn
{

// A thread of the library. The running thread holds one count of its own
// object, taken by launch() and given back when run() returns, so that the
// object outlives its thread by at least one reference, or, when its creator
// has dropped every reference by then, deletes itself at the end of run().
// Make it with new; launch it once.
class MyThread : public ThreadSafeRefCounted
{
public:
	MyThread() = default;
	~MyThread() override;
	MyThread(const MyThread&) = delete;
	MyThread& operator=(const MyThread&) = delete;

	virtual void run() = 0;

	// Throws Exception "Thread creation failed." when the system makes no
	// thread; the count for the thread is then given back, which deletes an
	// object that nobody else holds.
	void launch();
	// Waits for the thread to end, without a limit. A second join returns at
	// once.
	void join();
	// 0: normal, 1: below normal, anything else normal.
	void setPriority(int priority);

private:
	static void threadEntry(void* thread);

	Platform::ThreadHandle thread_handle = nullptr;
	bool joined = false;
};

} // namespace Velorn
