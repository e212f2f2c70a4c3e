#include "reader/scene_parser.h"

#include "reader/scene_parse_utils.h"
#include "reader/scene_parser_readers.h"
#include "reader/xml_doc.h"
#include "reader/xml_nesting.h"
#include "support/platform.h"
#include "scene/scene_node_background_settings.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/string_utils.h"

#include <cstring>
#include <map>
#include <system_error>
#include <vector>

namespace Velorn
{

using namespace SceneParseUtils;
using namespace SceneReaders;

namespace
{

template <class Reader>
struct NamedReader
{
	const char* element;
	Reader read;
};

// The reader of the element of that name in table, or null.
template <class Reader, size_t N>
Reader readerFor(const NamedReader<Reader> (&table)[N], const char* element)
{
	for(const NamedReader<Reader>& entry : table)
		if(std::strcmp(entry.element, element) == 0)
			return entry.read;
	return nullptr;
}

// parseElement compares the element's name with these in this order.
const NamedReader<NodeReader> node_readers[] = {
	{"renderer_settings", readRenderSettingsNode},
	{"camera", readCamera},
	{"material", readMaterial},
	{"medium", readMedium},
	{"sphere", readSphere},
	{"mesh", readMesh},
	{"parametric_surface", readParametricSurface},
	{"scatter", readScatter},
	{"model", readOldModel},
	{"model2", readModel2},
	{"skylight", readSkylight},
	{"tonemapping", readTonemapping},
	{"background_settings", readBackgroundSettings},
	{"background", readOldBackground},
	{"env_map", readEnvMap},
	{"metadata", readMetaData},
	{"section_plane", readSectionPlane},
};

typedef Vector<Reference<SceneNode>> (*CompactFormReader)(SceneParser& parser, const TiXmlElement& element,
	const std::string& dir);

// The old compact forms that make several nodes from one element; they
// stand only at the top of a scene.
const NamedReader<CompactFormReader> compact_forms[] = {
	{"rectanglelight", readRectangleLight},
	{"meshlight", readMeshLight},
	{"exit_portal", readExitPortal},
};

// Includes nest at most this deep; a chain of files that would go on
// further fails with a message instead of running out of stack.
const size_t max_include_depth = 64;
// A file that includes another twice, which includes a third twice, and so
// on, would make a scene grow with the power of its depth. Allowing each
// file only a few reads bounds a scene by a multiple of the size of its
// files.
const unsigned max_reads_of_one_file = 16;

// The path by which two names of one file compare equal: absolute, with
// links and dot components resolved. A path the system cannot resolve stands
// for itself.
std::string canonicalPath(const std::string& path) { return Platform::canonicalPath(path); }

// Refuses what is there but is no plain file: a directory, a device or a
// pipe would make the reading fail late, wait or read without end. place
// ends the message.
void checkReadable(const std::string& path, const std::string& place = "")
{
	if(Platform::pathExists(path) && !Platform::isRegularFile(path))
		throw SceneParserExcep("'" + path + "' is not a file." + place);
}

const TiXmlElement& rootElementNamed(VelornXMLDoc& doc, const char* expected, const std::string& message_start)
{
	const TiXmlElement* root = doc.getRootElement();
	if(std::strcmp(root->Value(), expected) != 0)
		throw SceneParserExcep(message_start + root->Value() + "'");
	return *root;
}

// One run of parseFile: the root being filled and the chain of files whose
// children are being processed, outermost first.
class SceneFileRun
{
public:
	SceneFileRun(SceneParser& parser_, SceneNodeRoot& root_) : parser(parser_), root(root_) {}

	void readSceneFile(const std::string& path)
	{
		checkReadable(path);
		VelornXMLDoc doc(path);
		const TiXmlElement& scene = rootElementNamed(doc, "scene", "Invalid root element '");
		enterFile(path);
		processChildren(scene, FileUtils::getDirectory(path), 0);
	}

private:
	struct OpenFile
	{
		std::string canonical;
		std::string path; // as it was named, for messages
	};

	void enterFile(const std::string& path)
	{
		const std::string canonical = canonicalPath(path);
		++reads[canonical];
		chain.push_back(OpenFile{canonical, path});
	}

	void processChildren(const TiXmlElement& parent, const std::string& dir, uint32_t uid_offset)
	{
		for(const TiXmlElement* child = parent.FirstChildElement(); child; child = child->NextSiblingElement())
			parserCall([&] { processChild(*child, dir, uid_offset); });
	}

	void processChild(const TiXmlElement& element, const std::string& dir, uint32_t uid_offset)
	{
		const char* name = element.Value();
		if(std::strcmp(name, "include") == 0)
			include(element, dir);
		else if(std::strcmp(name, "alias_material") == 0)
			aliasMaterial(element);
		else if(std::strcmp(name, "layer_name") == 0)
			layerName(element);
		else if(CompactFormReader read = readerFor(compact_forms, name))
		{
			for(const Reference<SceneNode>& node : read(parser, element, dir))
				root.addChildNode(node);
		}
		else
			addNode(parser.parseElement(element, dir), uid_offset);
	}

	void addNode(const Reference<SceneNode>& node, uint32_t uid_offset)
	{
		if(uid_offset != 0)
		{
			VisitOperation op(VisitOperation::OffsetUIDs, "", "");
			op.uid_offset = uid_offset;
			node->visitTree(op);
		}
		root.addChildNode(node);
	}

	// The children of another file (root "scenedata") go into the scene as
	// if they stood here, their directory as theirs and their UIDs shifted
	// past every UID handed out so far.
	void include(const TiXmlElement& element, const std::string& dir)
	{
		static const char* const allowed[] = {"pathname", nullptr};
		checkForUnexpectedElements(element, allowed);
		const std::string path = FileUtils::join(dir, parseString(element, "pathname"));
		checkIncludable(element, path);
		checkReadable(path, errorContext(element));
		VelornXMLDoc doc(path);
		const TiXmlElement& data = rootElementNamed(doc, "scenedata", "Invalid root element in included file '" + path + "': '");
		const uint32_t uid_offset = root.getNextUID();
		enterFile(path);
		processChildren(data, FileUtils::getDirectory(path), uid_offset);
		chain.pop_back();
	}

	void checkIncludable(const TiXmlElement& element, const std::string& path) const
	{
		const std::string canonical = canonicalPath(path);
		for(const OpenFile& open : chain)
			if(open.canonical == canonical)
				throw SceneParserExcep("Include cycle: '" + chain.back().path + "' includes '" + path +
									   "', which is already being read." + errorContext(element));
		if(chain.size() >= max_include_depth)
			throw SceneParserExcep("Includes nested more than " + toString((uint32_t)max_include_depth) + " deep: '" +
								   chain.back().path + "' includes '" + path + "'." + errorContext(element));
		const auto count = reads.find(canonical);
		if(count != reads.end() && count->second >= max_reads_of_one_file)
			throw SceneParserExcep("'" + path + "' is included more than " + toString((uint32_t)max_reads_of_one_file) +
								   " times in one scene." + errorContext(element));
	}

	void layerName(const TiXmlElement& element)
	{
		const int index = parseInt(element, "layer_index");
		parser.layer_names.push_back(std::make_pair(index, String(parseString(element, "layer_name"))));
	}

	// A second name for a material; names of meshes are accepted too, and
	// give nothing.
	void aliasMaterial(const TiXmlElement& element)
	{
		static const char* const allowed[] = {"current_name", "new_name", nullptr};
		checkForUnexpectedElements(element, allowed);
		const String current_name = parseString(element, "current_name");
		const Reference<SceneNodeMaterial>* material = parser.names.material_names.find(current_name);
		if(!material && !parser.names.mesh_names.contains(current_name))
			throw SceneParserExcep("Tried to create an alias for the material with name '" + current_name.str() +
								   "', which has not been defined.  " + errorContext(element));
		if(material)
			parser.names.material_names.insert(parseString(element, "new_name"), *material);
	}

	SceneParser& parser;
	SceneNodeRoot& root;
	std::vector<OpenFile> chain;
	std::map<std::string, unsigned> reads; // by canonical path
};

SceneNodeRenderSettings& renderSettingsOf(const SceneNodeRoot& root)
{
	return static_cast<SceneNodeRenderSettings&>(*root.getRenderSettingsNode());
}

// The settings of the text (renderer_settings elements) merged over the
// scene's, under the UID of the scene's node.
void overrideSettings(SceneParser& parser, SceneNodeRoot& root, const std::string& settings_override)
{
	const Reference<SceneNodeRenderSettings> given = parser.parseSettingsText(
		"<?xml version=\"1.0\" encoding=\"utf-8\"?><config><renderer_settings>" + settings_override +
		"</renderer_settings></config>");
	SceneNodeRenderSettings& present = renderSettingsOf(root);
	const Reference<SceneNodeRenderSettings> merged = SceneNodeRenderSettings::merge(present, *given);
	merged->uid = present.uid;
	root.updateNodes(Vector<Reference<SceneNode>>{Reference<SceneNode>(merged)});
}

// The layer_name elements as a list of layers by index. Indices that no
// layer list can have are passed over, as setLayerName does.
SceneNodeRenderSettings::LayerVector namedLayers(const Vector<std::pair<int, String>>& layer_names)
{
	SceneNodeRenderSettings::LayerVector layers;
	for(const std::pair<int, String>& entry : layer_names)
	{
		if(entry.first < 0 || (unsigned)entry.first >= SceneNodeRenderSettings::max_layer_index)
			continue;
		if(layers.size() <= (size_t)entry.first)
			layers.resize((size_t)entry.first + 1);
		layers[(size_t)entry.first] = LayerSetting::makeNamed(entry.second);
	}
	return layers;
}

} // namespace

SceneParser::SceneParser() = default;

Reference<SceneNodeRoot> SceneParser::parseFile(const std::string& path, const std::string& settings_override)
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	SceneFileRun(*this, *root).readSceneFile(path);
	if(root->getBackgroundSettingsNode().isNull())
		root->addChildNode(new SceneNodeBackgroundSettings());
	if(root->getRenderSettingsNode().isNull())
		root->addChildNode(new SceneNodeRenderSettings());
	if(!settings_override.empty())
		overrideSettings(*this, *root, settings_override);

	SceneNodeRenderSettings& settings = renderSettingsOf(*root);
	if(white_point_x != 0 || white_point_y != 0)
		settings.setWhitePoint(white_point_x, white_point_y);
	if(settings.layer_settings.empty() && !layer_names.empty())
		settings.setLayers(namedLayers(layer_names));
	return root;
}

Vector<Reference<SceneNode>> SceneParser::parseSceneDataFile(const std::string& path)
{
	checkReadable(path);
	VelornXMLDoc doc(path);
	const TiXmlElement& data = rootElementNamed(doc, "scenedata", "Unknown root element '");
	const std::string dir = FileUtils::getDirectory(path);
	Vector<Reference<SceneNode>> nodes;
	for(const TiXmlElement* child = data.FirstChildElement(); child; child = child->NextSiblingElement())
		nodes.push_back(parseElement(*child, dir));
	return nodes;
}

Reference<SceneNodeRenderSettings> SceneParser::parseSettingsFile(const std::string& dir)
{
	const std::string path = FileUtils::join(dir, "inifile.xml");
	checkReadable(path);
	VelornXMLDoc doc(path);
	const TiXmlElement& config = *doc.getRootElement("config");
	return parserCall([&] { return readRenderSettings(*getFirstChildElement(config, "renderer_settings")); });
}

Reference<SceneNodeRenderSettings> SceneParser::parseSettingsText(const std::string& text)
{
	XMLNestingCheck::checkText(text, "the settings text");
	TiXmlBase::SetCondenseWhiteSpace(false);
	TiXmlDocument doc;
	doc.Parse(text.c_str());
	if(doc.Error())
		throw SceneParserExcep("Error while parsing XML: '" + std::string(doc.ErrorDesc()) + "'  (Line " +
							   toString((int32_t)doc.ErrorRow()) + ", column " + toString((int32_t)doc.ErrorCol()) + ".)");
	const TiXmlElement* config = doc.FirstChildElement("config");
	if(!config)
		throw SceneParserExcep("could not find root 'config' element in XML '" + text + "'");
	const TiXmlElement* settings = config->FirstChildElement("renderer_settings");
	if(!settings)
		throw SceneParserExcep("could not find 'renderer_settings' element in XML '" + text + "'");
	return parserCall([&] { return readRenderSettings(*settings); });
}

Reference<SceneNode> SceneParser::parseElement(const TiXmlElement& element, const std::string& dir)
{
	if(NodeReader read = readerFor(node_readers, element.Value()))
		return parserCall([&] { return read(*this, element, dir); });
	throw SceneParserExcep("Unknown element type: " + std::string(element.Value()) + errorContext(element));
}

} // namespace Velorn
