// The old forms that files still hold: the compact light and portal
// elements, the old model, camera placement and backgrounds.
#include "mesh/mesh_file.h"
#include "reader/scene_parser_test_helpers.h"
#include "scene/geometry_test_helpers.h"
#include "scene/materials_other.h"
#include "scene/rotation.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_model.h"
#include "support/file_utils.h"

#include <gtest/gtest.h>

using namespace Velorn;
using VelornTest::classAndFailureOf;
using VelornTest::parseNode;
using VelornTest::parseScene;
using VelornTest::place;
using VelornTest::TempDir;

namespace
{

const char* const external_box =
	"<mesh><name>Box</name><normal_smoothing>false</normal_smoothing><external><path>box.vlmesh</path></external></mesh>\n";

template <class T>
T& child(const Reference<SceneNodeRoot>& root, size_t index)
{
	return dynamic_cast<T&>(*root->getChildren()[index]);
}

// The value of a constant channel of a uniform spectrum.
double uniformValue(const Reference<WavelengthDependentParam>& param)
{
	return dynamic_cast<UniformSpectrum&>(*dynamic_cast<ConstantWavelengthDependentParam&>(*param).spectrum).value;
}

DiffuseMaterial& diffuseOf(const SceneNodeMaterial& node) { return dynamic_cast<DiffuseMaterial&>(*node.material); }

void expectKeyFrameAt(const SceneNodeModel& model, const Vec3d& pos)
{
	ASSERT_EQ(model.keyframes.size(), 1u);
	EXPECT_EQ(model.keyframes[0], (KeyFrame{pos, 0, Vec3d(0, 0, 1), 0}));
}

} // namespace

TEST(SceneParserOldForms, ExitPortal)
{
	TempDir dir;
	const Reference<SceneNodeRoot> root = parseScene(dir, std::string(external_box) +
		"<exit_portal><mesh_name>Box</mesh_name><pos>1 2 3</pos><scale>2</scale>"
		"<rotation><axis_rotation><axis>0 0 1</axis><angle>0.5</angle></axis_rotation></rotation></exit_portal>\n");
	const SceneNodeMaterial& material = child<SceneNodeMaterial>(root, 1);
	EXPECT_EQ(material.getName(), String("Exit Portal Material"));
	EXPECT_EQ(material.material->getType(), MaterialType::ExitPortal);
	const SceneNodeModel& model = child<SceneNodeModel>(root, 2);
	EXPECT_EQ(model.getName(), String("Exit Portal Object"));
	expectKeyFrameAt(model, Vec3d(1, 2, 3));
	EXPECT_EQ(model.scale, 2.0);
	EXPECT_EQ(dynamic_cast<AxisRotation&>(*model.rotation).angle, 0.5);
	EXPECT_EQ(model.geometry, root->getChildren()[0]);
	// The mesh is not loaded while the file is read: one slot.
	ASSERT_EQ(model.materials.size(), 1u);
	EXPECT_EQ(model.materials[0].getPointer(), &material);

	EXPECT_EQ(classAndFailureOf([&] { parseScene(dir, "<exit_portal><mesh_name>Door</mesh_name></exit_portal>\n"); }),
		"SceneParserExcep: Model tried to use undefined mesh 'Door'" + place("exit_portal", 2, 1));

	// Once an old model has loaded the mesh, every slot it refers to.
	writeMeshToFile(dir.file("box.vlmesh"), *VelornTest::sampleMesh());
	const Reference<SceneNodeRoot> loaded = parseScene(dir, "<material><name>Red</name><diffuse></diffuse></material>\n"
		"<material><name>Blue</name><diffuse></diffuse></material>\n" + std::string(external_box) +
		"<model><mesh_name>Box</mesh_name><pos>0 0 0</pos></model>\n"
		"<exit_portal><mesh_name>Box</mesh_name><pos>0 0 0</pos></exit_portal>\n");
	const SceneNodeModel& portal = child<SceneNodeModel>(loaded, 5);
	ASSERT_EQ(portal.materials.size(), 2u);
	EXPECT_EQ(portal.materials[1], loaded->getChildren()[4]);
}

TEST(SceneParserOldForms, RectangleLights)
{
	TempDir dir;
	const std::string light = "<rectanglelight><pos>1 2 3</pos><width>4</width><height>2</height><layer>3</layer>"
							  "<spectrum><uniform><value>5</value></uniform></spectrum>"
							  "<efficacy_scale><overall_luminous_efficacy>80</overall_luminous_efficacy>"
							  "<power_drawn>60</power_drawn></efficacy_scale></rectanglelight>\n";
	const Reference<SceneNodeRoot> root = parseScene(dir, light + light);
	const char* const names[] = {"Rectangle Light Material 0", "Rectangle Light Mesh 0", "Rectangle Light Object 0",
		"Rectangle Light Material 1", "Rectangle Light Mesh 1", "Rectangle Light Object 1"};
	for(size_t i = 0; i < 6; ++i)
		EXPECT_EQ(root->getChildren()[i]->getName(), String(names[i]));

	const SceneNodeMaterial& material = child<SceneNodeMaterial>(root, 0);
	EXPECT_EQ(uniformValue(diffuseOf(material).emission), 5.0);
	EXPECT_EQ(diffuseOf(material).layer, 3u);

	// A quad about pos in its z plane, facing down.
	const Mesh& mesh = *child<SceneNodeMesh>(root, 1).mesh;
	EXPECT_EQ(mesh.used_materials, (Vector<String>{"default"}));
	EXPECT_EQ(mesh.verts, (Vector<Vec3f>{{-1, 1, 3}, {-1, 3, 3}, {3, 3, 3}, {3, 1, 3}}));
	ASSERT_EQ(mesh.quads.size(), 1u);
	const uint32_t* corners = mesh.quads[0].vertex_indices;
	EXPECT_EQ(std::vector<uint32_t>(corners, corners + 4), (std::vector<uint32_t>{0, 3, 2, 1}));
	EXPECT_EQ(mesh.num_materials_referenced, 1u);

	const SceneNodeModel& model = child<SceneNodeModel>(root, 2);
	expectKeyFrameAt(model, Vec3d(0, 0, 0));
	EXPECT_EQ(model.geometry, root->getChildren()[1]);
	ASSERT_EQ(model.emission_scales.size(), 1u);
	EXPECT_EQ(model.emission_scales[0]->measure, EmissionScale::LuminousFlux);
	EXPECT_EQ(model.emission_scales[0]->value, 4800.0);
	EXPECT_EQ(model.emission_scales[0]->material.getPointer(), &material);
}

TEST(SceneParserOldForms, MeshLights)
{
	TempDir dir;
	EXPECT_EQ(classAndFailureOf([&] {
		parseScene(dir, std::string(external_box) +
							"<meshlight><mesh_name>Box</mesh_name><pos>0 0 0</pos><spectrum><uniform><value>1</value></uniform>"
							"</spectrum></meshlight>\n");
	}),
		"SceneParserExcep: Invalid mesh when parsing meshlight." + place("meshlight", 3, 1));

	// A mesh that is there while the file is read: a rectangle light's.
	const Reference<SceneNodeRoot> root = parseScene(dir,
		"<rectanglelight><pos>0 0 0</pos><width>1</width><height>1</height><spectrum><uniform><value>1</value>"
		"</uniform></spectrum></rectanglelight>\n"
		"<meshlight><mesh_name>Rectangle Light Mesh 0</mesh_name><pos>0 0 4</pos><scale>3</scale>"
		"<spectrum><uniform><value>7</value></uniform></spectrum><texture><path>lamp.png</path></texture>"
		"<ies_profile><path>ies/spot.ies</path></ies_profile>"
		"<efficacy_scale><overall_luminous_efficacy>10</overall_luminous_efficacy><power_drawn>2.5</power_drawn>"
		"</efficacy_scale></meshlight>\n");
	const SceneNodeMaterial& material = child<SceneNodeMaterial>(root, 3);
	EXPECT_EQ(material.getName(), String("Mesh Light Material"));
	const DiffuseMaterial& light = diffuseOf(material);
	EXPECT_EQ(uniformValue(light.base_emission), 7.0);
	EXPECT_EQ(dynamic_cast<TextureWavelengthDependentParam&>(*light.emission).texture_index, 0);
	ASSERT_EQ(light.textures.size(), 1u);
	EXPECT_EQ(light.textures[0].path, String(dir.file("lamp.png")));

	const SceneNodeModel& model = child<SceneNodeModel>(root, 4);
	EXPECT_EQ(model.getName(), String("Mesh Light Object"));
	expectKeyFrameAt(model, Vec3d(0, 0, 4));
	EXPECT_EQ(model.scale, 3.0);
	EXPECT_EQ(model.geometry, root->getChildren()[1]);
	ASSERT_EQ(model.materials.size(), 1u);
	EXPECT_EQ(model.materials[0].getPointer(), &material);
	ASSERT_EQ(model.ies_profiles.size(), 1u);
	EXPECT_EQ(model.ies_profiles[0]->path, String(Velorn::FileUtils::join(dir.path(), "ies/spot.ies")));
	EXPECT_EQ(model.ies_profiles[0]->material.getPointer(), &material);
	ASSERT_EQ(model.emission_scales.size(), 1u);
	EXPECT_EQ(model.emission_scales[0]->value, 25.0);
}

// The old model names no materials: it takes those of the names that the
// mesh uses, in the mesh's order, so it loads the mesh to learn them.
TEST(SceneParserOldForms, ModelTakesMaterialsByTheMeshsNames)
{
	TempDir dir;
	writeMeshToFile(dir.file("box.vlmesh"), *VelornTest::sampleMesh());
	const std::string materials = "<material><name>Blue</name><diffuse></diffuse></material>\n"
								  "<material><name>Red</name><diffuse></diffuse></material>\n";
	const std::string model = "<model><mesh_name>Box</mesh_name><pos>1 1 1</pos><invisible_to_camera>true</invisible_to_camera></model>\n";
	const Reference<SceneNodeRoot> root = parseScene(dir, materials + external_box + model);
	const SceneNodeModel& read = child<SceneNodeModel>(root, 3);
	EXPECT_EQ(read.getName(), String("Box instance"));
	expectKeyFrameAt(read, Vec3d(1, 1, 1));
	EXPECT_TRUE(read.invisible_to_camera);
	EXPECT_EQ(read.geometry, root->getChildren()[2]);
	ASSERT_EQ(read.materials.size(), 2u);
	EXPECT_EQ(read.materials[0], root->getChildren()[1]);
	EXPECT_EQ(read.materials[1], root->getChildren()[0]);

	EXPECT_EQ(classAndFailureOf([&] { parseScene(dir, "<material><name>Red</name><diffuse></diffuse></material>\n" +
											   std::string(external_box) + model); }),
		"SceneParserExcep: Error while binding material 'Blue' to geometry 'Box': Material 'Blue' is not defined. " +
			place("model", 4, 1));
}

TEST(SceneParserOldForms, CameraPlacedByPosUpForwards)
{
	const Reference<SceneNode> node = parseNode("<camera><pos>1 2 3</pos><up>0 1 0</up><forwards>1 0 0</forwards>"
												"<aperture_radius>0.001</aperture_radius><focus_distance>2</focus_distance>"
												"<sensor_width>0.036</sensor_width><lens_sensor_dist>0.05</lens_sensor_dist></camera>");
	const SceneNodeCamera& camera = static_cast<SceneNodeCamera&>(*node);
	ASSERT_EQ(camera.keyframes.size(), 1u);
	EXPECT_EQ(camera.keyframes[0], (KeyFrame{Vec3d(1, 2, 3), 0, Vec3d(0, 0, 1), 0}));
	EXPECT_EQ(camera.up, Vec3d(0, 1, 0));
	EXPECT_EQ(camera.forwards, Vec3d(1, 0, 0));
	// Defaults of the reader that differ from those of a new camera.
	EXPECT_EQ(camera.exposure_duration, 1.0 / 30);
}

// Its expected paths are written with the POSIX separator.
#ifndef _WIN32
TEST(SceneParserOldForms, BackgroundsWithPosixSeparators)
{
	const Reference<SceneNode> sky = parseNode("<skylight><sundir>0 0.6 0.8</sundir><turbidity>3</turbidity>"
											   "<sun_layer>2</sun_layer><enable_sky>false</enable_sky></skylight>");
	EXPECT_EQ(sky->getName(), String("Background Settings"));
	const SunSkyMaterial& sunsky = dynamic_cast<SunSkyMaterial&>(*static_cast<SceneNodeBackgroundSettings&>(*sky).background_material);
	EXPECT_EQ(sunsky.sundir, Vec3d(0, 0.6, 0.8));
	EXPECT_EQ(sunsky.turbidity, 3.0);
	EXPECT_EQ(sunsky.sun_layer, 2);
	EXPECT_EQ(sunsky.sky_layer, 0);
	EXPECT_FALSE(sunsky.extra_atmospheric);
	EXPECT_EQ(sunsky.model, String("original"));
	EXPECT_TRUE(sunsky.enable_sky); // allowed, not read

	const Reference<SceneNode> plain = parseNode("<background><spectrum><uniform><value>0.5</value></uniform></spectrum></background>");
	const Material& emitter = *static_cast<SceneNodeBackgroundSettings&>(*plain).background_material;
	EXPECT_EQ(uniformValue(dynamic_cast<const DiffuseMaterial&>(emitter).emission), 0.5);

	const struct
	{
		const char* xml;
		unsigned generator;
	} maps[] = {
		{"<env_map><latlong><gain>2</gain><path>sky.exr</path></latlong></env_map>", 2},
		{"<env_map><spherical><gain>2</gain><path>sky.exr</path><width>1</width></spherical></env_map>", 1},
	};
	for(const auto& map : maps)
	{
		const Reference<SceneNode> node = parseNode(map.xml, "maps");
		const DiffuseMaterial& material =
			dynamic_cast<DiffuseMaterial&>(*static_cast<SceneNodeBackgroundSettings&>(*node).background_material);
		ASSERT_EQ(material.textures.size(), 1u);
		EXPECT_EQ(material.textures[0].path, String("maps/sky.exr"));
		EXPECT_EQ(material.textures[0].b, 2.0);
		EXPECT_EQ(material.textures[0].tex_coord_generation->getType(), map.generator);
		EXPECT_EQ(dynamic_cast<TextureWavelengthDependentParam&>(*material.emission).texture_index, 0);
	}
}
#endif
