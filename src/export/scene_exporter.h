#pragma once

#include "c4d/base_thread.h"
#include "c4d/hierarchy.h"
#include "c4d/host_clock.h"
#include "export/export_settings.h"
#include "host/plugin_version.h"

#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_root.h"

#include <cstdint>
#include <map>
#include <memory>

namespace Velorn
{
class Material;
class SceneNodeBackgroundSettings;
} // namespace Velorn

// The time the console reports for a stage that took ms milliseconds, in
// seconds ("1.25 s").
String elapsedTimeText(double ms);

// One export of one frame: turns the settings' document into a scene tree.
// Made, run once and destroyed per frame; the tree lives on for whoever
// holds the root.
//
// The export thread runs it through the host's object walk (run); in-host
// rendering and the realtime preview call exportScene directly.
class SceneExporter : public Hierarchy
{
public:
	explicit SceneExporter(ExportSettings* settings_ = nullptr) : settings(settings_) {}

	void setSettings(ExportSettings* settings_) { settings = settings_; }

	// Walks the document; the first object the walk reaches runs the export
	// and stops the walk. The root, or null without settings or document,
	// when the document has no object, or when the thread was stopped first.
	Velorn::Reference<Velorn::SceneNodeRoot> run(BaseThread* thread);
	// Builds the scene: metadata, settings, camera, background, tone
	// mapping, the driver's materials and the layers, reporting on the
	// console when verbose. Null without settings or document. The scene is
	// not written: the caller writes it under scene_file_name.
	Velorn::Reference<Velorn::SceneNodeRoot> exportScene();

	bool Do(void* data, BaseObject* op, const Matrix& mg, bool controlobject) override;

	// Not owned.
	ExportSettings* settings = nullptr;
	Velorn::Reference<Velorn::SceneNodeRoot> root;
	// By renderer layer index; null entries become default layers.
	Velorn::SceneNodeRenderSettings::LayerVector layer_settings;
	// Mesh nodes of this run by their checksum.
	std::map<uint32_t, Velorn::UID> mesh_map;
	// Meshes used again in this run.
	int32_t instance_count = 0;
	// The scene file name with its suffix.
	String scene_file_name;
	// Seeded from the host's timer for each run.
	std::unique_ptr<Random> random;

private:
	void report(const String& line) const;
	void addMetaData();
	// Sets or replaces the renderer layer at index, growing the list.
	void setLayer(size_t index, const String& name);
	bool exportBackground();
	void exportSunSky(Velorn::SceneNodeBackgroundSettings& node, const BaseContainer& vp);
	void makeDriverMaterials();
	// A material node of the driver; its UID.
	Velorn::UID addMaterial(const char* name, Velorn::Material* material);
	void exportLayers(Velorn::SceneNodeRenderSettings& node);
};
