#include "c4d/ge_user_area.h"

#include <algorithm>
#include <cmath>

GeUserArea::~GeUserArea()
{
	if(dialog)
		dialog->detachUserArea(this);
}

bool GeUserArea::Init()
{
	return true;
}

void GeUserArea::Sized(int32_t, int32_t)
{
}

void GeUserArea::DrawMsg(int32_t, int32_t, int32_t, int32_t, const BaseContainer&)
{
}

bool GeUserArea::GetMinSize(int32_t&, int32_t&)
{
	return false;
}

void GeUserArea::Timer(const BaseContainer&)
{
}

bool GeUserArea::CoreMessage(int32_t, const BaseContainer&)
{
	return true;
}

int32_t GeUserArea::Message(const BaseContainer& msg, BaseContainer&)
{
	return HostMessages::dispatch(*this, msg);
}

void GeUserArea::Redraw(bool)
{
	if(width < 1 || height < 1)
		return;
	BaseContainer msg;
	DrawMsg(0, 0, width, height, msg);
}

namespace
{

int32_t toByte(double component)
{
	return (int32_t)std::lround(std::clamp(component, 0.0, 1.0) * 255.0);
}

} // namespace

void GeUserArea::DrawSetPen(const Vector& color)
{
	pen = color;
}

void GeUserArea::DrawRectangle(int32_t x1, int32_t y1, int32_t x2, int32_t y2)
{
	for(int32_t y = std::max(y1, 0); y <= std::min(y2, height - 1); ++y)
		for(int32_t x = std::max(x1, 0); x <= std::min(x2, width - 1); ++x)
			canvas.SetPixel(x, y, toByte(pen.x), toByte(pen.y), toByte(pen.z));
}

void GeUserArea::DrawBitmap(const BaseBitmap* bmp, int32_t wx, int32_t wy, int32_t ww, int32_t wh, int32_t x, int32_t y,
	int32_t w, int32_t h, int32_t)
{
	if(!bmp || ww < 1 || wh < 1 || w < 1 || h < 1)
		return;
	// Each pixel of the target takes the source pixel under its centre.
	for(int32_t ty = 0; ty < wh; ++ty)
		for(int32_t tx = 0; tx < ww; ++tx)
		{
			const int32_t sx = x + (int32_t)(((double)tx + 0.5) * w / ww);
			const int32_t sy = y + (int32_t)(((double)ty + 0.5) * h / wh);
			uint16_t r = 0, g = 0, b = 0;
			bmp->GetPixel(sx, sy, &r, &g, &b);
			canvas.SetPixel(wx + tx, wy + ty, r, g, b);
		}
}

void GeUserArea::attach(GeDialog* owner, int32_t w, int32_t h)
{
	dialog = owner;
	width = height = 0;
	Init();
	resize(w, h);
}

void GeUserArea::resize(int32_t w, int32_t h)
{
	if(w == width && h == height)
		return;
	width = std::max(w, 0);
	height = std::max(h, 0);
	if(width > 0 && height > 0)
		canvas.Init(width, height);
	Sized(width, height);
	Redraw();
}
