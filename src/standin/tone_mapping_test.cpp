#include "standin/tone_mapping.h"

#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_tonemapping.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

namespace Velorn
{
namespace Standin
{
namespace
{

Image uniformImage(float r, float g, float b, uint32_t w = 3, uint32_t h = 2)
{
	Image image(w, h);
	for(uint32_t y = 0; y < h; ++y)
		for(uint32_t x = 0; x < w; ++x)
		{
			float* p = image.getPixel(x, y);
			p[0] = r;
			p[1] = g;
			p[2] = b;
		}
	return image;
}

TEST(ToneMapping, EachKindGivesTheBytesWorkedOutByHand)
{
	// Display bytes are round(255 * v^(1 / 2.2)).
	Reference<SceneNodeTonemapping> linear = new SceneNodeTonemapping(2.0);
	Reference<SceneNodeTonemapping> reinhard = new SceneNodeTonemapping(4.0, 1.0, 6.0);
	Reference<SceneNodeTonemapping> camera = new SceneNodeTonemapping(String("film.txt"), 0.0, 200.0);
	Reference<SceneNodeTonemapping> camera_up = new SceneNodeTonemapping(String("film.txt"), 1.0, 200.0);
	const struct
	{
		const char* name;
		const SceneNode* node;
		float value;
		int expected;
	} cases[] = {
		// 0.25 * 2 = 0.5: 255 * 0.7297 = 186.1
		{"linear", linear.getPointer(), 0.25f, 186},
		// clipped at 1
		{"linear, over white", linear.getPointer(), 3.0f, 255},
		// no node: scale 1
		{"no node", nullptr, 0.5f, 186},
		// L = 4 * 0.18 / 0.5 * 0.5 = 0.72; 0.72 (1 + 0.72 / 36) / 1.72 = 0.42698 -> 173.2
		{"reinhard", reinhard.getPointer(), 0.5f, 173},
		// the mean becomes 0.18 whatever the level: 0.18^(1 / 2.2) = 0.45868 -> 117.0
		{"camera", camera.getPointer(), 0.5f, 117},
		{"camera, brighter scene", camera.getPointer(), 50.0f, 117},
		// one stop more: 0.36 -> 0.62855 -> 160.3
		{"camera, +1 EV", camera_up.getPointer(), 0.5f, 160},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		const ToneMapSettings settings = ToneMapSettings::fromNodes(c.node, nullptr, 2.2);
		Bitmap out(1, 1, 4);
		toneMap(uniformImage(c.value, c.value, c.value), settings, out);
		ASSERT_EQ(out.getWidth(), 3u);
		ASSERT_EQ(out.getBytesPP(), 4u);
		const uint8_t* p = out.getPixel(2, 1);
		EXPECT_EQ(std::vector<int>(p, p + 4), (std::vector<int>{c.expected, c.expected, c.expected, 255}));
	}

	// One highlight of 1e6 among five pixels of 0.5: the key is
	// exp((5 ln(0.5001) + ln(1e6)) / 6) = 5.6132, so 0.5 becomes 0.016034 and
	// 0.15279 on the display, 39.0; the highlight clips.
	Image highlight = uniformImage(0.5f, 0.5f, 0.5f);
	std::fill(highlight.getPixel(0, 0), highlight.getPixel(0, 0) + 3, 1e6f);
	Bitmap out(1, 1, 3);
	toneMap(highlight, ToneMapSettings::fromNodes(camera.getPointer(), nullptr, 2.2), out);
	EXPECT_EQ(out.getPixel(2, 1)[0], 39);
	EXPECT_EQ(out.getPixel(0, 0)[0], 255);
}

TEST(ToneMapping, CameraWhiteBalanceMakesTheWhitePointNeutral)
{
	// In linear sRGB the equal-energy white E (XYZ 1 1 1) is
	// (1.2048, 0.9484, 0.9087) and D65 is (1, 1, 1). Light of D65 in the
	// renderer's RGB (whose white is E) is therefore (1 / 1.2048,
	// 1 / 0.9484, 1 / 0.9087): balanced for D65 it must come out grey, and
	// balanced for E it must keep its tint.
	Reference<SceneNodeTonemapping> camera = new SceneNodeTonemapping(String("film.txt"), 0.0, 200.0);
	Reference<SceneNodeRenderSettings> settings = new SceneNodeRenderSettings();
	const Image d65_light = uniformImage(1 / 1.2048f, 1 / 0.9484f, 1 / 0.9087f);

	settings->setWhitePoint(0.31273, 0.32902);
	Bitmap balanced(1, 1, 3);
	toneMap(d65_light, ToneMapSettings::fromNodes(camera.getPointer(), settings.getPointer(), 2.2), balanced);
	const uint8_t* p = balanced.getPixel(0, 0);
	EXPECT_NEAR(p[0], p[1], 1);
	EXPECT_NEAR(p[2], p[1], 1);

	settings->setWhitePoint(1.0 / 3, 1.0 / 3);
	Bitmap unbalanced(1, 1, 3);
	toneMap(d65_light, ToneMapSettings::fromNodes(camera.getPointer(), settings.getPointer(), 2.2), unbalanced);
	const uint8_t* q = unbalanced.getPixel(0, 0);
	EXPECT_LT(q[0] + 10, q[2]);
}

TEST(ToneMapping, ResolveSumsLayersByWeightAndDropsTheMargin)
{
	// Final 2 x 1, super sampling 2: internal (2 + 8) * 2 by (1 + 8) * 2.
	MasterBuffer buffer(20, 18, 2, 2, 1, {"a", "b"}, false);
	for(uint32_t y = 0; y < 18; ++y)
		for(uint32_t x = 0; x < 20; ++x)
		{
			// Layer 0 is 1 left of the centre line and 3 right of it; layer 1 is 10.
			buffer.layers[0].image.getPixel(x, y)[0] = x < 10 ? 1.0f : 3.0f;
			buffer.layers[1].image.getPixel(x, y)[0] = 10.0f;
		}
	const LayerWeight weights[] = {LayerWeight::of(1, 1, 1, 1), LayerWeight::of(1, 1, 1, 0.5)};
	Image out;
	resolveBuffer(buffer, weights, 2, out);
	ASSERT_EQ(out.getWidth(), 2u);
	ASSERT_EQ(out.getHeight(), 1u);
	// The margin is 4 final pixels a side, 8 internal ones; the first output pixel covers
	// internal x 8 and 9, the second 10 and 11.
	EXPECT_FLOAT_EQ(out.getPixel(0, 0)[0], 1 + 5);
	EXPECT_FLOAT_EQ(out.getPixel(1, 0)[0], 3 + 5);
}

TEST(ToneMapping, LayerWeightsScaleTheLayersXYZ)
{
	// Final 1 x 1: one pixel of RGB white in the one layer.
	MasterBuffer buffer(9, 9, 1, 1, 1, {"a"}, false);
	for(uint32_t y = 0; y < 9; ++y)
		for(uint32_t x = 0; x < 9; ++x)
			std::fill(buffer.layers[0].image.getPixel(x, y), buffer.layers[0].image.getPixel(x, y) + 3, 1.0f);
	auto resolved = [&](const LayerWeight& weight) {
		Image out;
		resolveBuffer(buffer, &weight, 1, out);
		const float* p = out.getPixel(0, 0);
		return std::array<float, 3>{p[0], p[1], p[2]};
	};
	// A scale alike in X, Y and Z is exact.
	EXPECT_EQ(resolved(LayerWeight::of(0.5, 0.5, 0.5, 2)), (std::array<float, 3>{1, 1, 1}));
	EXPECT_EQ(resolved(LayerWeight::of(0, 0, 0, 1)), (std::array<float, 3>{0, 0, 0}));
	// Without Z, white's XYZ (0.95047, 1.0000001, 1.08883) keeps X and Y:
	// its RGB is 3.2406 X - 1.5372 Y, -0.9689 X + 1.8758 Y, 0.0557 X - 0.2040 Y.
	const std::array<float, 3> no_z = resolved(LayerWeight::of(1, 1, 0, 1));
	EXPECT_NEAR(no_z[0], 1.542893, 1e-4);
	EXPECT_NEAR(no_z[1], 0.954890, 1e-4);
	EXPECT_NEAR(no_z[2], -0.151059, 1e-4);
}

TEST(ToneMapping, ResolveUnderTheRowsLockReadsEveryBandOnce)
{
	// Final 1 x 40, super sampling 1: 48 internal rows, read in bands of 16
	// under the lock. Row y holds y, so a row skipped or read twice at a
	// band's edge shows in the output row y - 4.
	MasterBuffer buffer(9, 48, 1, 1, 40, {"a"}, false);
	for(uint32_t y = 0; y < 48; ++y)
		for(uint32_t x = 0; x < 9; ++x)
			buffer.layers[0].image.getPixel(x, y)[0] = (float)y;
	std::mutex rows_lock;
	Image out;
	resolveBuffer(buffer, nullptr, 1, out, &rows_lock);
	ASSERT_EQ(out.getWidth(), 1u);
	ASSERT_EQ(out.getHeight(), 40u);
	for(uint32_t y = 0; y < 40; ++y)
		EXPECT_FLOAT_EQ(out.getPixel(0, y)[0], (float)(y + 4)) << "row " << y;
	// Left unlocked for the render.
	EXPECT_TRUE(rows_lock.try_lock());
	rows_lock.unlock();
}

} // namespace
} // namespace Standin
} // namespace Velorn
