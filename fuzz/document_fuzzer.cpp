// Reads each input as a host document file, as the velorn command reads
// one: after the plug-in module of the build has started, so that the
// plug-in's materials, shaders, tags and video posts are known types and get
// their Init defaults. The document's file lies in a folder of this process
// that holds the model files the examples name, so that model-backed polygon
// objects really load. A DocumentFileExcep or another library exception is
// an ordinary outcome; a crash, a sanitizer report, a hang or an allocation
// beyond the fuzzer's limit is a finding.

#include "c4d/console.h"
#include "c4d/document_file.h"
#include "c4d/plugin_modules.h"
#include "support/file_utils.h"
#include "support/platform_utils.h"

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace FileUtils = Velorn::FileUtils;

namespace
{

// The folder of this process's document, with models/torus.obj and
// document-format-example.obj beside it as in examples/ and docs/.
std::string makeWorkFolder()
{
	const std::string dir = FileUtils::join(Velorn::PlatformUtils::getTempDirPath(),
		"velorn_document_fuzz_" + std::to_string(std::random_device()()));
	FileUtils::createDirsForPath(FileUtils::join(dir, "models"));
	FileUtils::copyFile(VELORN_SOURCE_DIR "/examples/models/torus.obj", FileUtils::join(dir, "models/torus.obj"));
	FileUtils::copyFile(VELORN_SOURCE_DIR "/docs/document-format-example.obj",
		FileUtils::join(dir, "document-format-example.obj"));
	return dir;
}

// Starts the plug-in once for the whole run. The modules are never ended:
// at exit the host's registries may be gone before a static PluginModules
// would send C4DPL_END, so they stay loaded until the process ends.
void startPlugin()
{
	static PluginModules* const modules = new PluginModules;
	if(modules->start(Filename(String(VELORN_PLUGIN_DIR))) == 0)
		std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
	static const Filename file = [] {
		startPlugin();
		return Filename(String(FileUtils::join(makeWorkFolder(), "input.json")));
	}();
	try
	{
		BaseDocument* doc = ReadDocumentText(std::string(reinterpret_cast<const char*>(data), size), file);
		BaseDocument::Free(doc);
	}
	catch(const Velorn::MessageException&)
	{
	}
	HostConsole::get().clear();
	return 0;
}
