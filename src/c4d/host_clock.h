#pragma once

#include <cstdint>
#include <mutex>
#include <optional>

// A calendar date and time of day, local time.
struct DateTime
{
	int32_t year = 0;
	int32_t month = 0;  // 1..12
	int32_t day = 0;    // 1..31
	int32_t hour = 0;   // 0..23
	int32_t minute = 0; // 0..59
	int32_t second = 0; // 0..59 (60 for a leap second)

	bool operator==(const DateTime& o) const;
};

// The host's clocks and the seed source of Random. They run on the real
// clocks until a test fixes them; each can be fixed on its own, and
// release() returns all of them to the real clocks. Renders read the timer
// from their own threads: every member locks.
class HostClock
{
public:
	// The host's one clock.
	static HostClock& get();

	// The timer reads ms until advanced or released.
	void fixTime(double ms);
	// Moves the timer on by ms, fixing it at its current reading first when
	// it runs on the real clock.
	void advance(double ms);
	void fixDate(const DateTime& date);
	// Every Random initialised while fixed starts from seed, whatever seed
	// the caller gives, so that a run seeded from the timer repeats.
	void fixSeed(uint32_t seed);
	void release();

	// Milliseconds since the host started.
	double milliseconds() const;
	DateTime now() const;
	// The seed a Random initialised with requested starts from.
	uint32_t seed(uint32_t requested) const;

private:
	mutable std::mutex mutex;
	std::optional<double> fixed_time;
	std::optional<DateTime> fixed_date;
	std::optional<uint32_t> fixed_seed;
};

// The host's timer in whole milliseconds since it started; wraps like the
// application's 32-bit timer after about 24 days.
int32_t GeGetTimer();
// The same timer with the fraction of a millisecond.
double GeGetMilliSeconds();
// The current local date and time.
void GetDateTime(DateTime& out);

// The host's random numbers: a 64-bit linear congruential generator
// (multiplier 6364136223846793005, increment 1442695040888963407, the
// constants of Knuth's MMIX) whose top 53 bits make each value. A seed gives
// the same sequence on every platform and build.
class Random
{
public:
	void Init(uint32_t seed);
	// The next value in [0, 1).
	double Get01();

private:
	uint64_t state = 0;
};
