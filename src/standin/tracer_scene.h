#pragma once

#include "standin/background.h"
#include "standin/camera.h"
#include "standin/surface_materials.h"

#include <embree3/rtcore.h>

#include <memory>
#include <string>
#include <vector>

namespace Velorn
{

class SceneNodeRoot;

namespace Standin
{

// A triangle mesh placed in the world by its model: positions and normals
// already transformed, one material per polygon through the model's list.
struct PlacedMesh
{
	std::vector<V3> positions;
	std::vector<V3> normals;         // per vertex, or empty
	std::vector<uint32_t> indices;   // three per triangle
	std::vector<float> uvs;          // two per corner, three corners per triangle
	std::vector<const ShadingMaterial*> triangle_materials;
	bool invisible_to_camera = false;
};

struct PlacedSphere
{
	V3 centre;
	float radius = 1;
	const ShadingMaterial* material = nullptr;
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
	// met visible geometry first.
	void radiance(const Ray& ray, Rng& rng, std::vector<V3>& layers, bool& hit_out) const;

	const Camera& getCamera() const { return *camera; }
	const TraceSettings& getSettings() const { return settings; }
	// Things the scene holds that this renderer leaves out or simplifies.
	const std::vector<std::string>& getWarnings() const { return warnings; }

	// The first hit along a ray beyond t_near, or false. Public for the
	// benchmark and tests.
	bool intersect(const V3& origin, const V3& dir, float t_near, float t_far, RTCRayHit& out) const;
	bool occluded(const V3& origin, const V3& dir, float t_near, float t_far) const;

private:
	void addModels(const SceneNodeRoot& root);
	void buildEmbree();
	SurfacePoint surfaceAt(const RTCRayHit& hit, const V3& origin, const V3& dir, const ShadingMaterial*& material,
		bool& invisible_to_camera) const;

	TraceSettings settings;
	std::unique_ptr<Camera> camera;
	TextureCache textures;
	MaterialLibrary materials;
	Background background;
	std::vector<PlacedMesh> meshes;
	std::vector<PlacedSphere> spheres;
	std::vector<std::string> warnings;

	RTCDevice device = nullptr;
	RTCScene scene = nullptr;
	// Embree geometry id to mesh index; the spheres are one geometry.
	std::vector<int> geometry_mesh;
	unsigned sphere_geometry = RTC_INVALID_GEOMETRY_ID;

	friend struct SphereCallbacks;
};

} // namespace Standin
} // namespace Velorn
