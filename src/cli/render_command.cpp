#include "cli/render_command.h"

#include "c4d/command_runner.h"
#include "c4d/console.h"
#include "c4d/dialog_script.h"
#include "c4d/plugin_registry.h"
#include "cli/host_session.h"
#include "cli/tonemap_changes.h"
#include "host/plugin_ids.h"
#include "host/renderer_launch.h"
#include "host/video_post_lookup.h"
#include "c4d/base_bitmap.h"
#include "c4d/render_data.h"
#include "c4d/render_document.h"
#include "c4d/special_events.h"
#include "host/plugin_globals.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform_utils.h"

#include <chrono>
#include <thread>

#include <tinyxml.h>

namespace RenderCommand
{

namespace
{

const int32_t ID_RENDER_WITH_VELORN = 1023920;

// The last double-quoted part of a command line: the scene or the queue.
std::string lastQuoted(const std::string& line)
{
	const size_t end = line.rfind('"');
	const size_t start = end == std::string::npos || end == 0 ? std::string::npos : line.rfind('"', end - 1);
	return start == std::string::npos ? std::string() : line.substr(start + 1, end - start - 1);
}

// The scenes a render queue names, one a line, indented.
std::string queueScenes(const std::string& queue)
{
	TiXmlDocument xml;
	if(!xml.LoadFile(queue.c_str()) || !xml.RootElement())
		return "  (the queue cannot be read)\n";
	std::string text;
	for(const TiXmlElement* item = xml.RootElement()->FirstChildElement("item"); item;
		item = item->NextSiblingElement("item"))
		if(const TiXmlElement* scene = item->FirstChildElement("scene_path"))
			text += std::string("  ") + (scene->GetText() ? scene->GetText() : "") + "\n";
	return text;
}

} // namespace

std::string renderExternally(const Options& options)
{
	const HostSession session(options.plugins, options.document);
	const PluginRecord* record = PluginRegistry::get().find(ID_RENDER_WITH_VELORN);
	if(!record || !record->command)
		throw Velorn::VelornException("The plug-in has no command \"Render with Velorn\".");
	if(BaseContainer* vp = findVideoPostContainer(&session.document()))
		vp->SetBool(vp_animation, options.animation);
	else if(options.animation)
		throw Velorn::VelornException("The document has no render settings of the renderer: it renders one frame.");
	DialogScript& script = DialogScript::get();
	script.clear();
	if(!options.renderer_dir.empty())
		script.push(DialogAnswer::choose(Filename(String(options.renderer_dir))));

	const std::string before = lastRendererCommandLine();
	RunCommand(*record, &session.document());
	const std::vector<String> messages = HostConsole::get().texts(HostConsole::Kind::Message);
	if(!messages.empty())
		throw Velorn::VelornException(HostSession::consoleText() + messages.back().GetStdString());
	const std::string line = lastRendererCommandLine();
	if(line.empty() || line == before)
		throw Velorn::VelornException(HostSession::consoleText() + "The renderer was not started.");

	std::string report = HostSession::consoleText();
	const std::string target = lastQuoted(line);
	if(target.size() > 4 && target.compare(target.size() - 4, 4, ".vlq") == 0)
		report += "Queue: " + target + "\n" + queueScenes(target);
	else
		report += "Scene: " + target + "\n";
	report += "Renderer: " + lastRendererExecutable().GetString().GetStdString() + "\n";
	report += "Command line: " + line + "\n";
	return report;
}

void loadRendererLibrary(const std::string& renderer_dir)
{
	// The plug-in looks for the library in its own directory; here it is
	// taken from the renderer's.
	g_context = new Velorn::VelornContext();
	std::string error;
	const std::string appdata = Velorn::FileUtils::join(Velorn::PlatformUtils::getAPPDataDirPath(), "Velorn Renderer");
	if(g_context->load(renderer_dir, appdata, error) != Velorn::VelornContext::LOAD_OK)
		throw Velorn::VelornException("The renderer's SDK library cannot be loaded: " + error);
}

std::string hostReport()
{
	std::string report = HostSession::consoleText();
	for(const String& message : HostConsole::get().texts(HostConsole::Kind::Message))
		report += "[message] " + message.GetStdString() + "\n";
	return report;
}

std::string renderInHost(const Options& options)
{
	TonemapChanges tonemap(options.tonemap);
	const HostSession session(options.plugins, options.document);
	BaseDocument& doc = session.document();
	BaseContainer* vp = findVideoPostContainer(&doc);
	if(!vp)
		throw Velorn::VelornException("The document has no render settings of the renderer: nothing renders in the host.");
	if(options.spp > 0)
		vp->SetFloat(vp_halt_spp, options.spp);

	loadRendererLibrary(options.renderer_dir);

	BaseBitmap bitmap;
	int32_t result;
	if(!tonemap.empty())
		tonemap.open();
	{
		RenderThread thread(&doc, &bitmap);
		if(!thread.Start(String("Render")))
			throw Velorn::VelornException("The render thread cannot be started.");
		while(thread.IsRunning())
		{
			RunMainThreadEvents();
			if(!tonemap.empty())
				tonemap.poll();
			std::this_thread::sleep_for(std::chrono::milliseconds(tonemap.empty() ? 20 : 5));
		}
		thread.Wait();
		result = thread.GetResult();
	}
	RunMainThreadEvents();
	const std::string status = HostConsole::get().statusText().GetStdString();
	std::string report = hostReport();
	if(result != RENDERRESULT_OK)
		throw Velorn::VelornException(report + "The render failed with the result " + std::to_string(result) + ".");
	if(!tonemap.empty())
	{
		tonemap.check();
		report += tonemap.report();
	}
	if(bitmap.Save(Filename(String(options.image)), FILTER_PNG, nullptr, SAVEBIT_NONE) != IMAGERESULT_OK)
		throw Velorn::VelornException(report + "The picture cannot be saved as '" + options.image + "'.");
	report += "Status: " + status + "\n";
	report += "Image: " + options.image + " (" + std::to_string(bitmap.GetBw()) + " x " + std::to_string(bitmap.GetBh()) + ")\n";
	return report;
}

} // namespace RenderCommand
