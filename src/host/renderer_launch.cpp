#include "host/renderer_launch.h"

#include "c4d/console.h"
#include "c4d/host_clock.h"
#include "host/settings.h"
#include "support/platform.h"

#include <cmath>
#include <mutex>

namespace
{

std::mutex last_mutex;
std::string last_line;
Filename last_executable;

std::string quoted(const std::string& path)
{
	return "\"" + path + "\"";
}

// The seed of a run: a value of the host's random numbers, seeded from the
// timer, scaled by a second reading of the timer.
int32_t timerSeed()
{
	Random random;
	random.Init((uint32_t)GeGetTimer());
	const double value = random.Get01();
	return (int32_t)std::floor(value * GeGetTimer());
}

} // namespace

std::string rendererArguments(const RendererRequest& request, int32_t seed)
{
	std::string text = " -seed " + std::to_string(seed);
	if(request.low_priority)
		text += " --thread_priority belownormal";
	if(request.network_master)
		text += " -n wm -p " + std::to_string(request.port);
	if(request.halt_spp != -1)
		text += " -haltspp " + std::to_string(request.halt_spp);
	if(request.output_file.Content())
	{
		Filename base = request.output_file;
		base.SetSuffix(String());
		// The outputs lie in the image's directory, joined by the platform's
		// separator (a backslash on Windows).
		const std::string stem = base.GetDirectory().GetString().GetStdString()
			+ Velorn::Platform::preferredSeparator() + base.GetFile().GetString().GetStdString();
		text += " -o " + quoted(stem + ".png");
		text += " -vlio " + quoted(stem + ".vli");
		text += " -uexro " + quoted(stem + "_untonemapped.exr");
		text += " -texro " + quoted(stem + "_tonemapped.exr");
	}
	text += " " + quoted(request.scene_file.GetString().GetStdString());
	return text;
}

std::string rendererCommandLine(const Filename& executable, const std::string& arguments)
{
	std::string line = executable.GetFile().GetString().GetStdString() + arguments;
	if(!arguments.empty() && arguments[0] != ' ')
		line += ' ';
	return line;
}

namespace
{

// Says that the renderer is launched, finds it and makes its command line;
// false when it is not found.
bool prepareLaunch(bool console, const RendererRequest& request, Filename& executable, std::string& line)
{
	GePrint(String("Launching Velorn..."));
	if(!findRenderer(console, executable))
		return false;
	line = rendererCommandLine(executable, rendererArguments(request, timerSeed()));
	return true;
}

void recordLaunch(const Filename& executable, const std::string& line)
{
	std::lock_guard<std::mutex> lock(last_mutex);
	last_line = line;
	last_executable = executable;
}

} // namespace

bool launchRenderer(bool console, const RendererRequest& request)
{
	Filename executable;
	std::string line;
	if(!prepareLaunch(console, request, executable, line)
		|| !Velorn::Platform::startProcess(executable.GetString().GetStdString(), line, request.low_priority))
		return false;
	recordLaunch(executable, line);
	return true;
}

std::string lastRendererCommandLine()
{
	std::lock_guard<std::mutex> lock(last_mutex);
	return last_line;
}

Filename lastRendererExecutable()
{
	std::lock_guard<std::mutex> lock(last_mutex);
	return last_executable;
}

bool runRenderer(bool console, const RendererRequest& request, int& exit_code)
{
	Filename executable;
	std::string line;
	if(!prepareLaunch(console, request, executable, line))
		return false;
	return Velorn::Platform::runProcess(executable.GetString().GetStdString(), line, request.low_priority, exit_code);
}
