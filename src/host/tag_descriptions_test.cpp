// What the tags' descriptions hide and enable for their values, and that
// hiding leaves the values stored.

#include "c4d/base_tag.h"
#include "host/camera_tag.h"
#include "host/host_test_helpers.h"
#include "host/light_tag.h"
#include "host/object_tags.h"
#include "host/plugin_ids.h"

#include <vector>

namespace
{

class TagDescriptionTest : public HostPluginTest
{
protected:
	void SetUp() override
	{
		registerPlugins({RegisterCameraTag, RegisterLightTag, RegisterSubdivisionTag, RegisterExitPortalTag,
			RegisterCompositingTag});
	}

	BaseTag* newTag(int32_t type)
	{
		BaseObject* op = addObject(Onull, "holder");
		return op->MakeTag(type);
	}
};

struct VisibilityCase
{
	int32_t type;
	const char* name;
	std::vector<std::pair<int32_t, GeData>> values;
	std::initializer_list<int32_t> shown;
	std::initializer_list<int32_t> hidden;
};

} // namespace

// Each tag shows the entries its values call for; the light tag one
// spectrum of four.
TEST_F(TagDescriptionTest, TagsShowWhatTheirValuesCallFor)
{
	const VisibilityCase cases[] = {
		{ID_CAMERA_TAG, "linear tone mapping", {{ct_tonemap, ct_tonemap_linear}}, {ct_group_scale, ct_tonemap_scale},
			{ct_post_scale, ct_burn, ct_group_camera_response}},
		{ID_CAMERA_TAG, "Reinhard tone mapping", {{ct_tonemap, ct_tonemap_reinhard}}, {ct_post_scale, ct_burn, ct_tonemap_scale},
			{ct_group_camera_response, ct_film_iso}},
		{ID_CAMERA_TAG, "camera tone mapping", {{ct_tonemap, ct_tonemap_camera}}, {ct_group_camera_response, ct_film_iso},
			{ct_group_scale, ct_post_scale, ct_burn}},
		{ID_CAMERA_TAG, "circular aperture", {{ct_aperture, ct_aperture_circular}}, {},
			{ct_group_generated_aperture, ct_group_aperture_image}},
		{ID_CAMERA_TAG, "generated aperture", {{ct_aperture, ct_aperture_generated}}, {ct_group_generated_aperture, ct_num_blades},
			{ct_group_aperture_image}},
		{ID_CAMERA_TAG, "aperture image", {{ct_aperture, ct_aperture_image}}, {ct_group_aperture_image, ct_aperture_image_file},
			{ct_group_generated_aperture}},
		{ID_CAMERA_TAG, "cubic filters", {{ct_splat_filter, ct_filter_mn_cubic}, {ct_downsize_filter, ct_filter_mn_cubic}},
			{ct_splat_blur, ct_splat_ring, ct_downsize_blur, ct_downsize_ring, ct_downsize_radius}, {}},
		{ID_CAMERA_TAG, "other filters", {{ct_splat_filter, ct_filter_radial}, {ct_downsize_filter, ct_filter_gaussian}}, {},
			{ct_splat_blur, ct_splat_ring, ct_downsize_blur, ct_downsize_ring, ct_downsize_radius}},
		{ID_CAMERA_TAG, "region off", {{ct_region, 0}}, {ct_region}, {ct_group_region, ct_region_x1}},
		{ID_CAMERA_TAG, "region on", {{ct_region, 1}}, {ct_group_region, ct_region_x1, ct_region_y2}, {}},

		{ID_LIGHT_TAG, "peak", {{lt_type, lt_type_peak}}, {lt_group_peak, lt_peak_min},
			{lt_group_rgb, lt_group_blackbody, lt_group_uniform}},
		{ID_LIGHT_TAG, "RGB", {{lt_type, lt_type_rgb}}, {lt_group_rgb, lt_rgb_colour},
			{lt_group_peak, lt_group_blackbody, lt_group_uniform}},
		{ID_LIGHT_TAG, "blackbody", {{lt_type, lt_type_black_body}}, {lt_group_blackbody},
			{lt_group_peak, lt_group_rgb, lt_group_uniform}},
		{ID_LIGHT_TAG, "uniform", {{lt_type, lt_type_uniform}}, {lt_group_uniform},
			{lt_group_peak, lt_group_rgb, lt_group_blackbody}},
		{ID_LIGHT_TAG, "switches off", {{lt_ies, 0}, {lt_emission_scale, 0}}, {lt_ies, lt_emission_scale, lt_layer, lt_group_layer},
			{lt_ies_file, lt_emission_measure, lt_emission_value, lt_preview_file}},
		{ID_LIGHT_TAG, "switches on", {{lt_ies, 1}, {lt_emission_scale, 1}}, {lt_ies_file, lt_emission_measure, lt_emission_value},
			{lt_preview_file}},
	};
	for(const VisibilityCase& c : cases)
	{
		SCOPED_TRACE(c.name);
		BaseTag* tag = newTag(c.type);
		for(const auto& [id, value] : c.values)
			tag->SetParameter(DescID(id), value);
		expectVisibility(describe(tag), c.shown, c.hidden);
	}

	// The layer cycle names the ten layers; the realtime edition has none.
	BaseTag* tag = newTag(ID_LIGHT_TAG);
	Description full = describe(tag);
	ASSERT_NE(full.find(DescID(lt_layer)), nullptr);
	const BaseContainer cycle = full.find(DescID(lt_layer))->settings.GetContainer(DESC_CYCLE);
	EXPECT_EQ(cycle.GetString(0), String("Layer 1"));
	EXPECT_EQ(cycle.GetString(9), String("Layer 10"));
	realtime_edition = 1;
	expectVisibility(describe(tag), {lt_type}, {lt_layer, lt_group_layer, lt_preview_file});
}

TEST_F(TagDescriptionTest, HiddenValuesStayStored)
{
	BaseTag* light = newTag(ID_LIGHT_TAG);
	light->SetParameter(DescID(lt_rgb_colour), GeData(Vector(0.5, 0.25, 0.125)));
	light->SetParameter(DescID(lt_ies_file), GeData(Filename("/lamps/a.ies")));
	light->SetParameter(DescID(lt_type), GeData(lt_type_uniform));
	expectVisibility(describe(light), {}, {lt_group_rgb, lt_ies_file});
	EXPECT_EQ(light->GetDataInstance()->GetVector(lt_rgb_colour), Vector(0.5, 0.25, 0.125));
	EXPECT_EQ(light->GetDataInstance()->GetFilename(lt_ies_file).GetString(), String("/lamps/a.ies"));

	BaseTag* camera = newTag(ID_CAMERA_TAG);
	camera->SetParameter(DescID(ct_num_blades), GeData(9));
	camera->SetParameter(DescID(ct_region_x1), GeData(77));
	expectVisibility(describe(camera), {}, {ct_group_generated_aperture, ct_group_region});
	EXPECT_EQ(camera->GetDataInstance()->GetInt32(ct_num_blades), 9);
	EXPECT_EQ(camera->GetDataInstance()->GetInt32(ct_region_x1), 77);
}

TEST_F(TagDescriptionTest, EnablingFollowsTheSwitches)
{
	struct Case
	{
		int32_t type;
		int32_t switch_id;
		int32_t dependent;
		int32_t independent;
	} cases[] = {
		{ID_CAMERA_TAG, ct_obstacle_map, ct_obstacle_map_file, ct_aperture_image_file},
		{ID_SUBDIVISION_TAG, st_smoothing, st_pixel_threshold, st_curvature_threshold},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.type);
		BaseTag* tag = newTag(c.type);
		tag->SetParameter(DescID(c.switch_id), GeData(0));
		EXPECT_FALSE(tag->IsParameterEnabled(DescID(c.dependent)));
		EXPECT_TRUE(tag->IsParameterEnabled(DescID(c.independent)));
		tag->SetParameter(DescID(c.switch_id), GeData(1));
		EXPECT_TRUE(tag->IsParameterEnabled(DescID(c.dependent)));
	}
}

TEST_F(TagDescriptionTest, PlainTagsLoadTheirFiles)
{
	for(int32_t type : {ID_EXIT_PORTAL_TAG, ID_COMPOSITING_TAG, ID_SUBDIVISION_TAG})
	{
		SCOPED_TRACE(type);
		BaseTag* tag = newTag(type);
		Description description;
		ASSERT_TRUE(tag->GetDescription(&description));
		EXPECT_NE(description.find(DescID(type == ID_SUBDIVISION_TAG ? st_max_subdivisions : 1100)), nullptr);
	}
}

TEST_F(TagDescriptionTest, CameraTagKeepsExposureOfEachReadAndLeavesNoScale)
{
	BaseObject* camera = addObject(Ocamera, "camera");
	Matrix ml;
	ml.off = Vector(5, 6, 7);
	ml.v1 = Vector(0, 2, 0);
	ml.v2 = Vector(-3, 0, 0);
	ml.v3 = Vector(0, 0, 4);
	camera->SetMl(ml);
	BaseTag* tag = camera->MakeTag(ID_CAMERA_TAG);
	tag->SetParameter(DescID(ct_exposure_divisor), GeData(250.0));
	tag->SetParameter(DescID(ct_f_number), GeData(2.8));
	GeData value;
	ASSERT_TRUE(tag->GetParameter(DescID(ct_white_point), value));
	const CameraTag* data = static_cast<const CameraTag*>(tag->GetNodeData());
	EXPECT_EQ(data->exposureDivisor(), 250.0);
	EXPECT_EQ(data->fNumber(), 2.8);

	// Freeing the tag leaves the camera with axes of length 1 in their
	// directions and its place.
	BaseTag::Free(tag);
	EXPECT_EQ(camera->GetMl(), Matrix(Vector(5, 6, 7), Vector(0, 1, 0), Vector(-1, 0, 0), Vector(0, 0, 1)));

	// Another object keeps its scale.
	BaseObject* other = addObject(Onull, "other");
	other->SetMl(ml);
	BaseTag* on_other = other->MakeTag(ID_CAMERA_TAG);
	BaseTag::Free(on_other);
	EXPECT_EQ(other->GetMl(), ml);
}
