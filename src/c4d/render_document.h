#pragma once

#include "c4d/base_container.h"
#include "c4d/c4d_thread.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

class BaseBitmap;
class BaseDocument;
class BaseDraw;

// The calls a video post gets during a render, each once opening and once
// closing. The host opens them in this order and closes them in reverse:
// the whole sequence, the frame, the sub-frame, the render, and the inner
// render, inside which the host's own renderer would draw the picture.
enum VIDEOPOSTCALL
{
	VIDEOPOSTCALL_FRAMESEQUENCE = 1,
	VIDEOPOSTCALL_FRAME = 2,
	VIDEOPOSTCALL_SUBFRAME = 3,
	VIDEOPOSTCALL_RENDER = 4,
	VIDEOPOSTCALL_INNER = 5,
};

// What a render, and each of its video post calls, ends with.
enum RENDERRESULT
{
	RENDERRESULT_OK = 0,
	// The render could not be set up.
	RENDERRESULT_FAILED = 1,
	// The render proper failed.
	RENDERRESULT_RENDER_FAILED = 2,
	RENDERRESULT_USERBREAK = 6,
};

// The buffers of a render object.
enum
{
	// The picture: 8 bits a channel, red, green, blue and alpha.
	VPBUFFER_RGBA = 1,
};

// The part of the picture that is rendered, in pixels of the frame: left,
// top, right and bottom are the first and the last column and row.
struct RayParameter
{
	int32_t xres = 0;
	int32_t yres = 0;
	int32_t left = 0;
	int32_t top = 0;
	int32_t right = 0;
	int32_t bottom = 0;
};

// One buffer of a render: the frame's pixels, rows from the top, 4 bytes a
// pixel (red, green, blue, alpha). Video posts write it from the render
// thread.
class VPBuffer
{
public:
	VPBuffer(int32_t width, int32_t height);

	int32_t GetBw() const { return width; }
	int32_t GetBh() const { return height; }
	// Bits a pixel: 32.
	int32_t GetBt() const { return 32; }
	// Channels a pixel: 4.
	int32_t GetCpp() const { return 4; }

	// Writes cnt pixels from data into row y from column x on, clipped to the
	// buffer. data holds GetCpp() bytes a pixel, or 3 (no alpha: it stays);
	// bitdepth must be 8. False on a bad argument.
	bool SetLine(int32_t x, int32_t y, int32_t cnt, const uint8_t* data, int32_t bitdepth, bool dithering,
		int32_t bytes_per_pixel = 4);
	// Reads cnt pixels of row y from column x on into data, 4 bytes a pixel.
	bool GetLine(int32_t x, int32_t y, int32_t cnt, uint8_t* data) const;

	const uint8_t* GetPixel(int32_t x, int32_t y) const { return pixels.data() + ((size_t)width * y + x) * 4; }

private:
	int32_t width;
	int32_t height;
	std::vector<uint8_t> pixels;
};

// The host's render of one frame as a video post sees it: its buffers and
// a copy of the render data it runs with.
class Render
{
public:
	Render(int32_t width, int32_t height, const BaseContainer& render_data);

	// The buffer of an id (VPBUFFER_RGBA), or null.
	VPBuffer* GetBuffer(int32_t id, int32_t subid = 0);
	BaseContainer* GetRenderData() { return &render_data; }
	// Asks the host to show the buffer's current pixels.
	void UpdateScreen() { ++screen_updates; }
	int32_t GetScreenUpdates() const { return screen_updates.load(); }

private:
	std::unique_ptr<VPBuffer> rgba;
	BaseContainer render_data;
	std::atomic<int32_t> screen_updates{0};
};

// The host renderer's side of a render: the frame and the part of it that is
// rendered, and the thread's break. A video post that draws the picture
// itself marks the render so that the host's renderer skips it.
class RenderContext
{
public:
	RenderContext(const RayParameter& parameter, BaseThread* thread);

	// Null when the host has no frame rectangle for this render.
	const RayParameter* GetRayParameter() const { return has_parameter ? &parameter : nullptr; }
	void SkipRenderProcess() { skip_render = true; }
	bool IsRenderProcessSkipped() const { return skip_render; }
	// True once the render's thread was asked to stop.
	bool TestBreak() const { return thread && thread->TestBreak(); }

	// For tests: a render without a frame rectangle.
	void DropRayParameter() { has_parameter = false; }

private:
	RayParameter parameter;
	bool has_parameter = true;
	bool skip_render = false;
	BaseThread* thread;
};

// What a video post's Execute is given.
struct VideoPostStruct
{
	// VIDEOPOSTCALL_
	int32_t vp = 0;
	bool open = false;
	BaseDocument* doc = nullptr;
	BaseThread* thread = nullptr;
	// The host renderer's context; null on calls without one.
	RenderContext* vd = nullptr;
	// The editor view rendered into; null for the picture viewer.
	BaseDraw* bd = nullptr;
	Render* render = nullptr;
};

// Flags of RenderDocument.
enum
{
	RENDERFLAGS_EXTERNAL = 1,
	RENDERFLAGS_PREVIEWRENDER = 8,
};

// Renders doc on the calling thread with the render data rdata (its size
// RDATA_XRES by RDATA_YRES) and the video posts of the document's active
// render data: every enabled one is called for each call kind, in list
// order, higher priority first. A video post that fails ends the opening
// calls; the closing calls of what was opened go out all the same, so that
// every video post can clean up. bmp gets the picture (24 bits). th, which
// may be null, breaks the render off. The first failure, or
// RENDERRESULT_OK.
int32_t RenderDocument(BaseDocument* doc, const BaseContainer& rdata, BaseBitmap* bmp, int32_t flags, BaseThread* th);
// The same into the editor view bd: the frame is the view, and the picture
// lies in its safe frame.
int32_t RenderDocumentInView(BaseDocument* doc, BaseDraw* bd, BaseBitmap* bmp, BaseThread* th);

// The application's render thread: renders a document into the picture
// viewer (bmp) or an editor view, while the main thread goes on.
class RenderThread : public C4DThread
{
public:
	// doc, bmp and bd (null for the picture viewer) must outlive the thread.
	RenderThread(BaseDocument* doc, BaseBitmap* bmp, BaseDraw* bd = nullptr);
	~RenderThread() override;

	// The render's result once the thread has ended.
	int32_t GetResult() const { return result.load(); }

protected:
	void Main() override;

private:
	BaseDocument* doc;
	BaseBitmap* bmp;
	BaseDraw* bd;
	std::atomic<int32_t> result{RENDERRESULT_OK};
};
