#include "export/export_thread.h"

#include "c4d/base_document.h"
#include "c4d/console.h"
#include "c4d/events.h"
#include "c4d/file_functions.h"
#include "c4d/host_clock.h"
#include "c4d/render_data.h"
#include "export/export_settings.h"
#include "export/render_queue.h"
#include "export/scene_exporter.h"
#include "host/plugin_ids.h"
#include "host/settings.h"
#include "host/video_post_lookup.h"
#include "scene/scene_node_root.h"
#include "support/platform.h"

#include <cmath>

namespace
{

const int32_t DEFAULT_WIDTH = 640;
const int32_t DEFAULT_HEIGHT = 480;

// A time of the render data as a frame at fps.
int32_t frameAt(const BaseTime& time, double fps)
{
	return (int32_t)std::floor(time.GetNumerator() * fps / time.GetDenominator());
}

// name in the directory of file, joined by the platform's separator.
Filename besides(const Filename& file, const String& name)
{
	return Filename(file.GetDirectory().GetString() + String(std::string(1, Velorn::Platform::preferredSeparator()))
		+ name);
}

// The file's name without its suffix.
String stem(const Filename& file)
{
	Filename name = file.GetFile();
	name.SetSuffix(String());
	return name.GetString();
}

// A seed for the renderer: the next value of random times the timer.
int32_t nextSeed(Random& random)
{
	const double value = random.Get01();
	return (int32_t)std::floor(value * GeGetTimer());
}

} // namespace

void ExportThread::fail(const String& text, bool print)
{
	if(print)
		GePrint(text);
	failed = 1;
	error_text = text;
}

bool ExportThread::prepareQuickDir(Filename& quick_dir)
{
	quick_dir = evelornDataDir() + Filename("quickrender");
	if(GeFExist(quick_dir) && !GeFKill(quick_dir, GE_FKILL_DIRECTORY | GE_FKILL_RECURSIVE))
		GePrint(String("Failed to delete quickrender folder!"));
	if(GeFExist(quick_dir, true) || GeFCreateDir(quick_dir))
		return true;
	GePrint(quick_dir.GetString());
	GePrint(String("Quickrender dir could not be created."));
	fail(String("\"") + quick_dir.GetString() + String("\" could not be created."), false);
	return false;
}

bool ExportThread::chooseSceneFile(const BaseContainer& vp, Plan& plan)
{
	if(vp.GetBool(vp_use_document_dir))
	{
		if(!document->GetDocumentPath().Content())
		{
			fail(String("Document is not saved, cannot obtain document path."));
			return false;
		}
		plan.scene_file = document->GetDocumentPath() + document->GetDocumentName();
		plan.scene_file.SetSuffix(String("vls"));
		return true;
	}
	const Filename chosen = vp.GetFilename(vp_export_path);
	if(!chosen.Content() || !GeFExist(chosen.GetDirectory(), true))
	{
		fail(String("Export filename is empty or directory does not exist."));
		return false;
	}
	plan.scene_file = chosen;
	plan.scene_file.SetSuffix(String("vls"));
	return true;
}

bool ExportThread::chooseOutput(const BaseContainer& vp, Plan& plan)
{
	if(!vp.GetBool(vp_output_enabled))
		return true;
	if(vp.GetBool(vp_custom_export) && vp.GetBool(vp_use_render_dir))
	{
		const String name = stem(plan.scene_file);
		const Filename folder = besides(plan.scene_file, name + String(".renders"));
		if(!GeFExist(folder, true) && !GeFCreateDir(folder))
		{
			fail(String("Cannot create render directory."));
			return false;
		}
		plan.output_file = folder + Filename(name);
		return true;
	}
	plan.output_file = vp.GetFilename(vp_output_path);
	return true;
}

bool ExportThread::chooseFrames(Plan& plan)
{
	const RenderData* rd = document->GetActiveRenderData();
	if(!rd)
		return true;
	const BaseContainer* data = rd->GetDataInstance();
	const BaseTime from = data->GetTime(RDATA_FRAMEFROM, BaseTime(0, 1));
	const BaseTime to = data->GetTime(RDATA_FRAMETO, BaseTime(0, 1));
	const int32_t rate = data->GetInt32(RDATA_FRAMERATE, plan.fps);
	// The render data's own rate, when it has a usable one, counts the
	// frames of the loop.
	if(rate > 0 && rate != plan.fps)
		plan.fps = rate;
	plan.from = frameAt(from, plan.fps);
	plan.to = frameAt(to, plan.fps);
	if(plan.to < plan.from)
	{
		fail(String("The frame range ends before it starts (frames ") + String::IntToString(plan.from) + String(" to ")
			+ String::IntToString(plan.to) + String(")"));
		return false;
	}
	plan.is_animation = plan.from != plan.to ? 1 : 0;
	return true;
}

bool ExportThread::readVideoPost(const BaseContainer& vp, Plan& plan)
{
	if(vp.GetBool(vp_custom_export) && !chooseSceneFile(vp, plan))
		return false;
	if(!chooseOutput(vp, plan))
		return false;
	if(vp.GetBool(vp_animation) && !chooseFrames(plan))
		return false;
	plan.renderer.low_priority = vp.GetBool(vp_low_priority, true);
	plan.console = vp.GetBool(vp_console, false);
	plan.merge_vertices = vp.GetBool(vp_merge_vertices, true) ? 1 : 0;
	plan.renderer.network_master = vp.GetBool(vp_network, false);
	plan.renderer.port = vp.GetInt32(vp_port, 7777);
	return true;
}

bool ExportThread::exportFrames(Plan& plan)
{
	const BaseContainer* vp = findVideoPostContainer(document);
	const double halt_time = vp ? vp->GetFloat(vp_halt_time) : -1.0;
	const double halt_spp = vp ? vp->GetFloat(vp_halt_spp) : -1.0;
	const RenderData* rd = document->GetActiveRenderData();
	const int32_t width = rd ? rd->GetDataInstance()->GetInt32(RDATA_XRES) : DEFAULT_WIDTH;
	const int32_t height = rd ? rd->GetDataInstance()->GetInt32(RDATA_YRES) : DEFAULT_HEIGHT;
	RenderQueue queue;
	Random random;
	random.Init((uint32_t)GeGetTimer());
	const String output_stem = stem(plan.output_file);
	const String output_suffix = plan.output_file.GetSuffix();

	bool cancelled = false;
	for(int32_t frame = plan.from; frame <= plan.to; ++frame)
	{
		if(TestBreak())
		{
			fail(String("Export was cancelled by user"), false);
			cancelled = true;
			break;
		}
		document->SetTime(BaseTime(frame, plan.fps));
		document->ExecutePasses(Get(), true, true, true, 0);
		const String suffix(".vls");
		const Filename scene_path = besides(plan.scene_file,
			sceneFileName(stem(plan.scene_file), frame, plan.is_animation, suffix));
		if(plan.is_animation)
		{
			Filename output;
			if(plan.output_file.Content())
				output = besides(plan.output_file, sceneFileName(output_stem, frame, 1,
					output_suffix.Content() ? String(".") + output_suffix : String()));
			queue.addItem(scene_path, output, halt_time, halt_spp, nextSeed(random));
		}
		ExportSettings settings(document, scene_path, nullptr, frame, width, height, plan.is_animation,
			plan.merge_vertices, 1, 0);
		SceneExporter exporter(&settings);
		Velorn::Reference<Velorn::SceneNodeRoot> root = exporter.run(Get());
		if(root.nonNull())
		{
			const std::string path = scene_path.GetString().GetStdString();
			root->finalise(path);
			root->writeToFile(path, false, nullptr);
		}
	}
	if(cancelled)
		return false;
	if(plan.is_animation)
	{
		Filename queue_file = plan.scene_file;
		queue_file.SetSuffix(String("vlq"));
		queue.save(queue_file);
		plan.renderer.scene_file = queue_file;
	}
	else
		plan.renderer.scene_file = besides(plan.scene_file, sceneFileName(stem(plan.scene_file), plan.from, 0,
			String(".vls")));
	return true;
}

void ExportThread::Main()
{
	if(!document)
	{
		fail(String("Invalid document."), false);
		return;
	}
	StatusClear();
	StatusSetSpin();
	Filename quick_dir;
	if(!prepareQuickDir(quick_dir))
		return;

	Plan plan;
	plan.scene_file = quick_dir + Filename("quickrender.vls");
	plan.fps = document->GetFps();
	plan.from = plan.to = document->GetTime().GetFrame(plan.fps);
	if(const BaseContainer* vp = findVideoPostContainer(document))
		if(!readVideoPost(*vp, plan))
			return;
	plan.renderer.output_file = plan.output_file;
	plan.renderer.halt_spp = -1;

	// The document's time comes back whatever the frames did, a cancel
	// included, since the user keeps working in it.
	const BaseTime saved = document->GetTime();
	const bool whole = exportFrames(plan);
	document->SetTime(saved);
	document->ExecutePasses(Get(), true, true, true, 0);
	if(!whole)
		return;

	StatusSetSpin();
	launchRenderer(plan.console, plan.renderer);
	StatusClear();
	EventAdd(2);
	failed = 0;
}
