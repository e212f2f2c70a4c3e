// Feeds arbitrary bytes to the scene file parser as a scene file. Any
// failure must be one of the library's exceptions; a crash, leak or hang is
// a fault. The tree is validated but not finalised, so that paths in the
// input do not make the run read files of the machine.

#include "reader/scene_parser.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform_utils.h"

#include <cstdint>
#include <random>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
	// One file per fuzzing process, so that parallel jobs do not meet.
	static const std::string path = Velorn::FileUtils::join(
		Velorn::PlatformUtils::getTempDirPath(), "velorn_scene_fuzz_" + std::to_string(std::random_device()()) + ".vls");
	Velorn::FileUtils::writeEntireFile(path, reinterpret_cast<const char*>(data), size);
	try
	{
		Velorn::SceneParser parser;
		Velorn::Reference<Velorn::SceneNodeRoot> root = parser.parseFile(path, "");
		root->validate();
	}
	catch(const Velorn::MessageException&)
	{
	}
	return 0;
}
