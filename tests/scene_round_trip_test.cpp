// Scene node files and whole scenes read back and written again: the golden
// files' bytes come back, except where a round trip loses or changes
// something, and each of those is pinned down here.
#include "reader/reader_test_helpers.h"
#include "reader/scene_parser.h"
#include "scene/geometry_test_helpers.h"
#include "scene/materials_other.h"
#include "scene/rotation.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_metadata.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_parametric_surface.h"
#include "scene/scene_node_section_plane.h"
#include "scene/scene_node_sphere.h"
#include "scene/scene_node_tonemapping.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

using namespace Velorn;
using VelornTest::XMLText;

namespace
{

std::string golden(const std::string& name) { return VelornTest::readFile(VelornTest::testDataPath("golden/" + name)); }

// text with each occurrence of from replaced by to; from must occur.
std::string replacedAll(std::string text, const std::string& from, const std::string& to)
{
	EXPECT_NE(text.find(from), std::string::npos) << from;
	for(size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
		text.replace(at, from.size(), to);
	return text;
}

// The node elements of a text read and written again: the root element, or
// each child of a scene root under a new root.
std::string readBack(const std::string& text)
{
	XMLText doc(text);
	SceneParser parser;
	if(std::string(doc.root().Value()) != "scene")
		return parser.parseElement(doc.root(), "")->toXMLString().str();
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	for(const TiXmlElement* child = doc.root().FirstChildElement(); child; child = child->NextSiblingElement())
		root->addChildNode(parser.parseElement(*child, ""));
	return root->toXMLString().str();
}

std::string readBackFailure(const std::string& name)
{
	return VelornTest::failureOf<SceneParserExcep>([&] { readBack(golden(name)); });
}

template <class Node>
Reference<Node> add(SceneNodeRoot& root, Node* node)
{
	root.addChildNode(node);
	return node;
}

// A scene of every kind of node with values other than the defaults of the
// classes and of the reader, bound and ready to write. Its paths are
// absolute, as the reader makes them. The settings keys go in in the order
// in which the reader reads them, which keeps their order in the file.
Reference<SceneNodeRoot> sceneToReadBack(const VelornTest::TempDir& dir)
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	add(*root, new SceneNodeMetaData())->description = "Two  blanks & an ampersand";
	Reference<SceneNodeRenderSettings> settings = add(*root, new SceneNodeRenderSettings());
	settings->setInt("width", 640);
	settings->setBool("metropolis", false);
	settings->setDouble("halt_time", 0.25);
	settings->setSplatFilter(new SplatFilterMNCubic(0.25, 0.75));
	settings->setDownsizeFilter(new DownsizeFilterSharp());
	settings->setRenderRegion(new RenderRegion(1, 2, 3, 4));
	settings->setWhitePoint(0.31273, 0.32902); // six digits, as a file keeps them
	settings->setNumLayers(2);
	settings->setGPUDevice(new GPUDeviceSettings("Card", GPUDeviceSettings::CUDA));

	Reference<SceneNodeCamera> camera = add(*root, new SceneNodeCamera());
	camera->exposure_duration = 0.5;
	camera->autofocus = true;
	camera->obstacle_map_path = dir.file("dust.png");
	camera->aperture_shape = new ApertureGenerated(6, 0.1, 0.5, 0.25);
	camera->keyframes.push_back(KeyFrame{Vec3d(1, 2, 3), 0, Vec3d(0, 1, 0), 0.5});
	camera->camera_type = SceneNodeCamera::Orthographic;
	add(*root, new SceneNodeTonemapping(2, 0.5, 8));
	Reference<SceneNodeBackgroundSettings> background = add(*root, new SceneNodeBackgroundSettings());
	Reference<SunSkyMaterial> sky(new SunSkyMaterial());
	sky->name = "Sky";
	sky->sky_layer = 1;
	background->background_material = sky;

	Reference<SceneNodeMaterial> red = add(*root, new SceneNodeMaterial());
	red->setName("Red");
	Reference<SceneNodeMaterial> blue = add(*root, new SceneNodeMaterial());
	blue->setName("Blue");
	add(*root, new SceneNodeMedium())->setName("Water");

	Reference<SceneNodeMesh> mesh = add(*root, new SceneNodeMesh());
	mesh->setMesh(VelornTest::sampleMesh());
	mesh->subdivide_pixel_threshold = 4; // the default of a new node, not of the reader
	mesh->view_dependent_subdivision = true;
	Reference<SceneNodeModel> model = add(*root, new SceneNodeModel());
	model->setGeometry(mesh);
	model->setMaterials({red, blue});
	model->rotation = new AxisRotation(Vec3d(1, 0, 0), 0.5);
	model->keyframes.push_back(KeyFrame{Vec3d(0, 0, 1), 0, Vec3d(0, 0, 1), 0});
	Reference<IESProfile> profile(new IESProfile());
	profile->path = dir.file("spot.ies");
	profile->material = blue;
	model->setIESProfiles({profile});

	Reference<SceneNodeSphere> sphere = add(*root, new SceneNodeSphere());
	sphere->material = red;
	sphere->radius = 0.25;
	Reference<SceneNodeParametricSurface> surface = add(*root, new SceneNodeParametricSurface());
	surface->shader = "def height(real u, real v) real : u < v";
	Reference<SceneNodeScatter> scatter = add(*root, new SceneNodeScatter());
	scatter->shader = "def density(vec3 pos) real : 0.5";
	scatter->seed = 3000000000u;
	scatter->geometry_uid = surface->uid;
	scatter->material_uids = {blue->uid};
	scatter->target_object_uid = model->uid;
	blue->scatter_uids = {scatter->uid};
	add(*root, new SceneNodeSectionPlane())->object_list = {model->uid};
	root->finalise(dir.file("scene.vls"));
	return root;
}

} // namespace

TEST(SceneRoundTrip, NodeFilesComeBackByteForByte)
{
	for(const char* name : {"camera_default.xml", "camera_generated_in_scene.xml", "camera_image_spherical.xml",
			"render_settings_box.xml", "render_settings_empty.xml", "render_settings_gpu_cuda.xml",
			"render_settings_gpu_opencl.xml", "render_settings_mn_cubic_sharp.xml", "render_settings_radial_gaussian.xml",
			"tonemapping_camera.xml", "tonemapping_linear.xml", "tonemapping_reinhard.xml", "section_plane_default.xml",
			"section_plane_exclude_list.xml", "section_plane_include.xml", "parametric_surface.xml", "model2_unbound.xml",
			"sphere_moving.xml", "sphere_unbound.xml", "scatter_plain.xml", "background_empty.xml", "background_scale.xml",
			"background_sunsky.xml", "geometry_in_scene.xml"})
	{
		SCOPED_TRACE(name);
		VelornTest::expectMatchesGolden(readBack(golden(name)), name);
	}
}

// The default settings come back without gpu, which is not read, and in the
// order in which the reader puts the keys into the map.
TEST(SceneRoundTrip, DefaultSettingsLoseGPUAndTakeTheReadersOrder)
{
	VelornTest::expectMatchesGolden(readBack(golden("render_settings_defaults.xml")), "render_settings_defaults_read_back.xml");
}

// Only "CUDA" names a subsystem; any other text, none too, reads as OpenCL.
TEST(SceneRoundTrip, UnnamedGPUSubsystemComesBackAsOpenCL)
{
	const std::string other = golden("render_settings_gpu_other.xml");
	EXPECT_EQ(readBack(other), replacedAll(other, "<subsystem></subsystem>", "<subsystem>OpenCL</subsystem>"));
}

// Models and scatters write their bound materials; read, they hold only the
// UIDs until binding, so they write an empty list.
TEST(SceneRoundTrip, UnboundMaterialListsComeBackEmpty)
{
	const std::string list = "\t\t<material_uid>3</material_uid>\n\t\t<material_uid>4</material_uid>\n";
	for(const char* name : {"model2_full.xml", "scatter_cdata.xml"})
	{
		SCOPED_TRACE(name);
		const std::string text = golden(name);
		EXPECT_EQ(readBack(text), replacedAll(text, list, ""));
	}
}

TEST(SceneRoundTrip, FilesTheReaderRefuses)
{
	// The writer writes an unknown camera type as empty text, and a key of
	// any name; the reader takes neither. A tone mapping of unknown kind has
	// no kind element.
	EXPECT_EQ(readBackFailure("camera_unknown_type.xml"),
		"Unknown camera type '', should be either 'thin-lens-perspective', 'orthographic' or 'spherical'.  (In element "
		"'camera', around line 1, column 1)");
	EXPECT_EQ(readBackFailure("render_settings_everything.xml"),
		"Found unexpected element 'x'.  (In element 'renderer_settings', around line 1, column 1)");
	EXPECT_EQ(readBackFailure("tonemapping_unknown.xml"),
		"Error parsing tone mapping: Failed to find tonemapping child.  (In element 'tonemapping', around line 1, column 1)");
}

// A camera's white point is handed to the render settings, and autofocus is
// set by the element being there, whatever it holds.
TEST(SceneRoundTrip, CameraElementsThatChange)
{
	const std::string camera = golden("camera_default.xml");
	const std::string shape = "\t<aperture_shape>\n";
	EXPECT_EQ(readBack(replacedAll(camera, shape, "\t<white_balance>D65</white_balance>\n" + shape)), camera);
	EXPECT_EQ(readBack(replacedAll(camera, shape, "\t<autofocus>false</autofocus>\n" + shape)),
		replacedAll(camera, shape, "<autofocus/>\n" + shape));
}

// Where the reader's defaults differ from those of a new node, an element
// that is left out reads as the reader's.
TEST(SceneRoundTrip, ReaderDefaultsThatDifferFromNewNodes)
{
	SceneParser parser;
	XMLText mesh("<mesh><name>Box</name><normal_smoothing>false</normal_smoothing><external><path>b</path></external></mesh>");
	const Reference<SceneNodeMesh> read_mesh = parser.parseElement(mesh.root(), "").downcast<SceneNodeMesh>();
	EXPECT_EQ(read_mesh->subdivide_pixel_threshold, 0.0);
	EXPECT_EQ(SceneNodeMesh().subdivide_pixel_threshold, 4.0);
	EXPECT_FALSE(read_mesh->view_dependent_subdivision);
	EXPECT_TRUE(SceneNodeMesh().view_dependent_subdivision);

	XMLText reinhard("<tonemapping><reinhard><pre_scale>1</pre_scale><post_scale>1</post_scale></reinhard></tonemapping>");
	EXPECT_EQ(static_cast<SceneNodeTonemapping&>(*parser.parseElement(reinhard.root(), "")).burn, 10.0);
	EXPECT_EQ(SceneNodeTonemapping(1, 1, 6).burn, 6.0);
}

// A scene written to a file reads back, binds and writes the same bytes.
// Written under another name, only the directory of its mesh files changes.
TEST(SceneRoundTrip, WholeSceneComesBackByteForByte)
{
	VelornTest::TempDir dir;
	const std::string path = dir.file("scene.vls");
	sceneToReadBack(dir)->writeToFile(path, false, nullptr);
	const std::string written = VelornTest::readFile(path);

	SceneParser parser;
	const Reference<SceneNodeRoot> root = parser.parseFile(path, "");
	root->finalise(path);
	root->writeToFile(path, false, nullptr);
	EXPECT_EQ(VelornTest::readFile(path), written);

	root->writeToFile(dir.file("copy.vls"), false, nullptr);
	EXPECT_EQ(VelornTest::readFile(dir.file("copy.vls")),
		replacedAll(written, dir.file("scene_meshes/"), dir.file("copy_meshes/")));
}

// A file keeps a white point in six digits, so it reads back rounded; a
// scene without background settings gets them.
TEST(SceneRoundTrip, SettingsFileGainsBackgroundAndKeepsRoundedWhitePoint)
{
	VelornTest::TempDir dir;
	SceneParser parser;
	const Reference<SceneNodeRoot> root = parser.parseFile(VelornTest::testDataPath("golden/render_settings_file.xml"), "");
	EXPECT_EQ(static_cast<SceneNodeRenderSettings&>(*root->getRenderSettingsNode()).white_point->x, 0.333333);
	root->writeToFile(dir.file("settings.vls"), false, nullptr);
	EXPECT_EQ(VelornTest::readFile(dir.file("settings.vls")),
		replacedAll(golden("render_settings_file.xml"), "</scene>\n",
			"\n\t<background_settings>\n\t\t<uid>2</uid>\n\t\t<name>Background Settings</name>\n\t</background_settings>\n</scene>\n"));
}
