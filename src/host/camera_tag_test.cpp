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

TEST_F(CameraTagTest, RegistersUnderItsResourceNameOrIsSkippedAndHoldsItsDefaults)
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

	// The defaults that the export of a new tag does not show (the others
	// are held by export_tests): the region's right edge and the response
	// function.
	BaseTag* tag = BaseTag::Alloc(ID_CAMERA_TAG);
	ASSERT_NE(tag, nullptr);
	EXPECT_EQ(tag->GetDataInstance()->GetInt32(ct_region_x2), 150);
	EXPECT_EQ(tag->GetDataInstance()->GetInt32(ct_response_function), 1);
	BaseTag::Free(tag);
}
