// The checks of the node readers, one table per family, each case with its
// whole message and the place in the text. Children stand on lines of their
// own, indented by two blanks, so that a child on line n has the place
// (n, 3).
#include "reader/scene_parser_test_helpers.h"
#include "scene/scene_node_mesh.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Velorn;
using VelornTest::classAndFailureOf;
using VelornTest::parseNode;
using VelornTest::place;

namespace
{

struct FailureCase
{
	const char* what;
	std::string xml;
	std::string message;
};

void expectFailures(const std::vector<FailureCase>& cases)
{
	for(const FailureCase& c : cases)
	{
		SCOPED_TRACE(c.what);
		EXPECT_EQ(classAndFailureOf([&] { parseNode(c.xml); }), "SceneParserExcep: " + c.message);
	}
}

// A camera with the required lens values on lines 2 to 5 and more children
// from line 6 on.
std::string camera(const std::string& more)
{
	return "<camera>\n"
		   "  <aperture_radius>0.001</aperture_radius>\n"
		   "  <focus_distance>1</focus_distance>\n"
		   "  <sensor_width>0.036</sensor_width>\n"
		   "  <lens_sensor_dist>0.036</lens_sensor_dist>\n" +
		   more + "</camera>";
}

// A mesh with its required children on lines 2 to 4 and more from line 5 on.
std::string mesh(const std::string& more)
{
	return "<mesh>\n"
		   "  <name>Box</name>\n"
		   "  <normal_smoothing>false</normal_smoothing>\n"
		   "  <external><path>box.vlmesh</path></external>\n" +
		   more + "</mesh>";
}

std::string settings(const std::string& children) { return "<renderer_settings>\n" + children + "</renderer_settings>"; }

std::string aperture(const std::string& shape) { return camera("  <aperture_shape>" + shape + "</aperture_shape>\n"); }

} // namespace

TEST(SceneParserErrors, UnexpectedElements)
{
	expectFailures({
		{"camera", camera("  <fov>1</fov>\n"), "Found unexpected element 'fov'." + place("camera", 1, 1)},
		{"metadata", "<metadata>\n  <owner>me</owner>\n</metadata>", "Found unexpected element 'owner'." + place("metadata", 1, 1)},
		{"old model names no materials", "<model>\n  <material_name>A</material_name>\n</model>",
			"Found unexpected element 'material_name'." + place("model", 1, 1)},
		{"latlong has no width", "<env_map>\n  <latlong><gain>1</gain><path>a.exr</path><width>2</width></latlong>\n</env_map>",
			"Found unexpected element 'width'." + place("latlong", 2, 3)},
	});
}

TEST(SceneParserErrors, DuplicateMeshElements)
{
	expectFailures({{"second scale", mesh("  <scale>1</scale>\n  <scale>2</scale>\n"),
		"Found unexpected element 'scale' (Already parsed element called 'scale') in element 'mesh'. (Around line 6, column 3)"}});

	// The writer puts view_dependent_subdivision in twice; the first counts.
	const Reference<SceneNode> node = parseNode(mesh("  <view_dependent_subdivision>true</view_dependent_subdivision>\n"
													 "  <view_dependent_subdivision>false</view_dependent_subdivision>\n"));
	EXPECT_TRUE(static_cast<SceneNodeMesh&>(*node).view_dependent_subdivision);
}

TEST(SceneParserErrors, MutualExclusion)
{
	expectFailures({
		{"two aperture shapes", aperture("<circular/><image><path>a.png</path></image>"),
			"Found unexpected element 'image,  already parsed mutually exclusive element 'circular'." + place("aperture_shape", 6, 3)},
		{"no aperture shape", aperture(""),
			"Failed to find child for element 'aperture_shape' - Child should be one of 'circular', 'image', 'generated'." +
				place("aperture_shape", 6, 3)},
		{"splat filter of no kind", settings("  <splat_filter><lanczos/></splat_filter>\n"),
			"Found unexpected element 'lanczos'." + place("splat_filter", 2, 3)},
		{"two downsize filters", settings("  <downsize_filter><gaussian/><sharp/></downsize_filter>\n"),
			"Found unexpected element 'sharp,  already parsed mutually exclusive element 'gaussian'." + place("downsize_filter", 2, 3)},
		{"two tone mappings", "<tonemapping>\n  <linear><scale>1</scale></linear>\n  <reinhard/>\n</tonemapping>",
			"Found unexpected element 'reinhard,  already parsed mutually exclusive element 'linear'." + place("tonemapping", 1, 1)},
		{"no environment", "<env_map>\n  <name>E</name>\n</env_map>",
			"Failed to find child for element 'env_map' - Child should be one of 'latlong', 'spherical'." + place("env_map", 1, 1)},
	});
}

TEST(SceneParserErrors, NumbersWithTrailingText)
{
	expectFailures({
		{"int", settings("  <width>800px</width>\n"), "Parse error while parsing integer from '800px'." + place("width", 2, 3)},
		{"double", "<camera>\n  <aperture_radius>0.001m</aperture_radius>\n</camera>",
			"Parse error while parsing double from '0.001m'." + place("aperture_radius", 2, 3)},
		{"Vec3", "<section_plane>\n  <point>1 2 3 4</point>\n</section_plane>",
			"Parse error while parsing Vec3 from '1 2 3 4'." + place("point", 2, 3)},
		{"uid", "<sphere>\n  <uid>7 b</uid>\n</sphere>", "Parse error while parsing unsigned integer from '7 b'." + place("uid", 2, 3)},
		{"uid in a list", "<section_plane>\n  <point>0 0 0</point>\n  <normal>0 0 1</normal>\n  <object_list>\n    <uid>5x</uid>\n"
						  "  </object_list>\n</section_plane>",
			"Parse error while parsing unsigned integer from '5x'." + place("uid", 5, 5)},
		{"negative uid in a list", "<model2>\n  <geometry_uid>1</geometry_uid>\n  <materials>\n    <material_uid>-1</material_uid>\n"
								   "  </materials>\n</model2>",
			"Failed to parse unsigned integer from '-1'." + place("material_uid", 4, 5)},
		{"nothing", "<tonemapping>\n  <linear>\n    <scale></scale>\n  </linear>\n</tonemapping>",
			"Failed to parse double from ''." + place("scale", 3, 5)},
	});
}

TEST(SceneParserErrors, Booleans)
{
	const std::string invalid = "Invalid boolean value (Should be 'true' or 'false').";
	expectFailures({
		{"blank before", "<mesh>\n  <name>Box</name>\n  <normal_smoothing> true</normal_smoothing>\n</mesh>",
			invalid + place("normal_smoothing", 3, 3)},
		{"yes", "<section_plane>\n  <point>0 0 0</point>\n  <normal>0 0 1</normal>\n  <enabled>yes</enabled>\n</section_plane>",
			invalid + place("enabled", 4, 3)},
		{"capital", settings("  <metropolis>True</metropolis>\n"), invalid + place("metropolis", 2, 3)},
	});
}

TEST(SceneParserErrors, MissingRequiredElements)
{
	expectFailures({
		{"mesh name", "<mesh>\n</mesh>", "could not find element 'name'." + place("mesh", 1, 1)},
		{"focus distance", "<camera>\n  <aperture_radius>0.001</aperture_radius>\n</camera>",
			"could not find element 'focus_distance'." + place("camera", 1, 1)},
		{"mesh data", "<mesh>\n  <name>Box</name>\n  <normal_smoothing>false</normal_smoothing>\n</mesh>",
			"Mesh not created. (missing 'embedded', 'embedded_2' or 'external' element) " + place("mesh", 1, 1)},
		{"model2 materials", "<model2>\n  <geometry_uid>1</geometry_uid>\n</model2>",
			"Failed to find expected element 'materials'." + place("model2", 1, 1)},
		{"keyframe rotation", "<sphere>\n  <material_uid>1</material_uid>\n  <keyframe><time>0</time><pos>0 0 0</pos></keyframe>\n</sphere>",
			"Failed to find expected element 'rotation_quaternion'." + place("keyframe", 3, 3)},
		{"background material", "<background_settings>\n  <background_material></background_material>\n</background_settings>",
			"'material' element not found. " + place("background_material", 2, 3)},
		{"old background spectrum", "<background>\n  <name>B</name>\n</background>",
			"No 'spectrum' element found in background element. " + place("background", 1, 1)},
		{"camera chromaticity", camera("  <white_point></white_point>\n"),
			"Failed to find expected element 'chromaticity_coordinates'." + place("white_point", 6, 3)},
	});
}

TEST(SceneParserErrors, EmbeddedMeshesAreRefused)
{
	expectFailures({
		{"embedded", mesh("  <embedded>v 0 0 0</embedded>\n"),
			"Error while loading mesh: VelornModelParserExcep: embedded mesh data is not supported" + place("embedded", 5, 3)},
		{"embedded_2", mesh("  <embedded_2>v 0 0 0</embedded_2>\n"),
			"Error while loading mesh: VelornModelParser2Excep: embedded mesh data is not supported" + place("embedded_2", 5, 3)},
	});
}

TEST(SceneParserErrors, ValueChecks)
{
	const std::string generated = "  <aperture_shape>\n    <generated><num_blades>";
	expectFailures({
		{"aperture radius", "<camera>\n  <aperture_radius>0</aperture_radius>\n</camera>",
			"Aperture_radius must be greater than zero (e.g. 0.001)" + place("camera", 1, 1)},
		{"width", settings("  <width>-1</width>\n"), "width must be >= 0.  " + place("renderer_settings", 1, 1)},
		{"height", settings("  <height>-2</height>\n"), "height must be >= 0.  " + place("renderer_settings", 1, 1)},
		{"blades", camera(generated + "2</num_blades><blade_offset>1</blade_offset><blade_curvature_radius>1</blade_curvature_radius>"
									  "<start_angle>0</start_angle></generated>\n  </aperture_shape>\n"),
			"num_blades must be >= 3" + place("generated", 7, 5)},
		{"blade offset", camera(generated + "5</num_blades><blade_offset>0</blade_offset><blade_curvature_radius>1</blade_curvature_radius>"
											"<start_angle>0</start_angle></generated>\n  </aperture_shape>\n"),
			"blade_offset must be > 0" + place("generated", 7, 5)},
		{"blade curvature", camera(generated + "5</num_blades><blade_offset>2</blade_offset><blade_curvature_radius>1</blade_curvature_radius>"
											   "<start_angle>0</start_angle></generated>\n  </aperture_shape>\n"),
			"blade_curvature_radius must be >= blade_offset" + place("generated", 7, 5)},
		{"camera type", camera("  <camera_type>fisheye</camera_type>\n"),
			"Unknown camera type 'fisheye', should be either 'thin-lens-perspective', 'orthographic' or 'spherical'." +
				place("camera", 1, 1)},
		{"white balance", camera("  <white_balance>D66</white_balance>\n"),
			"'D66' is not a valid value for white_balance.  (must be one of D50, D55, F2 etc..)" + place("camera", 1, 1)},
		{"burn", "<tonemapping>\n  <reinhard><pre_scale>1</pre_scale><post_scale>1</post_scale><burn>0</burn></reinhard>\n</tonemapping>",
			"Burn must be greater than 0.0 " + place("reinhard", 2, 3)},
		{"measure", "<model2>\n  <emission_scale><measure>lumens</measure></emission_scale>\n</model2>",
			"No such measure 'lumens'" + place("emission_scale", 2, 3)},
	});
}

TEST(SceneParserErrors, UnknownElementType)
{
	expectFailures({{"top level", "<light>\n</light>", "Unknown element type: light" + place("light", 1, 1)}});
}
