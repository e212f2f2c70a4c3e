#include "cli/sample_scene.h"

#include "scene/channel_params.h"
#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_other.h"
#include "scene/materials_glass.h"
#include "scene/rotation.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_medium.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_metadata.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_parametric_surface.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_scatter.h"
#include "scene/scene_node_section_plane.h"
#include "scene/scene_node_sphere.h"
#include "scene/scene_node_tonemapping.h"
#include "scene/wavelength_values.h"
#include "support/file_utils.h"

#include <cmath>

namespace Velorn
{

namespace
{

Reference<WavelengthDependentParam> colour(double r, double g, double b)
{
	return new ConstantWavelengthDependentParam(new RGBSpectrum(Vec3d(r, g, b), 2.2));
}

Reference<SceneNodeMaterial> addMaterial(SceneNodeRoot& root, Material* material, const char* name)
{
	Reference<SceneNodeMaterial> node(new SceneNodeMaterial(material));
	node->setName(name);
	root.addChildNode(node);
	return node;
}

// A unit box from -0.5 to 0.5 with one UV set and a normal per corner of
// each face, its six faces as quads of material 0.
Reference<Mesh> boxMesh()
{
	Reference<Mesh> mesh(new Mesh());
	mesh->setMaxNumUVMappings(1);
	mesh->addMaterialUsed("surface");
	const Vec2f corner_uvs[4] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
	for(const Vec2f& uv : corner_uvs)
		mesh->addUVs(Vector<Vec2f>{uv});
	for(int axis = 0; axis < 3; ++axis)
		for(float side : {-0.5f, 0.5f})
		{
			// Two axes span the face. The corners are laid out counter-clockwise
			// seen from outside; the quad takes them the other way round, since
			// a scene's polygon runs clockwise seen from its front.
			const int u = (axis + 1) % 3, v = (axis + 2) % 3;
			const float su[4] = {-0.5f, 0.5f, 0.5f, -0.5f};
			const float sv[4] = {-0.5f, -0.5f, 0.5f, 0.5f};
			const uint32_t first = (uint32_t)mesh->verts.size();
			for(int c = 0; c < 4; ++c)
			{
				float p[3], n[3] = {0, 0, 0};
				p[axis] = side;
				p[u] = su[c];
				p[v] = side > 0 ? sv[c] : -sv[c];
				n[axis] = side > 0 ? 1.f : -1.f;
				mesh->addVertex(Vec3f{p[0], p[1], p[2]}, Vec3f{n[0], n[1], n[2]});
			}
			const uint32_t quad[4] = {first, first + 3, first + 2, first + 1};
			const uint32_t uvs[4] = {0, 3, 2, 1};
			mesh->addQuad(quad, uvs, 0);
		}
	mesh->endOfModel();
	return mesh;
}

Reference<SceneNodeModel> placeModel(SceneNodeRoot& root, const Reference<SceneNodeMesh>& mesh, const Reference<SceneNodeMaterial>& material,
	const Vec3d& position, double angle)
{
	Reference<SceneNodeModel> model(new SceneNodeModel());
	model->rotation = new AxisRotation(Vec3d(0, 0, 1), angle);
	KeyFrame placement;
	placement.pos = position;
	placement.rotation_axis = Vec3d(0, 0, 1);
	model->keyframes.push_back(placement);
	model->setGeometry(mesh);
	model->materials.push_back(material);
	root.addChildNode(model);
	return model;
}

void addViewNodes(SceneNodeRoot& root)
{
	Reference<SceneNodeMetaData> metadata(new SceneNodeMetaData());
	metadata->exporter = "velorn sample";
	metadata->description = "A box twice, a glass sphere and a scatter of boxes under the sun.";
	root.addChildNode(metadata);

	Reference<SceneNodeRenderSettings> settings = SceneNodeRenderSettings::getDefaults();
	settings->setInt("width", 640);
	settings->setInt("height", 480);
	settings->setDouble("halt_samples_per_pixel", 64);
	root.addChildNode(settings);

	Reference<SceneNodeCamera> camera(new SceneNodeCamera());
	KeyFrame eye;
	eye.pos = Vec3d(0, -6, 1.5);
	camera->keyframes.push_back(eye);
	camera->forwards = Vec3d(0, 0.97, -0.24);
	camera->focus_distance = 6;
	camera->aperture_shape = new ApertureGenerated(6, 0.1, 0.2, 0);
	root.addChildNode(camera);

	root.addChildNode(new SceneNodeTonemapping(1.0, 1.0, 6.0));

	Reference<SceneNodeBackgroundSettings> background(new SceneNodeBackgroundSettings());
	Reference<SunSkyMaterial> sky(new SunSkyMaterial());
	sky->name = "Sun and sky";
	sky->sundir = Vec3d(0.4, -0.3, 0.87);
	background->background_material = sky;
	root.addChildNode(background);
}

} // namespace

Reference<SceneNodeRoot> buildSampleScene()
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	addViewNodes(*root);

	Reference<SceneNodeMedium> glass_medium(new SceneNodeMedium());
	glass_medium->setName("Glass inside");
	root->addChildNode(glass_medium);

	Reference<DiffuseMaterial> clay(new DiffuseMaterial());
	clay->albedo = colour(0.8, 0.6, 0.4);
	Reference<SceneNodeMaterial> clay_node = addMaterial(*root, clay.getPointer(), "Clay");

	Reference<PhongMaterial> varnish(new PhongMaterial());
	varnish->diffuse_albedo = colour(0.1, 0.2, 0.5);
	Reference<SceneNodeMaterial> varnish_node = addMaterial(*root, varnish.getPointer(), "Varnish");

	Reference<BlendMaterial> blend(new BlendMaterial());
	blend->a_mat = clay_node;
	blend->b_mat = varnish_node;
	Reference<SceneNodeMaterial> blend_node = addMaterial(*root, blend.getPointer(), "Clay and varnish");

	Reference<SpecularMaterial> glass(new SpecularMaterial());
	glass->internal_medium = glass_medium;
	glass->transparent = true;
	Reference<SceneNodeMaterial> glass_node = addMaterial(*root, glass.getPointer(), "Glass");

	Reference<SceneNodeMesh> box(new SceneNodeMesh());
	box->setMesh(boxMesh());
	root->addChildNode(box);
	placeModel(*root, box, blend_node, Vec3d(-1.2, 0, 0.5), 0.3);
	Reference<SceneNodeModel> second = placeModel(*root, box, clay_node, Vec3d(1.2, 0.5, 0.5), -0.2);

	Reference<SceneNodeSphere> sphere(new SceneNodeSphere());
	sphere->radius = 0.6;
	KeyFrame at;
	at.pos = Vec3d(0, 1.5, 0.6);
	sphere->keyframes.push_back(at);
	sphere->material = glass_node;
	root->addChildNode(sphere);

	Reference<SceneNodeParametricSurface> ground(new SceneNodeParametricSurface());
	ground->shader = "def eval(vec2 uv) vec3 : vec3((uv.x - 0.5) * 20.0, (uv.y - 0.5) * 20.0, 0.0)";
	ground->num_u = 2;
	ground->num_v = 2;
	root->addChildNode(ground);

	Reference<SceneNodeScatter> pebbles(new SceneNodeScatter());
	pebbles->shader = "def density(vec3 pos) real : 1.0";
	pebbles->density = 3;
	pebbles->seed = 7;
	pebbles->geometry_uid = box->uid;
	pebbles->material_uids.push_back(clay_node->uid);
	pebbles->target_object_uid = second->uid;
	root->addChildNode(pebbles);
	clay_node->scatter_uids.push_back(pebbles->uid);

	Reference<SceneNodeSectionPlane> cut(new SceneNodeSectionPlane());
	cut->setName("Cut");
	cut->point = Vec3d(0, 0, 0.9);
	cut->normal = Vec3d(0, 0, -1);
	cut->enabled = false;
	root->addChildNode(cut);
	return root;
}

std::string writeSampleScene(const std::string& dir)
{
	// Mesh files are named in the scene by their full path, so the scene's
	// own path is made absolute for the file to be readable from anywhere.
	FileUtils::createDirsForPath(dir);
	const std::string path = FileUtils::join(FileUtils::makeAbsolute(dir), "sample.vls");
	Reference<SceneNodeRoot> root = buildSampleScene();
	root->finalise(path);
	root->validate();
	root->writeToFile(path, false, nullptr);
	return path;
}

} // namespace Velorn
