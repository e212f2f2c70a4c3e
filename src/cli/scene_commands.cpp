#include "cli/scene_commands.h"

#include "reader/scene_parser.h"
#include "support/file_utils.h"
#include "support/string_utils.h"

#include <map>

namespace Velorn
{
namespace SceneCommands
{

namespace
{

// Paths are made absolute first: mesh files are named in a scene by their
// full path, and a finalised scene looks for them from its own directory.
Reference<SceneNodeRoot> readScene(const std::string& absolute_path)
{
	SceneParser parser;
	Reference<SceneNodeRoot> root = parser.parseFile(absolute_path, "");
	root->finalise(absolute_path);
	return root;
}

std::string nodeCounts(const SceneNodeRoot& root)
{
	std::map<unsigned, unsigned> counts;
	for(const Reference<SceneNode>& child : root.getChildren())
		counts[child->getType()]++;
	std::string text = toString((uint64_t)root.getChildren().size()) + " nodes";
	const char* separator = ": ";
	for(const auto& count : counts)
	{
		text += separator + toString(count.second) + " " + sceneNodeTypeName(count.first);
		separator = ", ";
	}
	return text;
}

} // namespace

std::string check(const std::string& path)
{
	Reference<SceneNodeRoot> root = readScene(FileUtils::makeAbsolute(path));
	root->validate();
	return path + ": " + nodeCounts(*root);
}

std::string format(const std::string& path, const std::string& out_path)
{
	Reference<SceneNodeRoot> root = readScene(FileUtils::makeAbsolute(path));
	const std::string absolute_out = FileUtils::makeAbsolute(out_path);
	FileUtils::createDirsForPath(FileUtils::getDirectory(absolute_out));
	root->writeToFile(absolute_out, false, nullptr);
	return "Wrote " + out_path + " (" + nodeCounts(*root) + ")";
}

} // namespace SceneCommands
} // namespace Velorn
