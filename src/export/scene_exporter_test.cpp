#include "export/export_test_helpers.h"

#include "scene/materials_other.h"
#include "scene/scene_node_background_settings.h"

#include <memory>

using Velorn::Reference;
using Velorn::SceneNodeRoot;
using Velorn::SunSkyMaterial;
using Velorn::UID;

namespace
{

struct FreeDocument
{
	void operator()(BaseDocument* doc) const { BaseDocument::Free(doc); }
};

// Exports a document file of tests/data/export to a scene file in dir, and
// returns the scene's text.
std::string exportFile(const char* name, const VelornTest::TempDir& dir, int32_t frame, int32_t width, int32_t height,
	int32_t is_animation, int32_t verbose)
{
	const std::string path = VelornTest::testDataPath(std::string("data/export/") + name + ".json");
	std::unique_ptr<BaseDocument, FreeDocument> doc(LoadDocumentFile(Filename(path.c_str())));
	ExportSettings settings(doc.get(), Filename(dir.file(std::string(name) + ".vls").c_str()), nullptr, frame, width,
		height, is_animation, 0, verbose, 0);
	SceneExporter exporter(&settings);
	Reference<SceneNodeRoot> root = exporter.exportScene();
	EXPECT_EQ(exporter.scene_file_name, sceneFileName(name, frame, is_animation, ".vls"));
	const std::string file = dir.file("written.vls");
	root->writeToFile(file, false, nullptr);
	return VelornTest::readFile(file);
}

const SunSkyMaterial* sunSky(const Reference<SceneNodeRoot>& root)
{
	return dynamic_cast<const SunSkyMaterial*>(
		nodeOf<Velorn::SceneNodeBackgroundSettings>(root->getBackgroundSettingsNode()).background_material.getPointer());
}

std::vector<std::string> layerNames(const Reference<SceneNodeRoot>& root)
{
	std::vector<std::string> names;
	for(const auto& layer : nodeOf<Velorn::SceneNodeRenderSettings>(root->getRenderSettingsNode()).layer_settings)
		names.push_back(layer->name.str());
	return names;
}

} // namespace

// No video post, no camera tag: the defaults and the fallbacks.
TEST_F(ExportTest, DocumentWithoutVideoPostExportsTheDefaults)
{
	VelornTest::TempDir dir;
	VelornTest::expectMatchesGolden(exportFile("plain", dir, 0, 640, 480, 0, 1), "export/plain.vls");
	const String banner(console_banner);
	EXPECT_EQ(consoleLines(), (std::vector<String>{banner, "Starting export...", "36",
								  "Exporting materials, objects and lights...", "Object export time: 0 s",
								  "Instances exported: 0", "", "Processing time: 0 s",
								  String("Saved scene to: ") + String(dir.path()) + "\\plain.vls", "Saving time: 0 s",
								  banner}));
}

// A camera tag and a video post with every parameter the export reads, a
// switched off video post before it, and sun and sky on their own layers.
TEST_F(ExportTest, RichDocumentExportsTagVideoPostAndSunSky)
{
	gpu_devices = {{String("GeForce Test"), 1}, {String("Radeon Test"), 2}};
	VelornTest::TempDir dir;
	VelornTest::expectMatchesGolden(exportFile("rich", dir, 12, 800, 400, 1, 0), "export/rich.vls");
	EXPECT_EQ(consoleLines(), std::vector<String>{"24"}); // only the sensor width when not verbose
}

// A section plane (pass 0), a sphere that stays analytic and an omni light
// without a tag: one sphere with the default material, one with the light's.
TEST_F(ExportTest, SectionPlaneSphereAndOmniLightScene)
{
	VelornTest::TempDir dir;
	VelornTest::expectMatchesGolden(exportFile("walk", dir, 0, 640, 480, 0, 0), "export/walk.vls");
}

// Without settings or a document there is nothing to export; the run needs
// an object that the walk reaches, and ends when the thread is stopped.
TEST_F(ExportTest, RunExportsWhenTheWalkReachesAnObject)
{
	EXPECT_TRUE(SceneExporter().exportScene().isNull());
	ExportSettings nothing(nullptr, Filename("/scenes/none.vls"), nullptr, 0, 640, 480, 0, 0, 1, 0);
	EXPECT_TRUE(SceneExporter(&nothing).exportScene().isNull());
	EXPECT_TRUE(SceneExporter(&nothing).run(nullptr).isNull());
	EXPECT_TRUE(consoleLines().empty());

	TestDocument d;
	ExportSettings settings = d.settings();
	SceneExporter exporter(&settings);
	BaseThread stopped;
	stopped.End();
	EXPECT_TRUE(exporter.run(&stopped).isNull());
	Reference<SceneNodeRoot> root = exporter.run(nullptr);
	ASSERT_TRUE(root.nonNull());
	EXPECT_EQ(root->getChildren().size(), 7u);
	EXPECT_EQ(settings.null_material, UID(6));
	EXPECT_EQ(settings.default_material, UID(7));

	// With only the editor camera the walk finds no object to start from.
	d.doc->SetActiveCamera(nullptr);
	BaseObject::Free(d.camera);
	ExportSettings editor = d.settings();
	SceneExporter idle(&editor);
	EXPECT_TRUE(idle.run(nullptr).isNull());
	EXPECT_TRUE(idle.exportScene().nonNull());
}

TEST_F(ExportTest, HostLayersAreNamedAfterTheVideoPost)
{
	TestDocument d;
	ExportSettings plain = d.settings();
	plain.layers = {{0, 2}, {3, 1}, {9, 3}, {10, 4}};
	EXPECT_EQ(layerNames(SceneExporter(&plain).exportScene()),
		(std::vector<std::string>{"Layer 0", "Layer 4", "Layer 1", "Layer 10"}));

	BaseContainer& vp = d.videoPost();
	vp.SetString(vp_layer_name_first, String("Key"));
	vp.SetString(vp_layer_name_first + 3, String(""));
	vp.SetString(vp_layer_name_first + 9, String("Rim  light"));
	ExportSettings named = d.settings();
	named.layers = {{0, 2}, {3, 1}, {9, 3}};
	EXPECT_EQ(layerNames(SceneExporter(&named).exportScene()),
		(std::vector<std::string>{"Layer 0", "Layer 4", "Layer 1: Key", "Layer 10: Rim  light"}));
}

TEST_F(ExportTest, SunAndSkyOnOneLayerAndOtherBackgrounds)
{
	TestDocument d;
	BaseContainer& vp = d.videoPost();
	vp.SetInt32(vp_background, vp_background_sun_sky);
	ExportSettings shared = d.settings();
	Reference<SceneNodeRoot> root = SceneExporter(&shared).exportScene();
	const SunSkyMaterial* sky = sunSky(root);
	ASSERT_NE(sky, nullptr);
	EXPECT_EQ(sky->sundir, Velorn::Vec3d(1, 1, 1)); // no sun object
	EXPECT_EQ((std::vector<int>{sky->sun_layer, sky->sky_layer}), (std::vector<int>{0, 0}));
	EXPECT_EQ(sky->model, Velorn::String("original"));
	EXPECT_EQ(layerNames(root), std::vector<std::string>{"Sun/Sky"});
	EXPECT_EQ(shared.layers, (std::map<int32_t, int32_t>{{-1, 0}}));

	for(int32_t kind : {(int32_t)vp_background_environment, 1379})
	{
		SCOPED_TRACE(kind);
		vp.SetInt32(vp_background, kind);
		ExportSettings other = d.settings();
		root = SceneExporter(&other).exportScene();
		EXPECT_TRUE(nodeOf<Velorn::SceneNodeBackgroundSettings>(root->getBackgroundSettingsNode())
						.background_material.isNull());
		EXPECT_TRUE(other.layers.empty());
	}
}

TEST_F(ExportTest, ElapsedTimeTellsSeconds)
{
	EXPECT_EQ(elapsedTimeText(0), String("0 s"));
	EXPECT_EQ(elapsedTimeText(1234.4), String("1.234 s"));
}
