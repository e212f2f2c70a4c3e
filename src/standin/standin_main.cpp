// The renderer's executables: velorn (with a progress bar) and, built with
// VELORN_CONSOLE, velorn_console (plain progress lines). Both render a scene
// file, or each scene of a render queue in order, and write the images the
// command line names.
#include "standin/render_session.h"
#include "scene/scene_node_root.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace
{

using namespace Velorn;
using namespace Velorn::Standin;

#ifdef VELORN_CONSOLE
const bool plain_progress = true;
#else
const bool plain_progress = false;
#endif

struct CommandLine
{
	SessionOptions options;
	std::string input;
	bool has_seed = false;
};

// Thrown for a command line that cannot be used.
struct UsageError
{
	std::string message;
};

std::string nextArg(const std::vector<std::string>& args, size_t& i)
{
	if(i + 1 >= args.size())
		throw UsageError{"option " + args[i] + " needs a value"};
	return args[++i];
}

double numberArg(const std::vector<std::string>& args, size_t& i)
{
	const std::string option = args[i];
	const std::string text = nextArg(args, i);
	char* end = nullptr;
	const double value = std::strtod(text.c_str(), &end);
	if(text.empty() || *end != '\0')
		throw UsageError{"option " + option + " needs a number, not '" + text + "'"};
	return value;
}

CommandLine parse(const std::vector<std::string>& args)
{
	CommandLine line;
	for(size_t i = 0; i < args.size(); ++i)
	{
		const std::string& a = args[i];
		if(a == "-seed")
		{
			line.options.seed = (uint64_t)numberArg(args, i);
			line.has_seed = true;
		}
		else if(a == "--thread_priority")
		{
			const std::string priority = nextArg(args, i);
			std::cout << "Thread priority '" << priority << "' requested; threads run at normal priority." << std::endl;
		}
		else if(a == "-n")
		{
			const std::string mode = nextArg(args, i);
			std::cout << "Network rendering ('-n " << mode << "') is not supported; rendering locally." << std::endl;
		}
		else if(a == "-p")
		{
			numberArg(args, i);
			std::cout << "Network port ('-p') is not supported; ignored." << std::endl;
		}
		else if(a == "-haltspp")
			line.options.halt_spp = numberArg(args, i);
		else if(a == "-halt")
			line.options.halt_time = numberArg(args, i);
		else if(a == "-threads")
			line.options.num_threads = (unsigned)numberArg(args, i);
		else if(a == "-o")
			line.options.png_path = nextArg(args, i);
		else if(a == "-vlio")
			line.options.vli_path = nextArg(args, i);
		else if(a == "-uexro")
			line.options.untonemapped_exr_path = nextArg(args, i);
		else if(a == "-texro")
			line.options.tonemapped_exr_path = nextArg(args, i);
		else if(!a.empty() && a[0] == '-')
			throw UsageError{"unknown option '" + a + "'"};
		else if(line.input.empty())
			line.input = a;
		else
			throw UsageError{"more than one scene given ('" + line.input + "' and '" + a + "')"};
	}
	if(line.input.empty())
		throw UsageError{"no scene or render queue given"};
	return line;
}

void printProgress(double spp, double seconds, double fraction)
{
	if(plain_progress || fraction < 0)
	{
		std::printf("%.0f spp, %.1f s\n", spp, seconds);
		std::fflush(stdout);
		return;
	}
	const int width = 30;
	const int filled = (int)(fraction * width + 0.5);
	std::printf("\r[%s%s] %3.0f%% %.0f spp %.1f s", std::string(filled, '#').c_str(),
		std::string(width - filled, ' ').c_str(), fraction * 100, spp, seconds);
	if(fraction >= 1)
		std::printf("\n");
	std::fflush(stdout);
}

// Where a path's extension starts (its last dot, if after the last
// separator), or the path's length when it has none.
size_t extensionStart(const std::string& path)
{
	const size_t dot = path.find_last_of('.');
	const size_t slash = path.find_last_of("/\\");
	const bool has_extension = dot != std::string::npos && (slash == std::string::npos || dot > slash);
	return has_extension ? dot : path.size();
}

// With no output named, the picture goes beside the scene.
void defaultOutputs(SessionOptions& options, const std::string& scene_path)
{
	if(options.png_path.empty() && options.vli_path.empty() && options.untonemapped_exr_path.empty() &&
		options.tonemapped_exr_path.empty())
		options.png_path = scene_path.substr(0, extensionStart(scene_path)) + ".png";
}

// The path with "_<number>" before its extension; empty stays empty.
std::string numberedPath(const std::string& path, size_t number)
{
	if(path.empty())
		return path;
	const size_t ext = extensionStart(path);
	return path.substr(0, ext) + "_" + std::to_string(number) + path.substr(ext);
}

// Every item of a queue would write the command line's outputs to the same
// files, each overwriting the one before: item n (counted from 1) writes
// them with "_n" before the extension.
void numberOutputs(SessionOptions& options, size_t number)
{
	for(std::string* path :
		{&options.png_path, &options.vli_path, &options.untonemapped_exr_path, &options.tonemapped_exr_path})
		*path = numberedPath(*path, number);
}

// The halt when neither the scene nor the command line gives one.
const double default_halt_spp = 64;

void renderOne(const std::string& scene_path, SessionOptions options)
{
	std::cout << "Rendering '" << scene_path << "'" << std::endl;
	defaultOutputs(options, scene_path);
	const Reference<SceneNodeRoot> root = loadScene(scene_path);
	RenderSession session(root, scene_path, options);
	for(const std::string& warning : session.getScene().getWarnings())
		std::cout << "Warning: " << warning << std::endl;
	if(session.halt_spp <= 0 && session.halt_time <= 0)
	{
		std::cout << "No halt given; stopping at " << default_halt_spp << " samples per pixel." << std::endl;
		session.halt_spp = default_halt_spp;
	}
	session.run(printProgress);
	session.writeOutputs();
	std::cout << "Done." << std::endl;
}

bool hasSuffix(const std::string& path, const std::string& suffix)
{
	return path.size() >= suffix.size() && path.compare(path.size() - suffix.size(), suffix.size(), suffix) == 0;
}

int run(const std::vector<std::string>& args)
{
	const CommandLine line = parse(args);
	if(!hasSuffix(line.input, ".vlq"))
	{
		renderOne(line.input, line.options);
		return 0;
	}
	const std::vector<QueueItem> items = readRenderQueue(line.input);
	// Every scene must be there before the first render starts.
	for(const QueueItem& item : items)
		if(!FileUtils::fileExists(item.scene_path))
			throw Exception("Render queue names scene '" + item.scene_path + "', which does not exist.");
	for(size_t i = 0; i < items.size(); ++i)
	{
		const QueueItem& item = items[i];
		SessionOptions options = line.options;
		numberOutputs(options, i + 1);
		if(!item.output_path.empty() && options.png_path.empty())
			options.png_path = item.output_path;
		if(item.halt_spp > 0 && options.halt_spp <= 0)
			options.halt_spp = item.halt_spp;
		if(item.halt_time > 0 && options.halt_time <= 0)
			options.halt_time = item.halt_time;
		if(item.seed >= 0 && !line.has_seed)
			options.seed = (uint64_t)item.seed;
		renderOne(item.scene_path, options);
	}
	return 0;
}

} // namespace

int main(int argc, char** argv)
{
	const std::vector<std::string> args(argv + 1, argv + argc);
	try
	{
		return run(args);
	}
	catch(const UsageError& e)
	{
		std::cerr << "velorn: " << e.message << std::endl;
		return 2;
	}
	catch(const MessageException& e)
	{
		std::cerr << "velorn: error: " << e.what() << std::endl;
		return 1;
	}
	catch(const std::exception& e)
	{
		std::cerr << "velorn: error: " << e.what() << std::endl;
		return 1;
	}
}
