#include "support/my_thread.h"

#include "support/exceptions.h"

#include <string>

namespace Velorn
{

MyThread::~MyThread()
{
	// A thread nobody joined runs out by itself; this may be that thread,
	// deleting its own object at the end of run().
	if(thread_handle && !joined)
		Platform::detachThread(thread_handle);
}

void MyThread::launch()
{
	// Held until the handle is stored: the thread may end, and give back its
	// count, before startThread returns here.
	const Reference<MyThread> keep_alive(this);
	incRefCount();
	thread_handle = Platform::startThread(&MyThread::threadEntry, this);
	if(!thread_handle)
	{
		decRefCount();
		throw Exception("Thread creation failed.");
	}
}

void MyThread::join()
{
	if(joined || !thread_handle)
		return;
	joined = true;
	Platform::joinThread(thread_handle);
}

void MyThread::setPriority(int priority)
{
	const Platform::ThreadPriority level = priority == 1 ? Platform::ThreadPriority::BelowNormal : Platform::ThreadPriority::Normal;
	const int error = Platform::setThreadPriority(thread_handle, level);
	if(error != 0)
		throw Exception("SetThreadPriority failed: " + std::to_string(error));
}

void MyThread::threadEntry(void* thread_pointer)
{
	MyThread* thread = static_cast<MyThread*>(thread_pointer);
	thread->run();
	thread->decRefCount();
}

} // namespace Velorn
