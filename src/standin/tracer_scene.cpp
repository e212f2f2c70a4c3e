#include "standin/tracer_scene.h"

#include "mesh/mesh.h"
#include "mesh/model_decoder.h"
#include "scene/rotation.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_root.h"
#include "scene/scene_node_sphere.h"
#include "support/exceptions.h"

#include <cmath>
#include <limits>

namespace Velorn
{
namespace Standin
{

namespace
{

// The largest final picture side this renderer accepts.
const int32_t max_image_side = 16384;
// Offset of a new ray's origin from the surface it leaves.
const float ray_epsilon = 1e-4f;

V3 toV3(const Vec3d& v) { return V3((float)v.x, (float)v.y, (float)v.z); }

V3 mul(const Matrix3d& m, const V3& v)
{
	return V3((float)(m.e[0] * v.x + m.e[1] * v.y + m.e[2] * v.z), (float)(m.e[3] * v.x + m.e[4] * v.y + m.e[5] * v.z),
		(float)(m.e[6] * v.x + m.e[7] * v.y + m.e[8] * v.z));
}

// The cofactor matrix: it carries normals as the inverse transpose does, up
// to a positive factor for orientation-keeping transforms.
Matrix3d cofactor(const Matrix3d& m)
{
	const double* a = m.e;
	Matrix3d c;
	c.e[0] = a[4] * a[8] - a[5] * a[7];
	c.e[1] = a[5] * a[6] - a[3] * a[8];
	c.e[2] = a[3] * a[7] - a[4] * a[6];
	c.e[3] = a[2] * a[7] - a[1] * a[8];
	c.e[4] = a[0] * a[8] - a[2] * a[6];
	c.e[5] = a[1] * a[6] - a[0] * a[7];
	c.e[6] = a[1] * a[5] - a[2] * a[4];
	c.e[7] = a[2] * a[3] - a[0] * a[5];
	c.e[8] = a[0] * a[4] - a[1] * a[3];
	return c;
}

// Where the path that this thread traces counts its rays; null outside
// radiance.
struct PathLog
{
	RayCounts* counts;
	std::vector<CastRay>* record;
};
thread_local PathLog* path_log = nullptr;

// What Embree's callbacks learn of a ray beyond the ray itself.
struct RayContext
{
	RTCIntersectContext embree;
	bool camera_ray;
};

// Only the tracer's own calls pass a RayContext: ask only where a section
// plane needs the answer.
bool isCameraRay(const RTCIntersectContext* context)
{
	return reinterpret_cast<const RayContext*>(context)->camera_ray;
}

// Appends the mesh's vertices placed by the model's matrix and then by a
// placement of its path.
void placeVertices(const Mesh& mesh, const Matrix3d& model_matrix, const Placement& placement, std::vector<V3>& out)
{
	const Matrix3d m = placement.rotation * model_matrix;
	const V3 offset = toV3(placement.position);
	out.reserve(out.size() + mesh.verts.size());
	for(const Vec3f& v : mesh.verts)
		out.push_back(mul(m, V3(v.x, v.y, v.z)) + offset);
}

// How a triangle's surface moves with its texture coordinates; false when
// its coordinates do not span a plane.
bool uvDerivatives(const V3& p0, const V3& p1, const V3& p2, const float* uv, V3& dpdu, V3& dpdv)
{
	const float du1 = uv[2] - uv[0], dv1 = uv[3] - uv[1], du2 = uv[4] - uv[0], dv2 = uv[5] - uv[1];
	const float det = du1 * dv2 - du2 * dv1;
	if(std::fabs(det) < 1e-12f)
		return false;
	const V3 e1 = p1 - p0, e2 = p2 - p0;
	dpdu = (e1 * dv2 - e2 * dv1) * (1 / det);
	dpdv = (e2 * du1 - e1 * du2) * (1 / det);
	return true;
}

// A vector turned by the transpose of m (its inverse, for a rotation).
V3 mulTransposed(const Matrix3d& m, const V3& v)
{
	return V3((float)(m.e[0] * v.x + m.e[3] * v.y + m.e[6] * v.z), (float)(m.e[1] * v.x + m.e[4] * v.y + m.e[7] * v.z),
		(float)(m.e[2] * v.x + m.e[5] * v.y + m.e[8] * v.z));
}

int32_t readInt(const SceneNodeRenderSettings& s, const char* key, int32_t fallback)
{
	return s.settings.contains(key) ? s.getInt(key) : fallback;
}

} // namespace

// The spheres as an Embree user geometry.
struct SphereCallbacks
{
	static void bounds(const RTCBoundsFunctionArguments* args)
	{
		const auto* scene = static_cast<const TracerScene*>(args->geometryUserPtr);
		const PlacedSphere& s = scene->spheres[args->primID];
		const V3 c = s.step_centres.empty() ? s.centre : s.step_centres[args->timeStep];
		args->bounds_o->lower_x = c.x - s.radius;
		args->bounds_o->lower_y = c.y - s.radius;
		args->bounds_o->lower_z = c.z - s.radius;
		args->bounds_o->upper_x = c.x + s.radius;
		args->bounds_o->upper_y = c.y + s.radius;
		args->bounds_o->upper_z = c.z + s.radius;
	}

	// The nearest root of |o + t d - c| = r within (tnear, tfar) that no
	// section plane cuts away, or a negative value; c is the centre at the
	// ray's time.
	static float hitDistance(const TracerScene& scene, const PlacedSphere& s, const V3& centre, const V3& o, const V3& d,
		float tnear, float tfar, bool camera_ray)
	{
		const V3 oc = o - centre;
		const float a = dot(d, d);
		const float b = dot(oc, d);
		const float c = dot(oc, oc) - s.radius * s.radius;
		const float disc = b * b - a * c;
		if(disc < 0)
			return -1;
		const float root = std::sqrt(disc);
		for(const float t : {(-b - root) / a, (-b + root) / a})
			if(t > tnear && t < tfar &&
				(s.section_mask == 0 || !scene.section_planes.cutsAway(s.section_mask, o + d * t, camera_ray)))
				return t;
		return -1;
	}

	static void intersect(const RTCIntersectFunctionNArguments* args)
	{
		const auto* scene = static_cast<const TracerScene*>(args->geometryUserPtr);
		const PlacedSphere& s = scene->spheres[args->primID];
		RTCRayN* rays = RTCRayHitN_RayN(args->rayhit, args->N);
		RTCHitN* hits = RTCRayHitN_HitN(args->rayhit, args->N);
		for(unsigned i = 0; i < args->N; ++i)
		{
			if(!args->valid[i])
				continue;
			const V3 o(RTCRayN_org_x(rays, args->N, i), RTCRayN_org_y(rays, args->N, i), RTCRayN_org_z(rays, args->N, i));
			const V3 d(RTCRayN_dir_x(rays, args->N, i), RTCRayN_dir_y(rays, args->N, i), RTCRayN_dir_z(rays, args->N, i));
			const V3 c = s.centreAt(RTCRayN_time(rays, args->N, i));
			const float t = hitDistance(*scene, s, c, o, d, RTCRayN_tnear(rays, args->N, i),
				RTCRayN_tfar(rays, args->N, i), s.section_mask != 0 && isCameraRay(args->context));
			if(t < 0)
				continue;
			const V3 n = o + d * t - c;
			RTCRayN_tfar(rays, args->N, i) = t;
			RTCHitN_Ng_x(hits, args->N, i) = n.x;
			RTCHitN_Ng_y(hits, args->N, i) = n.y;
			RTCHitN_Ng_z(hits, args->N, i) = n.z;
			RTCHitN_u(hits, args->N, i) = 0;
			RTCHitN_v(hits, args->N, i) = 0;
			RTCHitN_primID(hits, args->N, i) = args->primID;
			RTCHitN_geomID(hits, args->N, i) = args->geomID;
			RTCHitN_instID(hits, args->N, i, 0) = RTC_INVALID_GEOMETRY_ID;
		}
	}

	static void occluded(const RTCOccludedFunctionNArguments* args)
	{
		const auto* scene = static_cast<const TracerScene*>(args->geometryUserPtr);
		const PlacedSphere& s = scene->spheres[args->primID];
		for(unsigned i = 0; i < args->N; ++i)
		{
			if(!args->valid[i])
				continue;
			RTCRayN* rays = args->ray;
			const V3 o(RTCRayN_org_x(rays, args->N, i), RTCRayN_org_y(rays, args->N, i), RTCRayN_org_z(rays, args->N, i));
			const V3 d(RTCRayN_dir_x(rays, args->N, i), RTCRayN_dir_y(rays, args->N, i), RTCRayN_dir_z(rays, args->N, i));
			const V3 c = s.centreAt(RTCRayN_time(rays, args->N, i));
			if(hitDistance(*scene, s, c, o, d, RTCRayN_tnear(rays, args->N, i), RTCRayN_tfar(rays, args->N, i), false) >= 0)
				RTCRayN_tfar(rays, args->N, i) = -std::numeric_limits<float>::infinity();
		}
	}
};

// Rejects the hits of a mesh that its section planes cut away; set only on
// meshes that some plane cuts.
struct SectionFilter
{
	static void filter(const RTCFilterFunctionNArguments* args)
	{
		const auto* scene = static_cast<const TracerScene*>(args->geometryUserPtr);
		const bool camera_ray = isCameraRay(args->context);
		for(unsigned i = 0; i < args->N; ++i)
		{
			if(args->valid[i] == 0)
				continue;
			const unsigned geometry = RTCHitN_geomID(args->hit, args->N, i);
			const uint32_t mask = scene->meshes[scene->geometry_mesh[geometry]].section_mask;
			// A filter sees the hit's distance as the ray's tfar.
			const float t = RTCRayN_tfar(args->ray, args->N, i);
			const V3 p(RTCRayN_org_x(args->ray, args->N, i) + t * RTCRayN_dir_x(args->ray, args->N, i),
				RTCRayN_org_y(args->ray, args->N, i) + t * RTCRayN_dir_y(args->ray, args->N, i),
				RTCRayN_org_z(args->ray, args->N, i) + t * RTCRayN_dir_z(args->ray, args->N, i));
			if(scene->section_planes.cutsAway(mask, p, camera_ray))
				args->valid[i] = 0;
		}
	}
};

TracerScene::TracerScene(const SceneNodeRoot& root, const std::string& scene_dir)
	: textures(scene_dir), materials(textures)
{
	const Reference<SceneNode> settings_node = root.getRenderSettingsNode();
	if(settings_node.isNull())
		throw Exception("no render settings node found.");
	const auto& rs = static_cast<const SceneNodeRenderSettings&>(*settings_node);
	const int32_t width = readInt(rs, "width", 0), height = readInt(rs, "height", 0);
	if(width <= 0 || height <= 0 || width > max_image_side || height > max_image_side)
		throw Exception("Image size " + std::to_string(width) + " x " + std::to_string(height) +
						" is out of range (1 to " + std::to_string(max_image_side) + " pixels a side).");
	const int32_t ss = readInt(rs, "super_sample_factor", 1);
	if(ss < 1 || ss > 16)
		throw Exception("super_sample_factor " + std::to_string(ss) + " is out of range (1 to 16).");
	settings.width = (uint32_t)width;
	settings.height = (uint32_t)height;
	settings.super_sample_factor = (uint32_t)ss;
	settings.max_depth = std::min(readInt(rs, "max_depth", 64), 1000);
	settings.layer_count = root.getHighestEmissionLayerInTree() + 1;
	settings.foreground_alpha = rs.settings.contains("render_foreground_alpha") && rs.getBool("render_foreground_alpha");

	const Reference<SceneNode> camera_node = root.getCameraNode();
	if(camera_node.isNull())
		throw Exception("The scene has no camera.");
	camera = std::make_unique<Camera>(static_cast<const SceneNodeCamera&>(*camera_node), settings.width, settings.height);

	background = Background(root, materials);
	section_planes = SectionPlanes(root, warnings);
	addSpheres(root);
	addModels(root, scene_dir);
	has_motion = has_motion || camera->moves();
	collectIesTriangles();
	warnings.insert(warnings.end(), materials.shader_warnings.begin(), materials.shader_warnings.end());
	buildEmbree();
}

TracerScene::~TracerScene()
{
	if(scene)
		rtcReleaseScene(scene);
	if(device)
		rtcReleaseDevice(device);
}

V3 PlacedSphere::centreAt(float time) const
{
	if(step_centres.empty())
		return centre;
	const float f = std::fmin(std::fmax(time, 0.0f), 1.0f) * (step_centres.size() - 1);
	const size_t i = std::min((size_t)f, step_centres.size() - 2);
	return step_centres[i] + (step_centres[i + 1] - step_centres[i]) * (f - i);
}

void TracerScene::addSpheres(const SceneNodeRoot& root)
{
	std::vector<std::pair<size_t, MotionPath>> moving;
	for(const Reference<SceneNode>& child : root.getChildren())
	{
		if(child->getType() != SceneNodeType::Sphere)
			continue;
		const auto& node = static_cast<const SceneNodeSphere&>(*child);
		const MotionPath path(node.keyframes);
		PlacedSphere sphere;
		sphere.centre = toV3(path.at(0).position);
		sphere.radius = (float)node.radius;
		sphere.material = materials.get(node.material.getPointer());
		sphere.section_mask = section_planes.planesCutting(node.uid);
		if(path.moves())
		{
			moving.emplace_back(spheres.size(), path);
			sphere_time_steps = std::max<unsigned>(sphere_time_steps, std::max<size_t>(2, node.keyframes.size()));
		}
		spheres.push_back(sphere);
	}
	// The spheres are one Embree geometry, whose time steps all share.
	for(const auto& [index, path] : moving)
		for(unsigned step = 0; step < sphere_time_steps; ++step)
			spheres[index].step_centres.push_back(toV3(path.at((double)step / (sphere_time_steps - 1)).position));
	has_motion = has_motion || !moving.empty();
}

void TracerScene::addModels(const SceneNodeRoot& root, const std::string& scene_dir)
{
	for(const Reference<SceneNode>& child : root.getChildren())
	{
		if(child->getType() != SceneNodeType::Model)
			continue;
		const auto& model = static_cast<const SceneNodeModel&>(*child);
		if(model.geometry.isNull() || model.geometry->getType() != SceneNodeType::Mesh)
		{
			warnings.push_back("Model '" + model.getName().str() + "' has no mesh; it is left out.");
			continue;
		}
		const auto& mesh_node = static_cast<const SceneNodeMesh&>(*model.geometry);
		if(mesh_node.mesh.isNull())
			throw Exception("The mesh of model '" + model.getName().str() + "' is not loaded.");
		const Mesh& mesh = *mesh_node.mesh;

		// World = keyframe rotation * (model rotation * scale * p) + position,
		// the keyframes' at time 0; lamps and normals are placed as then.
		Matrix3d model_matrix = model.rotation.nonNull() ? model.rotation->getMatrix() : Matrix3d();
		model_matrix = model_matrix * (model.scale * mesh_node.scale);
		const MotionPath path(model.keyframes);
		const Placement start = path.at(0);
		const Matrix3d m = start.rotation * model_matrix;
		Matrix3d normal_matrix = cofactor(m);
		const std::vector<int> material_emitters = addIesEmitters(model, m, scene_dir);

		PlacedMesh placed;
		placed.invisible_to_camera = model.invisible_to_camera;
		placed.section_mask = section_planes.planesCutting(model.uid);
		placeVertices(mesh, model_matrix, start, placed.positions);
		if(path.moves())
		{
			placed.time_steps = std::max<unsigned>(2, (unsigned)model.keyframes.size());
			for(unsigned step = 0; step < placed.time_steps; ++step)
				placeVertices(mesh, model_matrix, path.at((double)step / (placed.time_steps - 1)), placed.step_positions);
			placed.motion = std::make_unique<MotionPath>(path);
			placed.start_rotation = start.rotation;
			has_motion = true;
		}
		if(mesh.normals.size() == mesh.verts.size())
			for(const Vec3f& n : mesh.normals)
				placed.normals.push_back(normalise(mul(normal_matrix, V3(n.x, n.y, n.z))));

		std::vector<const ShadingMaterial*> model_materials;
		for(const Reference<SceneNodeMaterial>& material : model.materials)
			model_materials.push_back(materials.get(material.getPointer()));

		// Corners in the order of a scene's winding: the triangles of OBJ
		// and PLY files are turned, so that they face where their files'
		// normals point.
		const int corner_order[2][3] = {{0, 1, 2}, {0, 2, 1}};
		const int* corners = corner_order[windsCounterClockwise(mesh_node.path.str()) ? 1 : 0];
		auto addTriangle = [&](const uint32_t* v, const uint32_t* uv, uint32_t mat_index) {
			for(int k = 0; k < 3; ++k)
			{
				const int i = corners[k];
				placed.indices.push_back(v[i]);
				float u = 0, w = 0;
				if(mesh.num_uv_mappings > 0)
				{
					const Vec2f& pair = mesh.uv_pairs[(size_t)uv[i] * mesh.num_uv_mappings];
					u = pair.u;
					w = pair.v;
				}
				placed.uvs.push_back(u);
				placed.uvs.push_back(w);
			}
			placed.triangle_materials.push_back(
				mat_index < model_materials.size() ? model_materials[mat_index] : materials.get(nullptr));
			if(!material_emitters.empty())
				placed.triangle_emitters.push_back(mat_index < material_emitters.size() ? material_emitters[mat_index] : -1);
		};
		for(const MeshTriangle& t : mesh.triangles)
			addTriangle(t.vertex_indices, t.uv_indices, t.tri_mat_index);
		for(const MeshQuad& q : mesh.quads)
		{
			const uint32_t v1[3] = {q.vertex_indices[0], q.vertex_indices[1], q.vertex_indices[2]};
			const uint32_t u1[3] = {q.uv_indices[0], q.uv_indices[1], q.uv_indices[2]};
			const uint32_t v2[3] = {q.vertex_indices[0], q.vertex_indices[2], q.vertex_indices[3]};
			const uint32_t u2[3] = {q.uv_indices[0], q.uv_indices[2], q.uv_indices[3]};
			addTriangle(v1, u1, q.mat_index);
			addTriangle(v2, u2, q.mat_index);
		}
		if(!placed.indices.empty())
			meshes.push_back(std::move(placed));
	}
}

void TracerScene::buildEmbree()
{
	device = rtcNewDevice(nullptr);
	if(!device)
		throw Exception("Could not create the ray tracing device.");
	scene = rtcNewScene(device);
	for(size_t i = 0; i < meshes.size(); ++i)
	{
		PlacedMesh& mesh = meshes[i];
		if(!mesh.normals.empty())
		{
			mesh.corner_normals.reserve(mesh.indices.size());
			for(uint32_t index : mesh.indices)
				mesh.corner_normals.push_back(mesh.normals[index]);
		}
		RTCGeometry geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
		// One vertex buffer per time step; Embree moves the vertices in
		// straight lines between them.
		const size_t count = mesh.positions.size();
		const std::vector<V3>& positions = mesh.time_steps > 1 ? mesh.step_positions : mesh.positions;
		rtcSetGeometryTimeStepCount(geometry, mesh.time_steps);
		for(unsigned step = 0; step < mesh.time_steps; ++step)
		{
			auto* v = static_cast<float*>(rtcSetNewGeometryBuffer(
				geometry, RTC_BUFFER_TYPE_VERTEX, step, RTC_FORMAT_FLOAT3, 3 * sizeof(float), count));
			const V3* p = &positions[step * count];
			for(size_t k = 0; k < count; ++k)
			{
				v[k * 3] = p[k].x;
				v[k * 3 + 1] = p[k].y;
				v[k * 3 + 2] = p[k].z;
			}
		}
		auto* idx = static_cast<uint32_t*>(rtcSetNewGeometryBuffer(
			geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 3 * sizeof(uint32_t), mesh.indices.size() / 3));
		std::copy(mesh.indices.begin(), mesh.indices.end(), idx);
		if(mesh.section_mask != 0)
		{
			rtcSetGeometryUserData(geometry, this);
			rtcSetGeometryIntersectFilterFunction(geometry, &SectionFilter::filter);
			rtcSetGeometryOccludedFilterFunction(geometry, &SectionFilter::filter);
		}
		rtcCommitGeometry(geometry);
		const unsigned id = rtcAttachGeometry(scene, geometry);
		rtcReleaseGeometry(geometry);
		if(geometry_mesh.size() <= id)
			geometry_mesh.resize(id + 1, -1);
		geometry_mesh[id] = (int)i;
	}
	if(!spheres.empty())
	{
		RTCGeometry geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_USER);
		rtcSetGeometryUserPrimitiveCount(geometry, (unsigned)spheres.size());
		rtcSetGeometryTimeStepCount(geometry, sphere_time_steps);
		rtcSetGeometryUserData(geometry, this);
		rtcSetGeometryBoundsFunction(geometry, &SphereCallbacks::bounds, this);
		rtcSetGeometryIntersectFunction(geometry, &SphereCallbacks::intersect);
		rtcSetGeometryOccludedFunction(geometry, &SphereCallbacks::occluded);
		rtcCommitGeometry(geometry);
		sphere_geometry = rtcAttachGeometry(scene, geometry);
		rtcReleaseGeometry(geometry);
	}
	rtcCommitScene(scene);
}

bool TracerScene::intersect(const V3& origin, const V3& dir, float t_near, float t_far, float time, RTCRayHit& out,
	bool camera_ray) const
{
	RayContext context;
	rtcInitIntersectContext(&context.embree);
	context.camera_ray = camera_ray;
	out.ray.org_x = origin.x;
	out.ray.org_y = origin.y;
	out.ray.org_z = origin.z;
	out.ray.dir_x = dir.x;
	out.ray.dir_y = dir.y;
	out.ray.dir_z = dir.z;
	out.ray.tnear = t_near;
	out.ray.tfar = t_far;
	out.ray.time = time;
	out.ray.mask = 0xFFFFFFFF;
	out.ray.id = 0;
	out.ray.flags = 0;
	out.hit.geomID = RTC_INVALID_GEOMETRY_ID;
	out.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
	rtcIntersect1(scene, &context.embree, &out);
	return out.hit.geomID != RTC_INVALID_GEOMETRY_ID;
}

bool TracerScene::occluded(const V3& origin, const V3& dir, float t_near, float t_far, float time) const
{
	if(path_log)
	{
		++path_log->counts->shadow;
		if(path_log->record)
			path_log->record->push_back(CastRay{origin, dir, t_near, t_far, time, true});
	}
	RayContext context;
	rtcInitIntersectContext(&context.embree);
	context.camera_ray = false;
	RTCRay ray;
	ray.org_x = origin.x;
	ray.org_y = origin.y;
	ray.org_z = origin.z;
	ray.dir_x = dir.x;
	ray.dir_y = dir.y;
	ray.dir_z = dir.z;
	ray.tnear = t_near;
	ray.tfar = t_far;
	ray.time = time;
	ray.mask = 0xFFFFFFFF;
	ray.id = 0;
	ray.flags = 0;
	rtcOccluded1(scene, &context.embree, &ray);
	return ray.tfar < 0;
}

SurfacePoint TracerScene::surfaceAt(const RTCRayHit& hit, const V3& origin, const V3& dir,
	const ShadingMaterial*& material, bool& invisible_to_camera) const
{
	SurfacePoint sp;
	sp.position = origin + dir * hit.ray.tfar;
	sp.time = hit.ray.time;
	V3 outward;
	V3 shading;
	V3 dpdu, dpdv;  // for relief
	bool has_derivatives = false;
	invisible_to_camera = false;
	if(hit.hit.geomID == sphere_geometry)
	{
		const PlacedSphere& s = spheres[hit.hit.primID];
		outward = normalise(sp.position - s.centreAt(sp.time));
		shading = outward;
		material = s.material;
		// Longitude and latitude as texture coordinates.
		if(material->reads_coordinates)
		{
			sp.u = std::atan2(outward.y, outward.x) / (2 * pi) + 0.5f;
			sp.v = std::asin(std::fmin(std::fmax(outward.z, -1.0f), 1.0f)) / pi + 0.5f;
		}
	}
	else
	{
		const PlacedMesh& mesh = meshes[geometry_mesh[hit.hit.geomID]];
		const size_t tri = hit.hit.primID;
		// Embree's geometric normal follows the corners as they move;
		// taking it spares loading them.
		outward = normalise(frontOfWinding(V3(hit.hit.Ng_x, hit.hit.Ng_y, hit.hit.Ng_z)));
		const float b1 = hit.hit.u, b2 = hit.hit.v, b0 = 1 - b1 - b2;
		if(mesh.corner_normals.empty())
			shading = outward;
		else
		{
			const V3* n = &mesh.corner_normals[tri * 3];
			shading = normalise(n[0] * b0 + n[1] * b1 + n[2] * b2);
			// The normals are placed as at time 0: turned back from the
			// rotation then, and on by the rotation at the hit's time.
			if(mesh.motion)
				shading = normalise(mul(mesh.motion->at(sp.time).rotation, mulTransposed(mesh.start_rotation, shading)));
		}
		material = mesh.triangle_materials[tri];
		if(material->reads_coordinates)
		{
			const float* uv = &mesh.uvs[tri * 6];
			sp.u = uv[0] * b0 + uv[2] * b1 + uv[4] * b2;
			sp.v = uv[1] * b0 + uv[3] * b1 + uv[5] * b2;
		}
		invisible_to_camera = mesh.invisible_to_camera;
		if(material->hasRelief())
		{
			const uint32_t* v = &mesh.indices[tri * 3];
			has_derivatives = uvDerivatives(
				mesh.positions[v[0]], mesh.positions[v[1]], mesh.positions[v[2]], &mesh.uvs[tri * 6], dpdu, dpdv);
		}
	}
	if(material->hasRelief())
	{
		// Without texture coordinates that span the surface, any two
		// directions across it serve.
		if(!has_derivatives)
		{
			const Frame frame(shading);
			dpdu = frame.s;
			dpdv = frame.t;
		}
		shading = reliefNormal(*material, sp, shading, dpdu, dpdv);
	}
	sp.front_face = dot(dir, outward) < 0;
	sp.geometric_normal = sp.front_face ? outward : -outward;
	sp.shading_normal = dot(shading, sp.geometric_normal) < 0 ? -shading : shading;
	sp.cos_theta = std::fabs(dot(dir, sp.shading_normal));
	return sp;
}

void TracerScene::radiance(const Ray& primary, Rng& rng, std::vector<V3>& layers, bool& hit_out, RayCounts* counts,
	std::vector<CastRay>* record) const
{
	// Tallied on the stack and added once at the end, so that counting
	// costs the path nothing worth measuring. Occlusion queries count
	// themselves through the thread's path log, whichever light asks them.
	RayCounts tally;
	struct Logging
	{
		PathLog log;
		PathLog* previous;
		RayCounts* counts;
		Logging(RayCounts& tally, std::vector<CastRay>* record, RayCounts* counts_)
			: log{&tally, record}, previous(path_log), counts(counts_)
		{
			path_log = &log;
		}
		~Logging()
		{
			path_log = previous;
			if(counts)
				*counts += *log.counts;
		}
	} logging(tally, record, counts);
	// Every ray of the path is cast at the camera ray's time.
	const float time = primary.time;
	auto cast = [&](const V3& o, const V3& d, float t_near, RTCRayHit& hit, bool camera_ray) {
		const float t_far = std::numeric_limits<float>::infinity();
		++(camera_ray ? tally.camera : tally.bounce);
		if(record)
			record->push_back(CastRay{o, d, t_near, t_far, time, false});
		return intersect(o, d, t_near, t_far, time, hit, camera_ray);
	};
	hit_out = false;
	V3 origin = primary.origin, dir = primary.dir;
	V3 weight(1);
	// The camera sees the sun's disc, as does every path after a specular
	// bounce, which cannot sample the sun itself.
	bool after_specular = true;
	const float infinity = std::numeric_limits<float>::infinity();
	for(int depth = 0; depth <= settings.max_depth; ++depth)
	{
		RTCRayHit hit;
		const ShadingMaterial* material = nullptr;
		bool invisible = false;
		SurfacePoint sp;
		bool found = cast(origin, dir, depth == 0 ? 0 : ray_epsilon, hit, depth == 0);
		if(found)
			sp = surfaceAt(hit, origin, dir, material, invisible);
		// Geometry hidden from the camera lets camera rays through.
		for(int skip = 0; found && invisible && depth == 0 && skip < 1000; ++skip)
		{
			origin = sp.position + dir * ray_epsilon;
			found = cast(origin, dir, 0, hit, true);
			if(found)
				sp = surfaceAt(hit, origin, dir, material, invisible);
		}
		if(!found)
		{
			background.addEscaped(dir, weight, after_specular, layers);
			return;
		}
		if(depth == 0 && material->kind != SurfaceKind::Null)
			hit_out = true;

		const V3 wo = -dir;
		const int emitter = emitterAt(hit);
		if(emitter < 0)
			addEmission(*material, sp, weight, layers);
		else if(after_specular)
			addEmission(
				*material, sp, weight * ies_emitters[emitter].radianceScale(wo, dot(wo, sp.geometric_normal)), layers);

		const Lobe lobe = chooseLobe(*material, sp, wo, rng, weight);
		const bool specular = isSpecularLobe(lobe);
		if(!specular && !ies_triangles.empty())
			sampleIesLights(lobe, sp, wo, weight, rng, layers);
		if(!specular && background.has_sun && background.sun_layer < layers.size() &&
			!background.sun_irradiance.isBlack())
		{
			// One direction within the sun's disc; the disc's radiance times
			// its solid angle is its irradiance.
			const V3 wi = background.sun_frame.toWorld(sampleCone(rng.uniform(), rng.uniform(), background.sun_cos_max));
			const V3 f = evalLobe(lobe, sp, wo, wi);
			if(!f.isBlack())
			{
				const V3 start = sp.position + sp.geometric_normal * (dot(wi, sp.geometric_normal) > 0 ? ray_epsilon : -ray_epsilon);
				if(!occluded(start, wi, ray_epsilon, infinity, sp.time))
					layers[background.sun_layer] += weight * f * background.sun_irradiance;
			}
		}

		V3 wi, w;
		if(!sampleLobe(lobe, sp, wo, rng, wi, w))
			return;
		weight *= w;
		if(weight.isBlack())
			return;
		after_specular = specular;

		// Russian roulette once a path has had a few bounces.
		if(depth >= 3)
		{
			const float keep = std::fmin(0.95f, weight.maxComponent());
			if(rng.uniform() >= keep)
				return;
			weight *= 1 / keep;
		}
		origin = sp.position + sp.geometric_normal * (dot(wi, sp.geometric_normal) > 0 ? ray_epsilon : -ray_epsilon);
		dir = wi;
	}
}

} // namespace Standin
} // namespace Velorn
