#include "c4d/c4d_thread.h"

#include "c4d/console.h"

#include <exception>

C4DThread::~C4DThread()
{
	End(true);
}

bool C4DThread::Start(const String& name_)
{
	std::lock_guard<std::mutex> lock(mutex);
	if(running.load())
		return false;
	// The thread of an earlier run has returned from Main; collect it.
	if(thread.joinable())
		thread.join();
	name = name_;
	stopping.store(false);
	running.store(true);
	try
	{
		thread = std::thread([this] {
			// An exception must not leave the thread: it would end the
			// application the plug-in runs in.
			try
			{
				Main();
			}
			catch(const std::exception& e)
			{
				GePrint(GetThreadName() + String(": ") + String(e.what()));
			}
			catch(...)
			{
				GePrint(GetThreadName() + String(": stopped by an unknown error"));
			}
			running.store(false);
		});
	}
	catch(const std::system_error&)
	{
		running.store(false);
		return false;
	}
	return true;
}

bool C4DThread::TestBreak()
{
	return stopping.load() || BaseThread::TestBreak();
}

void C4DThread::End(bool wait)
{
	stopping.store(true);
	if(wait)
		Wait();
}

void C4DThread::Wait()
{
	std::lock_guard<std::mutex> lock(mutex);
	join();
}

void C4DThread::join()
{
	// Main never waits for its own thread: a thread that ends itself just
	// leaves the join to whoever starts or frees it next.
	if(thread.joinable() && thread.get_id() != std::this_thread::get_id())
		thread.join();
}

String C4DThread::GetThreadName() const
{
	return name;
}
