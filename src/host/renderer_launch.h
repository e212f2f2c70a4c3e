#pragma once

#include "c4d/filename.h"

#include <cstdint>
#include <string>

// Starting the renderer as a process of its own once a scene or a queue is
// exported. The plug-in forgets the process at once: no handle, no output,
// no exit code.

// What the renderer is told.
struct RendererRequest
{
	bool low_priority = true;
	bool network_master = false;
	int32_t port = 7777;
	// The image file whose directory and name (without suffix) name the
	// renderer's outputs; empty leaves the outputs to the renderer.
	Filename output_file;
	// Samples per pixel to halt at; -1 for the scene's own halt.
	int32_t halt_spp = -1;
	// The scene file or the render queue.
	Filename scene_file;
};

// The argument text, in the renderer's order: the seed, the priority, the
// network master and its port, the halt, the four outputs, the scene last,
// each item behind a blank and every path in double quotes.
std::string rendererArguments(const RendererRequest& request, int32_t seed);

// The command line: the executable's file name without its directory,
// then the arguments (a blank put behind them when they would not start
// with one).
std::string rendererCommandLine(const Filename& executable, const std::string& arguments);

// Says "Launching Velorn..." on the console, finds the renderer (the
// console variant when console is set), seeds it from the host's timer and
// starts it. False when the renderer is not found or does not start, with
// no message of its own.
bool launchRenderer(bool console, const RendererRequest& request);

// The command line of the last renderer this process started, and its
// executable; empty before the first. For the command line's report.
std::string lastRendererCommandLine();
Filename lastRendererExecutable();

// As launchRenderer, but waits for the renderer to end: false when it is
// not found or does not start, otherwise true with its exit code.
bool runRenderer(bool console, const RendererRequest& request, int& exit_code);
