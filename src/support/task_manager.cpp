#include "support/task_manager.h"

namespace Velorn
{

void TaskRunnerThread::run()
{
	for(Task* task = manager->dequeueTask(); task; task = manager->dequeueTask())
	{
		task->run(thread_index);
		delete task;
		manager->taskFinished();
	}
}

TaskManager::TaskManager(size_t num_threads)
{
	const size_t count = std::max<size_t>(num_threads, 1);
	// Reserved first, so that a thread that runs is always in the vector and
	// gets its end order.
	threads.reserve(count);
	try
	{
		for(size_t i = 0; i < count; ++i)
		{
			const Reference<TaskRunnerThread> thread = new TaskRunnerThread(this, i);
			thread->launch();
			threads.push_back(thread);
		}
	}
	catch(...)
	{
		endThreads();
		throw;
	}
}

TaskManager::~TaskManager() { endThreads(); }

void TaskManager::endThreads()
{
	for(size_t i = 0; i < threads.size(); ++i)
		tasks.enqueue(nullptr);
	for(const Reference<TaskRunnerThread>& thread : threads)
		thread->join();
	threads.clear();
}

void TaskManager::addTask(Task* task)
{
	{
		Lock lock(mutex);
		++num_unfinished_tasks;
	}
	tasks.enqueue(task);
}

void TaskManager::waitForTasksToComplete()
{
	Lock lock(mutex);
	while(num_unfinished_tasks != 0)
	{
		condition.resetToFalse();
		condition.wait(mutex, true, 0);
	}
}

void TaskManager::taskFinished()
{
	Lock lock(mutex);
	--num_unfinished_tasks;
	condition.notify();
}

} // namespace Velorn
