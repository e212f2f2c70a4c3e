// Feeds arbitrary bytes to the material import as a material file: bytes
// that start like a ZIP archive go in as a packed file (.pvlm) and are
// unpacked first, any others as a .vlm. Every failure must end in a console
// line or a warning; a crash, leak or hang is a fault. The host starts with
// the plug-in's material and free-text shader registered and the module's
// resources of the source tree, so that the materials are really made.

#include "c4d/base_document.h"
#include "c4d/console.h"
#include "c4d/filename.h"
#include "c4d/resources.h"
#include "host/plugin_globals.h"
#include "materials/material_archive.h"
#include "materials/material_import.h"
#include "materials/material_plugin.h"
#include "shaders/shader_plugins.h"
#include "support/file_utils.h"
#include "support/platform_utils.h"

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace
{

// The folder of this process's files: the input and the plug-in folder the
// archives unpack into.
const std::string& workFolder()
{
	static const std::string folder = [] {
		const std::string dir = Velorn::FileUtils::join(Velorn::PlatformUtils::getTempDirPath(),
			"velorn_material_fuzz_" + std::to_string(std::random_device()()));
		Velorn::FileUtils::createDirsForPath(dir);
		return dir;
	}();
	return folder;
}

bool startHost()
{
	if(!HostResources::get().init(Filename(String(VELORN_SOURCE_DIR "/src/host"))))
		std::abort();
	if(!RegisterVelornMaterial() || !RegisterVslShader())
		std::abort();
	plugin_path = new Filename(String(workFolder()));
	return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
	static const bool started = startHost();
	(void)started;
	const bool packed = size >= 4 && data[0] == 'P' && data[1] == 'K' && data[2] == 3 && data[3] == 4;
	const std::string path = Velorn::FileUtils::join(workFolder(), packed ? "input.pvlm" : "input.vlm");
	Velorn::FileUtils::writeEntireFile(path, reinterpret_cast<const char*>(data), size);

	BaseDocument* doc = BaseDocument::Alloc();
	{
		MaterialImporter importer(*doc);
		importer.importFile(Filename(String(path)));
		if(!importer.unpackedFolder().empty())
			removeTree(importer.unpackedFolder());
	}
	BaseDocument::Free(doc);
	HostConsole::get().clear();
	return 0;
}
