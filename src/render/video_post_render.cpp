// The video post's Execute: the in-host render, step by step.
#include "render/render_state.h"
#include "render/video_post.h"

#include "c4d/base_document.h"
#include "c4d/base_draw.h"
#include "c4d/console.h"
#include "c4d/host_clock.h"
#include "c4d/render_document.h"
#include "c4d/special_events.h"
#include "export/export_settings.h"
#include "export/scene_exporter.h"
#include "host/plugin_globals.h"
#include "host/plugin_ids.h"
#include "host/settings.h"
#include "scene/render_setting_values.h"
#include "scene/scene_node_render_settings.h"
#include "sdk/render_buffers.h"
#include "sdk/renderer.h"
#include "sdk/tone_mapper.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

#include <chrono>
#include <cstdio>
#include <thread>

namespace
{

// The poll period of the render loop and of the final tone mapping.
const std::chrono::milliseconds poll_period(50);
// A render data item that the host's renderer would read; cleared before
// the render, since this video post draws the picture itself.
const int32_t RDATA_ITEM_CLEARED = 5006;
const float tone_mapping_gamma = 2.2f;

// Samples per pixel as the status bar shows them: one digit after the point.
String sppText(double spp)
{
	char text[64];
	std::snprintf(text, sizeof(text), "%.1f", spp);
	return String(text);
}

void showStatus(const char* text)
{
	StatusClear();
	StatusSetText(String(text));
}

void setProgress(double fraction)
{
	StatusSetBar((int32_t)(fraction * 100.0));
}

void sleepOneRound()
{
	std::this_thread::sleep_for(poll_period);
}

} // namespace

void postMessage(const String& text)
{
	SpecialEventAdd(ID_VELORN_MESSAGE, reinterpret_cast<uintptr_t>(new String(text)));
}

struct VelornVideoPost::RenderRun
{
	Velorn::Reference<Velorn::Renderer> renderer;
	Velorn::Reference<Velorn::RenderBuffer> render_buffer;
	Velorn::Reference<Velorn::UInt8Buffer> bytes;
	Velorn::Reference<Velorn::ToneMapper> tone_mapper;
	double last_tonemap = 1.0;
	bool keep_going = true;
	bool tonemapping = false;
};

int32_t VelornVideoPost::Execute(BaseVideoPost* node, VideoPostStruct* vps)
{
	if(!vps)
	{
		GePrint(String("*vps is null."));
		return RENDERRESULT_OK;
	}
	if(vps->vd)
		vps->vd->SkipRenderProcess();
	if(g_context.isNull() || !g_context->isLoaded())
		return RENDERRESULT_OK;

	try
	{
		switch(vps->vp)
		{
		case VIDEOPOSTCALL_SUBFRAME:
			if(vps->open)
			{
				if(vps->render)
					vps->render->GetRenderData()->SetInt32(RDATA_ITEM_CLEARED, 0);
				return RENDERRESULT_OK;
			}
			return finish();
		case VIDEOPOSTCALL_RENDER:
			return vps->open ? RENDERRESULT_OK : render(node, vps);
		case VIDEOPOSTCALL_INNER:
			return vps->open ? prepare(node, vps) : RENDERRESULT_OK;
		}
	}
	catch(const Velorn::MessageException& e)
	{
		// An exception must not reach the host's render thread.
		GePrint(String(e.what()));
		prepare_failed = 1;
		return RENDERRESULT_FAILED;
	}
	catch(const std::exception& e)
	{
		GePrint(String(e.what()));
		prepare_failed = 1;
		return RENDERRESULT_FAILED;
	}
	return RENDERRESULT_OK;
}

int32_t VelornVideoPost::prepare(BaseVideoPost* node, VideoPostStruct* vps)
{
	prepare_failed = 0;
	const RayParameter* ray = vps->vd ? vps->vd->GetRayParameter() : nullptr;
	if(!ray)
	{
		prepare_failed = 1;
		return RENDERRESULT_FAILED;
	}
	frame_width = image_width = ray->xres;
	frame_height = image_height = ray->yres;
	offset_x = offset_y = 0;
	Velorn::Reference<Velorn::RenderRegion> region = new Velorn::RenderRegion(0, image_width, 0, image_height);

	if(vps->bd)
	{
		// The picture lies in the view's safe frame; the bars around it stay.
		int32_t cut = 0, size = 0, kind = SAFEFRAME_NONE;
		vps->bd->GetSafeFrame(&cut, &size, &kind);
		if(kind == SAFEFRAME_ROWS)
		{
			offset_y = cut;
			image_height = size - cut;
			offset_x = 0;
			image_width = frame_width;
		}
		else if(kind == SAFEFRAME_COLUMNS)
		{
			offset_x = cut;
			image_width = size - cut;
			offset_y = 0;
			image_height = frame_height;
		}
		region = new Velorn::RenderRegion(ray->left - offset_x, ray->right - offset_x, ray->top - offset_y,
			ray->bottom - offset_y);
	}

	showStatus("Exporting scene...");

	const BaseContainer* data = node->GetDataInstance();
	quick_mode = 0;
	preview_mode = data->GetInt32(1433);
	interactive = (preview_mode == 0 && !vps->bd) ? 1 : 0;

	const Filename path = evelornDataDir() + Filename(String("quickrender")) + Filename(String("quickrender.vls"));
	scene_path = path.GetString();

	BaseDocument* doc = vps->doc;
	const int32_t frame = doc ? (int32_t)(doc->GetTime().Get() * doc->GetFps()) : 0;
	ExportSettings settings(doc, path, &temp_files, frame, image_width, image_height, 0, data->GetInt32(vp_merge_vertices),
		data->GetInt32(vp_verbose), preview_mode);
	SceneExporter exporter(&settings);
	scene_root = exporter.exportScene();
	if(scene_root.isNull())
	{
		prepare_failed = 1;
		return RENDERRESULT_FAILED;
	}
	scene_root->finalise(scene_path.GetStdString());

	Velorn::Reference<Velorn::SceneNode> settings_node = scene_root->getRenderSettingsNode();
	if(settings_node.isNull())
		throw Velorn::Exception("No renderer settings node in scene.");
	auto& rs = static_cast<Velorn::SceneNodeRenderSettings&>(*settings_node);
	rs.setRenderRegion(region);
	if(preview_mode)
		rs.setBool("save_png", false);
	if(quick_mode)
	{
		rs.setBool("bidirectional", false);
		rs.setBool("metropolis", false);
		rs.setInt("super_sample_factor", 1);
		rs.setDouble("halt_time", -1);
		rs.setDouble("halt_samples_per_pixel", 16);
	}
	rs.setNumLayers(scene_root->getHighestEmissionLayerInTree() + 1);
	return RENDERRESULT_OK;
}

int32_t VelornVideoPost::finish()
{
	scene_root = nullptr;
	for(const Filename& file : temp_files)
	{
		try
		{
			Velorn::FileUtils::deleteFile(file.GetString().GetStdString());
		}
		catch(const Velorn::MessageException&)
		{
			// Gone already: nothing is left to clean up.
		}
	}
	temp_files.clear();
	return RENDERRESULT_OK;
}

int32_t VelornVideoPost::render(BaseVideoPost* node, VideoPostStruct* vps)
{
	if(prepare_failed)
		return RENDERRESULT_FAILED;
	if(vps->vd && vps->vd->TestBreak())
		return RENDERRESULT_USERBREAK;
	showStatus("Building scene...");
	if(scene_root.isNull() || !vps->render || !vps->render->GetBuffer(VPBUFFER_RGBA))
		return RENDERRESULT_FAILED;

	RenderRun run;
	run.renderer = new Velorn::Renderer(g_context);
	RenderState& state = renderState();
	{
		std::lock_guard<std::mutex> guard(state.lock);
		state.renderer = run.renderer;
		state.paused = 0;
		state.update_requested = 0;
	}
	run.render_buffer = new Velorn::RenderBuffer(*scene_root);
	run.bytes = new Velorn::UInt8Buffer();

	// The seed: the first number of a generator seeded from the timer, times
	// a second reading of the timer.
	Random random;
	random.Init((uint32_t)GeGetTimer());
	const double first = random.Get01();
	const int32_t seed = (int32_t)(first * GeGetTimer());
	Velorn::Vector<Velorn::String> args{Velorn::String(scene_path.GetStdString()), Velorn::String("-seed"),
		Velorn::String(std::to_string(seed))};
	if(!preview_mode && !quick_mode && node->GetDataInstance()->GetInt32(vp_network) == 1)
	{
		args.push_back(Velorn::String("-n"));
		args.push_back(Velorn::String("wm"));
	}

	run.last_tonemap = 1.0;
	run.keep_going = true;
	run.tonemapping = false;
	run.tone_mapper = new Velorn::ToneMapper(g_context, run.render_buffer, run.bytes, nullptr, tone_mapping_gamma);

	bool error = false;
	bool preview_failed = false;
	if(run.tone_mapper->setParameters(scene_root->getToneMappingNode(), scene_root->getRenderSettingsNode(),
		   scene_root->getCameraNode()) != 0)
	{
		GePrint(String("Error while creating tonemapper: ") + String(run.tone_mapper->getErrorMessage().str()));
		error = true;
	}
	else if(run.renderer->initialiseWithScene(scene_root, run.render_buffer, args) != 0)
	{
		postMessage(String("Error build scene failed."));
		error = true;
	}
	else
	{
		run.renderer->startRendering();
		// The scene goes to the tone mapping dialog only now: until the
		// renderer has built its own copy, this thread reads every node,
		// and the dialog must not write them meanwhile.
		{
			std::lock_guard<std::mutex> guard(state.lock);
			state.root = scene_root;
			state.new_render = 1;
		}
		tonemap_period = 2.0;
		const auto& rs = static_cast<const Velorn::SceneNodeRenderSettings&>(*scene_root->getRenderSettingsNode());
		halt_time = rs.getDouble("halt_time");
		halt_spp = rs.getDouble("halt_samples_per_pixel");

		error = !renderLoop(run, vps);
		run.renderer->stopRendering();
		if(!error && preview_mode && run.renderer->getSamplesPerPixel() < 0.1)
			error = preview_failed = true;
		else if(!error)
		{
			// A change made while the render came to its halt still reaches
			// the final picture.
			takeChangedNodes(run);
			setProgress(1.0);
			StatusSetText(String("Final tonemapping..."));
			run.tone_mapper->update();
			while(!run.tone_mapper->isDone())
				sleepOneRound();
			copyToHost(run, vps->render);
			StatusSetText(String("Closing render threads..."));
		}
	}

	// The end, in all cases.
	if(!drainMessages(run))
		error = true;
	if(interactive)
	{
		std::lock_guard<std::mutex> guard(state.lock);
		state.renderer = nullptr;
		state.root = nullptr;
		state.paused = 0;
		state.update_requested = 0;
	}
	run.tone_mapper = nullptr;
	run.bytes = nullptr;
	run.render_buffer = nullptr;
	run.renderer = nullptr;
	if(preview_failed)
		return RENDERRESULT_FAILED;
	return error ? RENDERRESULT_RENDER_FAILED : RENDERRESULT_OK;
}

bool VelornVideoPost::renderLoop(RenderRun& run, VideoPostStruct* vps)
{
	RenderState& state = renderState();
	while(!(vps->vd && vps->vd->TestBreak()) && run.keep_going)
	{
		if(!drainMessages(run))
			return false;

		bool changed = takeChangedNodes(run);

		double elapsed = run.renderer->getElapsedTime();
		if(interactive)
		{
			std::lock_guard<std::mutex> guard(state.lock);
			if(state.update_requested)
			{
				state.update_requested = 0;
				changed = true;
			}
		}
		// A changed value or a requested update gets its picture at once,
		// and leaves the period of the regular ones as it is.
		if(changed)
		{
			StatusSetText(String("Tonemapping..."));
			run.tone_mapper->update();
			run.tonemapping = true;
		}
		else if(!run.tonemapping && !preview_mode && elapsed - run.last_tonemap > tonemap_period)
		{
			setProgress(1.0);
			StatusSetText(String("Tonemapping..."));
			tonemap_period *= 2.0;
			run.tone_mapper->update();
			run.tonemapping = true;
			run.last_tonemap = run.renderer->getElapsedTime();
		}

		if(run.tonemapping && run.tone_mapper->isDone())
		{
			copyToHost(run, vps->render);
			run.tonemapping = false;
			StatusClear();
		}

		elapsed = run.renderer->getElapsedTime();
		const double spp = run.renderer->getSamplesPerPixel();
		bool paused = false;
		if(interactive)
		{
			std::lock_guard<std::mutex> guard(state.lock);
			paused = state.paused != 0;
		}
		if(paused)
		{
			StatusClear();
			StatusSetText(String("Paused: ") + sppText(spp) + String(" s/px"));
		}
		else if(!run.tonemapping)
		{
			setProgress((elapsed - run.last_tonemap) / tonemap_period);
			StatusSetText(String("Rendering: ") + sppText(spp) + String(" s/px"));
		}

		bool halt = false;
		if(halt_spp != -1)
			halt = spp > halt_spp;
		else if(halt_time != -1)
			halt = elapsed > halt_time;
		if(halt)
			run.keep_going = false;
		else
			sleepOneRound();
	}
	return true;
}

bool VelornVideoPost::takeChangedNodes(RenderRun& run)
{
	const Velorn::Reference<Velorn::SceneNode> tone_node = scene_root->getToneMappingNode();
	const Velorn::Reference<Velorn::SceneNode> settings_node = scene_root->getRenderSettingsNode();
	if(tone_node.isNull() || settings_node.isNull())
		return false;
	// The tone mapping dialog writes these nodes on the main thread under
	// the render state's lock; the marks and the values are read under it
	// too. The tone mapper copies the values, so the lock is held briefly.
	RenderState& state = renderState();
	std::lock_guard<std::mutex> guard(state.lock);
	const bool tone_changed = tone_node->testFlags(NODE_CHANGED);
	const bool settings_changed = settings_node->testFlags(NODE_CHANGED);
	if(tone_changed)
		tone_node->setFlags(0);
	if(settings_changed)
		settings_node->setFlags(0);
	if(!tone_changed && !settings_changed)
		return false;
	run.tone_mapper->setParameters(tone_node, settings_node, scene_root->getCameraNode());
	return true;
}

bool VelornVideoPost::drainMessages(RenderRun& run)
{
	std::vector<Velorn::Reference<Velorn::InterfaceBase>> messages;
	run.renderer->getMessages(messages);
	bool ok = true;
	for(const auto& message : messages)
		if(Velorn::messageType(*message) == Velorn::MessageTable::ErrorMessage)
		{
			postMessage(String("ERROR: ") + String(Velorn::messageText(*message).str()));
			ok = false;
		}
	return ok;
}

void VelornVideoPost::copyToHost(RenderRun& run, Render* render)
{
	if(run.bytes.isNull())
		return;
	VPBuffer* buffer = render->GetBuffer(VPBUFFER_RGBA);
	Velorn::UInt8Buffer& bytes = *run.bytes;
	std::lock_guard<std::mutex> guard(bytes.mutex);
	const int32_t width = (int32_t)bytes.width;
	const int32_t height = (int32_t)bytes.height;
	const int32_t bytes_pp = (int32_t)bytes.bytes_pp;
	const int32_t host_bytes_pp = buffer->GetBt() / 8;
	if(width != image_width || height != image_height || buffer->GetBw() != frame_width ||
		buffer->GetBh() != frame_height || !bytes.data)
		return;
	// Four bytes a pixel when both sides have them, else three; the byte
	// order stays as the tone mapper wrote it.
	const int32_t copied = (bytes_pp == 4 && host_bytes_pp == 4) ? 4 : 3;
	std::vector<uint8_t> line((size_t)width * host_bytes_pp);
	for(int32_t row = offset_y; row < offset_y + height; ++row)
	{
		const uint8_t* source = bytes.getPixel(0, (uint32_t)(row - offset_y));
		for(int32_t x = 0; x < width; ++x)
			std::copy(source + (size_t)x * bytes_pp, source + (size_t)x * bytes_pp + copied,
				line.data() + (size_t)x * copied);
		buffer->SetLine(offset_x, row, width, line.data(), 8, false, copied);
	}
	render->UpdateScreen();
}
