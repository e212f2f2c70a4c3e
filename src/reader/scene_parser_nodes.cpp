// Materials and media as nodes, the background in its present and old forms,
// metadata and section planes.
#include "reader/material_parser.h"
#include "reader/scene_parse_utils.h"
#include "reader/scene_parser_readers.h"
#include "scene/materials_other.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_metadata.h"
#include "scene/scene_node_section_plane.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

#include <cstring>

namespace Velorn
{
namespace SceneReaders
{

using namespace SceneParseUtils;

namespace
{

Reference<SunSkyMaterial> readSunSky(const TiXmlElement& element)
{
	Reference<SunSkyMaterial> sunsky(new SunSkyMaterial());
	sunsky->sundir = parseVec3(element, "sundir");
	sunsky->turbidity = parseDouble(element, "turbidity");
	sunsky->extra_atmospheric = parseBoolWithDefault(element, "extra_atmospheric", false);
	sunsky->sky_layer = parseIntWithDefault(element, "sky_layer", 0);
	sunsky->sun_layer = parseIntWithDefault(element, "sun_layer", 0);
	sunsky->model = parseStringWithDefault(element, "model", "original");
	return sunsky;
}

// An image around the scene: latlong maps cover the sphere in longitude and
// latitude, spherical ones are the picture of a mirror ball. The gain
// scales the image's values.
Reference<Material> readEnvironmentImage(const TiXmlElement& kind, const std::string& dir)
{
	static const char* const latlong_elements[] = {"gain", "path", nullptr};
	// No field holds the width: the renderer takes the ball's extent from
	// the image.
	static const char* const spherical_elements[] = {"gain", "path", "width", nullptr};
	const bool latlong = std::strcmp(kind.Value(), "latlong") == 0;
	checkForUnexpectedElements(kind, latlong ? latlong_elements : spherical_elements);
	Texture image;
	image.path = FileUtils::join(dir, parseString(kind, "path"));
	image.b = parseDouble(kind, "gain");
	image.exponent = 1; // as the texture reader takes a texture without one
	if(latlong)
		image.tex_coord_generation = new SphericalEnvTexCoordGenerator();
	else
		image.tex_coord_generation = new SphericalTexCoordGenerator();
	Reference<DiffuseMaterial> material(new DiffuseMaterial());
	material->textures.push_back(image);
	material->emission = new TextureWavelengthDependentParam(0);
	return material;
}

Reference<SceneNodeBackgroundSettings> backgroundNode(const TiXmlElement& element, const Reference<Material>& material)
{
	Reference<SceneNodeBackgroundSettings> background(new SceneNodeBackgroundSettings());
	readNameAndUID(element, "Background Settings", *background);
	background->background_material = material;
	return background;
}

} // namespace

Reference<SceneNode> readMaterial(SceneParser& parser, const TiXmlElement& element, const std::string& dir)
{
	UID uid;
	Reference<SceneNodeMaterial> node(new SceneNodeMaterial(MaterialParser::parseMaterial(element, dir, uid, parser.names)));
	node->uid = uid;
	// The writer gives each scatter a wrapper of its own; only the first is
	// read.
	if(const TiXmlElement* scatters = element.FirstChildElement("scatter_uids"))
		node->scatter_uids = parseUIDList(*scatters, "uid");
	parser.names.material_names.insert(node->getName(), node);
	return node;
}

Reference<SceneNode> readMedium(SceneParser& parser, const TiXmlElement& element, const std::string& dir)
{
	UID uid;
	Reference<SceneNodeMedium> node(new SceneNodeMedium(MaterialParser::parseMedium(element, dir, uid)));
	node->uid = uid;
	parser.names.medium_names.insert(node->getName(), node);
	return node;
}

Reference<SceneNode> readBackgroundSettings(SceneParser& parser, const TiXmlElement& element, const std::string& dir)
{
	static const char* const allowed[] = {"name", "uid", "emission_scale", "background_material", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<Material> material;
	if(const TiXmlElement* holder = element.FirstChildElement("background_material"))
	{
		const TiXmlElement* material_element = holder->FirstChildElement("material");
		if(!material_element)
			throw SceneParserExcep("'material' element not found. " + errorContext(*holder));
		UID no_node;
		material = MaterialParser::parseMaterial(*material_element, dir, no_node, parser.names);
	}
	Reference<SceneNodeBackgroundSettings> background = backgroundNode(element, material);
	if(const TiXmlElement* scale = element.FirstChildElement("emission_scale"))
		background->emission_scale = readEmissionScale(*scale);
	return background;
}

Reference<SceneNode> readSkylight(SceneParser&, const TiXmlElement& element, const std::string&)
{
	static const char* const allowed[] = {"name", "uid", "sundir", "turbidity", "extra_atmospheric", "sky_layer", "sun_layer",
		"model", "enable_sky", nullptr};
	checkForUnexpectedElements(element, allowed);
	return backgroundNode(element, readSunSky(element));
}

Reference<SceneNode> readOldBackground(SceneParser&, const TiXmlElement& element, const std::string&)
{
	static const char* const allowed[] = {"name", "uid", "spectrum", nullptr};
	checkForUnexpectedElements(element, allowed);
	if(!element.FirstChildElement("spectrum"))
		throw SceneParserExcep("No 'spectrum' element found in background element. " + errorContext(element));
	return backgroundNode(element, emitterMaterial(readChildSpectrum(element)));
}

Reference<SceneNode> readEnvMap(SceneParser&, const TiXmlElement& element, const std::string& dir)
{
	static const char* const allowed[] = {"name", "uid", "latlong", "spherical", nullptr};
	static const char* const kinds[] = {"latlong", "spherical", nullptr};
	checkForUnexpectedElements(element, allowed);
	const TiXmlElement& kind =
		oneKindOf(element, kinds, "Failed to find child for element 'env_map' - Child should be one of 'latlong', 'spherical'.");
	return backgroundNode(element, readEnvironmentImage(kind, dir));
}

Reference<SceneNode> readMetaData(SceneParser&, const TiXmlElement& element, const std::string&)
{
	static const char* const allowed[] = {"name", "uid", "exporter", "author", "description", "created_date", "platform",
		"exporter_specific", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<SceneNodeMetaData> metadata(new SceneNodeMetaData());
	readNameAndUID(element, "Metadata", *metadata);
	metadata->exporter = parseStringWithDefault(element, "exporter", "");
	metadata->author = parseStringWithDefault(element, "author", "");
	metadata->description = parseStringWithDefault(element, "description", "");
	metadata->created_date = parseStringWithDefault(element, "created_date", "");
	metadata->platform = parseStringWithDefault(element, "platform", "");
	metadata->exporter_specific = parseStringWithDefault(element, "exporter_specific", "");
	return metadata;
}

Reference<SceneNode> readSectionPlane(SceneParser&, const TiXmlElement& element, const std::string&)
{
	static const char* const allowed[] = {"name", "uid", "point", "normal", "enabled", "cull_geometry", "object_list_type",
		"object_list", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<SceneNodeSectionPlane> plane(new SceneNodeSectionPlane());
	readNameAndUID(element, "Section Plane", *plane);
	plane->point = parseVec3(element, "point");
	plane->normal = parseVec3(element, "normal");
	plane->enabled = parseBoolWithDefault(element, "enabled", true);
	plane->cull_geometry = parseBoolWithDefault(element, "cull_geometry", true);
	const bool include = parseStringWithDefault(element, "object_list_type", "exclude") == "include";
	plane->object_list_type = include ? SceneNodeSectionPlane::Include : SceneNodeSectionPlane::Exclude;
	if(const TiXmlElement* list = element.FirstChildElement("object_list"))
		plane->object_list = parseUIDList(*list, "uid");
	return plane;
}

} // namespace SceneReaders
} // namespace Velorn
