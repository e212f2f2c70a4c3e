#include "host/renderer_launch.h"

#include "c4d/console.h"
#include "c4d/host_clock.h"
#include "host/settings.h"
#include "support/platform.h"

#include <cmath>

namespace
{

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

bool launchRenderer(bool console, const RendererRequest& request)
{
	GePrint(String("Launching Velorn..."));
	Filename executable;
	if(!findRenderer(console, executable))
		return false;
	const std::string line = rendererCommandLine(executable, rendererArguments(request, timerSeed()));
	return Velorn::Platform::startProcess(executable.GetString().GetStdString(), line, request.low_priority);
}
