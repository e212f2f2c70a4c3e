#include "export/export_test_helpers.h"
#include "export/render_settings_export.h"

using Velorn::Reference;
using Velorn::SceneNodeRenderSettings;

// A document without video post, and one with every parameter set, are the
// golden scenes of scene_exporter_test.cpp; here are the tables and rules.

namespace
{

Reference<SceneNodeRenderSettings> exportWith(ExportSettings& settings)
{
	Reference<SceneNodeRenderSettings> node = SceneNodeRenderSettings::getDefaults();
	EXPECT_TRUE(exportRenderSettings(*node, settings));
	return node;
}

Reference<SceneNodeRenderSettings> exportWith(TestDocument& d)
{
	ExportSettings settings = d.settings();
	return exportWith(settings);
}

} // namespace

TEST_F(ExportTest, RenderModeSetsFiveSwitches)
{
	TestDocument d;
	const struct
	{
		int32_t mode;
		bool metropolis, bidirectional, material_id, shadow, depth;
	} modes[] = {
		{1335, false, false, false, false, false},
		{1336, false, true, false, false, false},
		{1337, true, false, false, false, false},
		{1338, true, true, false, false, false},
		{1432, false, false, true, false, false},
		{1438, false, false, false, true, false},
		{1439, false, false, false, false, true},
		{4711, false, false, false, false, false},
	};
	for(const auto& t : modes)
	{
		SCOPED_TRACE(t.mode);
		d.videoPost().SetInt32(vp_render_mode, t.mode);
		Reference<SceneNodeRenderSettings> node = exportWith(d);
		EXPECT_EQ((std::vector<bool>{node->getBool("metropolis"), node->getBool("bidirectional"),
					  node->getBool("material_id_tracer"), node->getBool("shadow_pass"), node->getBool("depth_pass")}),
			(std::vector<bool>{t.metropolis, t.bidirectional, t.material_id, t.shadow, t.depth}));
	}
}

TEST_F(ExportTest, ThreadCountOnlyWithoutAutomaticThreads)
{
	TestDocument d;
	BaseContainer& vp = d.videoPost();
	vp.SetInt32(vp_num_threads, 6);
	const struct
	{
		int32_t auto_threads;
		bool chosen_automatically;
		int32_t num_threads;
	} cases[] = {{1, true, 1}, {0, false, 6}, {2, false, 6}}; // 1: the default count stays
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.auto_threads);
		vp.SetInt32(vp_auto_threads, t.auto_threads);
		Reference<SceneNodeRenderSettings> node = exportWith(d);
		EXPECT_EQ(node->getBool("auto_choose_num_threads"), t.chosen_automatically);
		EXPECT_EQ(node->getInt("num_threads"), t.num_threads);
	}
	vp.SetFloat(vp_display_period, 1800.7);
	ExportSettings settings = d.settings();
	Reference<SceneNodeRenderSettings> node = exportWith(settings);
	EXPECT_EQ(node->getDouble("display_period"), 1800.0); // read as an integer
	EXPECT_TRUE(node->getBool("vignetting"));             // missing reads as on
	EXPECT_EQ(settings.ambient, (std::array<float, 3>{0.71f, 0.62f, 0.53f}));
}

TEST_F(ExportTest, GPUDeviceIsChosenByTheBooleanOfTheDeviceNumber)
{
	TestDocument d;
	BaseContainer& vp = d.videoPost();
	gpu_devices = {{String("First"), 1}, {String("Second"), 2}, {String("Third"), 1}};
	const struct
	{
		int32_t device;
		const char* chosen;
	} cases[] = {{0, "First"}, {1, "Second"}, {2, "Second"}, {-1, "Second"}};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.device);
		vp.SetInt32(vp_gpu_device, t.device);
		Reference<SceneNodeRenderSettings> node = exportWith(d);
		ASSERT_TRUE(node->gpu_device.nonNull());
		EXPECT_EQ(node->gpu_device->device_name, Velorn::String(t.chosen));
		EXPECT_FALSE(node->getBool("gpu"));
	}
	gpu_devices.resize(1);
	EXPECT_TRUE(exportWith(d)->gpu_device.isNull());
}
