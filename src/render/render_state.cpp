#include "render/render_state.h"

#include "c4d/console.h"
#include "c4d/plugin_registry.h"
#include "host/registration.h"

#include <memory>

namespace
{

// Commands of the picture viewer's menu, not of the main palette.
const int32_t PLUGINFLAG_HIDE = 0x20000000;

} // namespace

bool registerRenderCommand(int32_t id, const char* name, const char* help, const char* icon, CommandData* command)
{
	return RegisterCommandPlugin(id, String(name), PLUGINFLAG_HIDE, moduleResourceFile(icon), String(help), command);
}

void RenderState::clear()
{
	Velorn::Reference<Velorn::Renderer> old_renderer;
	Velorn::Reference<Velorn::SceneNodeRoot> old_root;
	{
		std::lock_guard<std::mutex> guard(lock);
		old_renderer = std::move(renderer);
		old_root = std::move(root);
		paused = 0;
		update_requested = 0;
		new_render = 0;
	}
	old_renderer = nullptr;
	old_root = nullptr;
}

RenderState& renderState()
{
	static RenderState state;
	return state;
}

bool PauseRenderingCommand::Execute(BaseDocument*)
{
	RenderState& state = renderState();
	std::lock_guard<std::mutex> guard(state.lock);
	if(state.renderer.nonNull())
	{
		state.renderer->pauseRendering();
		state.paused = 1;
	}
	return true;
}

int32_t PauseRenderingCommand::GetState(BaseDocument*)
{
	RenderState& state = renderState();
	std::lock_guard<std::mutex> guard(state.lock);
	return state.renderer.nonNull() && !state.paused ? CMD_ENABLED : 0;
}

bool ResumeRenderingCommand::Execute(BaseDocument*)
{
	RenderState& state = renderState();
	std::lock_guard<std::mutex> guard(state.lock);
	if(state.renderer.nonNull())
	{
		state.renderer->resumeRendering();
		state.paused = 0;
	}
	return true;
}

int32_t ResumeRenderingCommand::GetState(BaseDocument*)
{
	RenderState& state = renderState();
	std::lock_guard<std::mutex> guard(state.lock);
	return state.renderer.nonNull() && state.paused ? CMD_ENABLED : 0;
}

bool UpdateImageCommand::Execute(BaseDocument*)
{
	RenderState& state = renderState();
	std::lock_guard<std::mutex> guard(state.lock);
	if(state.renderer.nonNull())
		state.update_requested = 1;
	return true;
}

int32_t UpdateImageCommand::GetState(BaseDocument*)
{
	RenderState& state = renderState();
	std::lock_guard<std::mutex> guard(state.lock);
	return state.renderer.nonNull() ? CMD_ENABLED : 0;
}

bool VelornMessage::CoreMessage(int32_t, uintptr_t p1, uintptr_t)
{
	std::unique_ptr<String> text(reinterpret_cast<String*>(p1));
	if(text)
		MessageDialog(*text);
	return true;
}

bool RegisterResumeRenderingCommand()
{
	return registerRenderCommand(ID_RESUME_RENDERING, "Velorn Resume Rendering", "Resume Rendering", "resume.tif",
		new ResumeRenderingCommand());
}

bool RegisterPauseRenderingCommand()
{
	return registerRenderCommand(ID_PAUSE_RENDERING, "Velorn Pause Rendering", "Pause Rendering", "pause.tif",
		new PauseRenderingCommand());
}

bool RegisterUpdateImageCommand()
{
	return registerRenderCommand(ID_UPDATE_IMAGE, "Velorn Update Image", "Update Image", "convertmats.tif",
		new UpdateImageCommand());
}

bool RegisterVelornMessage()
{
	return RegisterMessagePlugin(ID_VELORN_MESSAGE, String("Velorn Message"), 0, new VelornMessage());
}
