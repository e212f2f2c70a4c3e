#pragma once

#include "support/mutex.h"
#include "support/my_thread.h"
#include "support/reference.h"
#include "support/thread_safe_queue.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Velorn
{

// A piece of work for the task manager's threads. Tasks are made with new;
// the manager deletes each one after its run.
class Task
{
public:
	virtual ~Task() = default;
	// thread_index: which of the manager's threads runs the task, from 0.
	virtual void run(size_t thread_index) = 0;
};

class TaskManager;

// One thread of the manager's pool: runs tasks from the queue until it
// dequeues a null pointer.
class TaskRunnerThread : public MyThread
{
public:
	TaskRunnerThread(TaskManager* manager_, size_t thread_index_) : manager(manager_), thread_index(thread_index_) {}

	void run() override;

private:
	TaskManager* manager;
	size_t thread_index;
};

// A fixed pool of threads that run queued tasks in queue order. The threads
// start with the constructor and end with the destructor, after every task
// queued before it has run. A task must not add to or wait on its own
// manager.
class TaskManager
{
public:
	// A pool has at least one thread, so that queued work always runs.
	explicit TaskManager(size_t num_threads);
	~TaskManager();
	TaskManager(const TaskManager&) = delete;
	TaskManager& operator=(const TaskManager&) = delete;

	void addTask(Task* task);
	void waitForTasksToComplete();
	size_t getNumThreads() const { return threads.size(); }

	// Splits the items 0 to num_items - 1 into ranges, one task per range,
	// runs them and waits for them: with t threads, c = min(num_items, t)
	// tasks of num_items / c items, and the first num_items modulo c tasks
	// take one more, so that no range is empty. Each task is
	// new TaskType(closure, begin, end), for the items begin to end - 1.
	template <class TaskType, class Closure>
	void runTasks(Closure& closure, size_t num_items)
	{
		const size_t num_tasks = std::min(num_items, getNumThreads());
		size_t begin = 0;
		for(size_t i = 0; i < num_tasks; ++i)
		{
			const size_t count = num_items / num_tasks + (i < num_items % num_tasks ? 1 : 0);
			addTask(new TaskType(closure, begin, begin + count));
			begin += count;
		}
		waitForTasksToComplete();
	}

	// For the runner threads.
	Task* dequeueTask() { return tasks.dequeue(); }
	void taskFinished();

private:
	// Queues one end order per thread behind the work already queued, and
	// waits for every thread.
	void endThreads();

	Mutex mutex;
	Condition condition; // set when a task has finished
	int32_t num_unfinished_tasks = 0;
	ThreadSafeQueue<Task*> tasks;
	std::vector<Reference<TaskRunnerThread>> threads;
};

} // namespace Velorn
