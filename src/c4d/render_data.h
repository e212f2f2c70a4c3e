#pragma once

#include "c4d/base_list.h"
#include "c4d/plugin_registry.h"

// Info flag of a video post that the user switched off.
enum
{
	VIDEOPOST_DISABLED = 1 << 2,
};

// One effect of the render data's video post list, with its parameters.
class BaseVideoPost : public TypedList2D<BaseVideoPost>
{
public:
	using TypedList2D::TypedList2D;

	// A free video post of the given type with its defaults; null when no
	// video post plug-in of that type is registered.
	static BaseVideoPost* Alloc(int32_t type) { return InitOrFree(new BaseVideoPost(type), NodeClass::VideoPost); }
};

// The type of render data nodes, a number of this host's own.
enum
{
	Rbase = 110304,
};

// Parameters of render data: the output size in pixels, the frames an
// animation renders (times) and its frame rate.
enum
{
	RDATA_XRES = 5008,
	RDATA_YRES = 5009,
	RDATA_FRAMEFROM = 5017,
	RDATA_FRAMETO = 5018,
	RDATA_FRAMERATE = 5020,
};

// A set of render settings: its parameters and its list of video posts, in
// the order the host runs them.
class RenderData : public TypedList2D<RenderData>
{
public:
	// New render data renders 800 by 600 pixels.
	RenderData();

	static RenderData* Alloc() { return new RenderData(); }

	BaseVideoPost* GetFirstVideoPost() const { return static_cast<BaseVideoPost*>(videoPosts.GetFirst()); }
	// Puts the video post after pred, or first when pred is null; the render data owns it.
	void InsertVideoPost(BaseVideoPost* pp, BaseVideoPost* pred = nullptr) { videoPosts.Insert(pp, pred); }
	void InsertVideoPostLast(BaseVideoPost* pp) { videoPosts.InsertLast(pp); }

private:
	GeListHead videoPosts;
};
