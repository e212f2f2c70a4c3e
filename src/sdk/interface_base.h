#pragma once

#include "support/reference.h"
#include "support/velorn_string.h"
#include "support/velorn_vector.h"

#include <cstddef>
#include <cstdint>

namespace Velorn
{

class FloatBuffer;
class RenderBuffer;
class SceneNode;
class SceneNodeRoot;
class UInt8Buffer;

// An object that crosses the renderer library's boundary. Its layout is
// binary and shared by both sides: the table of functions first, then a
// plain 32-bit count (not atomic: each object belongs to one thread plus
// short calls under the caller's lock), then the function that frees it.
// Whoever drops the count to 0 calls destroy, never delete, so that every
// object is freed by the module that made it.
//
// The table is a plain array of function pointers rather than a C++ virtual
// table, so that positions mean the same on both sides whatever the
// compilers. Every function takes the object as its first argument.
class InterfaceBase
{
public:
	using Function = void (*)();
	using DestroyFunction = void (*)(InterfaceBase*);

	void incRefCount() { ++ref_count; }
	void decRefCount()
	{
		if(--ref_count == 0)
			destroy(this);
	}
	uint32_t getRefCount() const { return ref_count; }

	// The function at a position of the table, as its real type.
	template <class F>
	F entry(size_t position) const
	{
		return reinterpret_cast<F>(table[position]);
	}

	const Function* table = nullptr;
	uint32_t ref_count = 0;
	DestroyFunction destroy = nullptr;
};

// One graphics device the renderer could use.
struct GPUInfo
{
	String device_name;
	// 1 is CUDA, any other value OpenCL.
	int32_t api_kind = 0;
};

// The list that the hardware object hands out.
class GPUInfoList : public InterfaceBase
{
public:
	Vector<GPUInfo> gpus;
};

// The types of the functions at the positions that are called, by table
// below. The plug-in calls through them and the stand-in library fills its
// tables with them, so that the compiler holds both sides to one signature.
using VoidFn = void (*)(InterfaceBase*);
using BoolFn = bool (*)(InterfaceBase*);
using DoubleFn = double (*)(InterfaceBase*);

// Table positions of the renderer object ("VelornInterface").
namespace RendererTable
{
enum : size_t
{
	Initialise = 1,
	GetSamplesPerPixel = 4,
	GetElapsedTime = 5,
	InitialiseWithScene = 7,
	StartRendering = 9,
	PauseRendering = 10,
	ResumeRendering = 11,
	StopRendering = 12,
	UpdateScene = 15,
	BeginMessages = 21,
	AtEndOfMessages = 22,
	NextMessage = 23,
	EndMessages = 24,
	Size = 29
};
using InitialiseFn = int (*)(InterfaceBase*, const String* sdk_dir, const String* appdata_dir);
using InitialiseWithSceneFn = int (*)(InterfaceBase*, const Reference<SceneNodeRoot>*, RenderBuffer*, const Vector<String>*);
using UpdateSceneFn = void (*)(InterfaceBase*, const Reference<SceneNodeRoot>*);
using NextMessageFn = InterfaceBase* (*)(InterfaceBase*);
} // namespace RendererTable

// Table positions of a message object.
namespace MessageTable
{
enum : size_t
{
	GetType = 1,
	GetText = 2,
	Size = 3
};
using GetTypeFn = int (*)(InterfaceBase*);
using GetTextFn = const String* (*)(InterfaceBase*);
// The one type that callers read; the others are dropped.
enum : int
{
	ErrorMessage = 1
};
} // namespace MessageTable

// Table positions of the tone mapper object ("ToneMapperDLLAPI").
namespace ToneMapperTable
{
enum : size_t
{
	Initialise = 1,
	SetParameters = 2,
	Update = 3,
	IsDone = 4,
	Size = 5
};
using InitialiseFn = void (*)(InterfaceBase*, const String* sdk_dir, const String* appdata_dir, RenderBuffer*,
	UInt8Buffer*, FloatBuffer*, float gamma, String* error_out);
using SetParametersFn = void (*)(InterfaceBase*, const Reference<SceneNode>* tone_mapping,
	const Reference<SceneNode>* settings, const Reference<SceneNode>* camera, String* error_out);
} // namespace ToneMapperTable

// Table positions of the hardware object ("HardwareInfoDLLAPI").
namespace HardwareInfoTable
{
enum : size_t
{
	GetGPUList = 1,
	GetSecondGPUList = 2,
	Size = 3
};
// Both lists: the object hands out a new GPUInfoList.
using GPUListFn = void (*)(InterfaceBase*, Reference<InterfaceBase>* out);
} // namespace HardwareInfoTable

} // namespace Velorn
