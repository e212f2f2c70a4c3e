#include "c4d/preview_scenes.h"

#include "c4d/document_file.h"

PreviewScenes& PreviewScenes::get()
{
	static PreviewScenes preview_scenes;
	return preview_scenes;
}

bool PreviewScenes::add(const Filename& file, int32_t plugin_id, const String* name)
{
	Stored scene{name ? *name : file.GetFile().GetString(), file, nullptr};
	try
	{
		scene.document.reset(LoadDocumentFile(file));
	}
	catch(const Velorn::MessageException&)
	{
		return false;
	}
	std::lock_guard<std::mutex> lock(mutex);
	scenes[plugin_id].push_back(std::move(scene));
	return true;
}

std::vector<PreviewScene> PreviewScenes::of(int32_t plugin_id) const
{
	std::lock_guard<std::mutex> lock(mutex);
	std::vector<PreviewScene> out;
	const auto found = scenes.find(plugin_id);
	if(found != scenes.end())
		for(const Stored& scene : found->second)
			out.push_back({scene.name, scene.file, scene.document.get()});
	return out;
}

void PreviewScenes::clear()
{
	std::lock_guard<std::mutex> lock(mutex);
	scenes.clear();
}

bool AddUserPreviewScene(const Filename& file, int32_t plugin_id, String* name)
{
	return PreviewScenes::get().add(file, plugin_id, name);
}
