// The render settings element, byte for byte.
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_root.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Velorn;

namespace
{

typedef Reference<SceneNodeRenderSettings> Settings;

Settings empty() { return Settings(new SceneNodeRenderSettings()); }

Settings withFilters(SplatFilter* splat, DownsizeFilter* downsize)
{
	Settings s = empty();
	s->setSplatFilter(splat);
	s->setDownsizeFilter(downsize);
	return s;
}

Settings withGPU(const char* device_name, int subsystem)
{
	Settings s = empty();
	s->setGPUDevice(new GPUDeviceSettings(device_name, subsystem));
	return s;
}

// Every kind of value and every structured value at once, with keys that
// fall in different buckets and the key that is never written.
Settings everything()
{
	Settings s = empty();
	s->uid = UID(7);
	s->setName("Final Render");
	s->setInt("b", -5);
	s->setInt("width", 1920);
	s->setDouble("x", 1e21);
	s->setBool("gpu_path_tracing", true);
	s->setDouble("a", 0.333);
	s->setDouble("halt_time", (double)0.3f);
	s->setBool("e", false);
	s->setGPUDevice(new GPUDeviceSettings("Card & Co", GPUDeviceSettings::CUDA));
	s->setWhitePoint(0.31273, 0.329);
	s->setDownsizeFilter(new DownsizeFilterMNCubic(0.5, 0.001, 2.5));
	s->setSplatFilter(new SplatFilterBox());
	s->setRenderRegion(new RenderRegion(10, 200, 20, 100));
	SceneNodeRenderSettings::LayerVector layers;
	layers.push_back(nullptr);
	layers.push_back(new LayerSetting("Key  light", Vec3d(0.5, 0.333, 1e21), (double)0.3f));
	s->setLayers(layers);
	return s;
}

struct GoldenCase
{
	const char* golden;
	std::function<Settings()> make;
};

} // namespace

TEST(GoldenSettings, SettingsNodesMatchTheirFiles)
{
	const GoldenCase cases[] = {
		{"render_settings_defaults.xml", [] { return SceneNodeRenderSettings::getDefaults(); }},
		{"render_settings_empty.xml", empty},
		{"render_settings_radial_gaussian.xml", [] { return withFilters(new SplatFilterRadial(), new DownsizeFilterGaussian()); }},
		{"render_settings_mn_cubic_sharp.xml",
			[] { return withFilters(new SplatFilterMNCubic(0.25, 0.75), new DownsizeFilterSharp()); }},
		{"render_settings_box.xml", [] { return withFilters(new SplatFilterBox(), nullptr); }},
		{"render_settings_everything.xml", everything},
		{"render_settings_gpu_cuda.xml", [] { return withGPU("GeForce 1080", GPUDeviceSettings::CUDA); }},
		{"render_settings_gpu_opencl.xml", [] { return withGPU("Radeon Pro", GPUDeviceSettings::OpenCL); }},
		{"render_settings_gpu_other.xml", [] { return withGPU("", 0); }},
	};
	for(const GoldenCase& c : cases)
	{
		SCOPED_TRACE(c.golden);
		VelornTest::expectMatchesGolden(c.make()->toXMLString().str(), c.golden);
	}
}

TEST(GoldenSettings, DefaultsAndTheirCopiesWriteTheSameOrder)
{
	// Merged with an empty node or cloned, the defaults keep their order.
	Settings defaults = SceneNodeRenderSettings::getDefaults();
	VelornTest::expectMatchesGolden(defaults->clone()->toXMLString().str(), "render_settings_defaults.xml");
	VelornTest::expectMatchesGolden(SceneNodeRenderSettings::merge(*empty(), *defaults)->toXMLString().str(),
		"render_settings_defaults.xml");
}

TEST(GoldenSettings, AFileTakesTheWhitePointInTheStreamsOwnFormat)
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	Settings s = empty();
	s->setDouble("max_change", 0.01);
	s->setWhitePoint(1.0 / 3.0, 0.329);
	root->addChildNode(s);

	VelornTest::TempDir dir;
	root->writeToFile(dir.file("settings.vls"), false, nullptr);
	VelornTest::expectMatchesGolden(VelornTest::readFile(dir.file("settings.vls")), "render_settings_file.xml");
}
