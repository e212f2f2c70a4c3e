#include "scene/geometry_test_helpers.h"
#include "scene/scene_node_render_settings.h"
#include "support/exceptions.h"

#include <gtest/gtest.h>

#include <string>

using namespace Velorn;
using VelornTest::expectVelornError;

namespace
{

Reference<SceneNodeRenderSettings> emptySettings() { return Reference<SceneNodeRenderSettings>(new SceneNodeRenderSettings()); }

void expectLayer(const Reference<LayerSetting>& layer, const char* name, double gain = 1)
{
	ASSERT_TRUE(layer.nonNull());
	EXPECT_EQ(layer->name, String(name));
	EXPECT_EQ(layer->xyz, Vec3d(1, 1, 1));
	EXPECT_EQ(layer->gain, gain);
}

} // namespace

TEST(RenderSettings, ValuesAreReadByTheKindTheyHold)
{
	Reference<SceneNodeRenderSettings> s = emptySettings();
	s->setBool("metropolis", true);

	// A replacement changes the kind: the key now holds an int.
	s->setBool("dithering", true);
	s->setInt("dithering", 3);
	EXPECT_EQ(s->getInt("dithering"), 3);
	EXPECT_EQ(s->settings.size(), 2u);

	expectVelornError([&] { s->getBool("dithering"); }, "Tried to read setting as a bool that was of different type: 'dithering'");
	expectVelornError([&] { s->getInt("metropolis"); }, "Tried to read setting as an int that was of different type: 'metropolis'");
	// No conversion, not even from int to double.
	expectVelornError([&] { SceneNodeRenderSettings::getDefaults()->getDouble("width"); },
		"Tried to read setting as a double that was of different type: 'width'");
	expectVelornError([&] { s->getDouble("missing_key"); }, "Tried to read missing setting 'missing_key'");
}

TEST(RenderSettings, LayersAreCountedNamedAndFilledIn)
{
	Reference<SceneNodeRenderSettings> s = emptySettings();
	s->setNumLayers(2);
	ASSERT_EQ(s->layer_settings.size(), 2u);
	expectLayer(s->layer_settings[1], "Layer 1");

	// Growing keeps the layers there are; shrinking drops the tail.
	s->layer_settings[1]->gain = 3;
	s->setNumLayers(3);
	expectLayer(s->layer_settings[1], "Layer 1", 3);
	expectLayer(s->layer_settings[2], "Layer 2");
	s->setNumLayers(1);
	s->setLayerName(70000, "x");
	s->setLayerName(65536, "x");
	ASSERT_EQ(s->layer_settings.size(), 1u);

	// A name past the end grows the list with default layers; renaming
	// replaces the layer, so its gain starts afresh.
	s->layer_settings[0]->gain = 2;
	s->setLayerName(0, "Sun");
	s->setLayerName(3, "Sky");
	ASSERT_EQ(s->layer_settings.size(), 4u);
	expectLayer(s->layer_settings[0], "Sun");
	expectLayer(s->layer_settings[2], "Layer 2");
	expectLayer(s->layer_settings[3], "Sky");
	s->setLayerName(65535, "Last");
	EXPECT_EQ(s->layer_settings.size(), 65536u);

	Reference<LayerSetting> key(new LayerSetting("Key", Vec3d(0.5, 0.5, 0.5), 2));
	s->setLayers({nullptr, key, nullptr});
	ASSERT_EQ(s->layer_settings.size(), 3u);
	expectLayer(s->layer_settings[0], "Layer 0");
	EXPECT_EQ(s->layer_settings[1].getPointer(), key.getPointer());
	expectLayer(s->layer_settings[2], "Layer 2");
}

TEST(RenderSettings, MergeLetsTheSecondWin)
{
	Reference<SceneNodeRenderSettings> a = emptySettings();
	a->setInt("only_a", 1);
	a->setSplatFilter(new SplatFilterRadial());
	a->setDownsizeFilter(new DownsizeFilterGaussian());
	a->setWhitePoint(0.25, 0.5);
	a->setRenderRegion(new RenderRegion(1, 2, 3, 4));
	a->setGPUDevice(new GPUDeviceSettings("a card", GPUDeviceSettings::CUDA));
	a->setNumLayers(2);
	Reference<SceneNodeRenderSettings> b = emptySettings();

	// b has no structured values: copies of a's are taken.
	Reference<SceneNodeRenderSettings> m = SceneNodeRenderSettings::merge(*a, *b);
	const std::string from_a = m->toXMLString().str();
	a->setInt("only_a", 100);
	a->white_point->x = 0.75;
	a->layer_settings[1]->name = "changed";
	EXPECT_EQ(m->toXMLString().str(), from_a);
	EXPECT_EQ(m->splat_filter->getType(), 1u);
	EXPECT_EQ(m->render_region->y2, 4);
	EXPECT_EQ(m->gpu_device->device_name, String("a card"));

	// Once b has them, b's win.
	b->setDownsizeFilter(new DownsizeFilterSharp());
	b->setWhitePoint(0.5, 0.125);
	b->setRenderRegion(new RenderRegion(10, 20, 30, 40));
	b->setGPUDevice(new GPUDeviceSettings("b card", GPUDeviceSettings::OpenCL));
	b->setLayerName(0, "Only");
	m = SceneNodeRenderSettings::merge(*a, *b);
	EXPECT_EQ(m->downsize_filter->getType(), 2u);
	EXPECT_EQ(m->white_point->y, 0.125);
	EXPECT_EQ(m->render_region->x1, 10);
	EXPECT_EQ(m->gpu_device->device_name, String("b card"));
	ASSERT_EQ(m->layer_settings.size(), 1u);
	expectLayer(m->layer_settings[0], "Only");
}

TEST(RenderSettings, KeysOfOneBucketStandInTheOrderTheyWentIn)
{
	// "verbose" and "bidirectional" fall in one bucket; a merge follows the
	// order of its first node.
	Reference<SceneNodeRenderSettings> a = emptySettings();
	a->setBool("verbose", true);
	a->setBool("bidirectional", true);
	Reference<SceneNodeRenderSettings> b = emptySettings();
	b->setBool("bidirectional", false);
	b->setBool("verbose", false);

	const std::string head = "<renderer_settings>\n\t<uid>4294967295</uid>\n\t<name>Render Settings</name>\n";
	const std::string tail = "</renderer_settings>\n";
	EXPECT_EQ(a->toXMLString().str(), head + "\t<verbose>true</verbose>\n\t<bidirectional>true</bidirectional>\n" + tail);
	EXPECT_EQ(b->toXMLString().str(), head + "\t<bidirectional>false</bidirectional>\n\t<verbose>false</verbose>\n" + tail);
	EXPECT_EQ(SceneNodeRenderSettings::merge(*a, *b)->toXMLString().str(),
		head + "\t<verbose>false</verbose>\n\t<bidirectional>false</bidirectional>\n" + tail);
}

TEST(RenderSettings, WhitePointsOfTheStandardIlluminants)
{
	// The values are held in single precision.
	struct Case
	{
		const char* name;
		double x, y;
	};
	const Case cases[] = {{"E", 1.0 / 3.0, 1.0 / 3.0}, {"D50", 0.34567, 0.3585}, {"D55", 0.33242, 0.34743},
		{"D65", 0.31273, 0.32902}, {"D75", 0.29902, 0.31485}, {"A", 0.44757, 0.40745}, {"B", 0.34842, 0.35161},
		{"C", 0.31006, 0.31616}, {"9300", 0.2848, 0.2932}, {"F2", 0.37207, 0.37512}, {"F7", 0.31285, 0.32918},
		{"F11", 0.38054, 0.37691}};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.name);
		double x = 0, y = 0;
		SceneNodeRenderSettings::whitePointForName(c.name, x, y);
		EXPECT_EQ(x, (double)(float)c.x);
		EXPECT_EQ(y, (double)(float)c.y);
	}

	for(const char* name : {"d65", "D65 ", "", "F12"})
	{
		SCOPED_TRACE(name);
		double x = 0, y = 0;
		expectVelornError([&] { SceneNodeRenderSettings::whitePointForName(name, x, y); },
			std::string("'") + name + "' is not a valid value for white_balance.  (must be one of D50, D55, F2 etc..)");
	}
}
