// The realtime preview's dialog run by the host's dialog loop against the
// stand-in renderer's SDK library.
#include "render/in_host_render_test_fixture.h"
#include "render/realtime_preview.h"

#include "c4d/events.h"
#include "host/settings.h"
#include "scene/scene_node_camera.h"

#include <gtest/gtest.h>

#include <algorithm>

#ifdef STANDIN_RENDERER_DIR

namespace
{

using namespace RenderTest;

class RealtimePreview : public InHostRender
{
protected:
	size_t printed(const char* line)
	{
		const std::vector<String> texts = HostConsole::get().texts(HostConsole::Kind::Print);
		return (size_t)std::count(texts.begin(), texts.end(), String(line));
	}
	bool press(PreviewDialog& dialog)
	{
		return dialog.TakeAction(DialogAction::press(RP_TOGGLE)) == String();
	}
};

// The number of pixels of the picture that are neither black nor grey.
int coloured(const BaseBitmap& picture)
{
	int n = 0;
	for(int32_t y = 0; y < picture.GetBh(); ++y)
		for(int32_t x = 0; x < picture.GetBw(); ++x)
		{
			const Rgb p = pixel(picture, x, y);
			n += (p.r + p.g + p.b > 0 && !(p.r == 128 && p.g == 128 && p.b == 128)) ? 1 : 0;
		}
	return n;
}

TEST_F(RealtimePreview, DrawsAboutOnceASecondFollowsTheCameraAndStops)
{
	ASSERT_EQ(load_code, 0) << load_error;
	BaseDocument* doc = document(40, -1);
	PreviewDialog dialog(doc);
	PreviewUserArea& area = dialog.picture();
	int32_t w = 0, h = 0;
	ASSERT_TRUE(area.GetMinSize(w, h));
	EXPECT_EQ(std::make_pair(w, h), std::make_pair(150, 150));
	ASSERT_TRUE(dialog.Open(DLG_TYPE_ASYNC));
	EXPECT_EQ(area.GetWidth(), 150);
	area.resize(40, 24);

	ASSERT_TRUE(press(dialog));
	ASSERT_EQ(area.running, 1);
	EXPECT_EQ(area.GetTimerInterval(), 100);
	EXPECT_EQ(area.root->getRenderSettingsNode().isNull(), false);
	EXPECT_TRUE(Velorn::FileUtils::fileExists(
		(evelornDataDir() + Filename(String("quickrender"))).GetString().GetStdString()));
	// The first picture comes a second after the start, and then about
	// every second.
	RunOpenDialogs(700);
	EXPECT_EQ(printed("drawing image"), 0u);
	RunOpenDialogs(2000);
	EXPECT_GE(printed("drawing image"), 1u);
	EXPECT_LE(printed("drawing image"), 3u);
	EXPECT_EQ(area.bitmap.GetBw(), 40);
	EXPECT_GT(coloured(area.GetCanvas()), 40 * 24 / 2);
	ASSERT_TRUE(area.GetMinSize(w, h));
	EXPECT_EQ(std::make_pair(w, h), std::make_pair(40, 24));

	// A first scan registers the camera and changes nothing.
	Velorn::SceneNode& camera = *area.root->getCameraNode();
	const uint64_t stamp = camera.getChangeStamp();
	EventAdd();
	RunOpenDialogs(20);
	EXPECT_EQ(printed("Scanning scene"), 1u);
	EXPECT_EQ(area.dirty_counts.size(), 1u);
	EXPECT_EQ(camera.getChangeStamp(), stamp);
	EXPECT_FALSE(camera.testFlags(NODE_CHANGED));
	// A scan after the camera changed exports it into the running scene.
	BaseObject* host_camera = doc->GetFirstObject();
	host_camera->SetDirty(DIRTYFLAGS_DATA);
	EventAdd();
	RunOpenDialogs(20);
	EXPECT_EQ(printed("Scanning scene"), 2u);
	EXPECT_GT(camera.getChangeStamp(), stamp);
	EXPECT_TRUE(camera.testFlags(NODE_CHANGED));
	EXPECT_TRUE(area.root->getToneMappingNode()->testFlags(NODE_CHANGED));
	EXPECT_EQ(area.running, 1);

	// A second press stops; the picture stays as it was.
	ASSERT_TRUE(press(dialog));
	EXPECT_EQ(area.running, 0);
	EXPECT_TRUE(area.renderer.isNull());
	EXPECT_TRUE(area.root.isNull());
	EXPECT_TRUE(area.dirty_counts.empty());
	const BaseBitmap* kept = area.GetCanvas().GetClone();
	RunOpenDialogs(300);
	EXPECT_EQ(coloured(*kept), coloured(area.GetCanvas()));
	delete kept;

	// Resizing stops a running preview, and it does not start again.
	ASSERT_TRUE(press(dialog));
	ASSERT_EQ(area.running, 1);
	area.resize(48, 24);
	EXPECT_EQ(area.running, 0);
	EXPECT_TRUE(area.renderer.isNull());
	RunOpenDialogs(200);
	EXPECT_EQ(area.running, 0);

	// Closing the dialog stops it too.
	ASSERT_TRUE(press(dialog));
	ASSERT_EQ(area.running, 1);
	EXPECT_TRUE(dialog.IsOpen());
	dialog.Close();
	EXPECT_EQ(area.running, 0);
}

TEST_F(RealtimePreview, ASceneTheRendererRefusesLeavesItIdle)
{
	ASSERT_EQ(load_code, 0) << load_error;
	PreviewDialog dialog(document(40, -1));
	ASSERT_TRUE(dialog.Open(DLG_TYPE_ASYNC));
	dialog.picture().resize(20000, 8);
	ASSERT_TRUE(press(dialog));
	EXPECT_EQ(printed("Renderer failed to initialise(), error code: 1"), 1u);
	EXPECT_EQ(dialog.picture().running, 0);
	// Without a document there is nothing to preview.
	PreviewDialog empty;
	ASSERT_TRUE(empty.Open(DLG_TYPE_ASYNC));
	ASSERT_TRUE(press(empty));
	EXPECT_EQ(empty.picture().running, 0);
}

} // namespace

#endif
