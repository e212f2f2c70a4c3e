// Scene node files and whole scenes written, read back and written again:
// the golden files' bytes come back, except where a round trip loses or
// changes something, and each of those is pinned down here.
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

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

using namespace Velorn;
using VelornTest::goldenFile;
using VelornTest::replacedAll;
using VelornTest::XMLText;

namespace
{

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

std::vector<std::string> filesIn(const std::string& dir)
{
	std::vector<std::string> names;
	for(const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(dir))
		names.push_back(entry.path().filename().string());
	std::sort(names.begin(), names.end());
	return names;
}

size_t occurrences(const std::string& text, const std::string& part)
{
	size_t count = 0;
	for(size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
		++count;
	return count;
}

template <class Node>
Reference<Node> add(SceneNodeRoot& root, Node* node)
{
	root.addChildNode(node);
	return node;
}

// A scene of every kind of node with values other than the defaults of the
// classes and of the reader, finalised, valid and ready to write. Its paths
// are absolute, as the reader makes them. The settings keys go in in the
// order in which the reader reads them, which keeps their order in the file.
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
	Reference<SunSkyMaterial> sky(new SunSkyMaterial());
	sky->name = "Sky";
	sky->sky_layer = 1;
	add(*root, new SceneNodeBackgroundSettings())->background_material = sky;

	Reference<SceneNodeMaterial> red = add(*root, new SceneNodeMaterial());
	red->setName("Red");
	Reference<SceneNodeMaterial> blue = add(*root, new SceneNodeMaterial());
	blue->setName("Blue");
	add(*root, new SceneNodeMedium())->setName("Water");

	Reference<SceneNodeMesh> mesh = add(*root, new SceneNodeMesh());
	mesh->setMesh(VelornTest::sampleMesh());
	mesh->subdivide_pixel_threshold = 4; // the default of a new node, not of the reader
	mesh->view_dependent_subdivision = true;
	// Three models over the mesh and one over a second mesh node of the same
	// content, which shares its file.
	Reference<SceneNodeMesh> same_mesh = add(*root, new SceneNodeMesh());
	same_mesh->setMesh(VelornTest::sampleMesh());
	Reference<SceneNodeModel> model;
	for(const Reference<SceneNodeMesh>& geometry : {same_mesh, mesh, mesh, mesh})
	{
		model = add(*root, new SceneNodeModel());
		model->setGeometry(geometry);
		model->setMaterials({red, blue});
		model->rotation = new AxisRotation(Vec3d(1, 0, 0), 0.5);
		model->keyframes.push_back(KeyFrame{Vec3d(0, 0, 1), 0, Vec3d(0, 0, 1), 0});
	}
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
	root->finalise(dir.file("city.scene.vls"));
	EXPECT_NO_THROW(root->validate());
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
		VelornTest::expectMatchesGolden(readBack(goldenFile(name)), name);
	}
}

TEST(SceneRoundTrip, TextsThatComeBackChanged)
{
	const std::string camera = goldenFile("camera_default.xml");
	const std::string shape = "\t<aperture_shape>\n";
	const std::string material_list = "\t\t<material_uid>3</material_uid>\n\t\t<material_uid>4</material_uid>\n";
	const std::string gpu_other = goldenFile("render_settings_gpu_other.xml");
	const struct
	{
		const char* what;
		std::string text, expected;
	} cases[] = {
		// gpu is not read, and the keys take the order in which the reader
		// puts them into the map.
		{"default settings", goldenFile("render_settings_defaults.xml"), goldenFile("render_settings_defaults_read_back.xml")},
		// Only "CUDA" names a subsystem; any other text, none too, is OpenCL.
		{"unnamed GPU subsystem", gpu_other,
			replacedAll(gpu_other, "<subsystem></subsystem>", "<subsystem>OpenCL</subsystem>")},
		// Read, models and scatters hold only the material UIDs until
		// binding, and write their bound materials: none.
		{"model materials", goldenFile("model2_full.xml"), replacedAll(goldenFile("model2_full.xml"), material_list, "")},
		{"scatter materials", goldenFile("scatter_cdata.xml"), replacedAll(goldenFile("scatter_cdata.xml"), material_list, "")},
		// A camera's white point is handed to the render settings.
		{"camera white balance", replacedAll(camera, shape, "\t<white_balance>D65</white_balance>\n" + shape), camera},
		// Autofocus is set by the element being there, whatever it holds.
		{"camera autofocus", replacedAll(camera, shape, "\t<autofocus>false</autofocus>\n" + shape),
			replacedAll(camera, shape, "<autofocus/>\n" + shape)},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.what);
		EXPECT_EQ(readBack(c.text), c.expected);
	}
}

// The writer writes an unknown camera type as empty text, and a key of any
// name; the reader takes neither. A tone mapping of unknown kind has no kind
// element.
TEST(SceneRoundTrip, FilesTheReaderRefuses)
{
	const struct
	{
		const char* golden;
		const char* message;
	} cases[] = {
		{"camera_unknown_type.xml",
			"Unknown camera type '', should be either 'thin-lens-perspective', 'orthographic' or 'spherical'.  (In element "
			"'camera', around line 1, column 1)"},
		{"render_settings_everything.xml",
			"Found unexpected element 'x'.  (In element 'renderer_settings', around line 1, column 1)"},
		{"tonemapping_unknown.xml",
			"Error parsing tone mapping: Failed to find tonemapping child.  (In element 'tonemapping', around line 1, column "
			"1)"},
	};
	for(const auto& c : cases)
		EXPECT_EQ(VelornTest::failureOf<SceneParserExcep>([&] { readBack(goldenFile(c.golden)); }), c.message);
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
}

// A whole scene written twice gives the same bytes; both mesh nodes share
// one file named by its content, in a directory named after the scene file
// less its last extension. It reads back, binds and writes the same bytes
// again; written under another name, only the directory of its mesh files
// changes.
TEST(SceneRoundTrip, WholeSceneWritesTheSameBytesAndComesBack)
{
	VelornTest::TempDir dir;
	const std::string path = dir.file("city.scene.vls");
	const Reference<SceneNodeRoot> scene = sceneToReadBack(dir);
	scene->writeToFile(path, false, nullptr);
	const std::string written = VelornTest::readFile(path);
	scene->writeToFile(path, false, nullptr);
	EXPECT_EQ(VelornTest::readFile(path), written);
	const std::string mesh_name = VelornTest::sampleMeshFileName();
	EXPECT_EQ(filesIn(dir.path()), (std::vector<std::string>{"city.scene.vls", "city.scene_meshes"}));
	EXPECT_EQ(filesIn(dir.file("city.scene_meshes")), std::vector<std::string>{mesh_name});
	EXPECT_EQ(VelornTest::readFile(dir.file("city.scene_meshes/" + mesh_name)), VelornTest::sampleMeshFileBytes());
	EXPECT_EQ(occurrences(written, "<path>" + dir.file("city.scene_meshes/" + mesh_name) + "</path>"), 2u);

	SceneParser parser;
	const Reference<SceneNodeRoot> root = parser.parseFile(path, "");
	root->finalise(path);
	root->writeToFile(path, false, nullptr);
	EXPECT_EQ(VelornTest::readFile(path), written);

	root->writeToFile(dir.file("copy.vls"), false, nullptr);
	EXPECT_EQ(VelornTest::readFile(dir.file("copy.vls")),
		replacedAll(written, dir.file("city.scene_meshes/"), dir.file("copy_meshes/")));
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
		replacedAll(goldenFile("render_settings_file.xml"), "</scene>\n",
			"\n\t<background_settings>\n\t\t<uid>2</uid>\n\t\t<name>Background Settings</name>\n\t</background_settings>\n</scene>\n"));
}
