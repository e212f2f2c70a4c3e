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
class Mesh;
class SceneNodeBackgroundSettings;
class SceneNodeMaterial;
class SceneNodeModel;
} // namespace Velorn

class BaseMaterial;
class PolygonObject;
class TextureTag;
struct MaterialContext;

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
	// Polygon objects that only serve as the shape of an area light.
	std::vector<BaseObject*> excluded_objects;
	// Mesh nodes of this run by their checksum.
	std::map<uint32_t, Velorn::UID> mesh_map;
	// The objects above the one being visited, topmost first.
	std::vector<BaseObject*> object_stack;
	// Models made, by the object of the document they come from.
	std::map<BaseObject*, Velorn::UID> model_map;
	// 0: section planes and the shapes of area lights; 1: everything else.
	int32_t pass = 0;
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
	bool exportEnvironment(Velorn::SceneNodeBackgroundSettings& node, const BaseContainer& vp);
	void makeDriverMaterials();
	// A material node of the driver; its UID.
	Velorn::UID addMaterial(const char* name, Velorn::Material* material);
	void exportLayers(Velorn::SceneNodeRenderSettings& node);

	// The object walk: both passes over the document's objects.
	void exportObjects();
	void walkObjects(BaseObject* op, const Matrix& parent_mg, bool single, bool visible, bool invisible_to_camera);
	void walkObject(BaseObject* op, const Matrix& mg, bool visible, bool invisible_to_camera);
	// What becomes of one object by its kind: an analytic sphere, a render
	// instance, its caches walked, or the object itself.
	void walkKind(BaseObject* op, const Matrix& mg, bool vis, bool visible_now, bool invisible_to_camera);
	bool sphereStaysAnalytic(const BaseObject& sphere, const Matrix& mg) const;
	void exportObject(BaseObject* op, const Matrix& mg, bool visible_now, bool camera_dependent, bool invisible_to_camera);
	void excludeAreaLightShape(BaseObject* light);
	void exportInstance(BaseObject* instance, const Matrix& mg, bool invisible_to_camera);
	void exportSectionPlane(BaseObject* op, const Matrix& mg);
	void exportPolygonObject(PolygonObject* op, const Matrix& mg, bool invisible_to_camera);
	// The UID of the mesh node of op's geometry in this run, made or shared
	// (invalid for an object without polygons); the context gets the UIDs of
	// its materials.
	Velorn::UID meshNodeOf(PolygonObject* op, bool is_light, MaterialContext& context);
	void exportExitPortal(BaseObject* op, Velorn::UID mesh, size_t material_count, const Matrix& mg);
	// Adds the model to the root under the object the model comes from.
	void addModel(BaseObject* op, const Velorn::Reference<Velorn::SceneNodeModel>& model);
	// Keyframes over the exposure under a motion blur tag, else one at time 0
	// with the static rotation.
	void placeModel(Velorn::SceneNodeModel& model, BaseObject* op, const Matrix& mg, bool allow_motion_blur);
	// A model of the mesh named after op, with its materials.
	Velorn::Reference<Velorn::SceneNodeModel> makeModel(
		BaseObject* op, Velorn::UID mesh, const std::vector<Velorn::UID>& materials, bool invisible_to_camera);

	// Lights.
	void makeLightMaterial(BaseObject* light);
	bool exportLight(BaseObject* light, const Matrix& mg, bool invisible_to_camera);
	bool exportAreaLight(BaseObject* light, const Matrix& mg, bool invisible_to_camera);
	bool exportShapeMesh(PolygonObject* shape, int32_t mode, BaseObject* light, const Matrix& mg,
		bool invisible_to_camera);
	void exportShapeModel(PolygonObject* shape, Velorn::UID mesh, int32_t mode, BaseObject* light,
		size_t material_count, bool invisible_to_camera, const Matrix& mg);
	void addLightTagEmission(Velorn::SceneNodeModel& model, const BaseTag& tag);
	// A sphere of radius in host units at mg; object's motion blur tag and
	// texture tag apply.
	bool exportSphere(BaseObject* object, const Matrix& mg, bool is_light, double radius);
	// Exports the material through the installed material export, which
	// enters it in the settings' material map; nothing without one.
	void exportMaterial(BaseMaterial* material);
	// The UID of the texture tag's material if it has been exported, else
	// the default material.
	Velorn::UID materialOf(const TextureTag* texture_tag) const;
};
