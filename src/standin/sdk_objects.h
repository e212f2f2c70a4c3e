#pragma once

#include "sdk/interface_base.h"
#include "sdk/render_buffers.h"
#include "standin/progressive_render.h"
#include "standin/tone_mapping.h"
#include "support/reference.h"

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace Velorn
{

class SceneNode;
class SceneNodeRoot;

namespace Standin
{

// A message the renderer object hands out: its type (1 an error) and text.
class MessageObject : public InterfaceBase
{
public:
	MessageObject(int type_, const String& text_);

	int type;
	String text;
};

// The renderer object of the library ("VelornInterface"): renders a scene
// tree into the caller's render buffer on threads of its own.
class RendererObject : public InterfaceBase
{
public:
	RendererObject();
	~RendererObject();

	int initialise(const String& sdk_dir, const String& appdata_dir);
	int initialiseWithScene(const Reference<SceneNodeRoot>& root, RenderBuffer* buffer, const Vector<String>& args);
	void startRendering();
	void pauseRendering();
	void resumeRendering();
	void stopRendering();
	// Renders the changed tree from the start: the buffer is cleared, and a
	// render that was running goes on with the new scene.
	void updateScene(const Reference<SceneNodeRoot>& new_root);
	double getSamplesPerPixel() const;
	double getElapsedTime() const;

	void postMessage(int type, const std::string& text);
	void beginMessages();
	bool atEndOfMessages();
	InterfaceBase* nextMessage();
	void endMessages();

private:
	String sdk_dir, appdata_dir;
	Reference<SceneNodeRoot> root;
	Reference<RenderBuffer> buffer;
	std::shared_ptr<TracerScene> scene;
	std::string scene_path;
	uint64_t seed = 1;

	// The render under way. The thread that builds the scene replaces it
	// while others (the host's commands) may pause or read it: render_mutex
	// guards the pointer only, and every call goes to a copy taken under
	// it, so that no lock is held while a render's threads are joined.
	mutable std::mutex render_mutex;
	std::shared_ptr<ProgressiveRender> render;
	std::shared_ptr<ProgressiveRender> currentRender() const;
	// Ends the render under way, if any, and forgets it.
	void dropRender();

	// Makes the scene and the render of root into buffer; false, with an
	// error message posted, when the scene cannot be rendered.
	bool prepare();

	std::mutex messages_mutex;
	std::deque<Reference<InterfaceBase>> messages;
	// Handed out in the current iteration; dropped at its end, when the
	// caller holds its own references.
	std::vector<Reference<InterfaceBase>> delivered;
};

// The tone mapper object ("ToneMapperDLLAPI"): turns the render buffer into
// 8-bit pixels (and floats, when given a float buffer) on a thread of its own.
class ToneMapperObject : public InterfaceBase
{
public:
	ToneMapperObject();
	~ToneMapperObject();

	void initialise(RenderBuffer* render_buffer, UInt8Buffer* bytes, FloatBuffer* floats, float gamma, String& error_out);
	void setParameters(const SceneNode* tone_mapping, const SceneNode* settings, const SceneNode* camera, String& error_out);
	void update();
	bool isDone() const { return done.load(); }

	// One pass on the calling thread.
	void toneMapNow();
	// Ends a pass under way (and any asked for) before the object goes.
	void waitForPasses();

private:
	RenderBuffer* render_buffer = nullptr;
	UInt8Buffer* bytes = nullptr;
	FloatBuffer* floats = nullptr;
	float gamma = 2.2f;
	bool has_parameters = false;
	ToneMapSettings settings;
	uint32_t super_sample_factor = 1;
	std::vector<LayerWeight> weights;

	// Guards the parameters, which the render thread may set while a pass
	// runs, and the worker's state. A pass copies the parameters at its
	// start and runs without the lock.
	std::mutex state_mutex;
	// A pass was asked for that has not started yet.
	bool pass_pending = false;
	bool worker_running = false;
	// Runs passes while any are asked for.
	void runPasses();

	std::thread worker;
	std::atomic<bool> done{true};
};

// The hardware object ("HardwareInfoDLLAPI"): this renderer uses no GPU, so
// its lists are empty.
class HardwareInfoObject : public InterfaceBase
{
public:
	HardwareInfoObject();
};

// The object of a class name, or null for a name the library does not know.
InterfaceBase* createObject(const std::string& class_name);

} // namespace Standin
} // namespace Velorn
