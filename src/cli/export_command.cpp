#include "cli/export_command.h"

#include "c4d/base_document.h"
#include "c4d/console.h"
#include "c4d/document_file.h"
#include "c4d/plugin_modules.h"
#include "export/export_settings.h"
#include "export/scene_exporter.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

#include <memory>

namespace ExportCommand
{
namespace
{

// Whether the export builds meshes with shared vertices, as the video post
// says (on when the document has none).
const int32_t MERGE_VERTICES = 1431;

struct FreeDocument
{
	void operator()(BaseDocument* doc) const { BaseDocument::Free(doc); }
};
using DocumentPtr = std::unique_ptr<BaseDocument, FreeDocument>;

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
	HostConsole::get().clear();
	PluginModules modules;
	if(modules.start(Filename(String(options.plugins))) == 0)
		throw Velorn::FileUtilsExcep("No plug-in module started from '" + options.plugins + "'.");
	// The document holds nodes of the plug-in: it goes before the modules end.
	const DocumentPtr doc(LoadDocumentFile(Filename(String(options.document))));
	return exportFrame(*doc, options);
}

std::string consoleText()
{
	std::string text;
	for(const String& line : HostConsole::get().texts(HostConsole::Kind::Print))
		text += line.GetStdString() + "\n";
	return text;
}

} // namespace ExportCommand
