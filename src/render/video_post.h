#pragma once

#include "c4d/c4d_string.h"
#include "c4d/filename.h"
#include "c4d/node_data.h"
#include "scene/scene_node_root.h"
#include "support/reference.h"

#include <cstdint>
#include <vector>

class Render;
class RenderContext;

// The renderer's video post: its parameters are the render settings of a
// document, which the export reads, and its Execute renders the document
// inside the host through the renderer's SDK library: export the document
// to a scene, build it in the renderer, poll it, tone map now and then, and
// copy the 8-bit picture into the host's render buffer.
class VelornVideoPost : public VideoPostData
{
public:
	static NodeData* Alloc() { return new VelornVideoPost(); }

	bool Init(GeListNode* node) override;
	int32_t Execute(BaseVideoPost* node, VideoPostStruct* vps) override;

	// Set when the preparing step could not build a scene.
	int32_t prepare_failed = 0;
	// The host's render buffer, and where the picture goes in it.
	int32_t frame_width = 0;
	int32_t frame_height = 0;
	int32_t offset_x = 0;
	int32_t offset_y = 0;
	int32_t image_width = 0;
	int32_t image_height = 0;
	// -1 is no such halt.
	double halt_spp = 0;
	double halt_time = 0;
	// Seconds of rendering to the next tone mapping.
	double tonemap_period = 0;
	// This render is a material preview.
	int32_t preview_mode = 0;
	// A picture viewer render that is not a preview: the pause and update
	// commands act on it.
	int32_t interactive = 0;
	// Cleared at every preparing step and set nowhere: kept for a faster
	// render mode to come.
	int32_t quick_mode = 0;
	Velorn::Reference<Velorn::SceneNodeRoot> scene_root;
	// Files the export made, deleted when the render ends.
	std::vector<Filename> temp_files;
	String scene_path;

private:
	int32_t prepare(BaseVideoPost* node, VideoPostStruct* vps);
	int32_t render(BaseVideoPost* node, VideoPostStruct* vps);
	int32_t finish();

	// What the render step works with, from its start to its end.
	struct RenderRun;
	// The poll loop; false when the renderer reported an error.
	bool renderLoop(RenderRun& run, VideoPostStruct* vps);
	// Takes the change marks of the tone mapping and settings nodes and
	// hands changed values to the tone mapper; true when one was marked.
	bool takeChangedNodes(RenderRun& run);
	// Reads the renderer's messages; false, each error posted, when one was
	// an error.
	bool drainMessages(RenderRun& run);
	// Copies the 8-bit picture into the host's buffer when the sizes fit.
	void copyToHost(RenderRun& run, Render* render);
};

// Registers the video post under its resource name.
bool RegisterVelornVideoPost();

// Shows a text to the user from any thread: it is posted to the main thread,
// whose message plug-in shows it in a message box.
void postMessage(const String& text);
