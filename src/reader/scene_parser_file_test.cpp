// Whole scene files: what parseFile adds, references by name across
// elements, includes, and the settings that come from other places (the
// override text, the camera's white point, layer names), and the settings
// and material files.
#include "mesh/mesh_file.h"
#include "reader/scene_parser_test_helpers.h"
#include "scene/geometry_test_helpers.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_sphere.h"
#include "support/file_utils.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace Velorn;
using VelornTest::classAndFailureOf;
using VelornTest::parseScene;
using VelornTest::place;
using VelornTest::putFile;
using VelornTest::sceneDataText;
using VelornTest::sceneText;
using VelornTest::TempDir;
using VelornTest::XMLText;

namespace
{

std::string material(uint32_t uid, const char* name)
{
	return "<material><uid>" + std::to_string(uid) + "</uid><name>" + name + "</name><diffuse></diffuse></material>\n";
}

std::string sphere(uint32_t uid, uint32_t material_uid)
{
	return "<sphere><uid>" + std::to_string(uid) + "</uid><material_uid>" + std::to_string(material_uid) +
		   "</material_uid><radius>1</radius></sphere>\n";
}

std::string include(const std::string& path) { return "<include><pathname>" + path + "</pathname></include>\n"; }

// A mesh element named Box for the sample mesh (materials Red and Blue),
// whose file is box.vlmesh beside the scene.
std::string boxMesh(const TempDir& dir, uint32_t uid)
{
	writeMeshToFile(dir.file("box.vlmesh"), *VelornTest::sampleMesh());
	return "<mesh><uid>" + std::to_string(uid) +
		   "</uid><name>Box</name><normal_smoothing>false</normal_smoothing><external><path>box.vlmesh</path></external></mesh>\n";
}

std::string failureOfScene(const TempDir& dir, const std::string& children)
{
	return classAndFailureOf([&] { parseScene(dir, children); });
}

std::vector<uint32_t> childUIDs(const SceneNode& root)
{
	std::vector<uint32_t> uids;
	for(const Reference<SceneNode>& child : root.getChildren())
		uids.push_back(child->uid.value());
	return uids;
}

SceneNodeRenderSettings& settingsOf(const Reference<SceneNodeRoot>& root)
{
	return static_cast<SceneNodeRenderSettings&>(*root->getRenderSettingsNode());
}

} // namespace

TEST(SceneParserFile, AddsBackgroundAndEmptySettings)
{
	TempDir dir;
	const Reference<SceneNodeRoot> root = parseScene(dir, "<metadata><uid>4</uid></metadata>\n");
	EXPECT_EQ(root->uid.value(), 0u);
	ASSERT_EQ(root->getChildren().size(), 3u);
	EXPECT_EQ(root->getChildren()[1]->getType(), SceneNodeType::BackgroundSettings);
	EXPECT_EQ(root->getChildren()[2]->getType(), SceneNodeType::RenderSettings);
	EXPECT_EQ(childUIDs(*root), (std::vector<uint32_t>{4, 5, 6}));
	EXPECT_EQ(settingsOf(root).settings.size(), 0u);
	EXPECT_TRUE(settingsOf(root).white_point.isNull());
}

TEST(SceneParserFile, RootAndTopLevelElements)
{
	TempDir dir;
	SceneParser parser;
	EXPECT_EQ(classAndFailureOf([&] { parser.parseFile(putFile(dir, "lib.vlm", sceneDataText("")), ""); }),
		"SceneParserExcep: Invalid root element 'scenedata'");
	EXPECT_EQ(failureOfScene(dir, "<lights/>\n"), "SceneParserExcep: Unknown element type: lights" + place("lights", 2, 1));
}

TEST(SceneParserFile, ReferencesByName)
{
	TempDir dir;
	const std::string model = "<model><pos>0 0 0</pos><mesh_name>Box</mesh_name></model>\n";
	EXPECT_EQ(failureOfScene(dir, model + boxMesh(dir, 5)),
		"SceneParserExcep: Model tried to use undefined mesh 'Box'" + place("model", 2, 1));
	EXPECT_EQ(failureOfScene(dir, boxMesh(dir, 5) + boxMesh(dir, 6)),
		"SceneParserExcep: Mesh with name 'Box' already defined; mesh names must be unique. " + place("mesh", 3, 1));
	EXPECT_EQ(failureOfScene(dir, "<sphere><material_name>Chrome</material_name></sphere>\n"),
		"SceneParserExcep: Material 'Chrome' is not defined. " + place("sphere", 2, 1));

	const std::string alias = "<alias_material><current_name>Gold</current_name><new_name>Or</new_name></alias_material>\n";
	EXPECT_EQ(failureOfScene(dir, alias), "SceneParserExcep: Tried to create an alias for the material with name 'Gold', "
										  "which has not been defined.  " + place("alias_material", 2, 1));
	// A mesh's name may be aliased, which names no material.
	EXPECT_EQ(failureOfScene(dir, boxMesh(dir, 5) +
									  "<alias_material><current_name>Box</current_name><new_name>Crate</new_name></alias_material>\n"
									  "<sphere><material_name>Crate</material_name></sphere>\n"),
		"SceneParserExcep: Material 'Crate' is not defined. " + place("sphere", 4, 1));

	const Reference<SceneNodeRoot> aliased = parseScene(dir, material(1, "Red") +
		"<alias_material><current_name>Red</current_name><new_name>Rouge</new_name></alias_material>\n"
		"<sphere><material_name>Rouge</material_name><radius>1</radius></sphere>\n");
	EXPECT_EQ(static_cast<SceneNodeSphere&>(*aliased->getChildren()[1]).material, aliased->getChildren()[0]);
}

// A model2 refers by UID, so it may stand before the nodes it uses; binding
// finds them.
TEST(SceneParserFile, Model2BeforeItsMesh)
{
	TempDir dir;
	const Reference<SceneNodeRoot> root = parseScene(dir,
		"<model2><uid>9</uid><geometry_uid>5</geometry_uid><materials><material_uid>3</material_uid>"
		"<material_uid>4</material_uid></materials></model2>\n" +
			material(3, "Red") + material(4, "Blue") + boxMesh(dir, 5));
	root->finalise(dir.file("main.vls"));
	const SceneNodeModel& model = static_cast<SceneNodeModel&>(*root->getChildren()[0]);
	EXPECT_EQ(model.geometry, root->getChildren()[3]);
	ASSERT_EQ(model.materials.size(), 2u);
	EXPECT_EQ(model.materials[1], root->getChildren()[2]);
}

// Paths of files that the scene depends on are joined to the directory of
// the file that names them; an aperture image's path is kept as written.
// Its expected paths are written with the POSIX separator.
#ifndef _WIN32
TEST(SceneParserFile, PathsJoinedToTheFilesDirectoryWithPosixSeparators)
{
	SceneParser parser;
	XMLText camera("<camera><aperture_radius>0.001</aperture_radius><focus_distance>1</focus_distance>"
				   "<sensor_width>0.036</sensor_width><lens_sensor_dist>0.036</lens_sensor_dist>"
				   "<obstacle_map><path>maps/dust.png</path></obstacle_map>"
				   "<aperture_shape><image><path>apertures/hex.png</path></image></aperture_shape></camera>");
	const Reference<SceneNodeCamera> read = parser.parseElement(camera.root(), "scene").downcast<SceneNodeCamera>();
	EXPECT_EQ(read->obstacle_map_path, String("scene/maps/dust.png"));
	EXPECT_EQ(static_cast<ApertureImage&>(*read->aperture_shape).path, String("apertures/hex.png"));

	XMLText model("<model2><geometry_uid>1</geometry_uid><materials></materials>"
				  "<ies_profile><material_name>Bulb</material_name><path>spot.ies</path></ies_profile></model2>");
	const Reference<SceneNodeModel> model2 = parser.parseElement(model.root(), "scene").downcast<SceneNodeModel>();
	ASSERT_EQ(model2->ies_profiles.size(), 1u);
	EXPECT_EQ(model2->ies_profiles[0]->path, String("scene/spot.ies"));
	EXPECT_EQ(model2->ies_profiles[0]->material_name, String("Bulb"));

	XMLText mesh("<mesh><name>Box</name><normal_smoothing>true</normal_smoothing><external><path>box.vlmesh</path></external></mesh>");
	EXPECT_EQ(parser.parseElement(mesh.root(), "scene").downcast<SceneNodeMesh>()->path, String("scene/box.vlmesh"));
}
#endif

TEST(SceneParserInclude, ShiftsUIDsPastThoseHandedOut)
{
	TempDir dir;
	std::filesystem::create_directory(dir.file("lib"));
	putFile(dir, "lib/parts.vlm", sceneDataText(material(1, "Blue") + sphere(2, 1) + include("more.vlm")));
	putFile(dir, "lib/more.vlm", sceneDataText("<metadata><uid>1</uid></metadata>\n"));
	const Reference<SceneNodeRoot> root = parseScene(dir, material(1, "Red") + include("lib/parts.vlm") + sphere(10, 1));
	// Red takes 1. The include's offset is the next UID, 2: Blue 3, its
	// sphere 4 on material 3. The nested include's offset is then 5.
	EXPECT_EQ(childUIDs(*root), (std::vector<uint32_t>{1, 3, 4, 6, 10, 11, 12}));
	EXPECT_EQ(static_cast<SceneNodeSphere&>(*root->getChildren()[2]).material_uid.value(), 3u);
	EXPECT_EQ(static_cast<SceneNodeSphere&>(*root->getChildren()[4]).material_uid.value(), 1u);
}

TEST(SceneParserInclude, Cycles)
{
	TempDir dir;
	const std::string cycle = "SceneParserExcep: Include cycle: '";
	const std::string read = "', which is already being read." + place("include", 2, 1);

	putFile(dir, "self.vlm", sceneDataText(include("self.vlm")));
	EXPECT_EQ(failureOfScene(dir, include("self.vlm")), cycle + dir.file("self.vlm") + "' includes '" + dir.file("self.vlm") + read);

	putFile(dir, "a.vlm", sceneDataText(include("b.vlm")));
	putFile(dir, "b.vlm", sceneDataText(include("./a.vlm")));
	EXPECT_EQ(failureOfScene(dir, include("a.vlm")), cycle + dir.file("b.vlm") + "' includes '" + Velorn::FileUtils::join(dir.path(), "./a.vlm") + read);

	EXPECT_EQ(failureOfScene(dir, include("main.vls")), cycle + dir.file("main.vls") + "' includes '" + dir.file("main.vls") + read);
}

TEST(SceneParserInclude, Limits)
{
	TempDir dir;
	for(int i = 0; i < 70; ++i)
		putFile(dir, "f" + std::to_string(i) + ".vlm", sceneDataText(include("f" + std::to_string(i + 1) + ".vlm")));
	// The scene and f0 to f62 make 64 files being read.
	EXPECT_EQ(failureOfScene(dir, include("f0.vlm")), "SceneParserExcep: Includes nested more than 64 deep: '" +
														  dir.file("f62.vlm") + "' includes '" + dir.file("f63.vlm") + "'." +
														  place("include", 2, 1));

	putFile(dir, "leaf.vlm", sceneDataText(""));
	std::string includes;
	for(int i = 0; i < 17; ++i)
		includes += include("leaf.vlm");
	EXPECT_EQ(failureOfScene(dir, includes),
		"SceneParserExcep: '" + dir.file("leaf.vlm") + "' is included more than 16 times in one scene." + place("include", 18, 1));

	std::filesystem::create_directory(dir.file("sub"));
	EXPECT_EQ(failureOfScene(dir, include("sub")), "SceneParserExcep: '" + dir.file("sub") + "' is not a file." + place("include", 2, 1));
}

TEST(SceneParserInclude, Form)
{
	TempDir dir;
	EXPECT_EQ(failureOfScene(dir, "<include><path>a.vlm</path></include>\n"),
		"SceneParserExcep: Found unexpected element 'path'." + place("include", 2, 1));
	putFile(dir, "other.vls", sceneText(""));
	EXPECT_EQ(failureOfScene(dir, include("other.vls")),
		"SceneParserExcep: Invalid root element in included file '" + dir.file("other.vls") + "': 'scene'");
}

TEST(SceneParserSettings, OverrideMergesAndWins)
{
	TempDir dir;
	const Reference<SceneNodeRoot> root = parseScene(dir,
		"<renderer_settings><uid>3</uid><name>Mine</name><width>640</width><height>480</height>"
		"<splat_filter><box/></splat_filter></renderer_settings>\n",
		"<width>1024</width><halt_time>5</halt_time><splat_filter><radial/></splat_filter>");
	ASSERT_EQ(root->getNumChildrenOfType(SceneNodeType::RenderSettings), 1u);
	const SceneNodeRenderSettings& settings = settingsOf(root);
	EXPECT_EQ(root->getChildren()[0].getPointer(), &settings);
	EXPECT_EQ(settings.uid.value(), 3u);
	// The merge makes a new node; only the UID is carried over.
	EXPECT_EQ(settings.getName(), String("Render Settings"));
	EXPECT_EQ(settings.getInt("width"), 1024);
	EXPECT_EQ(settings.getInt("height"), 480);
	EXPECT_EQ(settings.getDouble("halt_time"), 5.0);
	EXPECT_EQ(settings.splat_filter->getType(), 1u);

	// The override is read inside the wrapping text, so its places count
	// from the start of that text.
	EXPECT_EQ(classAndFailureOf([&] { parseScene(dir, "", "<width>1</wid>"); }),
		"SceneParserExcep: Error while parsing XML: 'Error reading end tag.'  (Line 1, column 74.)");
}

TEST(SceneParserSettings, WhitePointOfTheCamera)
{
	TempDir dir;
	const std::string lens = "<aperture_radius>0.001</aperture_radius><focus_distance>1</focus_distance>"
							 "<sensor_width>0.036</sensor_width><lens_sensor_dist>0.036</lens_sensor_dist>";
	// It wins over the settings' own white point, whatever the order.
	Reference<SceneNodeRoot> root = parseScene(dir, "<camera>" + lens + "<white_balance>D65</white_balance></camera>\n"
		"<renderer_settings><white_point>0.5 0.5</white_point></renderer_settings>\n");
	EXPECT_EQ(settingsOf(root).white_point->x, (double)0.31273f);
	EXPECT_EQ(settingsOf(root).white_point->y, (double)0.32902f);

	root = parseScene(dir, "<camera>" + lens +
		"<white_point><chromaticity_coordinates><x>0.3</x><y>0.31</y></chromaticity_coordinates></white_point></camera>\n");
	EXPECT_EQ(settingsOf(root).white_point->x, 0.3);
	EXPECT_EQ(settingsOf(root).white_point->y, 0.31);
}

TEST(SceneParserSettings, LayerNames)
{
	TempDir dir;
	const std::string names = "<layer_name><layer_index>2</layer_index><layer_name>Key</layer_name></layer_name>\n"
							  "<layer_name><layer_index>0</layer_index><layer_name>Fill</layer_name></layer_name>\n"
							  "<layer_name><layer_index>-1</layer_index><layer_name>No</layer_name></layer_name>\n"
							  "<layer_name><layer_index>70000</layer_index><layer_name>No</layer_name></layer_name>\n";
	Reference<SceneNodeRoot> root = parseScene(dir, names);
	const SceneNodeRenderSettings::LayerVector& layers = settingsOf(root).layer_settings;
	ASSERT_EQ(layers.size(), 3u);
	EXPECT_EQ(layers[0]->name, String("Fill"));
	EXPECT_EQ(layers[1]->name, String("Layer 1"));
	EXPECT_EQ(layers[2]->name, String("Key"));

	// Layers of the settings themselves are kept as they are.
	root = parseScene(dir, names + "<renderer_settings><layer_setting><name>Sun</name></layer_setting></renderer_settings>\n");
	ASSERT_EQ(settingsOf(root).layer_settings.size(), 1u);
	EXPECT_EQ(settingsOf(root).layer_settings[0]->name, String("Sun"));
}

TEST(SceneParserSettings, SettingsTextAndFile)
{
	SceneParser parser;
	const struct
	{
		const char* text;
		std::string message;
	} failures[] = {
		{"<config><renderer_settings><width>1</wid></renderer_settings></config>",
			"Error while parsing XML: 'Error reading end tag.'  (Line 1, column 36.)"},
		{"<settings/>", "could not find root 'config' element in XML '<settings/>'"},
		{"<config><other/></config>", "could not find 'renderer_settings' element in XML '<config><other/></config>'"},
		{"<config><renderer_settings><width>x</width></renderer_settings></config>",
			"Failed to parse integer from 'x'." + place("width", 1, 28)},
	};
	for(const auto& failure : failures)
		EXPECT_EQ(classAndFailureOf([&] { parser.parseSettingsText(failure.text); }), "SceneParserExcep: " + failure.message);

	TempDir dir;
	putFile(dir, "inifile.xml", "<config>\n<renderer_settings><width>320</width></renderer_settings>\n</config>\n");
	EXPECT_EQ(parser.parseSettingsFile(dir.path())->getInt("width"), 320);
	putFile(dir, "inifile.xml", "<config>\n</config>\n");
	EXPECT_EQ(classAndFailureOf([&] { parser.parseSettingsFile(dir.path()); }),
		"SceneParserExcep: Failed to find expected element 'renderer_settings'." + place("config", 1, 1));
}

TEST(SceneParserDataFile, NodesInOrderWithoutIncludes)
{
	TempDir dir;
	SceneParser parser;
	const Vector<Reference<SceneNode>> nodes =
		parser.parseSceneDataFile(putFile(dir, "lib.vlm", sceneDataText(material(7, "Red") + sphere(8, 7))));
	ASSERT_EQ(nodes.size(), 2u);
	EXPECT_EQ(nodes[0]->getName(), String("Red"));
	EXPECT_EQ(nodes[1]->uid.value(), 8u);

	EXPECT_EQ(classAndFailureOf([&] { parser.parseSceneDataFile(putFile(dir, "s.vls", sceneText(""))); }),
		"SceneParserExcep: Unknown root element 'scene'");
	EXPECT_EQ(classAndFailureOf([&] { parser.parseSceneDataFile(putFile(dir, "i.vlm", sceneDataText(include("lib.vlm")))); }),
		"SceneParserExcep: Unknown element type: include" + place("include", 2, 1));
}
