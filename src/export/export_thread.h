#pragma once

#include "c4d/c4d_thread.h"
#include "c4d/filename.h"
#include "host/renderer_launch.h"

#include <cstdint>

class BaseContainer;
class BaseDocument;

// The thread of "Render with Velorn": decides where the scene goes,
// exports the document frame by frame, writes the render queue of an
// animation and starts the renderer. It reads and animates the live
// document while the export dialog holds the user's hands off it.
class ExportThread : public C4DThread
{
public:
	explicit ExportThread(BaseDocument* doc) : document(doc) {}
	~ExportThread() override { End(true); }

	String GetThreadName() const override { return String("VLS Export Thread"); }

	// Read by the dialog once the thread has ended: 1 for a failure (a
	// cancel included), with its text.
	int32_t failed = 0;
	String error_text;

protected:
	void Main() override;

private:
	// Where the export goes and what it covers.
	struct Plan
	{
		Filename scene_file;
		Filename output_file;
		bool console = false;
		int32_t merge_vertices = 1;
		RendererRequest renderer;
		int32_t from = 0;
		int32_t to = 0;
		int32_t fps = 30;
		int32_t is_animation = 0;
	};

	// Ends the run as failed, with text for the dialog and the console.
	void fail(const String& text, bool print = true);
	// The quick render folder, emptied; false (failed) when it cannot be made.
	bool prepareQuickDir(Filename& quick_dir);
	// The video post's choices: custom scene file, image output, the
	// animation's frames and the renderer's switches.
	bool readVideoPost(const BaseContainer& vp, Plan& plan);
	bool chooseSceneFile(const BaseContainer& vp, Plan& plan);
	bool chooseOutput(const BaseContainer& vp, Plan& plan);
	// The render data's frames; false (failed) for a range that ends before
	// it starts.
	bool chooseFrames(Plan& plan);
	// Exports every frame; false when cancelled.
	bool exportFrames(Plan& plan);

	BaseDocument* document;
};
