#include "export/scene_exporter.h"

#include "c4d/base_document.h"
#include "c4d/console.h"
#include "c4d/light_object.h"
#include "c4d/polygon_object.h"
#include "c4d/primitives.h"
#include "c4d/texture_tag.h"
#include "export/host_space.h"
#include "export/material_hooks.h"
#include "export/mesh_exporter.h"
#include "export/motion_blur_export.h"
#include "host/plugin_ids.h"
#include "scene/materials_basic.h"
#include "scene/rotation.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_section_plane.h"

#include <algorithm>
#include <cmath>

namespace
{

// Parameters of the objects the walk handles.
enum
{
	INSTANCEOBJECT_LINK = 1001,
	INSTANCEOBJECT_RENDERINSTANCE = 1002,
	VELORN_INSTANCE_LINK = 10000,
	SECTION_PLANE_CULL_GEOMETRY = 10016,
};

bool cameraDependent(const BaseObject& op)
{
	return (op.GetInfo() & OBJECT_CAMERADEPENDENT) != 0;
}

BaseObject* objectLink(const BaseObject& op, int32_t id)
{
	return dynamic_cast<BaseObject*>(op.GetDataInstance()->GetLink(id));
}

// Whether op lies below target (or is target), through parents and the
// generators of caches.
bool insideOf(const BaseObject* op, const BaseObject* target)
{
	for(; op; op = objectAbove(op))
		if(op == target)
			return true;
	return false;
}

// The rotation of a static placement: the host axes with y and z exchanged.
Velorn::Reference<Velorn::Rotation> staticRotation(const Matrix& mg)
{
	Velorn::Matrix3d m;
	const double rows[9] = {mg.v1.x, mg.v3.x, mg.v2.x, mg.v1.z, mg.v3.z, mg.v2.z, mg.v1.y, mg.v3.y, mg.v2.y};
	std::copy(rows, rows + 9, m.e);
	return new Velorn::MatrixRotation(m);
}

// Only the scale of mg, for a model whose keyframes hold the rotation.
Velorn::Reference<Velorn::Rotation> scaleRotation(const Matrix& mg)
{
	Velorn::Matrix3d m;
	m.e[0] = mg.v1.GetLength();
	m.e[4] = mg.v3.GetLength();
	m.e[8] = mg.v2.GetLength();
	return new Velorn::MatrixRotation(m);
}

} // namespace

Velorn::UID SceneExporter::materialOf(const TextureTag* tag) const
{
	const auto found = tag ? settings->material_map.find(tag->GetMaterial()) : settings->material_map.end();
	return found != settings->material_map.end() && found->second.valid() ? found->second : settings->default_material;
}

void SceneExporter::exportMaterial(BaseMaterial* material)
{
	const MaterialExportHooks* hooks = GetMaterialExportHooks();
	if(material && hooks && hooks->exportMaterial)
		hooks->exportMaterial(material, *root, *settings);
}

void SceneExporter::exportObjects()
{
	BaseObject* first = settings->document->GetFirstObject();
	excluded_objects.clear();
	object_stack.clear();
	model_map.clear();

	pass = 0;
	walkObjects(first, Matrix(), false, true, false);

	object_stack.clear();
	pass = 1;
	report("Exporting materials, objects and lights...");
	const double start = GeGetMilliSeconds();
	walkObjects(first, Matrix(), false, true, false);
	settings->material_map.clear();
	report("Object export time: " + elapsedTimeText(GeGetMilliSeconds() - start));
	report("Instances exported: " + String::IntToString(instance_count));
	report("");
}

void SceneExporter::walkObjects(
	BaseObject* op, const Matrix& parent_mg, bool single, bool visible, bool invisible_to_camera)
{
	for(; op; op = op->GetNext())
	{
		if(single)
		{
			walkObject(op, parent_mg, visible, invisible_to_camera);
			return;
		}
		object_stack.push_back(op);
		walkObject(op, parent_mg * op->GetMl(), visible, invisible_to_camera);
		object_stack.pop_back();
	}
}

void SceneExporter::walkObject(BaseObject* op, const Matrix& mg, bool visible, bool invisible_to_camera)
{
	if(const BaseTag* compositing = op->GetTag(ID_COMPOSITING_TAG))
		invisible_to_camera = compositing->GetDataInstance()->GetBool(cmp_invisible_to_camera);

	// An undefined render mode keeps what the parent handed down.
	bool vis = visible;
	if(op->GetRenderMode() == MODE_ON)
		vis = true;
	else if(op->GetRenderMode() != MODE_UNDEF)
		vis = false;

	// The layer hides this object only; its children are walked as they are.
	const LayerData* layer = op->GetLayerData(settings->document);
	const bool visible_now = vis && (!layer || layer->render);

	if(op->GetType() != Oskipped)
		walkKind(op, mg, vis, visible_now, invisible_to_camera);

	if(BaseObject* child = op->GetDown())
		walkObjects(child, mg, false, vis, invisible_to_camera);
}

void SceneExporter::walkKind(
	BaseObject* op, const Matrix& mg, bool vis, bool visible_now, bool invisible_to_camera)
{
	BaseObject* cache = op->GetCache();
	if(op->GetType() == Osphere && cache && !cache->GetDeformCache())
	{
		if(sphereStaysAnalytic(*op, mg))
			exportObject(op, mg, visible_now, cameraDependent(*op), invisible_to_camera);
		else
			exportObject(cache, mg, visible_now, cameraDependent(*op) && cameraDependent(*cache), invisible_to_camera);
	}
	else if(op->GetType() == Oinstance && op->GetDataInstance()->GetBool(INSTANCEOBJECT_RENDERINSTANCE))
		exportObject(op, mg, visible_now, cameraDependent(*op), invisible_to_camera);
	else if(BaseObject* deformed = op->GetDeformCache())
		walkObjects(deformed, mg, false, vis, invisible_to_camera);
	else if(cache)
		walkObjects(cache, mg, false, vis, invisible_to_camera);
	else
		exportObject(op, mg, visible_now, cameraDependent(*op), invisible_to_camera);
}

bool SceneExporter::sphereStaysAnalytic(const BaseObject& sphere, const Matrix& mg) const
{
	const double scale = mg.v1.GetLength();
	const bool uniform =
		std::fabs(mg.v2.GetLength() - scale) < 1e-7 && std::fabs(mg.v3.GetLength() - scale) < 1e-7;
	const BaseContainer* data = sphere.GetDataInstance();
	return uniform && data->GetBool(PRIM_SPHERE_PERFECT) && data->GetInt32(PRIM_SPHERE_TYPE) != PRIM_SPHERE_TYPE_HEMISPHERE &&
		   !settings->gpu;
}

void SceneExporter::exportObject(
	BaseObject* op, const Matrix& mg, bool visible_now, bool camera_dependent, bool invisible_to_camera)
{
	if(!op || camera_dependent || !visible_now)
		return;
	const int32_t type = op->GetType();
	if(pass == 0)
	{
		if(type == Olight)
			excludeAreaLightShape(op);
		else if(type == ID_SECTION_PLANE)
			exportSectionPlane(op, mg);
		return;
	}
	if(type != Olight && op->GetTag(ID_LIGHT_TAG))
		GePrint("Skipped the light tag of '" + op->GetName() + "': the object is no light.");
	switch(type)
	{
	case Opolygon:
		if(std::find(excluded_objects.begin(), excluded_objects.end(), op) == excluded_objects.end())
			exportPolygonObject(static_cast<PolygonObject*>(op), mg, invisible_to_camera);
		break;
	case Olight:
		if(op->GetDeformMode())
			exportLight(op, mg, invisible_to_camera);
		break;
	case Osphere:
		exportSphere(op, mg, false, op->GetDataInstance()->GetFloat(PRIM_SPHERE_RAD));
		break;
	case Oinstance:
	case ID_VELORN_INSTANCE:
		exportInstance(op, mg, invisible_to_camera);
		break;
	default:
		break;
	}
}

void SceneExporter::excludeAreaLightShape(BaseObject* light)
{
	const BaseContainer* data = light->GetDataInstance();
	if(data->GetInt32(LIGHT_TYPE) != LIGHT_TYPE_AREA ||
		data->GetInt32(LIGHT_AREADEFINITION_SHAPE) != LIGHT_AREADEFINITION_SHAPE_OBJECT)
		return;
	BaseObject* shape = objectLink(*light, LIGHT_AREADEFINITION_OBJECT);
	if(shape && shape->GetType() == Opolygon)
		excluded_objects.push_back(shape);
}

void SceneExporter::exportInstance(BaseObject* instance, const Matrix& mg, bool invisible_to_camera)
{
	const int32_t link = instance->GetType() == Oinstance ? INSTANCEOBJECT_LINK : VELORN_INSTANCE_LINK;
	BaseObject* target = objectLink(*instance, link);
	// An instance inside its own target would repeat itself without end.
	if(!target || insideOf(instance, target) || !instance->GetDeformMode())
		return;
	walkObjects(target, mg, true, true, invisible_to_camera);
}

void SceneExporter::exportSectionPlane(BaseObject* op, const Matrix& mg)
{
	Velorn::Reference<Velorn::SceneNodeSectionPlane> plane = new Velorn::SceneNodeSectionPlane();
	plane->point = swapYZ(mg.off * settings->scale);
	plane->normal = swapYZ(mg.v3);
	plane->enabled = true;
	plane->cull_geometry = op->GetDataInstance()->GetBool(SECTION_PLANE_CULL_GEOMETRY);
	plane->object_list_type = Velorn::SceneNodeSectionPlane::Exclude;
	root->addChildNode(plane);
}

Velorn::UID SceneExporter::meshNodeOf(PolygonObject* op, bool is_light, MaterialContext& context)
{
	std::vector<TextureMaterial> materials;
	listTextureMaterials(op, materials);
	const uint32_t checksum = meshChecksum(op, materials, is_light, settings->scale);
	MeshExporter exporter;
	const auto found = mesh_map.find(checksum);
	if(found != mesh_map.end())
	{
		exporter.rebuildMaterialList(op, is_light, context);
		++instance_count;
		return found->second;
	}
	Velorn::Reference<Velorn::Mesh> mesh = exporter.build(settings->document, op, settings->scale, is_light,
		settings->merge_vertices != 0, settings->verbose != 0, context);
	const Velorn::UID uid = makeMeshNode(op, mesh, settings->merge_vertices, *root)->uid;
	mesh_map[checksum] = uid;
	return uid;
}

void SceneExporter::exportPolygonObject(PolygonObject* op, const Matrix& mg, bool invisible_to_camera)
{
	if(op->GetPolygonCount() == 0)
		return;
	// The materials go into the map first, so that the mesh's stages find
	// their nodes.
	std::vector<TextureMaterial> materials;
	listTextureMaterials(op, materials);
	for(const TextureMaterial& m : materials)
		exportMaterial(m.material);
	MaterialContext context(*settings);
	const Velorn::UID mesh = meshNodeOf(op, false, context);

	if(const BaseTag* portal = op->GetTag(ID_EXIT_PORTAL_TAG))
	{
		// A switched-off portal takes the object out of the scene.
		if(portal->GetDataInstance()->GetBool(ep_enabled))
			exportExitPortal(op, mesh, context.material_uids.size(), mg);
		return;
	}
	Velorn::Reference<Velorn::SceneNodeModel> model = makeModel(op, mesh, context.material_uids, invisible_to_camera);
	placeModel(*model, op, mg, true);
	// Emitting materials of the plug-in may scale their emission and shape
	// their light with a measured profile per model.
	const MaterialExportHooks* hooks = GetMaterialExportHooks();
	for(const TextureMaterial& m : materials)
	{
		const auto found = settings->material_map.find(m.material);
		if(!hooks || found == settings->material_map.end() || !found->second.valid())
			continue;
		if(Velorn::Reference<Velorn::EmissionScale> scale = hooks->emissionScale(*m.material))
		{
			scale->material_uid = found->second;
			model->emission_scales.push_back(scale);
		}
		if(Velorn::Reference<Velorn::IESProfile> profile = hooks->iesProfile(*m.material, settings->export_dir))
		{
			profile->material_uid = found->second;
			model->ies_profiles.push_back(profile);
		}
	}
	addModel(op, model);
}

void SceneExporter::exportExitPortal(BaseObject* op, Velorn::UID mesh, size_t material_count, const Matrix& mg)
{
	if(!settings->exit_portal_material.valid())
		settings->exit_portal_material = addMaterial("Exit Portal", new Velorn::ExitPortalMaterial());
	const std::vector<Velorn::UID> materials(material_count, settings->exit_portal_material);
	Velorn::Reference<Velorn::SceneNodeModel> model = makeModel(op, mesh, materials, false);
	placeModel(*model, op, mg, false);
	addModel(op, model);
}

Velorn::Reference<Velorn::SceneNodeModel> SceneExporter::makeModel(
	BaseObject* op, Velorn::UID mesh, const std::vector<Velorn::UID>& materials, bool invisible_to_camera)
{
	Velorn::Reference<Velorn::SceneNodeModel> model = new Velorn::SceneNodeModel();
	model->setName(Velorn::String(op->GetName().GetStdString()));
	model->invisible_to_camera = invisible_to_camera;
	model->setGeometryUID(mesh);
	Velorn::Vector<Velorn::UID> uids;
	for(Velorn::UID uid : materials)
		uids.push_back(uid);
	model->setMaterialUIDs(uids);
	return model;
}

void SceneExporter::placeModel(Velorn::SceneNodeModel& model, BaseObject* op, const Matrix& mg, bool allow_motion_blur)
{
	if(allow_motion_blur && exportMotionBlur(model.keyframes, op, mg, *settings, object_stack, Vector()))
	{
		model.rotation = scaleRotation(mg);
		return;
	}
	Velorn::KeyFrame key;
	key.pos = swapYZ(mg.off * settings->scale);
	key.rotation_axis = Velorn::Vec3d(0, 0, 1);
	model.keyframes.clear();
	model.keyframes.push_back(key);
	model.rotation = staticRotation(mg);
}

void SceneExporter::addModel(BaseObject* op, const Velorn::Reference<Velorn::SceneNodeModel>& model)
{
	root->addChildNode(model);
	BaseObject* origin = op->GetOrigin(true);
	if(!origin)
		origin = op->GetCacheParent();
	model_map[origin ? origin : op] = model->uid;
}
