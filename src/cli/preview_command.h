#pragma once

#include <string>

// The work behind `velorn preview`: the thumbnail of one material as the
// host's material manager asks the material for it, rendered by the
// renderer's SDK library through the plug-in's video post in preview mode.
namespace PreviewCommand
{

struct Options
{
	// The material's name in the document.
	std::string material;
	std::string document;
	std::string plugins;
	// Where the renderer's SDK library is loaded from.
	std::string renderer_dir;
	// The PNG file of the preview.
	std::string image;
	// The side of the square preview in pixels.
	int size = 90;
	// The material's preview quality for this preview: "off", "low",
	// "medium", "high" or "very-high"; empty keeps the material's.
	std::string quality;
};

// The quality names that Options::quality takes, in the cycle's order.
const char* const quality_names[] = {"off", "low", "medium", "high", "very-high"};

// Renders the preview on a preview thread and saves it as the PNG image;
// reports the console, what came of the preview and the picture. A preview
// that fails throws the library's exception with that report.
std::string run(const Options& options);

} // namespace PreviewCommand
