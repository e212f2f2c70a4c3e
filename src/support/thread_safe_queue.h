#pragma once

#include "support/mutex.h"

#include <deque>

namespace Velorn
{

// A first-in, first-out queue that any number of threads may fill and
// empty. dequeue() blocks while the queue is empty.
template <class T>
class ThreadSafeQueue
{
public:
	void enqueue(const T& item)
	{
		Lock lock(mutex);
		items.push_back(item);
		non_empty.notify();
	}

	T dequeue()
	{
		Lock lock(mutex);
		while(items.empty())
		{
			non_empty.resetToFalse();
			non_empty.wait(mutex, true, 0);
		}
		T item = items.front();
		items.pop_front();
		return item;
	}

private:
	Mutex mutex;
	Condition non_empty;
	std::deque<T> items;
};

} // namespace Velorn
