#include "export/export_test_helpers.h"

#include "support/file_utils.h"
#include "support/platform_utils.h"

namespace FileUtils = Velorn::FileUtils;

TEST_F(ExportTest, SettingsNameTheFilesAndMakeTheTexturesDirectory)
{
	VelornTest::TempDir dir;
	TestDocument d;
	ExportSettings own(d.doc, Filename(dir.file("shot.vls").c_str()), nullptr, 3, 640, 480, 1, 0, 0, 0);
	EXPECT_EQ(own.export_dir.GetString(), String(dir.path()));
	EXPECT_EQ(own.base_name, String("shot"));
	EXPECT_EQ(own.textures_dir.GetString(), String(dir.file("textures.shot")));
	EXPECT_TRUE(FileUtils::fileExists(dir.file("textures.shot")));

	std::vector<Filename> temp_files;
	ExportSettings temporary(d.doc, Filename(dir.file("take.vls").c_str()), &temp_files, 3, 640, 480, 1, 0, 0, 0);
	EXPECT_EQ(temporary.textures_dir.GetString(), String(Velorn::PlatformUtils::getTempDirPath()));
	ExportSettings nothing(nullptr, Filename(dir.file("none.vls").c_str()), nullptr, 0, 640, 480, 0, 0, 1, 0);
	EXPECT_EQ(nothing.camera, nullptr);
	EXPECT_FALSE(FileUtils::fileExists(dir.file("textures.take")));
	EXPECT_FALSE(FileUtils::fileExists(dir.file("textures.none")));

	EXPECT_EQ(sceneFileName("shot", 7, 1, ".vls"), String("shot_frame000007.vls"));
	EXPECT_EQ(sceneFileName("shot", 7, 0, ".vls"), String("shot.vls"));
	EXPECT_EQ(sceneFileName("shot", -3, 1, ""), String("shot_frame-00003"));
}

TEST_F(ExportTest, CameraAndExposureComeFromTheViewAndTheCameraTag)
{
	TestDocument d;
	ExportSettings plain = d.settings();
	EXPECT_EQ(plain.camera, d.camera);
	EXPECT_EQ(plain.has_camera_tag, 0);
	EXPECT_EQ(plain.exposure_duration, 0.05f);

	d.tag().SetFloat(ct_exposure_divisor, 250.0);
	ExportSettings tagged = d.settings();
	EXPECT_EQ(tagged.has_camera_tag, 1);
	EXPECT_EQ(tagged.exposure_duration, 0.004f);

	d.doc->SetActiveCamera(nullptr);
	EXPECT_EQ(d.settings().camera, d.doc->GetActiveBaseDraw()->GetEditorCamera());
}

TEST_F(ExportTest, ScaleFollowsTheVideoPostUnitElseTheUnitPreference)
{
	TestDocument d;
	const std::pair<int32_t, float> preference[] = {{1, 1000.0f}, {2, 1.0f}, {3, 0.01f}, {4, 0.001f}};
	for(const auto& [unit, scale] : preference)
	{
		SCOPED_TRACE(unit);
		GetWorldContainerInstance()->SetInt32(WPREF_UNITS, unit);
		EXPECT_EQ(d.settings().scale, scale);
	}
	BaseContainer& vp = d.videoPost();
	vp.SetFloat(vp_custom_scale, 2.5);
	const std::pair<int32_t, float> video_post[] = {
		{1387, 1000.0f}, {1388, 1.0f}, {1389, 0.01f}, {1390, 0.001f}, {1391, 2.5f}, {1400, 1.0f}};
	for(const auto& [unit, scale] : video_post)
	{
		SCOPED_TRACE(unit);
		vp.SetInt32(vp_unit, unit);
		EXPECT_EQ(d.settings().scale, scale);
	}
	vp.RemoveData(vp_unit);
	EXPECT_EQ(d.settings().scale, 0.01f);
}

TEST_F(ExportTest, TheVideoPostIsTheFirstEnabledOneOfTheRenderer)
{
	TestDocument d;
	EXPECT_EQ(findVideoPostContainer(nullptr), nullptr);
	EXPECT_EQ(findVideoPostContainer(d.doc), nullptr);
	registerPlainPlugins(PluginKind::VideoPost, {1020000});
	RenderData* rd = d.doc->GetActiveRenderData();
	BaseVideoPost* off = BaseVideoPost::Alloc(ID_VIDEO_POST);
	off->SetInfo(VIDEOPOST_DISABLED);
	rd->InsertVideoPostLast(BaseVideoPost::Alloc(1020000));
	rd->InsertVideoPostLast(off);
	EXPECT_EQ(findVideoPostContainer(d.doc), nullptr);
	BaseVideoPost* on = BaseVideoPost::Alloc(ID_VIDEO_POST);
	rd->InsertVideoPostLast(on);
	EXPECT_EQ(findVideoPostContainer(d.doc), on->GetDataInstance());
}
