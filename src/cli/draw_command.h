#pragma once

#include <cstdint>
#include <string>

// The work behind `velorn draw`: the editor's view of a host document, as
// the plug-in's tags and objects draw into it (the camera tag's render
// region, the instances' wires, the section planes) over the wires of the
// document's own objects, saved as a PNG.
namespace DrawCommand
{

struct Options
{
	std::string document;
	std::string plugins;
	std::string image;
	// "WxH" in pixels of the view.
	std::string size = "800x600";
};

// The width and height of a "WxH" text, each from 1 to 16384; throws the
// library's exception with the text otherwise.
void parseSize(const std::string& text, int32_t& width, int32_t& height);

// Draws the document's view into the image; tells what it wrote and how
// many drawing calls the view took. Throws the library's exception when the
// document cannot be read or the picture not written.
std::string run(const Options& options);

} // namespace DrawCommand
