#include "host/ies_preview.h"

#include "c4d/host_clock.h"
#include "c4d/host_paths.h"
#include "host/plugin_ids.h"
#include "host/registration.h"
#include "host/renderer_launch.h"
#include "host/settings.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform.h"

#include <tinyxml.h>

#include <chrono>
#include <thread>
#include <vector>

namespace
{

std::string pathOf(const Filename& f) { return f.GetString().GetStdString(); }

// The longest wait between two tries of a preview file name.
const double kMaxTryWaitMs = 10.0;

// The renderer's executable, asking the user for its directory when it is
// not recorded; false when it is still not found.
bool findPreviewRenderer()
{
	Filename executable;
	if(findRenderer(false, executable))
		return true;
	askRendererDir();
	return findRenderer(false, executable);
}

} // namespace

Filename iesPreviewScene()
{
	return GeGetC4DPath(C4D_PATH_PREFS) + Filename("preview") + Filename("iespreview.vls");
}

bool installIesPreviewTemplate()
{
	const std::string from = pathOf(moduleResourceFile("preview"));
	const std::string to = pathOf(GeGetC4DPath(C4D_PATH_PREFS) + Filename("preview"));
	std::vector<std::string> names;
	if(!Velorn::Platform::listDirectory(from, names))
		return false;
	try
	{
		for(const std::string& name : names)
		{
			const std::string target = Velorn::FileUtils::join(to, name);
			if(Velorn::FileUtils::fileExists(target))
				continue;
			Velorn::FileUtils::createDirsForPath(to);
			Velorn::FileUtils::copyFile(Velorn::FileUtils::join(from, name), target);
		}
	}
	catch(const Velorn::FileUtilsExcep&)
	{
		return false;
	}
	return true;
}

Filename chooseIesPreviewFile()
{
	const Filename dir = GeGetC4DPath(C4D_PATH_PREFS) + Filename("Velorn for Cinema 4D") + Filename("renders");
	try
	{
		Velorn::FileUtils::createDirsForPath(pathOf(dir));
	}
	catch(const Velorn::FileUtilsExcep&)
	{
		// The renderer then fails to write the picture, and the gadget
		// stays empty.
	}
	Random random;
	random.Init(3123123);
	Filename file;
	do
	{
		std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(random.Get01() * kMaxTryWaitMs));
		file = dir + Filename(String("preview") + String::IntToString(GeGetTimer()) + String(".png"));
	} while(Velorn::FileUtils::fileExists(pathOf(file)));
	return file;
}

bool writeIesPreviewScene(const Filename& scene_file, const Filename& ies_file)
{
	TiXmlDocument doc;
	if(!doc.LoadFile(pathOf(scene_file).c_str()))
		return false;
	if(TiXmlElement* scene = doc.FirstChildElement("scene"))
	{
		for(TiXmlElement* model = scene->FirstChildElement("model"); model; model = model->NextSiblingElement("model"))
		{
			TiXmlElement* profile = model->FirstChildElement("ies_profile");
			if(!profile)
				continue;
			if(TiXmlElement* old = profile->FirstChildElement("path"))
				profile->RemoveChild(old);
			TiXmlElement path("path");
			path.InsertEndChild(TiXmlText(pathOf(ies_file).c_str()));
			profile->InsertEndChild(path);
		}
	}
	return doc.SaveFile(pathOf(scene_file).c_str());
}

IesPreviewOutcome renderIesPreview(BaseContainer& data)
{
	const Filename ies_file = data.GetFilename(lt_ies_file);
	if(!ies_file.Content())
		return IesPreviewOutcome::NoProfile;
	// The first preview chooses the picture file; later ones render over it.
	if(!data.GetFilename(lt_preview_file).Content())
		data.SetData(lt_preview_file, GeData(chooseIesPreviewFile()));
	if(!findPreviewRenderer())
		return IesPreviewOutcome::NoRenderer;

	// The template comes with the module; a copy that the user has edited
	// is kept.
	installIesPreviewTemplate();
	const Filename scene = iesPreviewScene();
	if(!writeIesPreviewScene(scene, ies_file))
		return IesPreviewOutcome::NoTemplate;

	RendererRequest request;
	request.scene_file = scene;
	request.output_file = data.GetFilename(lt_preview_file);
	int exit_code = -1;
	if(!runRenderer(false, request, exit_code) || exit_code != 0)
		return IesPreviewOutcome::RendererFailed;
	return IesPreviewOutcome::Rendered;
}
