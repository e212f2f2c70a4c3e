// The entry points of the renderer's SDK library, as the plug-in looks them
// up by name.
#include "standin/sdk_objects.h"

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

// Nothing is shared between objects, so there is nothing to set up or tear
// down for the library as a whole.
VELORN_SDK_EXPORT void velornGlobalLibraryInit(const Velorn::String*) {}

VELORN_SDK_EXPORT void velornGlobalLibraryShutdown() {}
