// A stand-in for the renderer's SDK library that only records what is asked
// of it. FAKE_SDK_VARIANT names the build in the record; without
// FAKE_SDK_WITH_SHUTDOWN the library lacks its shutdown entry.
#include "call_record.h"

#include "support/velorn_string.h"

#include <sstream>

namespace
{

// Records the loading and the unloading of the library itself.
struct LoadRecorder
{
	LoadRecorder() { FakeSdk::record("loaded " FAKE_SDK_VARIANT); }
	~LoadRecorder() { FakeSdk::record("unloaded " FAKE_SDK_VARIANT); }
} load_recorder;

} // namespace

// Only its presence is looked at: loading makes no objects.
extern "C" int velornCreateInstance(const Velorn::String&, void*)
{
	return 1;
}

extern "C" void velornGlobalLibraryInit(const Velorn::String* sdk_dir)
{
	std::ostringstream call;
	call << "init " FAKE_SDK_VARIANT " " << static_cast<const void*>(sdk_dir) << " " << *sdk_dir;
	FakeSdk::record(call.str());
}

#ifdef FAKE_SDK_WITH_SHUTDOWN
extern "C" void velornGlobalLibraryShutdown()
{
	FakeSdk::record("shutdown " FAKE_SDK_VARIANT);
}
#endif
