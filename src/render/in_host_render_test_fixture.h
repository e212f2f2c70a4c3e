// The in-host render's test fixture: a host with the video post and the
// stand-in renderer's SDK library loaded, and small documents to render.
#pragma once

#include "render/render_state.h"
#include "render/tonemap_dialog.h"
#include "render/video_post.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/console.h"
#include "c4d/document_file.h"
#include "c4d/host_clock.h"
#include "c4d/plugin_registry.h"
#include "c4d/render_data.h"
#include "c4d/render_document.h"
#include "c4d/resources.h"
#include "c4d/special_events.h"
#include "export/export_settings.h"
#include "export/material_hooks.h"
#include "export/scene_exporter.h"
#include "host/camera_tag.h"
#include "host/plugin_globals.h"
#include "host/plugin_ids.h"
#include "materials/material_export.h"
#include "materials/material_plugin.h"
#include "support/file_utils.h"
#include "support/test_files.h"
#include "support/user_data_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <thread>

#ifdef STANDIN_RENDERER_DIR

namespace RenderTest
{

using Clock = std::chrono::steady_clock;

template <class Condition>
bool waitFor(Condition condition, double seconds = 20)
{
	const auto end = Clock::now() + std::chrono::duration<double>(seconds);
	while(!condition())
	{
		if(Clock::now() > end)
			return false;
		RunMainThreadEvents();
		std::this_thread::sleep_for(std::chrono::milliseconds(5));
	}
	return true;
}

struct Rgb
{
	int r, g, b;
};

inline Rgb pixel(const BaseBitmap& bitmap, int32_t x, int32_t y)
{
	uint16_t r = 0, g = 0, b = 0;
	bitmap.GetPixel(x, y, &r, &g, &b);
	return Rgb{r, g, b};
}

inline int largestDifference(const Rgb& a, const Rgb& b)
{
	return std::max({std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b)});
}

// The mean of each channel over the picture.
inline std::array<double, 3> channelMeans(const BaseBitmap& bitmap)
{
	std::array<double, 3> sum{0, 0, 0};
	for(int32_t y = 0; y < bitmap.GetBh(); ++y)
		for(int32_t x = 0; x < bitmap.GetBw(); ++x)
		{
			const Rgb p = pixel(bitmap, x, y);
			sum[0] += p.r;
			sum[1] += p.g;
			sum[2] += p.b;
		}
	const double n = (double)bitmap.GetBw() * bitmap.GetBh();
	return {sum[0] / n, sum[1] / n, sum[2] / n};
}

class InHostRender : public testing::Test
{
protected:
	static void SetUpTestSuite()
	{
		// The scenes' cameras carry the plug-in's camera tag and their balls
		// host materials, which the export converts into the plug-in's:
		// both register under names of the module's resources.
		ASSERT_TRUE(HostResources::get().init(Filename(String(VelornTest::testDataPath("../src/host")))))
			<< HostResources::get().error().GetStdString();
		// Registered once for every suite of the test program.
		const std::pair<int32_t, bool (*)()> plugins[] = {{ID_VIDEO_POST, RegisterVelornVideoPost},
			{ID_CAMERA_TAG, RegisterCameraTag}, {ID_VELORN_MATERIAL, RegisterVelornMaterial},
			{ID_VELORN_MESSAGE, RegisterVelornMessage}, {ID_PAUSE_RENDERING, RegisterPauseRenderingCommand},
			{ID_RESUME_RENDERING, RegisterResumeRenderingCommand}, {ID_UPDATE_IMAGE, RegisterUpdateImageCommand},
			{ID_TONEMAPPING, RegisterTonemapCommand}};
		for(const auto& plugin : plugins)
			if(!PluginRegistry::get().find(plugin.first))
			{
				ASSERT_TRUE(plugin.second()) << plugin.first;
			}
		InstallMaterialExport();
	}

	static void TearDownTestSuite()
	{
		SetMaterialExportHooks(nullptr);
		HostResources::get().clear();
	}

	void SetUp() override
	{
		HostConsole::get().clear();
		RunMainThreadEvents();
		loadSdk(STANDIN_RENDERER_DIR);
	}

	void TearDown() override
	{
		RunMainThreadEvents();
		renderState().clear();
		g_context = nullptr;
		HostClock::get().release();
		for(BaseDocument* doc : docs)
			BaseDocument::Free(doc);
	}

	void loadSdk(const std::string& dir)
	{
		g_context = new Velorn::VelornContext();
		std::string error;
		load_code = g_context->load(dir, home.path(), error);
		load_error = error;
	}

	// What a test scene holds besides its camera, sun and sky.
	enum class Ball
	{
		None,
		Grey,
		Red,
	};

	// A camera looking at a ball of 100 cm radius from 300 cm away, at width
	// by 24 pixels, under a sun and sky, halted after halt_spp samples per
	// pixel (-1: no halt) and not by time. The camera needs the plug-in's
	// tag: without one the export reads the tone mapping from an empty
	// container, Reinhard with every parameter 0, which maps every picture
	// to black. The tag maps linearly with a scale of 0.25, since the
	// mean-based exposures would tie the background's pixels to what else
	// is in the picture.
	BaseDocument* document(int width = 40, double halt_spp = 4, Ball ball = Ball::Grey)
	{
		std::string ball_object;
		if(ball == Ball::Grey)
			ball_object = R"({"type": 5160, "name": "Ball"},)";
		else if(ball == Ball::Red)
			ball_object = R"({"type": 5160, "name": "Ball",
				"tags": [{"type": 5616, "params": [{"id": 1010, "type": "link", "value": "Red"}]}]},)";
		const std::string text = R"({"version": 1, "unit": "cm", "fps": 25, "camera": "Camera",
			"materials": [{"type": 5703, "name": "Red", "params": [{"id": 2100, "type": "vector", "value": [0.8, 0.05, 0.05]}]}],
			"objects": [
				{"type": 5103, "name": "Camera", "matrix": {"off": [0, 0, -300], "v1": [1, 0, 0], "v2": [0, 1, 0], "v3": [0, 0, 1]},
					"tags": [{"type": 1022083, "params": [{"id": 1945, "type": "long", "value": 1946},
						{"id": 1949, "type": "real", "value": 0.25}]}]},
				)" + ball_object + R"(
				{"type": 5140, "name": "Sun", "matrix": {"off": [0, 0, 0], "v1": [0.707107, 0, 0.707107],
					"v2": [-0.5, 0.707107, 0.5], "v3": [-0.5, -0.707107, 0.5]}}],
			"render": {"videoposts": [{"type": 1020896,
				"params": [{"id": 1301, "type": "link", "value": "Sun"}, {"id": 1368, "type": "long", "value": 1364}]}]}})";
		BaseDocument* doc = ReadDocumentText(text, Filename(home.file("scene.json").c_str()));
		EXPECT_NE(doc, nullptr);
		docs.push_back(doc);
		BaseContainer* rd = doc->GetActiveRenderData()->GetDataInstance();
		rd->SetInt32(RDATA_XRES, width);
		rd->SetInt32(RDATA_YRES, 24);
		BaseContainer* vp = doc->GetActiveRenderData()->GetFirstVideoPost()->GetDataInstance();
		vp->SetFloat(vp_halt_spp, halt_spp);
		vp->SetFloat(vp_halt_time, -1);
		vp->SetInt32(vp_auto_threads, 0);
		vp->SetInt32(vp_num_threads, 2);
		return doc;
	}

	// Renders doc on this thread into bitmap, if any; the render's result.
	int32_t render(BaseDocument* doc, BaseBitmap* bitmap = nullptr)
	{
		return RenderDocument(doc, *doc->GetActiveRenderData()->GetDataInstance(), bitmap, 0, nullptr);
	}

	// Fixes the host's timer and random seed, so that the seed a render
	// hands the renderer repeats; returns that seed: the first number of a
	// generator seeded from the timer, times a second reading of the timer.
	int32_t fixRenderSeed()
	{
		HostClock::get().fixTime(1000);
		HostClock::get().fixSeed(4711);
		Random random;
		random.Init(0);
		return (int32_t)(random.Get01() * 1000);
	}

	VelornVideoPost* videoPost(BaseDocument* doc)
	{
		return static_cast<VelornVideoPost*>(doc->GetActiveRenderData()->GetFirstVideoPost()->GetNodeData());
	}

	double runningSpp()
	{
		RenderState& state = renderState();
		std::lock_guard<std::mutex> guard(state.lock);
		return state.renderer.nonNull() ? state.renderer->getSamplesPerPixel() : -1;
	}

	std::vector<String> messages() { return HostConsole::get().texts(HostConsole::Kind::Message); }

	VelornTest::TempDir home;
	const VelornTest::UserDataDirectory data_dir{home.path()};
	std::vector<BaseDocument*> docs;
	int load_code = -1;
	std::string load_error;
};

} // namespace RenderTest

#endif
