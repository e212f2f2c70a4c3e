#pragma once

#include "c4d/base_container.h"
#include "c4d/filename.h"

// The preview of a light tag's IES profile: the renderer renders a small
// template scene with the profile on its lamp into a picture, which the
// tag's gadget then shows.

// How a preview went.
enum class IesPreviewOutcome
{
	// No IES file is set: nothing was done.
	NoProfile,
	// The renderer is not found, even after asking the user for it.
	NoRenderer,
	// The template scene cannot be read, or not written back.
	NoTemplate,
	// The renderer did not start, or ended with an exit code other than 0.
	RendererFailed,
	// The renderer ended with exit code 0.
	Rendered,
};

// The template: "iespreview.vls" in the folder "preview" of the host's
// preference folder.
Filename iesPreviewScene();

// Puts the plug-in's template, the files of the folder "preview" in the
// module's res folder, into the folder "preview" of the host's preference
// folder, which is made. A file that is there already is kept, so that a
// template the user has edited stays his. False when the module has no
// such folder or a file cannot be copied.
bool installIesPreviewTemplate();

// A new picture file for a preview: "preview", the host's timer in decimal
// and ".png", in "Velorn for Cinema 4D" then "renders" of the host's
// preference folder, which is made. Each try waits a short random time
// (the host's random numbers seeded with 3123123), so that the timer moves
// on, until the name is not taken.
Filename chooseIesPreviewFile();

// Points every lamp of the template at ies_file: for each "model" element
// of the first "scene" element, the "path" of its first "ies_profile" is
// replaced by one holding ies_file. The file is saved back; false when it
// cannot be read or written.
bool writeIesPreviewScene(const Filename& scene, const Filename& ies_file);

// The preview of the tag whose parameters are data: chooses the picture
// file (kept in data) on the first run, finds the renderer, installs the
// template where files of it are missing, edits it and runs the renderer
// on it, waiting for it to end.
IesPreviewOutcome renderIesPreview(BaseContainer& data);
