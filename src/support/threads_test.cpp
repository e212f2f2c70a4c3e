#include "support/mutex.h"
#include "support/my_thread.h"
#include "support/task_manager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

using namespace Velorn;

namespace
{

// Runs f on a thread of its own and fails the test when it has not returned
// after a generous limit, so that a hang shows as a failure and not as a
// stuck run. A thread that hangs is left behind, blocked; f must own what
// it uses.
void expectFinishes(std::function<void()> f)
{
	struct State
	{
		std::mutex mutex;
		std::condition_variable done_changed;
		bool done = false;
	};
	const auto state = std::make_shared<State>();
	std::thread([state, f = std::move(f)] {
		f();
		std::lock_guard<std::mutex> lock(state->mutex);
		state->done = true;
		state->done_changed.notify_all();
	}).detach();
	std::unique_lock<std::mutex> lock(state->mutex);
	EXPECT_TRUE(state->done_changed.wait_for(lock, std::chrono::seconds(60), [&] { return state->done; }))
		<< "did not finish";
}

// A flag that threads wait for, on the library's own mutex and condition.
struct Signal
{
	Mutex mutex;
	Condition changed;
	bool raised = false;

	void raise()
	{
		Lock lock(mutex);
		raised = true;
		changed.notify();
	}
	// False when the flag was not raised within the time.
	bool waitFor(double seconds)
	{
		Lock lock(mutex);
		while(!raised)
		{
			changed.resetToFalse();
			if(!changed.wait(mutex, false, seconds))
				return raised;
		}
		return true;
	}
};

// A thread that waits for its gate to open, and tells when and where its
// object is deleted.
class GatedThread : public MyThread
{
public:
	GatedThread(Signal& gate_, Signal& deleted_, std::thread::id& deleted_on_)
		: gate(gate_), deleted(deleted_), deleted_on(deleted_on_) {}
	~GatedThread() override
	{
		deleted_on = std::this_thread::get_id();
		deleted.raise();
	}

	void run() override { gate.waitFor(60); }

private:
	Signal& gate;
	Signal& deleted;
	std::thread::id& deleted_on;
};

// A gated thread launched, with the signals that it waits for and raises.
struct LaunchedGatedThread
{
	Signal gate, deleted;
	std::thread::id deleted_on;
	Reference<GatedThread> thread = new GatedThread(gate, deleted, deleted_on);

	LaunchedGatedThread() { thread->launch(); }
};

} // namespace

TEST(Threads, ConditionIsAManualResetEvent)
{
	Mutex mutex;
	Condition condition;
	Lock lock(mutex);
	EXPECT_FALSE(condition.wait(mutex, false, 0.01)) << "starts reset";
	condition.notify();
	EXPECT_TRUE(condition.wait(mutex, false, 0.01));
	EXPECT_TRUE(condition.wait(mutex, false, 0.01)) << "stays set for a late waiter";
	condition.resetToFalse();
	EXPECT_FALSE(condition.wait(mutex, false, 0.01));

	// The mutex is free while a thread waits, and a notify wakes it.
	Signal signal;
	std::thread raiser([&] { signal.raise(); });
	EXPECT_TRUE(signal.waitFor(60));
	raiser.join();
}

TEST(Threads, MutexExcludesAndMayBeTakenAgain)
{
	Mutex mutex;
	int counter = 0;
	auto count = [&] {
		for(int i = 0; i < 20000; ++i)
		{
			Lock lock(mutex);
			++counter;
		}
	};
	std::thread a(count), b(count);
	a.join();
	b.join();
	EXPECT_EQ(counter, 40000);

	expectFinishes([] {
		Mutex nested;
		Lock outer(nested);
		Lock inner(nested);
	});
}

TEST(Threads, ThreadDroppedByItsCreatorDeletesItself)
{
	LaunchedGatedThread t;
	t.thread = nullptr;
	// The running thread holds its own count.
	EXPECT_FALSE(t.deleted.waitFor(0.05));
	t.gate.raise();
	ASSERT_TRUE(t.deleted.waitFor(60));
	EXPECT_NE(t.deleted_on, std::this_thread::get_id());
}

TEST(Threads, JoinedThreadOutlivesItsThread)
{
	LaunchedGatedThread t;
	EXPECT_EQ(t.thread->getRefCount(), 2u);
	t.thread->setPriority(1);
	t.thread->setPriority(0);
	t.gate.raise();
	t.thread->join();
	t.thread->join();
	EXPECT_EQ(t.thread->getRefCount(), 1u) << "the thread gave its count back";
	EXPECT_FALSE(t.deleted.raised);
	t.thread = nullptr;
	EXPECT_TRUE(t.deleted.raised);
	EXPECT_EQ(t.deleted_on, std::this_thread::get_id());
}

namespace
{

// What the counting tasks of a test saw.
struct TaskCounts
{
	std::atomic<int> runs{0};
	std::atomic<int> deletions{0};
	std::atomic<size_t> largest_thread_index{0};
};

// Counts its run and its deletion, after a short pause so that work piles
// up in the queue.
class CountingTask : public Task
{
public:
	explicit CountingTask(TaskCounts& counts_) : counts(counts_) {}
	~CountingTask() override { ++counts.deletions; }

	void run(size_t thread_index) override
	{
		std::this_thread::sleep_for(std::chrono::milliseconds(2));
		size_t seen = counts.largest_thread_index;
		while(thread_index > seen && !counts.largest_thread_index.compare_exchange_weak(seen, thread_index))
		{
		}
		++counts.runs;
	}

private:
	TaskCounts& counts;
};

// The item ranges that runTasks made, each with the thread that ran it.
struct RangeLog
{
	Mutex mutex;
	std::vector<std::pair<size_t, size_t>> ranges;
};

class RangeTask : public Task
{
public:
	RangeTask(RangeLog& log_, size_t first_, size_t last_) : log(log_), first(first_), last(last_) {}
	void run(size_t) override
	{
		Lock lock(log.mutex);
		log.ranges.emplace_back(first, last);
	}

private:
	RangeLog& log;
	size_t first, last;
};

std::vector<std::pair<size_t, size_t>> rangesOf(TaskManager& manager, size_t num_items)
{
	RangeLog log;
	manager.runTasks<RangeTask>(log, num_items);
	std::sort(log.ranges.begin(), log.ranges.end());
	return log.ranges;
}

} // namespace

TEST(TaskManager, WaitingWithoutTasksAndEndingWithoutWork)
{
	expectFinishes([] {
		TaskManager manager(3);
		EXPECT_EQ(manager.getNumThreads(), 3u);
		manager.waitForTasksToComplete();
	});
	expectFinishes([] { TaskManager manager(4); });
	expectFinishes([] {
		TaskManager manager(0);
		EXPECT_EQ(manager.getNumThreads(), 1u) << "a pool always has a thread";
	});
}

TEST(TaskManager, QueuedWorkRunsBeforeTheEnd)
{
	const auto counts = std::make_shared<TaskCounts>();
	expectFinishes([counts] {
		TaskManager manager(2);
		for(int i = 0; i < 30; ++i)
			manager.addTask(new CountingTask(*counts));
	});
	EXPECT_EQ(counts->runs, 30);
	EXPECT_EQ(counts->deletions, 30);
	EXPECT_LT(counts->largest_thread_index, 2u);

	// Waiting returns when the work is done, and again at once afterwards.
	expectFinishes([counts] {
		TaskManager manager(3);
		for(int i = 0; i < 12; ++i)
			manager.addTask(new CountingTask(*counts));
		manager.waitForTasksToComplete();
		EXPECT_EQ(counts->runs, 42);
		manager.waitForTasksToComplete();
	});
}

TEST(TaskManager, RunTasksDividesTheItems)
{
	TaskManager manager(4);
	using Ranges = std::vector<std::pair<size_t, size_t>>;
	EXPECT_EQ(rangesOf(manager, 10), (Ranges{{0, 3}, {3, 6}, {6, 8}, {8, 10}}));
	EXPECT_EQ(rangesOf(manager, 2), (Ranges{{0, 1}, {1, 2}}));
	EXPECT_EQ(rangesOf(manager, 4), (Ranges{{0, 1}, {1, 2}, {2, 3}, {3, 4}}));
	EXPECT_EQ(rangesOf(manager, 0), Ranges{});
}
