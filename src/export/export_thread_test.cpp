// "Render with Velorn" on documents: the scenes, the render queue and the
// renderer's start, with the renderer discovery pointed at a program that
// records its arguments.

#include "export/export_dialog.h"
#include "export/export_thread.h"

#include "c4d/dialog_script.h"
#include "c4d/render_data.h"
#include "export/export_test_helpers.h"
#include "host/host_test_helpers.h"
#include "host/settings.h"
#include "support/file_utils.h"
#include "support/platform.h"
#include "support/platform_utils.h"
#include "support/user_data_dir.h"

#include <algorithm>
#include <filesystem>

namespace
{

class RenderWithVelorn : public ExportTest
{
protected:
	void SetUp() override
	{
		ExportTest::SetUp();
		Velorn::PlatformUtils::setEnvironmentVariable("VELORN_RECORD_ARGUMENTS", arguments());
		DialogScript::get().clear();
		for(const char* name : {"velorn.exe", "velorn_console.exe"})
			std::filesystem::copy_file(RECORD_ARGUMENTS, install.file(name));
		saveRendererDir(Filename(install.path().c_str()));
	}
	void TearDown() override
	{
		DialogScript::get().clear();
		ExportTest::TearDown();
	}

	std::string arguments() const { return out.file("arguments.txt"); }
	// The quick render folder in the user's data directory, and a file in it.
	std::string quickDir() const { return home.file(quick_folder); }
	std::string quickFile(const std::string& name) const { return home.file(quick_folder + ("/" + name)); }
	static constexpr const char* quick_folder = "Velorn for Cinema 4D/quickrender";

	// Runs the command's dialog on the document until it closes.
	void render()
	{
		ExportDialog dialog(document.doc);
		dialog.Open(DLG_TYPE_MODAL, 0, 0, 0, 400, 400);
		EXPECT_FALSE(dialog.IsOpen());
	}

	// The frames of the render data, at the document's 30 frames a second.
	void animate(int32_t from, int32_t to)
	{
		document.videoPost().SetBool(vp_animation, true);
		BaseContainer* rd = document.doc->GetActiveRenderData()->GetDataInstance();
		rd->SetTime(RDATA_FRAMEFROM, BaseTime(from, 30));
		rd->SetTime(RDATA_FRAMETO, BaseTime(to, 30));
	}

	// The arguments the renderer was started with, behind the seed.
	std::string launchedWith() const { return argumentsAfterSeed(recordedArguments(arguments()), "velorn.exe"); }

	std::vector<std::string> quickFiles() const
	{
		std::vector<std::string> names;
		for(const auto& entry : std::filesystem::directory_iterator(quickDir()))
			names.push_back(entry.path().filename().string());
		std::sort(names.begin(), names.end());
		return names;
	}

	// The quick render folder after an animation of frames 0 to last: the
	// queue, then the scenes and their textures directories, sorted.
	static std::vector<std::string> animationFiles(int last)
	{
		std::vector<std::string> files = {"quickrender.vlq"};
		for(int frame = 0; frame <= last; ++frame)
			files.push_back("quickrender_frame00000" + std::to_string(frame) + ".vls");
		for(int frame = 0; frame <= last; ++frame)
			files.push_back("textures.quickrender_frame00000" + std::to_string(frame));
		return files;
	}

	std::vector<String> messages() const { return HostConsole::get().texts(HostConsole::Kind::Message); }
	size_t launches() const
	{
		const std::vector<String> lines = consoleLines();
		return std::count(lines.begin(), lines.end(), String("Launching Velorn..."));
	}

	VelornTest::TempDir home, install, out;
	const VelornTest::UserDataDirectory data_dir{home.path()};
	TestDocument document;
};

} // namespace

// Five frames give five scenes with the frame suffix and a queue whose
// items name them, with the image of each frame, the halts and a seed; the
// renderer starts once, with the queue.
TEST_F(RenderWithVelorn, AnimationWritesQueue)
{
	animate(0, 4);
	BaseContainer& vp = document.videoPost();
	vp.SetBool(vp_output_enabled, true);
	vp.SetFilename(vp_output_path, Filename("/renders/shot.png"));
	vp.SetFloat(vp_halt_time, 60.0);
	vp.SetFloat(vp_halt_spp, 2.5);
	vp.SetBool(vp_low_priority, false);
	render();

	EXPECT_TRUE(messages().empty());
	EXPECT_EQ(quickFiles(), animationFiles(4));
	// Each seed is a whole number below the timer's reading of 1000; the
	// rest of the queue is compared with the seeds as "#".
	std::string queue = VelornTest::readFile(quickFile("quickrender.vlq"));
#ifdef _WIN32
	// TinyXML writes in text mode: on Windows lines end in CR LF.
	queue.erase(std::remove(queue.begin(), queue.end(), '\r'), queue.end());
#endif
	for(size_t at = queue.find("<seed>"); at != std::string::npos; at = queue.find("<seed>", at + 1))
	{
		const size_t end = queue.find("</seed>", at);
		const int seed = std::stoi(queue.substr(at + 6, end - at - 6));
		EXPECT_TRUE(seed >= 0 && seed < 1000) << seed;
		queue.replace(at + 6, end - at - 6, "#");
	}
	// The images lie in the output's directory, joined by the system's
	// separator.
	const std::string separator(1, Velorn::Platform::preferredSeparator());
	std::string expected = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<render_queue>\n";
	for(int frame = 0; frame < 5; ++frame)
	{
		const std::string n = "00000" + std::to_string(frame);
		expected += "    <item>\n        <scene_path>" + quickFile("quickrender_frame" + n)
			+ ".vls</scene_path>\n        <output_path>/renders" + separator + "shot_frame" + n
			+ ".png</output_path>\n        <halt_time>60.000000</halt_time>\n"
			  "        <halt_spp>2.500000</halt_spp>\n        <seed>#</seed>\n    </item>\n";
	}
	EXPECT_EQ(queue, expected + "</render_queue>\n");
	EXPECT_EQ(launches(), 1u);
	EXPECT_EQ(launchedWith(),
		"-o\n/renders" + separator + "shot.png\n-vlio\n/renders" + separator + "shot.vli\n-uexro\n/renders" + separator
			+ "shot_untonemapped.exr\n-texro\n/renders" + separator + "shot_tonemapped.exr\n" + quickFile("quickrender.vlq")
			+ "\n");
}

// A range of one frame, by the render data's own rate, is no animation: no
// suffix, no queue. A rate of 0 counts at the document's. The quick render
// folder is emptied first.
TEST_F(RenderWithVelorn, SingleFrameAndRates)
{
	const struct
	{
		int32_t rate;
		int32_t to;
		std::vector<std::string> files;
	} cases[] = {
		{10, 2, {"quickrender.vls", "textures.quickrender"}},
		{0, 2, animationFiles(2)},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.rate);
		Velorn::FileUtils::createDirsForPath(quickDir());
		Velorn::FileUtils::writeEntireFile(quickFile("left over.vls"), std::string("old"));
		std::filesystem::remove(arguments());
		animate(0, c.to);
		document.doc->GetActiveRenderData()->GetDataInstance()->SetInt32(RDATA_FRAMERATE, c.rate);
		render();
		EXPECT_EQ(quickFiles(), c.files);
		EXPECT_EQ(launchedWith().substr(launchedWith().rfind("quickrender")), c.files[0] + "\n");
	}
	EXPECT_EQ(launches(), 2u);
}

// A cancel between frames leaves the frames written, no queue, no launch,
// and the document at its own time.
TEST_F(RenderWithVelorn, CancelBetweenFrames)
{
	struct CancelAfterTwo : ExportThread
	{
		CancelAfterTwo(BaseDocument* doc, std::string dir_) : ExportThread(doc), dir(std::move(dir_)) {}
		bool TestBreak() override
		{
			return Velorn::FileUtils::fileExists(dir + "/quickrender_frame000001.vls") || ExportThread::TestBreak();
		}
		std::string dir;
	};
	animate(0, 4);
	document.doc->SetTime(BaseTime(3, 30));
	CancelAfterTwo thread(document.doc, quickDir());
	ASSERT_TRUE(thread.Start());
	thread.Wait();
	EXPECT_EQ(thread.failed, 1);
	EXPECT_EQ(thread.error_text, String("Export was cancelled by user"));
	const std::vector<std::string> files = quickFiles();
	EXPECT_EQ(std::count_if(files.begin(), files.end(), [](const std::string& f) { return f.find(".vl") != std::string::npos; }), 2);
	EXPECT_EQ(launches(), 0u);
	EXPECT_EQ(document.doc->GetFrame(), 3);
}

// The key "x" in the dialog asks the thread to stop; the dialog then shows
// the cancel as a failure.
TEST_F(RenderWithVelorn, KeyCancelsTheExport)
{
	animate(0, 300);
	DialogScript::get().pushAction(DialogAction::key(String("x")));
	render();
	EXPECT_EQ(messages(), std::vector<String>{String("Export failed:\nExport was cancelled by user.")});
	EXPECT_FALSE(Velorn::FileUtils::fileExists(quickFile("quickrender.vlq")));
	EXPECT_EQ(launches(), 0u);
}

// Settings that cannot be followed end in the message box with the text of
// the failure; a missing renderer asks for its directory and closes.
TEST_F(RenderWithVelorn, Failures)
{
	BaseContainer& vp = document.videoPost();
	vp.SetBool(vp_custom_export, true);
	vp.SetBool(vp_use_document_dir, true);
	render();
	vp.SetBool(vp_use_document_dir, false);
	vp.SetFilename(vp_export_path, Filename("/no such folder/a.vls"));
	render();
	vp.SetBool(vp_custom_export, false);
	animate(5, 2);
	render();
	EXPECT_EQ(messages(), (std::vector<String>{String("Export failed:\nDocument is not saved, cannot obtain document path.."),
							  String("Export failed:\nExport filename is empty or directory does not exist.."),
							  String("Export failed:\nThe frame range ends before it starts (frames 5 to 2).")}));
	EXPECT_EQ(launches(), 0u);

	std::filesystem::remove(install.file("velorn.exe"));
	HostConsole::get().clear();
	render();
	const std::vector<DialogRequest> asked = DialogScript::get().requests();
	ASSERT_EQ(asked.size(), 1u);
	EXPECT_EQ(asked[0].kind, DialogRequest::Kind::Directory);
	EXPECT_TRUE(consoleLines().empty());
}
