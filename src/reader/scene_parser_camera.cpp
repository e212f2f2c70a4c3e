// The camera and the tone mapping: how the scene is seen and how its light
// becomes pixel values.
#include "reader/scene_parse_utils.h"
#include "reader/scene_parser_readers.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_tonemapping.h"
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

// pos, up and forwards are the old single placement; keyframes stand in
// its place, and the writer puts up and forwards beside them.
void readDirection(const TiXmlElement& element, SceneNodeCamera& camera)
{
	camera.keyframes = readTransformPath(element, "pos");
	if(element.FirstChildElement("up"))
		camera.up = parseVec3(element, "up");
	if(element.FirstChildElement("forwards"))
		camera.forwards = parseVec3(element, "forwards");
}

void readLens(const TiXmlElement& element, SceneNodeCamera& camera)
{
	camera.aperture_radius = parseDouble(element, "aperture_radius");
	if(!(camera.aperture_radius > 0))
		throw SceneParserExcep("Aperture_radius must be greater than zero (e.g. 0.001)" + errorContext(element));
	camera.focus_distance = parseDouble(element, "focus_distance");
	camera.sensor_width = parseDouble(element, "sensor_width");
	camera.lens_sensor_dist = parseDouble(element, "lens_sensor_dist");
	camera.exposure_duration = parseDoubleWithDefault(element, "exposure_duration", 1.0 / 30);
	camera.lens_shift_up_distance = parseDoubleWithDefault(element, "lens_shift_up_distance", 0);
	camera.lens_shift_right_distance = parseDoubleWithDefault(element, "lens_shift_right_distance", 0);
	camera.autofocus = element.FirstChildElement("autofocus") != nullptr;
}

// The white point of a camera belongs to the render settings: the parser
// keeps it and hands it over once the whole file is read.
void readWhitePoint(SceneParser& parser, const TiXmlElement& element)
{
	if(const TiXmlElement* white_point = element.FirstChildElement("white_point"))
	{
		const TiXmlElement& coordinates = *getFirstChildElement(*white_point, "chromaticity_coordinates");
		parser.white_point_x = parseDouble(coordinates, "x");
		parser.white_point_y = parseDouble(coordinates, "y");
	}
	else if(element.FirstChildElement("white_balance"))
	{
		try
		{
			SceneNodeRenderSettings::whitePointForName(parseString(element, "white_balance"), parser.white_point_x,
				parser.white_point_y);
		}
		catch(const VelornException& e)
		{
			throw SceneParserExcep(e.what() + errorContext(element));
		}
	}
}

Reference<ApertureShape> readGeneratedAperture(const TiXmlElement& element)
{
	Reference<ApertureGenerated> shape(new ApertureGenerated(parseInt(element, "num_blades"),
		parseDouble(element, "blade_offset"), parseDouble(element, "blade_curvature_radius"), parseDouble(element, "start_angle")));
	const char* failure = nullptr;
	if(shape->num_blades < 3)
		failure = "num_blades must be >= 3";
	else if(!(shape->blade_offset > 0))
		failure = "blade_offset must be > 0";
	else if(!(shape->blade_curvature_radius >= shape->blade_offset))
		failure = "blade_curvature_radius must be >= blade_offset";
	if(failure)
		throw SceneParserExcep(failure + errorContext(element));
	return shape;
}

Reference<ApertureShape> readApertureShape(const TiXmlElement& element)
{
	static const char* const shapes[] = {"circular", "image", "generated", nullptr};
	const TiXmlElement& shape = checkMutuallyExclusive(element, shapes);
	switch(nameIndex(shapes, shape.Value()))
	{
	case 0:
		return new ApertureCircular();
	case 1:
		return new ApertureImage(parseString(shape, "path"));
	default:
		return readGeneratedAperture(shape);
	}
}

SceneNodeCamera::CameraType readCameraType(const TiXmlElement& element)
{
	static const char* const names[] = {"thin-lens-perspective", "orthographic", "spherical", nullptr};
	const std::string text = parseStringWithDefault(element, "camera_type", names[0]);
	const size_t type = nameIndex(names, text.c_str());
	if(!names[type])
		throw SceneParserExcep("Unknown camera type '" + text +
							   "', should be either 'thin-lens-perspective', 'orthographic' or 'spherical'." +
							   errorContext(element));
	return (SceneNodeCamera::CameraType)type;
}

Reference<SceneNodeTonemapping> readToneMappingKind(const TiXmlElement& kind)
{
	if(std::strcmp(kind.Value(), "linear") == 0)
		return new SceneNodeTonemapping(parseDouble(kind, "scale"));
	if(std::strcmp(kind.Value(), "camera") == 0)
		return new SceneNodeTonemapping(parseString(kind, "response_function_path"), parseDouble(kind, "ev_adjust"),
			parseDouble(kind, "film_iso"));
	const double pre_scale = parseDouble(kind, "pre_scale");
	const double post_scale = parseDouble(kind, "post_scale");
	const double burn = parseDoubleWithDefault(kind, "burn", 10);
	if(!(burn > 0))
		throw SceneParserExcep("Burn must be greater than 0.0 " + errorContext(kind));
	return new SceneNodeTonemapping(pre_scale, post_scale, burn);
}

} // namespace

Reference<SceneNode> readCamera(SceneParser& parser, const TiXmlElement& element, const std::string& dir)
{
	static const char* const allowed[] = {"name", "uid", "pos", "up", "forwards", "keyframe", "aperture_radius",
		"focus_distance", "sensor_width", "lens_sensor_dist", "exposure_duration", "lens_shift_up_distance",
		"lens_shift_right_distance", "autofocus", "white_point", "white_balance", "obstacle_map", "aperture_shape",
		"camera_type", "aspect_ratio", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<SceneNodeCamera> camera(new SceneNodeCamera());
	readNameAndUID(element, "Camera", *camera);
	readDirection(element, *camera);
	readLens(element, *camera);
	readWhitePoint(parser, element);
	if(const TiXmlElement* obstacle_map = element.FirstChildElement("obstacle_map"))
		camera->obstacle_map_path = FileUtils::join(dir, parseString(*obstacle_map, "path"));
	if(const TiXmlElement* shape = element.FirstChildElement("aperture_shape"))
		camera->aperture_shape = readApertureShape(*shape);
	camera->camera_type = readCameraType(element);
	return camera;
}

Reference<SceneNode> readTonemapping(SceneParser&, const TiXmlElement& element, const std::string&)
{
	static const char* const allowed[] = {"name", "uid", "reinhard", "linear", "camera", nullptr};
	static const char* const kinds[] = {"reinhard", "linear", "camera", nullptr};
	checkForUnexpectedElements(element, allowed);
	const TiXmlElement& kind = oneKindOf(element, kinds, "Error parsing tone mapping: Failed to find tonemapping child.");
	Reference<SceneNodeTonemapping> tonemapping = readToneMappingKind(kind);
	readNameAndUID(element, "Tone Mapping", *tonemapping);
	return tonemapping;
}

} // namespace SceneReaders
} // namespace Velorn
