// The lamps of a scene whose models carry IES profiles: their emission
// shaped by the profile, and their sampling as lights.
#include "standin/tracer_scene.h"

#include "scene/emission_overrides.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_model.h"
#include "support/file_utils.h"

#include <algorithm>
#include <cmath>

namespace Velorn
{
namespace Standin
{

namespace
{

const float ray_epsilon = 1e-4f;

// Whether a material, or any material it is made of, gives light.
bool givesLight(const ShadingMaterial& m)
{
	if(m.emits || (m.a && givesLight(*m.a)) || (m.b && givesLight(*m.b)))
		return true;
	for(const ShadingMaterial* part : m.parts)
		if(part && givesLight(*part))
			return true;
	return false;
}

V3 mul(const Matrix3d& m, const V3& v)
{
	return V3((float)(m.e[0] * v.x + m.e[1] * v.y + m.e[2] * v.z), (float)(m.e[3] * v.x + m.e[4] * v.y + m.e[5] * v.z),
		(float)(m.e[6] * v.x + m.e[7] * v.y + m.e[8] * v.z));
}

} // namespace

std::vector<int> TracerScene::addIesEmitters(const SceneNodeModel& model, const Matrix3d& m, const std::string& scene_dir)
{
	std::vector<int> material_emitters;
	if(model.ies_profiles.empty())
		return material_emitters;
	material_emitters.assign(model.materials.size(), -1);

	// The profile's frame: the model's local -z down, +x the first
	// horizontal angle, both as the model's placement turns them.
	IesEmitter frame;
	frame.down = normalise(mul(m, V3(0, 0, -1)));
	const V3 x = mul(m, V3(1, 0, 0));
	frame.zero = normalise(x - frame.down * dot(x, frame.down));
	frame.quarter = cross(frame.zero, frame.down);

	for(const Reference<IESProfile>& ies : model.ies_profiles)
	{
		if(ies.isNull() || ies->material.isNull())
			continue;
		// The reader has made the path absolute or relative to the working
		// directory already; a scene made through the SDK may hold one
		// relative to the scene.
		std::string path = ies->path.str();
		if(!FileUtils::fileExists(path))
			path = FileUtils::join(scene_dir, path);
		size_t known = (size_t)(std::find(ies_paths.begin(), ies_paths.end(), path) - ies_paths.begin());
		if(known == ies_paths.size())
		{
			ies_profiles.push_back(std::make_unique<IesProfile>(IesProfile::load(path)));
			ies_paths.push_back(path);
		}
		frame.profile = ies_profiles[known].get();

		// A material that two profiles name keeps the first.
		int emitter = -1;
		for(size_t i = 0; i < model.materials.size(); ++i)
			if(model.materials[i].getPointer() == ies->material.getPointer() && material_emitters[i] < 0)
			{
				if(emitter < 0)
				{
					emitter = (int)ies_emitters.size();
					ies_emitters.push_back(frame);
				}
				material_emitters[i] = emitter;
			}
	}
	return material_emitters;
}

void TracerScene::collectIesTriangles()
{
	float total = 0;
	for(size_t k = 0; k < meshes.size(); ++k)
	{
		PlacedMesh& mesh = meshes[k];
		for(size_t t = 0; t < mesh.triangle_emitters.size(); ++t)
		{
			// A profile on a material that gives no light changes nothing:
			// the triangle is an ordinary one.
			if(mesh.triangle_emitters[t] >= 0 && !givesLight(*mesh.triangle_materials[t]))
				mesh.triangle_emitters[t] = -1;
			if(mesh.triangle_emitters[t] < 0)
				continue;
			const uint32_t* idx = &mesh.indices[t * 3];
			const V3 &p0 = mesh.positions[idx[0]], &p1 = mesh.positions[idx[1]], &p2 = mesh.positions[idx[2]];
			const float area = 0.5f * length(cross(p1 - p0, p2 - p0));
			if(area <= 0)
				continue;
			total += area;
			ies_triangles.push_back(IesTriangle{(uint32_t)k, (uint32_t)t, total});
		}
	}
}

int TracerScene::emitterAt(const RTCRayHit& hit) const
{
	if(hit.hit.geomID == sphere_geometry || hit.hit.geomID >= geometry_mesh.size())
		return -1;
	const PlacedMesh& mesh = meshes[geometry_mesh[hit.hit.geomID]];
	return mesh.triangle_emitters.empty() ? -1 : mesh.triangle_emitters[hit.hit.primID];
}

void TracerScene::sampleIesLights(const Lobe& lobe, const SurfacePoint& sp, const V3& wo, const V3& weight, Rng& rng,
	std::vector<V3>& layers) const
{
	// A triangle by its share of the lamps' area, then a uniform point on
	// it: the point's density is one over the total area.
	const float total = ies_triangles.back().area_to_here;
	const float pick = rng.uniform() * total;
	const auto chosen = std::upper_bound(ies_triangles.begin(), ies_triangles.end(), pick,
		[](float value, const IesTriangle& t) { return value < t.area_to_here; });
	const IesTriangle& light = chosen == ies_triangles.end() ? ies_triangles.back() : *chosen;
	const PlacedMesh& mesh = meshes[light.mesh];
	const uint32_t* idx = &mesh.indices[(size_t)light.triangle * 3];
	const V3 &p0 = mesh.positions[idx[0]], &p1 = mesh.positions[idx[1]], &p2 = mesh.positions[idx[2]];
	const float r = std::sqrt(rng.uniform());
	const float b1 = r * rng.uniform(), b0 = 1 - r, b2 = 1 - b0 - b1;
	SurfacePoint lamp;
	lamp.position = p0 * b0 + p1 * b1 + p2 * b2;
	const float* uv = &mesh.uvs[(size_t)light.triangle * 6];
	lamp.u = uv[0] * b0 + uv[2] * b1 + uv[4] * b2;
	lamp.v = uv[1] * b0 + uv[3] * b1 + uv[5] * b2;

	V3 wi = lamp.position - sp.position;
	const float distance2 = dot(wi, wi);
	if(distance2 <= 0)
		return;
	const float distance = std::sqrt(distance2);
	wi = wi / distance;
	const V3 outward = normalise(frontOfWinding(cross(p1 - p0, p2 - p0)));
	const float cos_lamp = -dot(wi, outward);
	if(cos_lamp == 0)
		return;
	lamp.front_face = cos_lamp > 0;
	lamp.geometric_normal = lamp.front_face ? outward : -outward;
	lamp.shading_normal = lamp.geometric_normal;

	const V3 f = evalLobe(lobe, sp, wo, wi);
	if(f.isBlack())
		return;
	const V3 start = sp.position + sp.geometric_normal * (dot(wi, sp.geometric_normal) > 0 ? ray_epsilon : -ray_epsilon);
	if(occluded(start, wi, ray_epsilon, distance * (1 - 1e-3f), sp.time))
		return;
	const float scale = ies_emitters[mesh.triangle_emitters[light.triangle]].radianceScale(-wi, cos_lamp);
	// Area density to solid angle: |cos| at the lamp over the squared distance.
	addEmission(*mesh.triangle_materials[light.triangle], lamp, weight * f * (scale * std::fabs(cos_lamp) * total / distance2),
		layers);
}

} // namespace Standin
} // namespace Velorn
