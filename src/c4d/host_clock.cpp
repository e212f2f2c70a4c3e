#include "c4d/host_clock.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace
{

// The moment the host library was loaded; the timer counts from here.
const std::chrono::steady_clock::time_point host_start = std::chrono::steady_clock::now();

double realMilliseconds()
{
	return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - host_start).count();
}

DateTime realDateTime()
{
	// std::localtime fills one buffer shared by the process; the lock keeps
	// two readers of the host clock from overwriting each other's result.
	static std::mutex localtime_mutex;
	const std::time_t t = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
	std::lock_guard<std::mutex> lock(localtime_mutex);
	const std::tm* local = std::localtime(&t);
	if(!local)
		return DateTime();
	return {local->tm_year + 1900, local->tm_mon + 1, local->tm_mday, local->tm_hour, local->tm_min, local->tm_sec};
}

} // namespace

bool DateTime::operator==(const DateTime& o) const
{
	return year == o.year && month == o.month && day == o.day && hour == o.hour && minute == o.minute &&
		   second == o.second;
}

HostClock& HostClock::get()
{
	static HostClock clock;
	return clock;
}

void HostClock::fixTime(double ms)
{
	std::lock_guard<std::mutex> lock(mutex);
	fixed_time = ms;
}

void HostClock::advance(double ms)
{
	std::lock_guard<std::mutex> lock(mutex);
	fixed_time = fixed_time.value_or(realMilliseconds()) + ms;
}

void HostClock::fixDate(const DateTime& date)
{
	std::lock_guard<std::mutex> lock(mutex);
	fixed_date = date;
}

void HostClock::fixSeed(uint32_t seed)
{
	std::lock_guard<std::mutex> lock(mutex);
	fixed_seed = seed;
}

void HostClock::release()
{
	std::lock_guard<std::mutex> lock(mutex);
	fixed_time.reset();
	fixed_date.reset();
	fixed_seed.reset();
}

double HostClock::milliseconds() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return fixed_time ? *fixed_time : realMilliseconds();
}

DateTime HostClock::now() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return fixed_date ? *fixed_date : realDateTime();
}

uint32_t HostClock::seed(uint32_t requested) const
{
	std::lock_guard<std::mutex> lock(mutex);
	return fixed_seed.value_or(requested);
}

int32_t GeGetTimer()
{
	// Through an unsigned 32-bit value, so that the wrap is defined.
	return (int32_t)(uint32_t)(int64_t)std::floor(GeGetMilliSeconds());
}

double GeGetMilliSeconds()
{
	return HostClock::get().milliseconds();
}

void GetDateTime(DateTime& out)
{
	out = HostClock::get().now();
}

void Random::Init(uint32_t seed)
{
	state = HostClock::get().seed(seed);
}

double Random::Get01()
{
	state = state * 6364136223846793005ULL + 1442695040888963407ULL;
	return (double)(state >> 11) * 0x1.0p-53;
}
