// The in-host render as the application runs it: the host's render thread
// calls the video post, which drives the stand-in renderer's SDK library.
#include "render/render_state.h"
#include "render/video_post.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/console.h"
#include "c4d/document_file.h"
#include "c4d/plugin_registry.h"
#include "c4d/render_data.h"
#include "c4d/render_document.h"
#include "c4d/special_events.h"
#include "host/plugin_globals.h"
#include "host/plugin_ids.h"
#include "support/file_utils.h"
#include "support/platform_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <chrono>
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

class InHostRender : public testing::Test
{
protected:
	static void SetUpTestSuite()
	{
		if(!PluginRegistry::get().find(ID_VIDEO_POST))
			ASSERT_TRUE(RegisterVelornVideoPost());
		ASSERT_TRUE(RegisterVelornMessage());
		ASSERT_TRUE(RegisterPauseRenderingCommand());
		ASSERT_TRUE(RegisterResumeRenderingCommand());
		ASSERT_TRUE(RegisterUpdateImageCommand());
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

	// A camera looking at a sphere at width by 24 pixels, halted after
	// halt_spp samples per pixel (-1: no halt) and not by time.
	BaseDocument* document(int width = 40, double halt_spp = 4)
	{
		const std::string text = R"({"version": 1, "unit": "cm", "fps": 25, "camera": "Camera",
			"objects": [
				{"type": 5103, "name": "Camera", "matrix": {"off": [0, 0, -300], "v1": [1, 0, 0], "v2": [0, 1, 0], "v3": [0, 0, 1]}},
				{"type": 5160, "name": "Ball"}],
			"render": {"videoposts": [{"type": 1020896}]}})";
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

TEST_F(InHostRender, PauseResumeUpdateAndBreakFromTheMainThread)
{
	ASSERT_EQ(load_code, 0) << load_error;
	BaseDocument* doc = document(40, -1);
	BaseBitmap bitmap;
	RenderThread thread(doc, &bitmap);
	ASSERT_TRUE(thread.Start(String("Render")));
	const PluginRecord* pause = PluginRegistry::get().find(ID_PAUSE_RENDERING);
	const PluginRecord* resume = PluginRegistry::get().find(ID_RESUME_RENDERING);
	const PluginRecord* update = PluginRegistry::get().find(ID_UPDATE_IMAGE);
	ASSERT_TRUE(pause && resume && update);
	EXPECT_EQ(pause->command->GetState(doc), 0);
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
