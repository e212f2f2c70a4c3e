#include "c4d/preview_scenes.h"

#include "c4d/host_startup.h"
#include "c4d/menus.h"

#include "support/test_files.h"

#include <gtest/gtest.h>

TEST(PreviewScenes, ScenesAreLoadedPerPlugInAndFreedWhenCleared)
{
	PreviewScenes::get().clear();
	VelornTest::TempDir dir;
	const Filename studio = String(dir.file("studio.json"));
	VelornTest::writeFile(dir.file("studio.json"), R"({"version": 1, "objects": [{"type": 5140, "name": "Floor"}]})");
	VelornTest::writeFile(dir.file("broken.json"), R"({"version": 1, "objects": [)");

	String name = "Studio";
	EXPECT_TRUE(AddUserPreviewScene(studio, 1024337, nullptr));
	EXPECT_TRUE(AddUserPreviewScene(studio, 1024337, &name));
	EXPECT_TRUE(AddUserPreviewScene(studio, 1024768, nullptr));
	EXPECT_FALSE(AddUserPreviewScene(String(dir.file("broken.json")), 1024337, nullptr));
	EXPECT_FALSE(AddUserPreviewScene(String(dir.file("missing.json")), 1024337, nullptr));

	const std::vector<PreviewScene> scenes = PreviewScenes::get().of(1024337);
	ASSERT_EQ(scenes.size(), 2u);
	EXPECT_EQ(scenes[0].name, String("studio.json"));
	EXPECT_EQ(scenes[1].name, String("Studio"));
	for(const PreviewScene& scene : scenes)
	{
		EXPECT_EQ(scene.file, studio);
		ASSERT_NE(scene.document, nullptr);
		ASSERT_NE(scene.document->GetFirstObject(), nullptr);
		EXPECT_EQ(scene.document->GetFirstObject()->GetName(), String("Floor"));
	}
	// Each registration has a document of its own.
	EXPECT_NE(scenes[0].document, scenes[1].document);
	EXPECT_EQ(PreviewScenes::get().of(1024768).size(), 1u);
	EXPECT_TRUE(PreviewScenes::get().of(1).empty());

	PreviewScenes::get().clear();
	EXPECT_TRUE(PreviewScenes::get().of(1024337).empty());
	EXPECT_TRUE(PreviewScenes::get().of(1024768).empty());
}

TEST(HostStartup, ResetPutsVersionTypeMenusAndPreviewScenesBack)
{
	ResetStartupServices();
	const int32_t start_type = GeGetVersionType();
	EXPECT_EQ(start_type & 1, 1);
	const BaseContainer start_viewer = *GetMenuResource("M_PICTURE_VIEWER");

	SetVersionType(6);
	EXPECT_EQ(GeGetVersionType(), 6);
	GetMenuResource("M_PICTURE_VIEWER")->InsData(MENURESOURCE_COMMAND, "PLUGIN_CMD_1");
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("scene.json"), R"({"version": 1})");
	ASSERT_TRUE(AddUserPreviewScene(String(dir.file("scene.json")), 1024337, nullptr));

	ResetStartupServices();
	EXPECT_EQ(GeGetVersionType(), start_type);
	EXPECT_EQ(*GetMenuResource("M_PICTURE_VIEWER"), start_viewer);
	EXPECT_TRUE(PreviewScenes::get().of(1024337).empty());
}
