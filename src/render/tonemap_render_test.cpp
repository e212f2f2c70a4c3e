// The tone mapping dialog on the main thread changing a running in-host
// render of the stand-in renderer: its timer and changes meet the render
// thread and the tone mapper's thread at the shared render state.
#include "render/in_host_render_test_fixture.h"
#include "render/tonemap_dialog.h"

#include "c4d/events.h"
#include "c4d/ge_dialog.h"
#include "scene/scene_node_tonemapping.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#ifdef STANDIN_RENDERER_DIR

namespace
{

using namespace RenderTest;

// What the user types into the dialog: gadget and value.
typedef std::vector<std::pair<int32_t, std::string>> Changes;

class TonemapRender : public InHostRender
{
protected:
	void TearDown() override
	{
		dialog.Close();
		InHostRender::TearDown();
	}

	// Renders doc with the seed fixed while the dialog, open beside it,
	// makes the changes as soon as it has followed the render's start.
	BaseBitmap renderWith(BaseDocument* doc, const Changes& changes)
	{
		fixRenderSeed();
		if(!dialog.IsOpen())
			dialog.Open(DLG_TYPE_ASYNC);
		BaseBitmap bitmap;
		RenderThread thread(doc, &bitmap);
		EXPECT_TRUE(thread.Start(String("Render")));
		// The application's events bring the dialog its messages; its
		// timer does too, every 100 ms.
		Velorn::Reference<Velorn::SceneNodeRoot> root;
		EXPECT_TRUE(waitFor([&] {
			EventAdd();
			RunOpenDialogs(2);
			RenderState& state = renderState();
			std::lock_guard<std::mutex> guard(state.lock);
			root = state.root;
			return root.nonNull() && state.new_render == 0;
		}));
		for(const auto& change : changes)
			EXPECT_EQ(dialog.TakeAction(DialogAction::set(change.first, String(change.second))), String())
				<< change.first;
		while(thread.IsRunning())
			RunOpenDialogs(5);
		thread.Wait();
		EXPECT_EQ(thread.GetResult(), RENDERRESULT_OK);
		EXPECT_EQ(messages(), std::vector<String>{});
		if(root.nonNull())
		{
			// The render took the changes: their marks are gone.
			Velorn::Reference<Velorn::SceneNode> tonemap = root->getToneMappingNode();
			EXPECT_FALSE(tonemap->testFlags(NODE_CHANGED));
			// It has ended and cleared the shared state: a change made now
			// goes nowhere, and raises nothing.
			const double ev = static_cast<Velorn::SceneNodeTonemapping&>(*tonemap).ev_adjust;
			EXPECT_EQ(dialog.TakeAction(DialogAction::set(TM_EV_ADJUST, String("7"))), String());
			EXPECT_EQ(static_cast<Velorn::SceneNodeTonemapping&>(*tonemap).ev_adjust, ev);
			EXPECT_FALSE(tonemap->testFlags(NODE_CHANGED));
		}
		return bitmap;
	}

	// Each channel of b against a times factor, where a lies between 16 and
	// 160 (away from black and from white); the worst difference and how
	// many channels were compared.
	std::pair<double, int> compareScaled(const BaseBitmap& a, const BaseBitmap& b, double factor)
	{
		double worst = 0;
		int compared = 0;
		for(int32_t y = 0; y < a.GetBh(); ++y)
			for(int32_t x = 0; x < a.GetBw(); ++x)
			{
				const Rgb p = pixel(a, x, y), q = pixel(b, x, y);
				const int pa[3] = {p.r, p.g, p.b}, qb[3] = {q.r, q.g, q.b};
				for(int c = 0; c < 3; ++c)
					if(pa[c] >= 16 && pa[c] <= 160)
					{
						worst = std::max(worst, std::fabs(qb[c] - pa[c] * factor));
						++compared;
					}
			}
		return {worst, compared};
	}

	TonemapDialog dialog;
};

TEST_F(TonemapRender, ExposureAndLayerBrightnessScaleThePictureAsTheDisplayCurveSays)
{
	ASSERT_EQ(load_code, 0) << load_error;
	// One more stop of exposure doubles the light before the display curve
	// v^(1/2.2): every byte away from black and white grows by 2^(1/2.2),
	// within the rounding of both pictures.
	const BaseBitmap dark = renderWith(document(40, 12), {{TM_TYPE, "6014"}, {TM_EV_ADJUST, "-3"}});
	const BaseBitmap brighter = renderWith(document(40, 12), {{TM_TYPE, "6014"}, {TM_EV_ADJUST, "-2"}});
	const std::pair<double, int> stop = compareScaled(dark, brighter, std::pow(2.0, 1 / 2.2));
	EXPECT_GT(stop.second, 500);
	EXPECT_LE(stop.first, 1.5);
	EXPECT_NEAR(channelMeans(brighter)[1] / channelMeans(dark)[1], std::pow(2.0, 1 / 2.2), 0.03);

	// With the linear mapping the layer's brightness scales the light the
	// same way: half of it gives 0.5^(1/2.2) of each byte.
	const Changes linear{{TM_TYPE, "6012"}, {TM_LINEAR_SCALE, "0.25"}};
	Changes half = linear;
	half.push_back({TM_LAYER_COLOUR, "1,1,1,0.5"});
	const BaseBitmap full = renderWith(document(40, 12), linear);
	const BaseBitmap halved = renderWith(document(40, 12), half);
	const std::pair<double, int> layer = compareScaled(full, halved, std::pow(0.5, 1 / 2.2));
	EXPECT_GT(layer.second, 500);
	EXPECT_LE(layer.first, 1.5);

	// Unticked, the scene's one layer gives no light at all.
	Changes off = linear;
	off.push_back({TM_LAYER_ENABLED, "off"});
	const BaseBitmap black = renderWith(document(40, 12), off);
	ASSERT_EQ(black.GetBw(), 40);
	const std::array<double, 3> means = channelMeans(black);
	EXPECT_EQ(means[0] + means[1] + means[2], 0.0);
	EXPECT_GT(channelMeans(full)[1], 40);
}

TEST_F(TonemapRender, AWarmerWhitePointMakesThePictureBluerAndACoolerOneRedder)
{
	ASSERT_EQ(load_code, 0) << load_error;
	auto redOverBlue = [&](const char* preset) {
		const BaseBitmap picture =
			renderWith(document(40, 8), {{TM_TYPE, "6014"}, {TM_EV_ADJUST, "-1"}, {TM_WHITE_PRESET, preset}});
		const std::array<double, 3> means = channelMeans(picture);
		EXPECT_GT(means[2], 10) << preset;
		return means[0] / means[2];
	};
	// E is the renderer's own white; A (incandescent) is to look white, so
	// the camera takes red away; the bluish 9300 K takes blue away.
	const double neutral = redOverBlue("6020");
	EXPECT_LT(redOverBlue("6025"), 0.8 * neutral);
	EXPECT_GT(redOverBlue("6028"), 1.05 * neutral);
}

} // namespace

#endif
