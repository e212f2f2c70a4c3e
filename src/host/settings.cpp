#include "host/settings.h"

#include "c4d/dialog_script.h"
#include "host/plugin_globals.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform.h"
#include "support/platform_utils.h"

#include <tinyxml.h>

#include <cstdio>

namespace
{

const char* const settings_file_name = "evelornSettings.cfg";
const char* const renderer_executable = "velorn.exe";
const char* const console_executable = "velorn_console.exe";

std::string pathOf(const Filename& f) { return f.GetString().GetStdString(); }

bool holdsRenderer(const Filename& dir) { return dir.Content() && Velorn::FileUtils::fileExists(pathOf(dir + renderer_executable)); }

Filename executableIn(const Filename& dir, bool console) { return dir + (console ? console_executable : renderer_executable); }

std::string settingsFilePath() { return pathOf(evelornDataDir() + settings_file_name); }

// The first global_settings element that has children; a file with another
// root holds none.
TiXmlElement* settingsElement(TiXmlDocument& doc)
{
	for(TiXmlElement* e = doc.FirstChildElement("global_settings"); e; e = e->NextSiblingElement("global_settings"))
		if(e->FirstChild())
			return e;
	return nullptr;
}

// The settings file is opened through the platform layer, which hands
// Windows the path in UTF-16: a user's data directory may hold any
// character. It is read as bytes, since TinyXML reads a whole file of the
// length it asked for, which the text mode of Windows would cut short by its
// CR LF line ends; TinyXML reads those itself.
bool loadSettings(TiXmlDocument& doc)
{
	FILE* file = Velorn::Platform::openFile(settingsFilePath(), "rb");
	if(!file)
		return false;
	const bool loaded = doc.LoadFile(file);
	std::fclose(file);
	return loaded;
}

// The renderer directory recorded in the settings file, or an empty name.
Filename settingsRendererDir()
{
	TiXmlDocument doc;
	if(!loadSettings(doc))
		return Filename();
	const TiXmlElement* settings = settingsElement(doc);
	const TiXmlElement* path = settings ? settings->FirstChildElement("PATH") : nullptr;
	const TiXmlNode* text = path ? path->FirstChild() : nullptr;
	return text && text->ToText() ? Filename(text->Value()) : Filename();
}

String registryText(const char* key)
{
	return String(Velorn::PlatformUtils::readUserRegistryString(key, "InstallDirectory"));
}

} // namespace

Filename evelornDataDir()
{
	const Filename dir = Filename(String(Velorn::PlatformUtils::getAPPDataDirPath())) + "Velorn for Cinema 4D";
	try
	{
		Velorn::FileUtils::createDirsForPath(pathOf(dir));
	}
	catch(const Velorn::FileUtilsExcep&)
	{
		// An unwritable data directory only means that no settings are kept.
	}
	return dir;
}

Filename chooseInstallDir(const String& renderer_dir, const String& realtime_dir, int32_t realtime)
{
	if(!realtime_dir.Content() || realtime == 0)
		return Filename(renderer_dir.Content() ? renderer_dir : realtime_dir);
	return Filename(realtime_dir);
}

Filename registryInstallDir()
{
	return chooseInstallDir(registryText("Software\\Tessmark Labs\\Velorn Renderer"),
		registryText("Software\\Tessmark Labs\\Velorn RT"), realtime_edition);
}

bool findRenderer(bool console, Filename& out)
{
	const Filename registered = registryInstallDir();
	if(holdsRenderer(registered))
	{
		out = executableIn(registered, console);
		return true;
	}
	const Filename recorded = settingsRendererDir();
	if(holdsRenderer(recorded))
	{
		out = executableIn(recorded, console);
		return true;
	}
	return false;
}

void saveRendererDir(const Filename& path)
{
	TiXmlDocument doc;
	loadSettings(doc);
	if(TiXmlElement* old = settingsElement(doc))
		doc.RemoveChild(old);
	TiXmlElement settings("global_settings");
	TiXmlElement path_element("PATH");
	path_element.InsertEndChild(TiXmlText(pathOf(path).c_str()));
	settings.InsertEndChild(path_element);
	doc.InsertEndChild(settings);
	if(FILE* file = Velorn::Platform::openFile(settingsFilePath(), "w"))
	{
		doc.SaveFile(file);
		std::fclose(file);
	}
}

bool askRendererDir()
{
	for(;;)
	{
		Filename dir;
		if(!FileSelect(dir, FILESELECT_DIRECTORY, "Please choose the Velorn directory."))
			return false;
		if(holdsRenderer(dir))
		{
			saveRendererDir(dir);
			return true;
		}
	}
}
