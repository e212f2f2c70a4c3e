#pragma once

#include "c4d/base_document.h"
#include "c4d/filename.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

// A scene that a material plug-in offers for its previews.
struct PreviewScene
{
	String name;
	Filename file;
	// Owned by the host's preview scenes until they are cleared.
	const BaseDocument* document;
};

// The preview scenes of the material plug-ins, by plug-in id, with their
// documents loaded. Plug-ins add them at start-up on the main thread and
// previews read them on the preview thread: every member locks.
class PreviewScenes
{
public:
	// The host's one set.
	static PreviewScenes& get();

	// Loads file as a document and adds it to the scenes of plugin_id under
	// name, or under the file's name when name is null. False, with nothing
	// added, when the file cannot be read as a document.
	bool add(const Filename& file, int32_t plugin_id, const String* name);
	// The scenes of plugin_id, in the order they were added.
	std::vector<PreviewScene> of(int32_t plugin_id) const;
	// Frees every scene's document.
	void clear();

private:
	struct FreeDocument
	{
		void operator()(BaseDocument* doc) const { BaseDocument::Free(doc); }
	};
	struct Stored
	{
		String name;
		Filename file;
		std::unique_ptr<BaseDocument, FreeDocument> document;
	};

	mutable std::mutex mutex;
	std::map<int32_t, std::vector<Stored>> scenes;
};

// PreviewScenes::add of the host's scenes.
bool AddUserPreviewScene(const Filename& file, int32_t plugin_id, String* name);
