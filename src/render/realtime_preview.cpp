#include "render/realtime_preview.h"

#include "c4d/base_document.h"
#include "c4d/base_object.h"
#include "c4d/console.h"
#include "c4d/host_clock.h"
#include "export/camera_export.h"
#include "export/export_settings.h"
#include "export/scene_exporter.h"
#include "host/plugin_globals.h"
#include "host/settings.h"
#include "render/render_state.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_tonemapping.h"

#include <mutex>
#include <vector>

namespace
{

// The picture before the first start, and the size asked for without one.
const int32_t first_size = 150;
const int32_t timer_period_ms = 100;
// Pictures come at least this far apart, plus a tone mapping pass.
const int32_t draw_period_ms = 1000;
const float tone_mapping_gamma = 2.2f;

// The export arguments after the size, at start and at the scene check:
// no animation, vertices merged, quiet, no material preview.
ExportSettings exportSettings(BaseDocument* doc, const Filename& path, std::vector<Filename>* temp_files, int32_t frame,
	int32_t width, int32_t height)
{
	return ExportSettings(doc, path, temp_files, frame, width, height, 0, 1, 0, 0);
}

void mark(Velorn::SceneNode& node)
{
	node.markChanged();
	node.setFlags(node.getFlags() | NODE_CHANGED);
}

} // namespace

PreviewUserArea::PreviewUserArea()
{
	bitmap.Init(first_size, first_size, 24);
}

void PreviewUserArea::toggle()
{
	if(running == 0)
		start();
	else
		stop();
}

void PreviewUserArea::start()
{
	if(!doc || g_context.isNull() || !g_context->isLoaded())
		return;
	const Filename path = evelornDataDir() + Filename(String("quickrender")) + Filename(String("quickrender.vls"));
	const int32_t frame = (int32_t)(doc->GetTime().Get() * doc->GetFps());
	const int32_t width = GetWidth(), height = GetHeight();
	ExportSettings settings = exportSettings(doc, path, nullptr, frame, width, height);
	SceneExporter exporter(&settings);
	root = exporter.exportScene();
	if(root.isNull())
		return;
	root->finalise(path.GetString().GetStdString());

	renderer = new Velorn::Renderer(g_context);
	render_buffer = new Velorn::RenderBuffer(*root);
	uint8_buffer = new Velorn::UInt8Buffer();
	uint8_buffer->resize((uint32_t)width, (uint32_t)height);
	bitmap.Init(width, height, 24);
	tone_mapper = new Velorn::ToneMapper(g_context, render_buffer, uint8_buffer, nullptr, tone_mapping_gamma);
	// No scene file is behind the word: the renderer takes the tree.
	const Velorn::Vector<Velorn::String> args{Velorn::String("Dummy_scene_path")};
	const int code = renderer->initialiseWithScene(root, render_buffer, args);
	if(code != 0)
	{
		GePrint(String("Renderer failed to initialise(), error code: ") + String::IntToString(code));
		return;
	}
	renderer->startRendering();
	SetTimer(timer_period_ms);
	running = 1;
	last_draw_time = GeGetTimer();
}

void PreviewUserArea::stop()
{
	if(renderer.isNull())
		return;
	renderer->stopRendering();
	renderer = nullptr;
	tone_mapper = nullptr;
	render_buffer = nullptr;
	uint8_buffer = nullptr;
	root = nullptr;
	running = 0;
	tonemap_pending = 0;
	dirty_counts.clear();
}

void PreviewUserArea::Sized(int32_t, int32_t)
{
	// A new size needs a new scene; the user starts it again.
	stop();
}

void PreviewUserArea::Timer(const BaseContainer&)
{
	if(running)
		timerStep();
}

void PreviewUserArea::timerStep()
{
	if(tonemap_pending == 0 && GeGetTimer() - last_draw_time > draw_period_ms)
	{
		startToneMapping();
		tonemap_pending = 1;
	}
	if(tonemap_pending == 1)
	{
		const bool passRunning = renderer.nonNull() && tone_mapper.nonNull() && root.nonNull() && !tone_mapper->isDone();
		if(!passRunning)
		{
			drawImage();
			last_draw_time = GeGetTimer();
			tonemap_pending = 0;
		}
	}
}

void PreviewUserArea::startToneMapping()
{
	if(renderer.isNull() || tone_mapper.isNull() || root.isNull() || !tone_mapper->isDone())
		return;
	tone_mapper->setParameters(root->getToneMappingNode(), root->getRenderSettingsNode(), root->getCameraNode());
	tone_mapper->update();
}

void PreviewUserArea::drawImage()
{
	if(uint8_buffer.isNull())
		return;
	GePrint(String("drawing image"));
	Velorn::UInt8Buffer& bytes = *uint8_buffer;
	std::lock_guard<std::mutex> guard(bytes.mutex);
	if((int32_t)bytes.width == bitmap.GetBw() && (int32_t)bytes.height == bitmap.GetBh() && bytes.data)
	{
		for(uint32_t y = 0; y < bytes.height; ++y)
			for(uint32_t x = 0; x < bytes.width; ++x)
			{
				const uint8_t* p = bytes.getPixel(x, y);
				bitmap.SetPixel((int32_t)x, (int32_t)y, p[0], p[1], p[2]);
			}
	}
	Redraw();
}

bool PreviewUserArea::CoreMessage(int32_t id, const BaseContainer&)
{
	if(id == EVMSG_CHANGE)
		sceneCheck();
	return true;
}

void PreviewUserArea::sceneCheck()
{
	if(renderer.isNull() || root.isNull())
		return;
	GePrint(String("Scanning scene"));
	if(!doc)
		return;
	// Waits for whoever holds the scene; nothing is done inside.
	{
		std::lock_guard<std::mutex> wait(root->mutex);
	}
	// Settings for the camera and tone mapping alone: with a list of
	// temporary files they make no textures folder for the empty path.
	std::vector<Filename> no_files;
	ExportSettings settings = exportSettings(doc, Filename(), &no_files, 0, 640, 480);
	if(cameraChanged(settings.camera))
	{
		if(auto* camera = dynamic_cast<Velorn::SceneNodeCamera*>(root->getCameraNode().getPointer()))
		{
			exportCamera(*camera, nullptr, settings);
			mark(*camera);
		}
		if(auto* tonemap = dynamic_cast<Velorn::SceneNodeTonemapping*>(root->getToneMappingNode().getPointer()))
		{
			exportTonemapping(*tonemap, settings);
			mark(*tonemap);
		}
		renderer->updateScene(root);
	}
	// A walk over the top-level objects that changes nothing, kept where a
	// check of the objects will go.
	for(BaseObject* op = doc->GetFirstObject(); op; op = op->GetNext())
		continue;
}

bool PreviewUserArea::cameraChanged(BaseObject* camera)
{
	if(!camera)
		return false;
	const uint32_t count = camera->GetDirty(DIRTYFLAGS_DATA);
	const auto seen = dirty_counts.find(reinterpret_cast<uintptr_t>(camera));
	if(seen == dirty_counts.end())
	{
		dirty_counts[reinterpret_cast<uintptr_t>(camera)] = count;
		return false;
	}
	if(seen->second == count)
		return false;
	seen->second = count;
	return true;
}

int32_t PreviewUserArea::Message(const BaseContainer& msg, BaseContainer& result)
{
	if(msg.GetId() == BFM_DESTROY)
		stop();
	return GeUserArea::Message(msg, result);
}

void PreviewUserArea::DrawMsg(int32_t, int32_t, int32_t, int32_t, const BaseContainer&)
{
	if(bitmap.GetBw() > 0)
		DrawBitmap(&bitmap, 0, 0, GetWidth(), GetHeight(), 0, 0, bitmap.GetBw(), bitmap.GetBh(), BMP_NORMAL);
	else
	{
		DrawSetPen(Vector(0.5, 0.5, 0.5));
		DrawRectangle(0, 0, GetWidth() - 1, GetHeight() - 1);
	}
}

bool PreviewUserArea::GetMinSize(int32_t& w, int32_t& h)
{
	w = bitmap.GetBw() > 0 ? bitmap.GetBw() : first_size;
	h = bitmap.GetBh() > 0 ? bitmap.GetBh() : first_size;
	return true;
}

bool PreviewDialog::CreateLayout()
{
	SetTitle(String("Realtime Preview"));
	GroupBegin(0, BFH_SCALEFIT | BFV_SCALEFIT, 1, 0, String());
	AddUserArea(RP_PICTURE, BFH_SCALEFIT | BFV_SCALEFIT);
	AttachUserArea(area, RP_PICTURE);
	AddButton(RP_TOGGLE, BFH_CENTER, 0, 0, String("Start / Stop"));
	GroupEnd();
	return true;
}

bool PreviewDialog::Command(int32_t id, const BaseContainer&)
{
	if(id == RP_TOGGLE)
		area.toggle();
	return true;
}
