#pragma once

#include "c4d/base_bitmap.h"
#include "c4d/base_container.h"
#include "c4d/ge_dialog.h"
#include "c4d/vector_matrix.h"

#include <cstdint>

// How DrawBitmap copies: the picture's pixels as they are.
enum
{
	BMP_NORMAL = 0,
};

// The host's delivery of messages, shared by dialogs and user areas.
namespace HostMessages
{

// Runs the timer through Message when it is due, as the application
// delivers its ticks.
template<typename Target>
bool fireWhenDue(Target& target, HostTimer& timer, HostTimer::Clock::time_point now)
{
	if(!timer.due(now))
		return false;
	timer.restart();
	BaseContainer msg(BFM_TIMER_MESSAGE);
	BaseContainer result;
	target.Message(msg, result);
	return true;
}

// What the base Message of dialogs and user areas does: hands timer and
// core messages to their handlers.
template<typename Target>
int32_t dispatch(Target& target, const BaseContainer& msg)
{
	switch(msg.GetId())
	{
	case BFM_TIMER_MESSAGE:
		target.Timer(msg);
		return 1;
	case BFM_CORE_MESSAGE:
		return target.CoreMessage(msg.GetInt32(BFM_CORE_ID), msg) ? 1 : 0;
	}
	return 0;
}

} // namespace HostMessages

// A rectangle of a dialog that its owner draws: the picture of a preview,
// say. The headless host keeps what the area draws in a picture of the
// area's size (GetCanvas), so that a test or the command line can look at
// it or save it. The area's timer and messages run on the dialog loop, like
// the dialog's own.
class GeUserArea
{
public:
	GeUserArea() = default;
	virtual ~GeUserArea();
	GeUserArea(const GeUserArea&) = delete;
	GeUserArea& operator=(const GeUserArea&) = delete;

	// Called once the area is attached to its dialog.
	virtual bool Init();
	// The area has a new size.
	virtual void Sized(int32_t w, int32_t h);
	// Draw the part from (x1, y1) to (x2, y2).
	virtual void DrawMsg(int32_t x1, int32_t y1, int32_t x2, int32_t y2, const BaseContainer& msg);
	// The size the area wants at least; false leaves it to the dialog.
	virtual bool GetMinSize(int32_t& w, int32_t& h);
	virtual void Timer(const BaseContainer& msg);
	virtual bool CoreMessage(int32_t id, const BaseContainer& msg);
	// Every message; the base hands BFM_TIMER_MESSAGE to Timer and
	// BFM_CORE_MESSAGE to CoreMessage.
	virtual int32_t Message(const BaseContainer& msg, BaseContainer& result);

	int32_t GetWidth() const { return width; }
	int32_t GetHeight() const { return height; }
	GeDialog* GetDialog() const { return dialog; }
	// Timer calls every ms milliseconds; 0 stops them.
	void SetTimer(int32_t ms) { timer.set(ms); }
	int32_t GetTimerInterval() const { return timer.interval(); }
	// Draws the area again. The headless host draws at once, on the calling
	// thread, whichever threaded says.
	void Redraw(bool threaded = false);

	// Drawing, inside DrawMsg: the pen's colour (components 0 to 1), a
	// filled rectangle with the pen, and the part (x, y, w, h) of a picture
	// scaled into (wx, wy, ww, wh) of the area.
	void DrawSetPen(const Vector& color);
	void DrawRectangle(int32_t x1, int32_t y1, int32_t x2, int32_t y2);
	void DrawBitmap(const BaseBitmap* bmp, int32_t wx, int32_t wy, int32_t ww, int32_t wh, int32_t x, int32_t y, int32_t w,
		int32_t h, int32_t mode);

	// The headless host's side: what the area shows, and the host giving it
	// a place and a size.
	const BaseBitmap& GetCanvas() const { return canvas; }
	void attach(GeDialog* owner, int32_t w, int32_t h);
	void detach() { dialog = nullptr; }
	// The user resized the dialog: the area gets w by h pixels (Sized, then
	// a redraw) when that is another size.
	void resize(int32_t w, int32_t h);
	HostTimer& hostTimer() { return timer; }

private:
	GeDialog* dialog = nullptr;
	int32_t width = 0;
	int32_t height = 0;
	BaseBitmap canvas;
	Vector pen;
	HostTimer timer;
};
