// The in-host render as the application runs it: the host's render thread
// calls the video post, which drives the stand-in renderer's SDK library.
#include "render/render_state.h"
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
#include "support/platform_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <thread>

#ifdef STANDIN_RENDERER_DIR

namespace
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

Rgb pixel(const BaseBitmap& bitmap, int32_t x, int32_t y)
{
	uint16_t r = 0, g = 0, b = 0;
	bitmap.GetPixel(x, y, &r, &g, &b);
	return Rgb{r, g, b};
}

int largestDifference(const Rgb& a, const Rgb& b)
{
	return std::max({std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b)});
}

// The mean of each channel over the picture.
std::array<double, 3> channelMeans(const BaseBitmap& bitmap)
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
		if(!PluginRegistry::get().find(ID_VIDEO_POST))
		{
			ASSERT_TRUE(RegisterVelornVideoPost());
		}
		// The scenes' cameras carry the plug-in's camera tag and their balls
		// host materials, which the export converts into the plug-in's:
		// both register under names of the module's resources.
		ASSERT_TRUE(HostResources::get().init(Filename(String(VelornTest::testDataPath("../src/host")))))
			<< HostResources::get().error().GetStdString();
		if(!PluginRegistry::get().find(ID_CAMERA_TAG))
		{
			ASSERT_TRUE(RegisterCameraTag());
		}
		if(!PluginRegistry::get().find(ID_VELORN_MATERIAL))
		{
			ASSERT_TRUE(RegisterVelornMaterial());
		}
		InstallMaterialExport();
		ASSERT_TRUE(RegisterVelornMessage());
		ASSERT_TRUE(RegisterPauseRenderingCommand());
		ASSERT_TRUE(RegisterResumeRenderingCommand());
		ASSERT_TRUE(RegisterUpdateImageCommand());
	}

	static void TearDownTestSuite()
	{
		SetMaterialExportHooks(nullptr);
		HostResources::get().clear();
	}

	void SetUp() override
	{
		try
		{
			saved_config = Velorn::PlatformUtils::getEnvironmentVariable("XDG_CONFIG_HOME");
		}
		catch(const Velorn::PlatformUtilsExcep&)
		{
		}
		Velorn::PlatformUtils::setEnvironmentVariable("XDG_CONFIG_HOME", home.path());
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
		Velorn::PlatformUtils::setEnvironmentVariable("XDG_CONFIG_HOME", saved_config);
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

	// Renders doc on this thread into bitmap; the render's result.
	int32_t render(BaseDocument* doc, BaseBitmap& bitmap)
	{
		return RenderDocument(doc, *doc->GetActiveRenderData()->GetDataInstance(), &bitmap, 0, nullptr);
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
	std::string saved_config;
	std::vector<BaseDocument*> docs;
	int load_code = -1;
	std::string load_error;
};

TEST_F(InHostRender, HaltsJustOverTheSamplesAndCleansUp)
{
	ASSERT_EQ(load_code, 0) << load_error;
	BaseDocument* doc = document(40, 4);
	BaseBitmap bitmap;
	const int32_t result = RenderDocument(doc, *doc->GetActiveRenderData()->GetDataInstance(), &bitmap, 0, nullptr);
	EXPECT_EQ(result, RENDERRESULT_OK);
	EXPECT_EQ(messages(), std::vector<String>{});
	// The render ends at the first poll that sees more than 4 samples per
	// pixel; the renderer halts itself right after the fifth pass.
	ASSERT_EQ(bitmap.GetBw(), 40);
	ASSERT_EQ(bitmap.GetBh(), 24);
	EXPECT_EQ(HostConsole::get().statusText(), String("Closing render threads..."));
	// The final picture reached the host's buffer.
	EXPECT_NE(HostConsole::get().texts(HostConsole::Kind::Status), std::vector<String>{});

	VelornVideoPost* post = videoPost(doc);
	EXPECT_TRUE(post->temp_files.empty());
	EXPECT_TRUE(post->scene_root.isNull());
	EXPECT_EQ(post->interactive, 1);
	// An interactive render leaves nothing in the shared state.
	RenderState& state = renderState();
	std::lock_guard<std::mutex> guard(state.lock);
	EXPECT_TRUE(state.renderer.isNull());
	EXPECT_TRUE(state.root.isNull());
}

TEST_F(InHostRender, PictureEqualsTheExecutablesOfTheSameSceneAndSeed)
{
	ASSERT_EQ(load_code, 0) << load_error;
	const int32_t seed = fixRenderSeed();
	BaseDocument* doc = document(40, 4);
	BaseBitmap in_host;
	ASSERT_EQ(render(doc, in_host), RENDERRESULT_OK);
	ASSERT_EQ(in_host.GetBw(), 40);
	ASSERT_EQ(in_host.GetBh(), 24);

	// The library is handed the tree, not a file: the same export, written
	// as a scene file, is the executable's input.
	const std::string scene = home.file("same.vls");
	{
		std::vector<Filename> temp_files;
		ExportSettings settings(doc, Filename(String(scene)), &temp_files, 0, 40, 24, 0, 0, 0, 0);
		SceneExporter exporter(&settings);
		Velorn::Reference<Velorn::SceneNodeRoot> root = exporter.exportScene();
		ASSERT_TRUE(root.nonNull());
		root->finalise(Velorn::String(scene));
		root->writeToFile(Velorn::String(scene), false, nullptr);
	}
	// The in-host loop halts when it sees more than 4 samples per pixel,
	// which the library makes 5 passes; the executable halts at its count.
	const std::string image = home.file("executable.png");
	const std::string command = std::string("'") + STANDIN_RENDERER_DIR + "/velorn.exe' -seed " + std::to_string(seed) +
		" -haltspp 5 -o '" + image + "' '" + scene + "' >'" + home.file("out.txt") + "' 2>&1";
	const int status = std::system(command.c_str());
	ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << VelornTest::readFile(home.file("out.txt"));
	BaseBitmap executable;
	ASSERT_EQ(executable.Init(Filename(String(image))), IMAGERESULT_OK);
	ASSERT_EQ(executable.GetBw(), 40);
	ASSERT_EQ(executable.GetBh(), 24);

	// A pixel's samples depend only on the pixel, the pass and the seed,
	// not on which thread took its row: the two pictures are the same pixel
	// for pixel, within one level of rounding.
	int worst = 0;
	for(int32_t y = 0; y < 24; ++y)
		for(int32_t x = 0; x < 40; ++x)
			worst = std::max(worst, largestDifference(pixel(in_host, x, y), pixel(executable, x, y)));
	EXPECT_LE(worst, 1);
	// Not two black pictures: the sky alone lies well above black.
	const std::array<double, 3> means = channelMeans(in_host);
	for(int c = 0; c < 3; ++c)
	{
		SCOPED_TRACE(c);
		EXPECT_GT(means[c], 40);
		EXPECT_NEAR(means[c], channelMeans(executable)[c], 0.5);
	}
}

TEST_F(InHostRender, RedBallIsRedWhereItIsAndTheSkyIsLeftAlone)
{
	ASSERT_EQ(load_code, 0) << load_error;
	fixRenderSeed();
	BaseBitmap ball, sky;
	ASSERT_EQ(render(document(48, 2, Ball::Red), ball), RENDERRESULT_OK);
	ASSERT_EQ(render(document(48, 2, Ball::None), sky), RENDERRESULT_OK);
	ASSERT_EQ(ball.GetBw(), 48);
	ASSERT_EQ(sky.GetBw(), 48);

	// The ball (100 cm at 300 cm, 54 degrees across 48 pixels) covers
	// columns 10 to 38 in the middle row, all rows in the middle columns.
	for(int32_t y = 8; y < 16; ++y)
		for(int32_t x = 20; x < 28; ++x)
		{
			SCOPED_TRACE(testing::Message() << "ball at " << x << ", " << y);
			const Rgb red = pixel(ball, x, y), behind = pixel(sky, x, y);
			EXPECT_GT(red.r, 3 * red.g);
			EXPECT_GT(red.r, 3 * red.b);
			EXPECT_GT(red.r, 60);
			// Without the ball the same pixels are the sky's, nowhere red.
			EXPECT_GT(5 * behind.g, 4 * behind.r);
		}
	// Five columns on each side see past the ball: the same rays meet the
	// same sky in both renders.
	for(int32_t y = 0; y < 24; ++y)
		for(int32_t x : {0, 1, 2, 3, 4, 43, 44, 45, 46, 47})
		{
			SCOPED_TRACE(testing::Message() << "sky at " << x << ", " << y);
			EXPECT_LE(largestDifference(pixel(ball, x, y), pixel(sky, x, y)), 1);
		}
}

TEST_F(InHostRender, PauseResumeUpdateAndBreakFromTheMainThread)
{
	ASSERT_EQ(load_code, 0) << load_error;
	BaseDocument* doc = document(40, -1);
	BaseBitmap bitmap;
	const PluginRecord* pause = PluginRegistry::get().find(ID_PAUSE_RENDERING);
	const PluginRecord* resume = PluginRegistry::get().find(ID_RESUME_RENDERING);
	const PluginRecord* update = PluginRegistry::get().find(ID_UPDATE_IMAGE);
	ASSERT_TRUE(pause && resume && update);
	// Nothing to pause before the render thread has stored its renderer
	// (asked before the thread starts: it may store it at once).
	EXPECT_EQ(pause->command->GetState(doc), 0);
	RenderThread thread(doc, &bitmap);
	ASSERT_TRUE(thread.Start(String("Render")));
	ASSERT_TRUE(waitFor([&] { return runningSpp() >= 2; }));

	EXPECT_EQ(pause->command->GetState(doc), CMD_ENABLED);
	EXPECT_EQ(resume->command->GetState(doc), 0);
	ASSERT_TRUE(pause->command->Execute(doc));
	EXPECT_EQ(pause->command->GetState(doc), 0);
	EXPECT_EQ(resume->command->GetState(doc), CMD_ENABLED);
	std::this_thread::sleep_for(std::chrono::milliseconds(60));
	const double held = runningSpp();
	std::this_thread::sleep_for(std::chrono::milliseconds(150));
	EXPECT_EQ(runningSpp(), held);
	EXPECT_TRUE(waitFor([] { return HostConsole::get().statusText().GetStdString().rfind("Paused: ", 0) == 0; }));

	ASSERT_TRUE(resume->command->Execute(doc));
	EXPECT_TRUE(waitFor([&] { return runningSpp() > held; }));

	// An update asked for on the main thread is taken by the next poll.
	ASSERT_TRUE(update->command->Execute(doc));
	{
		RenderState& state = renderState();
		std::lock_guard<std::mutex> guard(state.lock);
		EXPECT_EQ(state.update_requested, 1);
	}
	EXPECT_TRUE(waitFor([] {
		RenderState& state = renderState();
		std::lock_guard<std::mutex> guard(state.lock);
		return state.update_requested == 0;
	}, 0.5));

	// A break ends the render promptly, and it keeps its picture.
	const auto asked = Clock::now();
	thread.End(false);
	ASSERT_TRUE(waitFor([&] { return !thread.IsRunning(); }, 5));
	const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - asked).count();
	EXPECT_LT(waited, 200);
	thread.Wait();
	EXPECT_EQ(thread.GetResult(), RENDERRESULT_OK);
	EXPECT_EQ(bitmap.GetBw(), 40);
	EXPECT_EQ(pause->command->GetState(doc), 0);
}

TEST_F(InHostRender, BadInputsLeaveTheHostRunning)
{
	{
		SCOPED_TRACE("no SDK library: nothing renders, nothing is said");
		loadSdk(home.path());
		EXPECT_EQ(load_code, Velorn::VelornContext::LOAD_NO_LIBRARY);
		BaseDocument* doc = document();
		BaseBitmap bitmap;
		EXPECT_EQ(RenderDocument(doc, *doc->GetActiveRenderData()->GetDataInstance(), &bitmap, 0, nullptr),
			RENDERRESULT_OK);
		RunMainThreadEvents();
		EXPECT_EQ(messages(), std::vector<String>{});
		uint16_t r = 1, g = 1, b = 1;
		bitmap.GetPixel(20, 12, &r, &g, &b);
		EXPECT_EQ(r + g + b, 0);
	}
	{
		SCOPED_TRACE("a library without its shutdown entry");
		VelornTest::writeFile(home.file("velorn_sdk.dll"), VelornTest::readFile(FAKE_SDK_NO_SHUTDOWN));
		loadSdk(home.path());
		EXPECT_EQ(load_code, Velorn::VelornContext::LOAD_MISSING_PROCEDURE);
		EXPECT_EQ(load_error, "unable to get address of procedure 'velornGlobalLibraryShutdown'");
		BaseDocument* doc = document();
		EXPECT_EQ(RenderDocument(doc, *doc->GetActiveRenderData()->GetDataInstance(), nullptr, 0, nullptr),
			RENDERRESULT_OK);
		RunMainThreadEvents();
		EXPECT_EQ(messages(), std::vector<String>{});
	}
	loadSdk(STANDIN_RENDERER_DIR);
	ASSERT_EQ(load_code, 0);
	{
		SCOPED_TRACE("a scene the renderer refuses");
		BaseDocument* doc = document(20000, 4);
		EXPECT_EQ(RenderDocument(doc, *doc->GetActiveRenderData()->GetDataInstance(), nullptr, 0, nullptr),
			RENDERRESULT_RENDER_FAILED);
		EXPECT_EQ(RunMainThreadEvents(), 2);
		EXPECT_EQ(messages(), (std::vector<String>{String("Error build scene failed."),
								  String("ERROR: Image size 20000 x 24 is out of range (1 to 16384 pixels a side).")}));
		EXPECT_TRUE(videoPost(doc)->temp_files.empty());
	}
	{
		SCOPED_TRACE("the next render works");
		HostConsole::get().clear();
		BaseDocument* doc = document(40, 2);
		EXPECT_EQ(RenderDocument(doc, *doc->GetActiveRenderData()->GetDataInstance(), nullptr, 0, nullptr),
			RENDERRESULT_OK);
		RunMainThreadEvents();
		EXPECT_EQ(messages(), std::vector<String>{});
	}
}

TEST_F(InHostRender, ExecuteWithoutStructIsReportedAndHarmless)
{
	VelornVideoPost post;
	EXPECT_EQ(post.Execute(nullptr, nullptr), RENDERRESULT_OK);
	EXPECT_EQ(HostConsole::get().texts(HostConsole::Kind::Print), std::vector<String>{String("*vps is null.")});
}

} // namespace

#endif
