#pragma once

#include "c4d/node_data.h"
#include "c4d/special_events.h"
#include "scene/scene_node_root.h"
#include "sdk/renderer.h"
#include "support/reference.h"

#include <atomic>
#include <cstdint>
#include <mutex>

// The change mark of a scene node's flags: set by whoever edits the node
// during a render (the tone mapping dialog), taken by the render loop.
const uint32_t NODE_CHANGED = 1u << 1;

// The one place where the in-host render (on the host's render thread) and
// the commands and dialogs of the main thread meet. lock guards every
// member, and is held only for short steps, never across a wait.
struct RenderState
{
	// The active renderer and its scene, or null.
	Velorn::Reference<Velorn::Renderer> renderer;
	Velorn::Reference<Velorn::SceneNodeRoot> root;
	// Set by the pause command, cleared by resume.
	int32_t paused = 0;
	// Set by the update image command, cleared by the render loop.
	int32_t update_requested = 0;
	// Set at the start of a render, for the tone mapping dialog to rebuild.
	// The dialog looks at it without the lock first, at every message, so
	// it is atomic; it is changed under the lock.
	std::atomic<int32_t> new_render{0};
	std::mutex lock;

	// Releases the renderer, then the root, and zeroes the flags. The
	// releases happen after the lock is left: ending a renderer waits for
	// its threads.
	void clear();
};

// The state of the module.
RenderState& renderState();

// The commands of a running render, for the picture viewer's menu.
class PauseRenderingCommand : public CommandData
{
public:
	bool Execute(BaseDocument* doc) override;
	// Enabled while a renderer runs unpaused.
	int32_t GetState(BaseDocument* doc) override;
};

class ResumeRenderingCommand : public CommandData
{
public:
	bool Execute(BaseDocument* doc) override;
	// Enabled while a renderer is paused.
	int32_t GetState(BaseDocument* doc) override;
};

// Asks the running render for a fresh picture at its next poll.
class UpdateImageCommand : public CommandData
{
public:
	bool Execute(BaseDocument* doc) override;
	int32_t GetState(BaseDocument* doc) override;
};

// Shows the texts that renders post from their threads: the event's first
// parameter is a heap String, which the handler takes over.
class VelornMessage : public MessageData
{
public:
	bool CoreMessage(int32_t id, uintptr_t p1, uintptr_t p2) override;
};

// Registers a command of the picture viewer's menu.
bool registerRenderCommand(int32_t id, const char* name, const char* help, const char* icon, CommandData* command);

bool RegisterResumeRenderingCommand();
bool RegisterPauseRenderingCommand();
bool RegisterUpdateImageCommand();
bool RegisterVelornMessage();

// Ids of the render's commands and of its message plug-in.
enum
{
	ID_PAUSE_RENDERING = 1023695,
	ID_RESUME_RENDERING = 1023696,
	ID_UPDATE_IMAGE = 1027825,
	ID_VELORN_MESSAGE = 1027562,
};
