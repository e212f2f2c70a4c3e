#include "c4d/world_preferences.h"

#include "c4d/base_document.h"

#include <atomic>
#include <thread>

namespace
{

BaseContainer defaults()
{
	BaseContainer prefs;
	prefs.SetInt32(WPREF_UNITS, DOCUMENT_UNIT_CM);
	return prefs;
}

std::atomic<int32_t> fixedThreadCount{0};

} // namespace

BaseContainer* GetWorldContainerInstance()
{
	static BaseContainer prefs = defaults();
	return &prefs;
}

BaseContainer GetWorldContainer()
{
	return *GetWorldContainerInstance();
}

void ResetWorldPreferences()
{
	*GetWorldContainerInstance() = defaults();
}

int32_t GeGetCurrentThreadCount()
{
	const int32_t fixed = fixedThreadCount.load();
	if(fixed > 0)
		return fixed;
	const unsigned cores = std::thread::hardware_concurrency();
	return cores ? (int32_t)cores : 1;
}

void FixHostThreadCount(int32_t count)
{
	fixedThreadCount = count;
}
