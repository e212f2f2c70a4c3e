#include "c4d/render_document.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/base_draw.h"
#include "c4d/node_data.h"
#include "c4d/plugin_registry.h"
#include "c4d/render_data.h"

#include <algorithm>
#include <cstring>

VPBuffer::VPBuffer(int32_t width_, int32_t height_)
	: width(std::max(width_, 0)), height(std::max(height_, 0)), pixels((size_t)width * height * 4, 0)
{
}

bool VPBuffer::SetLine(int32_t x, int32_t y, int32_t cnt, const uint8_t* data, int32_t bitdepth, bool,
	int32_t bytes_per_pixel)
{
	if(!data || bitdepth != 8 || (bytes_per_pixel != 3 && bytes_per_pixel != 4) || y < 0 || y >= height || x < 0)
		return false;
	const int32_t n = std::min(cnt, width - x);
	for(int32_t i = 0; i < n; ++i)
		std::memcpy(pixels.data() + ((size_t)width * y + x + i) * 4, data + (size_t)i * bytes_per_pixel,
			(size_t)bytes_per_pixel);
	return true;
}

bool VPBuffer::GetLine(int32_t x, int32_t y, int32_t cnt, uint8_t* data) const
{
	if(!data || y < 0 || y >= height || x < 0)
		return false;
	const int32_t n = std::min(cnt, width - x);
	if(n > 0)
		std::memcpy(data, GetPixel(x, y), (size_t)n * 4);
	return true;
}

Render::Render(int32_t width, int32_t height, const BaseContainer& render_data_)
	: rgba(new VPBuffer(width, height)), render_data(render_data_)
{
}

VPBuffer* Render::GetBuffer(int32_t id, int32_t)
{
	return id == VPBUFFER_RGBA ? rgba.get() : nullptr;
}

RenderContext::RenderContext(const RayParameter& parameter_, BaseThread* thread_) : parameter(parameter_), thread(thread_)
{
}

namespace
{

// The enabled video posts of the document's render data with a plug-in
// behind them, in the order the host calls them: by priority, higher first,
// then in list order.
std::vector<BaseVideoPost*> videoPostsInOrder(BaseDocument* doc)
{
	std::vector<std::pair<int32_t, BaseVideoPost*>> posts;
	const RenderData* rd = doc ? doc->GetActiveRenderData() : nullptr;
	for(BaseVideoPost* vp = rd ? rd->GetFirstVideoPost() : nullptr; vp; vp = vp->GetNext())
	{
		if(vp->GetInfo() & VIDEOPOST_DISABLED)
			continue;
		if(!dynamic_cast<VideoPostData*>(vp->GetNodeData()))
			continue;
		const PluginRecord* record = PluginRegistry::get().find(vp->GetType());
		posts.emplace_back(record ? record->priority : 0, vp);
	}
	std::stable_sort(posts.begin(), posts.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
	std::vector<BaseVideoPost*> out;
	for(const auto& p : posts)
		out.push_back(p.second);
	return out;
}

int32_t callAll(const std::vector<BaseVideoPost*>& posts, VideoPostStruct& vps, int32_t kind, bool open)
{
	int32_t result = RENDERRESULT_OK;
	vps.vp = kind;
	vps.open = open;
	for(BaseVideoPost* post : posts)
	{
		const int32_t r = static_cast<VideoPostData*>(post->GetNodeData())->Execute(post, &vps);
		if(r != RENDERRESULT_OK && result == RENDERRESULT_OK)
		{
			result = r;
			// A failed opening call ends the opening; closing calls all go out.
			if(open)
				break;
		}
	}
	return result;
}

// The render proper, into a frame of width by height whose rendered part is
// parameter; bd is the editor view or null.
int32_t renderFrame(BaseDocument* doc, const BaseContainer& rdata, BaseBitmap* bmp, BaseThread* th, BaseDraw* bd,
	const RayParameter& parameter)
{
	// The document is rendered as it stands at its time, caches built.
	doc->ExecutePasses(th, true, true, true, 0);
	Render render(parameter.xres, parameter.yres, rdata);
	RenderContext context(parameter, th);
	VideoPostStruct vps;
	vps.doc = doc;
	vps.thread = th;
	vps.vd = &context;
	vps.bd = bd;
	vps.render = &render;

	const std::vector<BaseVideoPost*> posts = videoPostsInOrder(doc);
	int32_t result = RENDERRESULT_OK;
	int32_t opened = 0;
	for(int32_t kind = VIDEOPOSTCALL_FRAMESEQUENCE; kind <= VIDEOPOSTCALL_INNER; ++kind)
	{
		result = callAll(posts, vps, kind, true);
		opened = kind;
		if(result != RENDERRESULT_OK)
			break;
	}
	// The host's own renderer would draw here, unless a video post took the
	// picture over; this host has none, and the buffer stays as it is.
	for(int32_t kind = opened; kind >= VIDEOPOSTCALL_FRAMESEQUENCE; --kind)
	{
		const int32_t r = callAll(posts, vps, kind, false);
		if(result == RENDERRESULT_OK)
			result = r;
	}

	if(bmp && bmp->Init(parameter.xres, parameter.yres, 24) == IMAGERESULT_OK)
	{
		const VPBuffer& buffer = *render.GetBuffer(VPBUFFER_RGBA);
		for(int32_t y = 0; y < buffer.GetBh(); ++y)
			for(int32_t x = 0; x < buffer.GetBw(); ++x)
			{
				const uint8_t* p = buffer.GetPixel(x, y);
				bmp->SetPixel(x, y, p[0], p[1], p[2]);
			}
	}
	return result;
}

} // namespace

int32_t RenderDocument(BaseDocument* doc, const BaseContainer& rdata, BaseBitmap* bmp, int32_t, BaseThread* th)
{
	if(!doc)
		return RENDERRESULT_FAILED;
	RayParameter parameter;
	parameter.xres = (int32_t)rdata.GetFloat(RDATA_XRES);
	parameter.yres = (int32_t)rdata.GetFloat(RDATA_YRES);
	if(parameter.xres < 1 || parameter.yres < 1)
		return RENDERRESULT_FAILED;
	parameter.right = parameter.xres - 1;
	parameter.bottom = parameter.yres - 1;
	return renderFrame(doc, rdata, bmp, th, nullptr, parameter);
}

int32_t RenderDocumentInView(BaseDocument* doc, BaseDraw* bd, BaseBitmap* bmp, BaseThread* th)
{
	if(!doc || !bd || !doc->GetActiveRenderData())
		return RENDERRESULT_FAILED;
	int32_t left, top, right, bottom;
	bd->GetFrame(&left, &top, &right, &bottom);
	RayParameter parameter;
	parameter.xres = right - left + 1;
	parameter.yres = bottom - top + 1;
	parameter.right = parameter.xres - 1;
	parameter.bottom = parameter.yres - 1;
	// Only the safe frame, where the camera's picture lies, is rendered.
	int32_t cut, size, kind;
	bd->GetSafeFrame(&cut, &size, &kind);
	if(kind == SAFEFRAME_COLUMNS)
	{
		parameter.left = cut;
		parameter.right = size;
	}
	else if(kind == SAFEFRAME_ROWS)
	{
		parameter.top = cut;
		parameter.bottom = size;
	}
	return renderFrame(doc, *doc->GetActiveRenderData()->GetDataInstance(), bmp, th, bd, parameter);
}

RenderThread::RenderThread(BaseDocument* doc_, BaseBitmap* bmp_, BaseDraw* bd_) : doc(doc_), bmp(bmp_), bd(bd_) {}

RenderThread::~RenderThread()
{
	End(true);
}

void RenderThread::Main()
{
	if(bd)
		result = RenderDocumentInView(doc, bd, bmp, Get());
	else
		result = RenderDocument(doc, *doc->GetActiveRenderData()->GetDataInstance(), bmp, RENDERFLAGS_EXTERNAL, Get());
}
