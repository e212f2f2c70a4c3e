#include "render/video_post.h"

#include "c4d/base_document.h"
#include "c4d/document_file.h"
#include "c4d/plugin_registry.h"
#include "c4d/world_preferences.h"
#include "host/plugin_ids.h"

#include <gtest/gtest.h>

namespace
{

class VideoPostDefaults : public testing::Test
{
protected:
	// The in-host render's tests of this binary may have registered it.
	static void SetUpTestSuite()
	{
		if(!PluginRegistry::get().find(ID_VIDEO_POST))
		{
			ASSERT_TRUE(RegisterVelornVideoPost());
		}
	}
	void TearDown() override
	{
		ResetWorldPreferences();
		FixHostThreadCount(0);
	}
};

} // namespace

TEST_F(VideoPostDefaults, UnitChoiceFollowsTheHostsUnitAndTheThreadCountTheHosts)
{
	FixHostThreadCount(6);
	const struct
	{
		const char* unit;
		int32_t choice;
	} cases[] = {{"km", vp_unit_km}, {"m", vp_unit_m}, {"cm", vp_unit_cm}, {"mm", vp_unit_mm}};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.unit);
		BaseDocument* doc = ReadDocumentText(std::string(R"({"version": 1, "unit": ")") + c.unit +
			R"(", "render": {"videoposts": [{"type": 1020896}]}})", Filename("scene.json"));
		const BaseContainer* data = doc->GetActiveRenderData()->GetFirstVideoPost()->GetDataInstance();
		EXPECT_EQ(data->GetInt32(vp_unit), c.choice);
		EXPECT_EQ(data->GetFloat(vp_custom_scale), 1.0);
		EXPECT_EQ(data->GetInt32(vp_num_threads), 6);
		BaseDocument::Free(doc);
	}
}

TEST_F(VideoPostDefaults, FreshVideoPostHoldsTheRenderDefaults)
{
	BaseVideoPost* post = BaseVideoPost::Alloc(ID_VIDEO_POST);
	ASSERT_NE(post, nullptr);
	const BaseContainer* data = post->GetDataInstance();
	EXPECT_EQ(data->GetInt32(vp_render_mode), vp_render_mode_bidirectional);
	EXPECT_EQ(data->GetInt32(vp_bih_threshold), 800);
	EXPECT_EQ(data->GetFloat(vp_halt_time), -1.0);
	EXPECT_TRUE(data->GetBool(vp_auto_threads));
	EXPECT_TRUE(data->GetBool(vp_vignetting));
	EXPECT_EQ(data->GetInt32(vp_gpu_device), -1);
	EXPECT_EQ(data->GetVector(vp_ambient), Vector(0.71, 0.62, 0.53));
	EXPECT_EQ(data->GetString(vp_layer_name_first), String("Layer 1"));
	EXPECT_EQ(data->GetString(vp_layer_name_first + 9), String("Layer 10"));
	// Periods are reals that the export reads as whole seconds.
	EXPECT_EQ(data->GetInt32(vp_display_period), 1800);
	BaseVideoPost::Free(post);
}
