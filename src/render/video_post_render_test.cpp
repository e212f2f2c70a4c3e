// The in-host render as the application runs it: the host's render thread
// calls the video post, which drives the stand-in renderer's SDK library.
#include "render/in_host_render_test_fixture.h"

#include <gtest/gtest.h>

#ifdef STANDIN_RENDERER_DIR

// The renderer executable's exit status, read the POSIX way.
#include <sys/wait.h>

namespace
{

using namespace RenderTest;

TEST_F(InHostRender, HaltsJustOverTheSamplesAndCleansUp)
{
	ASSERT_EQ(load_code, 0) << load_error;
	BaseDocument* doc = document(40, 4);
	BaseBitmap bitmap;
	EXPECT_EQ(render(doc, &bitmap), RENDERRESULT_OK);
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
	ASSERT_EQ(render(doc, &in_host), RENDERRESULT_OK);
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
	ASSERT_EQ(render(document(48, 2, Ball::Red), &ball), RENDERRESULT_OK);
	ASSERT_EQ(render(document(48, 2, Ball::None), &sky), RENDERRESULT_OK);
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
		EXPECT_EQ(render(doc, &bitmap), RENDERRESULT_OK);
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
		EXPECT_EQ(render(doc), RENDERRESULT_OK);
		RunMainThreadEvents();
		EXPECT_EQ(messages(), std::vector<String>{});
	}
	loadSdk(STANDIN_RENDERER_DIR);
	ASSERT_EQ(load_code, 0);
	{
		SCOPED_TRACE("a scene the renderer refuses");
		BaseDocument* doc = document(20000, 4);
		EXPECT_EQ(render(doc), RENDERRESULT_RENDER_FAILED);
		EXPECT_EQ(RunMainThreadEvents(), 2);
		EXPECT_EQ(messages(), (std::vector<String>{String("Error build scene failed."),
								  String("ERROR: Image size 20000 x 24 is out of range (1 to 16384 pixels a side).")}));
		EXPECT_TRUE(videoPost(doc)->temp_files.empty());
	}
	{
		SCOPED_TRACE("the next render works");
		HostConsole::get().clear();
		BaseDocument* doc = document(40, 2);
		EXPECT_EQ(render(doc), RENDERRESULT_OK);
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
