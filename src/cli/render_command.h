#pragma once

#include <string>
#include <vector>

// The work behind `velorn render`: "Render with Velorn" run on a host
// document, as the user's click in the menu runs it.
namespace RenderCommand
{

struct Options
{
	std::string document;
	std::string plugins;
	// Renders the frame range of the document's render data as a queue.
	bool animation = false;
	// The renderer's directory, given when the plug-in asks for it (when the
	// registry and the settings file know none).
	std::string renderer_dir;
	// Renders inside the host through the video post instead, into image.
	bool in_host = false;
	std::string image;
	// The halt in samples per pixel of the in-host render; 0 keeps the
	// document's.
	double spp = 0;
	// KEY=VALUE changes made through the tone mapping dialog while the
	// in-host render runs (tonemap_changes.h).
	std::vector<std::string> tonemap;
};

// Exports the document as the command does and starts the renderer; reports
// the plug-in's console, the scene or the queue with its scenes, and the
// renderer's command line as it was started. A failed export throws the
// library's exception with the text the message box showed.
std::string renderExternally(const Options& options);

// Renders the document inside the host: the renderer's SDK library is
// loaded from renderer_dir, the host renders the document through the
// plug-in's video post on a render thread while this thread shows the
// posted messages, and the host's render buffer is saved as the PNG image.
// Reports the console, the status bar's last text and the result; a render
// that fails throws the library's exception with the console.
std::string renderInHost(const Options& options);

// Loads the renderer's SDK library from renderer_dir for the plug-in, as the
// plug-in would from its own directory; throws the library's exception when
// it cannot be loaded.
void loadRendererLibrary(const std::string& renderer_dir);

// The host's console lines, then the text of each message box shown.
std::string hostReport();

} // namespace RenderCommand
