#include "cli/export_command.h"

#include "cli/host_session.h"
#include "export/export_settings.h"
#include "export/scene_exporter.h"
#include "support/exceptions.h"
#include "support/file_utils.h"


namespace ExportCommand
{
namespace
{

// Whether the export builds meshes with shared vertices, as the video post
// says (on when the document has none).
const int32_t MERGE_VERTICES = 1431;

std::string scenePath(const Options& options, const BaseDocument& doc)
{
	if(!options.scene.empty())
		return Velorn::FileUtils::makeAbsolute(options.scene);
	const std::string name = Velorn::FileUtils::eatExtension(doc.GetDocumentName().GetString().GetStdString());
	return Velorn::FileUtils::makeAbsolute((name.empty() ? "scene" : name) + ".vls");
}

void makeDirectoryOf(const std::string& path)
{
	const std::string dir = Velorn::FileUtils::getDirectory(path);
	try
	{
		Velorn::FileUtils::createDirsForPath(dir);
	}
	catch(const Velorn::FileUtilsExcep& e)
	{
		throw Velorn::FileUtilsExcep("Cannot create the output directory '" + dir + "': " + e.what());
	}
}

std::string exportFrame(BaseDocument& doc, const Options& options)
{
	// The host's walk reaches the export through the first object.
	if(!doc.GetFirstObject())
		throw Velorn::VelornException("The document has no objects: there is nothing to export.");
	if(options.frame)
		doc.SetTime(BaseTime(*options.frame, doc.GetFps()));
	// As before a render in the application: the objects take their place at
	// the frame and the generators build their caches.
	doc.ExecutePasses(nullptr, true, true, true, 0);
	const std::string path = scenePath(options, doc);
	makeDirectoryOf(path);

	const BaseContainer* render = doc.GetActiveRenderData()->GetDataInstance();
	const BaseContainer* videoPost = findVideoPostContainer(&doc);
	ExportSettings settings(&doc, Filename(String(path)), nullptr, doc.GetFrame(),
		render->GetInt32(RDATA_XRES, 640), render->GetInt32(RDATA_YRES, 480), 0,
		videoPost ? videoPost->GetBool(MERGE_VERTICES, true) : 1, 1, 0);
	SceneExporter exporter(&settings);
	const Velorn::Reference<Velorn::SceneNodeRoot> root = exporter.run(nullptr);
	if(!root)
		throw Velorn::VelornException("The export made no scene.");
	root->finalise(path);
	root->writeToFile(path, false, nullptr);
	return "Wrote " + path;
}

} // namespace

std::string run(const Options& options)
{
	const HostSession session(options.plugins, options.document);
	return exportFrame(session.document(), options);
}

std::string consoleText()
{
	return HostSession::consoleText();
}

} // namespace ExportCommand
