#pragma once

#include "reader/parse_names.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_root.h"

#include <tinyxml.h>

#include <string>
#include <utility>

namespace Velorn
{

// Reads scene files (root "scene", with includes of "scenedata" files) and
// the settings files of the renderer into scene trees. It accepts what the
// writer writes and the older forms of earlier files. It does not finalise
// the tree; its caller does. Failures throw SceneParserExcep or
// VelornException, with the place in the file.
class SceneParser
{
public:
	SceneParser();

	// settings_override: the text of renderer settings elements (as given
	// on a command line), merged over the file's settings; may be empty.
	Reference<SceneNodeRoot> parseFile(const std::string& path, const std::string& settings_override);
	// The nodes of a file whose root is "scenedata" (a material file).
	Vector<Reference<SceneNode>> parseSceneDataFile(const std::string& path);
	// dir/inifile.xml, root "config", its renderer_settings.
	Reference<SceneNodeRenderSettings> parseSettingsFile(const std::string& dir);
	// Text of a whole document with root "config" holding renderer_settings.
	Reference<SceneNodeRenderSettings> parseSettingsText(const std::string& text);

	// One node element of a scene (the dispatch by element name).
	Reference<SceneNode> parseElement(const TiXmlElement& element, const std::string& dir);

	ParseNames names;
	Vector<std::pair<int, String>> layer_names;
	double white_point_x = 0;
	double white_point_y = 0;
	int next_light_number = 0;
};

} // namespace Velorn
