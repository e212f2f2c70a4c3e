#include "c4d/c4d_thread.h"

#include "c4d/console.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

namespace
{

// Spins until asked to stop, counting its rounds; a host service that it
// hands Get() to would see the same request.
class SpinningThread : public C4DThread
{
public:
	~SpinningThread() override { End(true); }

	std::atomic<int> rounds{0};
	std::atomic<bool> serviceSawBreak{false};

protected:
	void Main() override
	{
		BaseThread* service = Get();
		while(!TestBreak())
		{
			++rounds;
			std::this_thread::sleep_for(std::chrono::milliseconds(1));
		}
		serviceSawBreak = service->TestBreak();
	}
};

// Throws from its thread, which must not take the process down.
class ThrowingThread : public C4DThread
{
public:
	~ThrowingThread() override { End(true); }

protected:
	void Main() override { throw std::runtime_error("broken"); }
};

bool waitFor(const std::function<bool()>& condition)
{
	for(int i = 0; i < 2000 && !condition(); ++i)
		std::this_thread::sleep_for(std::chrono::milliseconds(1));
	return condition();
}

TEST(C4DThread, RunsUntilEndAndStartsAgain)
{
	SpinningThread thread;
	EXPECT_FALSE(thread.IsRunning());
	ASSERT_TRUE(thread.Start(String("Spinner")));
	EXPECT_EQ(thread.GetThreadName().GetStdString(), "Spinner");
	EXPECT_TRUE(thread.IsRunning());
	EXPECT_FALSE(thread.Start(String("Twice")));
	ASSERT_TRUE(waitFor([&] { return thread.rounds > 2; }));
	EXPECT_TRUE(thread.IsRunning());

	thread.End(true);
	EXPECT_FALSE(thread.IsRunning());
	EXPECT_TRUE(thread.TestBreak());
	EXPECT_TRUE(thread.serviceSawBreak);
	const int rounds = thread.rounds;
	std::this_thread::sleep_for(std::chrono::milliseconds(5));
	EXPECT_EQ(thread.rounds, rounds);

	// A new start forgets the old request to stop.
	ASSERT_TRUE(thread.Start(String("Again")));
	EXPECT_FALSE(thread.TestBreak());
	ASSERT_TRUE(waitFor([&] { return thread.rounds > rounds + 2; }));
	thread.End(false);
	thread.Wait();
	EXPECT_FALSE(thread.IsRunning());
}

TEST(C4DThread, AnExceptionEndsOnlyTheThread)
{
	HostConsole::get().clear();
	ThrowingThread thread;
	ASSERT_TRUE(thread.Start(String("Thrower")));
	thread.Wait();
	EXPECT_FALSE(thread.IsRunning());
	EXPECT_EQ(HostConsole::get().texts(HostConsole::Kind::Print), std::vector<String>{String("Thrower: broken")});
	// The thread never ran when it is never started: Wait returns at once.
	SpinningThread idle;
	idle.Wait();
	EXPECT_EQ(idle.rounds, 0);
}

} // namespace
