// The entry points of the renderer's SDK library, as the plug-in looks them
// up by name.
#include "standin/sdk_objects.h"

#include <oneapi/tbb/global_control.h>

#include <memory>

#if defined(_WIN32)
#define VELORN_SDK_EXPORT extern "C" __declspec(dllexport)
#else
#define VELORN_SDK_EXPORT extern "C" __attribute__((visibility("default")))
#endif

// Makes the object of a class name into out; 0 is success, 1 an unknown name.
VELORN_SDK_EXPORT int velornCreateInstance(const Velorn::String& class_name, Velorn::Reference<Velorn::InterfaceBase>& out)
{
	Velorn::InterfaceBase* object = Velorn::Standin::createObject(class_name.str());
	if(!object)
		return 1;
	out = object;
	return 0;
}

namespace
{

// Embree builds its trees on worker threads of TBB, which outlive the
// scenes that used them. They must have ended before the plug-in unloads
// the library (and TBB with it), or they go on in code that is no longer
// mapped: the handle, taken before the first scene, lets the shutdown wait
// for them.
std::unique_ptr<tbb::task_scheduler_handle> scheduler;

} // namespace

VELORN_SDK_EXPORT void velornGlobalLibraryInit(const Velorn::String*)
{
	if(!scheduler)
		scheduler = std::make_unique<tbb::task_scheduler_handle>(tbb::attach{});
}

// Called after the plug-in released every object of the library.
VELORN_SDK_EXPORT void velornGlobalLibraryShutdown()
{
	if(scheduler)
	{
		// False when threads of the host's own still use TBB: then they are
		// not the library's to end.
		tbb::finalize(*scheduler, std::nothrow);
		scheduler.reset();
	}
}
