#pragma once

#include "standin/background.h"
#include "standin/camera.h"
#include "standin/ies_profile.h"
#include "standin/motion_path.h"
#include "standin/section_planes.h"
#include "standin/surface_materials.h"

#include <embree3/rtcore.h>

#include <memory>
#include <string>
#include <vector>

namespace Velorn
{

class SceneNodeModel;
class SceneNodeRoot;
struct Matrix3d;

namespace Standin
{

// The scene keeps the host's winding of polygons, since the exchange of y
// and z that takes a host point into the scene mirrors the handedness too:
// seen from its front, a triangle's corners run clockwise here as they did
// in the host. Its front is therefore the side that -(p1 - p0) x (p2 - p0)
// points to, where the exported normals point as well. winding_normal is
// (p1 - p0) x (p2 - p0), as Embree gives its geometric normal.
inline V3 frontOfWinding(const V3& winding_normal) { return -winding_normal; }

// A triangle mesh placed in the world by its model: positions and normals
// already transformed, one material per polygon through the model's list.
struct PlacedMesh
{
	std::vector<V3> positions;
	std::vector<V3> normals;         // per vertex, or empty
	// The normals again, three per triangle in corner order: a hit reads
	// one place instead of the indices and three vertices.
	std::vector<V3> corner_normals;
	std::vector<uint32_t> indices;   // three per triangle
	std::vector<float> uvs;          // two per corner, three corners per triangle
	std::vector<const ShadingMaterial*> triangle_materials;
	// Per triangle, its lamp in the scene's IES emitters or -1; empty when
	// the model has no IES profile.
	std::vector<int> triangle_emitters;
	bool invisible_to_camera = false;
	uint32_t section_mask = 0;  // the section planes that cut it

	// A mesh that moves while the shutter is open: the positions at
	// time_steps evenly spaced times from 0 to 1, one set after another,
	// and its path, which turns the shading normals (given at time 0) to
	// the time of a hit.
	unsigned time_steps = 1;
	std::vector<V3> step_positions;
	std::unique_ptr<MotionPath> motion;
	Matrix3d start_rotation;
};

struct PlacedSphere
{
	V3 centre;  // at time 0
	float radius = 1;
	const ShadingMaterial* material = nullptr;
	uint32_t section_mask = 0;
	// A moving sphere's centres at evenly spaced times from 0 to 1; empty
	// for one that stands still.
	std::vector<V3> step_centres;

	// Between time steps the centre moves in a straight line, as Embree
	// moves the bounds.
	V3 centreAt(float time) const;
};

// The renderer's settings that the tracer reads.
struct TraceSettings
{
	uint32_t width = 0, height = 0;
	uint32_t super_sample_factor = 1;
	int max_depth = 64;
	size_t layer_count = 1;
	bool foreground_alpha = false;
};

// The rays a path casts, by role: the camera ray (and its continuations
// through geometry hidden from the camera), the bounces, and the shadow rays
// towards lights.
struct RayCounts
{
	uint64_t camera = 0, bounce = 0, shadow = 0;

	uint64_t total() const { return camera + bounce + shadow; }
	RayCounts& operator+=(const RayCounts& o)
	{
		camera += o.camera;
		bounce += o.bounce;
		shadow += o.shadow;
		return *this;
	}
};

// One ray as it went to Embree, kept so that the same rays can be cast again
// without shading.
struct CastRay
{
	V3 origin, dir;
	float t_near = 0, t_far = 0;
	float time = 0;
	bool shadow = false;  // an occlusion query
};

// A scene ready for tracing: the geometry in one Embree scene, the
// converted materials, the background and the camera. Built once from a
// finalised scene tree and read only after that, by any number of threads.
class TracerScene
{
public:
	// Throws Exception for anything the scene cannot be rendered with: no
	// camera, no settings, a bad size, a material kind this renderer lacks,
	// a missing texture.
	TracerScene(const SceneNodeRoot& root, const std::string& scene_dir);
	~TracerScene();
	TracerScene(const TracerScene&) = delete;
	TracerScene& operator=(const TracerScene&) = delete;

	// Adds the light that arrives along ray into layers (one entry per
	// light layer, which the caller clears). hit_out tells whether the ray
	// met visible geometry first. Every ray cast is counted into counts and
	// appended to record where they are given.
	void radiance(const Ray& ray, Rng& rng, std::vector<V3>& layers, bool& hit_out, RayCounts* counts = nullptr,
		std::vector<CastRay>* record = nullptr) const;

	const Camera& getCamera() const { return *camera; }
	// True when the camera or anything in the scene moves while the shutter
	// is open: paths then need a time.
	bool hasMotion() const { return has_motion; }
	const TraceSettings& getSettings() const { return settings; }
	// Things the scene holds that this renderer leaves out or simplifies.
	const std::vector<std::string>& getWarnings() const { return warnings; }

	// The first hit along a ray beyond t_near at a time while the shutter
	// is open, or false; section planes cut more for camera rays. Public
	// for the benchmark and tests.
	bool intersect(const V3& origin, const V3& dir, float t_near, float t_far, float time, RTCRayHit& out,
		bool camera_ray = false) const;
	bool occluded(const V3& origin, const V3& dir, float t_near, float t_far, float time) const;

private:
	void addSpheres(const SceneNodeRoot& root);
	void addModels(const SceneNodeRoot& root, const std::string& scene_dir);
	void buildEmbree();
	SurfacePoint surfaceAt(const RTCRayHit& hit, const V3& origin, const V3& dir, const ShadingMaterial*& material,
		bool& invisible_to_camera) const;

	// Lamps with an IES profile are lights in their own right: a path
	// samples them at each diffuse or glossy hit, like the sun, and sees
	// them only from the camera and after mirror-like bounces.
	//
	// The emitter of each of the model's materials (-1 for none), placed
	// by the model's matrix m; reads each profile file once.
	std::vector<int> addIesEmitters(const SceneNodeModel& model, const Matrix3d& m, const std::string& scene_dir);
	// Collects the triangles of lamps with profiles, for sampling by area.
	void collectIesTriangles();
	// The emitter of a hit triangle, or -1.
	int emitterAt(const RTCRayHit& hit) const;
	// Adds the light of one point chosen on the lamps with profiles, as
	// seen through the lobe at sp.
	void sampleIesLights(const Lobe& lobe, const SurfacePoint& sp, const V3& wo, const V3& weight, Rng& rng,
		std::vector<V3>& layers) const;

	TraceSettings settings;
	std::unique_ptr<Camera> camera;
	TextureCache textures;
	MaterialLibrary materials;
	Background background;
	SectionPlanes section_planes;
	std::vector<PlacedMesh> meshes;
	std::vector<PlacedSphere> spheres;
	std::vector<std::string> warnings;
	bool has_motion = false;
	unsigned sphere_time_steps = 1;

	struct IesTriangle
	{
		uint32_t mesh, triangle;
		float area_to_here;  // the running sum of areas, this triangle's included
	};
	std::vector<std::unique_ptr<IesProfile>> ies_profiles;
	std::vector<std::string> ies_paths;  // of ies_profiles, in order
	std::vector<IesEmitter> ies_emitters;
	std::vector<IesTriangle> ies_triangles;

	RTCDevice device = nullptr;
	RTCScene scene = nullptr;
	// Embree geometry id to mesh index; the spheres are one geometry.
	std::vector<int> geometry_mesh;
	unsigned sphere_geometry = RTC_INVALID_GEOMETRY_ID;

	friend struct SphereCallbacks;
	friend struct SectionFilter;
};

} // namespace Standin
} // namespace Velorn
