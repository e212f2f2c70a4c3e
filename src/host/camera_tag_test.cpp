#include "host/camera_tag.h"

#include "c4d/base_object.h"
#include "c4d/plugin_registry.h"
#include "c4d/resources.h"
#include "host/plugin_ids.h"

#include <gtest/gtest.h>

namespace
{

class CameraTagTest : public testing::Test
{
protected:
	void SetUp() override { PluginRegistry::get().clear(); }
	void TearDown() override
	{
		PluginRegistry::get().clear();
		HostResources::get().clear();
	}
};

} // namespace

TEST_F(CameraTagTest, RegistersUnderItsResourceNameOrIsSkipped)
{
	// Without the name in the resource the tag is skipped, and that is no failure.
	EXPECT_TRUE(RegisterCameraTag());
	EXPECT_EQ(PluginRegistry::get().find(ID_CAMERA_TAG), nullptr);
	EXPECT_EQ(BaseTag::Alloc(ID_CAMERA_TAG), nullptr);

	StringTable strings;
	strings.set(10009, String("Velorn Camera"));
	HostResources::get().setStrings(strings);
	EXPECT_TRUE(RegisterCameraTag());
	const PluginRecord* record = PluginRegistry::get().find(ID_CAMERA_TAG);
	ASSERT_NE(record, nullptr);
	EXPECT_EQ(record->name, String("Velorn Camera"));
	EXPECT_EQ(record->description, String("TCameraTag"));
	EXPECT_EQ(record->info, 1);
	EXPECT_EQ(record->icon.GetFile().GetString(), String("CameraTag.tif"));
}

TEST_F(CameraTagTest, NewTagHoldsTheCameraDefaults)
{
	StringTable strings;
	strings.set(10009, String("Velorn Camera"));
	HostResources::get().setStrings(strings);
	ASSERT_TRUE(RegisterCameraTag());
	BaseTag* tag = BaseTag::Alloc(ID_CAMERA_TAG);
	ASSERT_NE(tag, nullptr);
	const BaseContainer* data = tag->GetDataInstance();
	EXPECT_EQ(data->GetInt32(ct_white_point), 1908);
	EXPECT_TRUE(data->GetBool(ct_autofocus));
	EXPECT_EQ(data->GetFloat(ct_exposure_divisor), 500.0);
	EXPECT_EQ(data->GetFloat(ct_f_number), 16.0);
	EXPECT_EQ(data->GetInt32(ct_tonemap), ct_tonemap_reinhard);
	EXPECT_EQ(data->GetInt32(ct_splat_filter), 1975);
	EXPECT_EQ(data->GetInt32(ct_downsize_filter), ct_filter_mn_cubic);
	EXPECT_EQ(data->GetFloat(ct_downsize_radius), 1.7);
	EXPECT_EQ(data->GetInt32(ct_region_x2), 150);
	EXPECT_EQ(data->GetInt32(ct_response_function), 1);
	BaseTag::Free(tag);
}
