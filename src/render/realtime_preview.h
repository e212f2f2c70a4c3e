#pragma once

#include "c4d/base_bitmap.h"
#include "c4d/ge_dialog.h"
#include "c4d/ge_user_area.h"
#include "scene/scene_node_root.h"
#include "sdk/render_buffers.h"
#include "sdk/renderer.h"
#include "sdk/tone_mapper.h"
#include "support/reference.h"

#include <cstdint>
#include <map>

class BaseDocument;
class BaseObject;

// Gadgets of the realtime preview's dialog (layout 6036).
enum
{
	DLG_REALTIME_PREVIEW = 6036,
	RP_PICTURE = 6037,
	RP_TOGGLE = 6038,
};

// The picture of the realtime preview: while it runs, the renderer works on
// the document at the area's size, the picture is tone mapped and drawn
// about once a second from the area's timer, and a moved camera reaches the
// running renderer without a restart. Everything runs on the main thread;
// only the renderer and the tone mapper have threads, inside their library.
class PreviewUserArea : public GeUserArea
{
public:
	PreviewUserArea();
	~PreviewUserArea() override { stop(); }

	// The document previewed; the headless host has no active document, so
	// the dialog hands it over. Null: there is none.
	void setDocument(BaseDocument* doc_) { doc = doc_; }

	// Starts when idle, stops when running.
	void toggle();
	void start();
	void stop();

	void Sized(int32_t w, int32_t h) override;
	void Timer(const BaseContainer& msg) override;
	bool CoreMessage(int32_t id, const BaseContainer& msg) override;
	int32_t Message(const BaseContainer& msg, BaseContainer& result) override;
	void DrawMsg(int32_t x1, int32_t y1, int32_t x2, int32_t y2, const BaseContainer& msg) override;
	bool GetMinSize(int32_t& w, int32_t& h) override;

	// 1 when a tone mapping pass has been started and not yet drawn.
	int32_t tonemap_pending = 0;
	// The host timer, in milliseconds, of the last picture.
	int32_t last_draw_time = 0;
	// 1 between start and stop.
	int32_t running = 0;
	BaseBitmap bitmap;
	Velorn::Reference<Velorn::SceneNodeRoot> root;
	Velorn::Reference<Velorn::Renderer> renderer;
	Velorn::Reference<Velorn::RenderBuffer> render_buffer;
	Velorn::Reference<Velorn::UInt8Buffer> uint8_buffer;
	Velorn::Reference<Velorn::ToneMapper> tone_mapper;
	// The dirty count last seen of each host object, by the object.
	std::map<uintptr_t, uint32_t> dirty_counts;

private:
	void timerStep();
	void startToneMapping();
	void drawImage();
	// On the host's change event: a camera that changed is exported again
	// into the running scene.
	void sceneCheck();
	// Whether the camera's dirty count changed since it was last seen; a
	// camera seen the first time is no change.
	bool cameraChanged(BaseObject* camera);

	BaseDocument* doc = nullptr;
};

// The realtime preview's dialog: the picture and a button that starts and
// stops it. No start-up step registers it.
class PreviewDialog : public GeDialog
{
public:
	explicit PreviewDialog(BaseDocument* doc = nullptr) { area.setDocument(doc); }

	bool CreateLayout() override;
	bool Command(int32_t id, const BaseContainer& msg) override;

	PreviewUserArea& picture() { return area; }

private:
	PreviewUserArea area;
};
