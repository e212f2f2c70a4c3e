#include "host/about_command.h"

#include "c4d/console.h"
#include "c4d/node_data.h"
#include "c4d/plugin_registry.h"
#include "host/plugin_version.h"
#include "host/registration.h"

namespace
{

enum
{
	ID_ABOUT = 1020894,
	ID_PLACEHOLDER = 1022283,
	ABOUT_NAME_STRING = 10005,
};

class AboutCommand : public CommandData
{
public:
	bool Execute(BaseDocument*) override
	{
		MessageDialog(String(velorn_version_text));
		return true;
	}
};

class PlaceholderCommand : public CommandData
{
public:
	bool Execute(BaseDocument*) override { return true; }
};

} // namespace

bool RegisterAboutCommand()
{
	return registerNamed(ABOUT_NAME_STRING, [](const String& name) {
		return RegisterCommandPlugin(ID_ABOUT, name, 0, moduleResourceFile("About.tif"), String("About"),
			new AboutCommand());
	});
}

bool RegisterPlaceholderCommand()
{
	return RegisterCommandPlugin(ID_PLACEHOLDER, String(), 0, Filename(), String("#$3 --"), new PlaceholderCommand());
}
