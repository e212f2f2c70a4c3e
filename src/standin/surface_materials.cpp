#include "standin/surface_materials.h"

#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_glass.h"
#include "scene/materials_other.h"
#include "scene/medium.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_medium.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/string_utils.h"

#include <map>

namespace Velorn
{
namespace Standin
{

namespace
{

const V3 default_albedo(0.5f);

float mediumIOR(const Reference<SceneNodeMedium>& medium)
{
	if(medium.nonNull())
		if(auto* basic = dynamic_cast<const BasicMedium*>(medium->medium.getPointer()))
			return (float)basic->ior;
	return 1.5f;
}

// The reflectance at normal incidence, in linear RGB, of the metals among
// the renderer's n-k files, as the rendering literature tabulates it: the
// files themselves belong to the renderer's installation. Any other file
// reflects a bright grey.
V3 nkReflectance(const std::string& nk_path)
{
	static const std::map<std::string, V3> metals = {
		{"ag.nk", V3(0.972f, 0.960f, 0.915f)}, {"al.nk", V3(0.913f, 0.922f, 0.924f)},
		{"au.nk", V3(1.000f, 0.782f, 0.344f)}, {"cr.nk", V3(0.549f, 0.556f, 0.554f)},
		{"cu.nk", V3(0.955f, 0.638f, 0.538f)}, {"ni.nk", V3(0.660f, 0.609f, 0.526f)},
		{"pd.nk", V3(0.733f, 0.697f, 0.652f)}, {"pt.nk", V3(0.673f, 0.637f, 0.585f)},
		{"ti.nk", V3(0.542f, 0.497f, 0.449f)}};
	const auto it = metals.find(toLowerCase(FileUtils::getFilename(nk_path)));
	return it == metals.end() ? V3(0.9f) : it->second;
}

// The channels every surface material has: emission and its layer, bump
// and normal map.
void readSurfaceChannels(ChannelReader& reader, const SurfaceMaterial& source, ShadingMaterial& out)
{
	out.has_bump = source.bump.nonNull();
	out.bump = reader.scalar(source.bump, 0);
	out.has_normal_map = source.normal_map.nonNull();
	out.normal_map = reader.vec3(source.normal_map, V3(0.5f, 0.5f, 1));
	out.emits = source.base_emission.nonNull() || source.emission.nonNull();
	out.base_emission = reader.colour(source.base_emission, V3(1));
	out.emission = reader.colour(source.emission, V3(1));
	out.layer = source.layer;
}

// GGX microfacet distribution and its masking term.
float ggxD(float cos_h, float alpha)
{
	const float a2 = alpha * alpha;
	const float d = cos_h * cos_h * (a2 - 1) + 1;
	return a2 / (pi * d * d);
}

float ggxG1(float cos_v, float alpha)
{
	const float a2 = alpha * alpha;
	const float c = std::fabs(cos_v);
	return 2 * c / (c + std::sqrt(a2 + (1 - a2) * c * c));
}

V3 sampleGGXNormal(float alpha, float u1, float u2)
{
	const float tan2 = alpha * alpha * u1 / std::fmax(1 - u1, 1e-7f);
	const float cos_t = 1 / std::sqrt(1 + tan2);
	const float sin_t = std::sqrt(std::fmax(0.0f, 1 - cos_t * cos_t));
	const float phi = 2 * pi * u2;
	return V3(sin_t * std::cos(phi), sin_t * std::sin(phi), cos_t);
}

// The Oren-Nayar factor (A + B max(0, cos(phi_i - phi_o)) sin(a) tan(b)),
// directions in local space.
float orenNayarFactor(float sigma, const V3& wo, const V3& wi)
{
	const float s2 = sigma * sigma;
	const float A = 1 - 0.5f * s2 / (s2 + 0.33f);
	const float B = 0.45f * s2 / (s2 + 0.09f);
	const float cos_o = std::fabs(wo.z), cos_i = std::fabs(wi.z);
	const float sin_o = std::sqrt(std::fmax(0.0f, 1 - cos_o * cos_o));
	const float sin_i = std::sqrt(std::fmax(0.0f, 1 - cos_i * cos_i));
	float cos_phi = 0;
	if(sin_o > 1e-4f && sin_i > 1e-4f)
		cos_phi = std::fmax(0.0f, (wo.x * wi.x + wo.y * wi.y) / (sin_o * sin_i));
	const float sin_a = cos_i < cos_o ? sin_i : sin_o;
	const float tan_b = cos_i < cos_o ? sin_o / std::fmax(cos_o, 1e-4f) : sin_i / std::fmax(cos_i, 1e-4f);
	return A + B * cos_phi * sin_a * tan_b;
}

} // namespace

ShadingMaterial* MaterialLibrary::make()
{
	storage.push_back(std::make_unique<ShadingMaterial>());
	return storage.back().get();
}

const ShadingMaterial* MaterialLibrary::get(const SceneNodeMaterial* node)
{
	if(!node || node->material.isNull())
	{
		if(!default_material)
		{
			ShadingMaterial* m = make();
			m->name = "default";
			m->albedo.constant = default_albedo;
			default_material = m;
		}
		return default_material;
	}
	auto found = by_node.find(node);
	if(found != by_node.end())
		return found->second;
	// Entered before conversion, so that a material that refers to itself
	// through a composite ends as the default rather than recursing.
	by_node[node] = get(nullptr);
	const ShadingMaterial* converted = convert(*node->material, node->getName().str());
	by_node[node] = converted;
	return converted;
}

const ShadingMaterial* MaterialLibrary::convert(const Material& material, const std::string& name)
{
	ShadingMaterial* out = make();
	out->name = name;
	ChannelReader reader{textures, material.textures, {}};
	out->backface_emit = material.backface_emit;

	switch(material.getType())
	{
	case MaterialType::Diffuse:
	{
		const auto& m = static_cast<const DiffuseMaterial&>(material);
		out->kind = SurfaceKind::Diffuse;
		out->albedo = reader.colour(m.albedo, default_albedo);
		readSurfaceChannels(reader, m, *out);
		break;
	}
	case MaterialType::OrenNayar:
	{
		const auto& m = static_cast<const OrenNayarMaterial&>(material);
		out->kind = SurfaceKind::OrenNayar;
		out->albedo = reader.colour(m.albedo, default_albedo);
		out->sigma = reader.scalar(m.sigma, 0);
		readSurfaceChannels(reader, m, *out);
		break;
	}
	case MaterialType::Phong:
	{
		const auto& m = static_cast<const PhongMaterial&>(material);
		out->kind = SurfaceKind::Phong;
		out->albedo = reader.colour(m.diffuse_albedo, default_albedo);
		out->has_specular = m.specular_reflectivity.nonNull() || !m.nk_data.empty();
		out->specular = reader.colour(m.specular_reflectivity, nkReflectance(m.nk_data.str()));
		out->exponent = reader.scalar(m.exponent, 100);
		out->ior = (float)m.ior;
		readSurfaceChannels(reader, m, *out);
		break;
	}
	case MaterialType::DiffuseTransmitter:
	{
		const auto& m = static_cast<const DiffuseTransmitter&>(material);
		out->kind = SurfaceKind::DiffuseTransmitter;
		out->albedo = reader.colour(m.albedo, default_albedo);
		readSurfaceChannels(reader, m, *out);
		break;
	}
	case MaterialType::Specular:
	{
		const auto& m = static_cast<const SpecularMaterial&>(material);
		out->kind = m.transparent ? SurfaceKind::Glass : SurfaceKind::Mirror;
		out->ior = mediumIOR(m.internal_medium);
		readSurfaceChannels(reader, m, *out);
		break;
	}
	case MaterialType::GlossyTransparent:
	{
		const auto& m = static_cast<const GlossyTransparent&>(material);
		out->kind = SurfaceKind::GlossyGlass;
		out->exponent = reader.scalar(m.exponent, 5000);
		out->ior = mediumIOR(m.internal_medium);
		readSurfaceChannels(reader, m, *out);
		break;
	}
	case MaterialType::Blend:
	{
		const auto& m = static_cast<const BlendMaterial&>(material);
		out->kind = SurfaceKind::Blend;
		out->a = get(m.a_mat.getPointer());
		out->b = get(m.b_mat.getPointer());
		out->blend = reader.scalar(m.blend, 0.5f);
		out->step_blend = m.step_blend;
		break;
	}
	case MaterialType::Sum:
	{
		const auto& m = static_cast<const SumMaterial&>(material);
		out->kind = SurfaceKind::Sum;
		for(size_t i = 0; i < m.materials.size(); ++i)
		{
			out->parts.push_back(get(m.materials[i].getPointer()));
			out->weights.push_back(reader.scalar(i < m.weights.size() ? m.weights[i] : Reference<WavelengthIndependentParam>(), 1));
		}
		break;
	}
	case MaterialType::Coating:
	{
		const auto& m = static_cast<const CoatingMaterial&>(material);
		out->kind = SurfaceKind::Coating;
		out->a = get(m.substrate_material.getPointer());
		out->absorption = reader.colour(m.absorption, V3(0));
		out->thickness = reader.scalar(m.thickness, 0);
		out->roughness = reader.scalar(m.roughness, 0);
		out->ior = (float)m.ior;
		readSurfaceChannels(reader, m, *out);
		break;
	}
	case MaterialType::DoubleSidedThin:
	{
		const auto& m = static_cast<const DoubleSidedThinMaterial&>(material);
		out->kind = SurfaceKind::DoubleSidedThin;
		out->a = get(m.front_material.getPointer());
		out->b = get(m.back_material.getPointer());
		out->transmittance = reader.colour(m.transmittance, V3(0.5f));
		out->ior = (float)m.ior;
		readSurfaceChannels(reader, m, *out);
		break;
	}
	case MaterialType::Null:
	case MaterialType::ExitPortal:
		out->kind = SurfaceKind::Null;
		break;
	default:
		throw Exception("Material '" + name + "' is of kind '" + material.getTypeName().str() +
						"', which this renderer does not support.");
	}
	out->reads_coordinates = reader.reads_coordinates || (out->a && out->a->reads_coordinates) ||
							 (out->b && out->b->reads_coordinates);
	for(const ShadingMaterial* part : out->parts)
		out->reads_coordinates = out->reads_coordinates || part->reads_coordinates;
	if(!reader.shader_errors.empty())
	{
		std::string reason = reader.shader_errors.front();
		if(!reason.empty() && reason.back() == '.')
			reason.pop_back();
		shader_warnings.push_back("Material '" + name + "' uses shaders; they are read as constants (" + reason + ").");
	}
	return out;
}

Lobe chooseLobe(const ShadingMaterial& material, const SurfacePoint& sp, const V3& wo, Rng& rng, V3& weight_out)
{
	const ShadingMaterial* m = &material;
	bool front = sp.front_face;
	// Composites are resolved one level at a time; the depth is bounded by
	// the scene, since material graphs have no cycles.
	for(int depth = 0; depth < 64; ++depth)
	{
		Lobe lobe;
		const float cos_o = std::fabs(dot(wo, sp.shading_normal));
		switch(m->kind)
		{
		case SurfaceKind::Diffuse:
			lobe.kind = Lobe::Diffuse;
			lobe.colour = m->albedo.eval(sp);
			return lobe;
		case SurfaceKind::OrenNayar:
			lobe.kind = Lobe::OrenNayar;
			lobe.colour = m->albedo.eval(sp);
			lobe.sigma = m->sigma.eval(sp);
			return lobe;
		case SurfaceKind::Phong:
		{
			lobe.alpha = exponentToAlpha(m->exponent.eval(sp));
			if(m->has_specular)
			{
				lobe.kind = Lobe::Glossy;
				lobe.colour = m->specular.eval(sp);
				return lobe;
			}
			// A dielectric: the Fresnel share goes to the gloss, the rest to
			// the diffuse base.
			const float F = fresnelDielectric(cos_o, m->ior);
			if(rng.uniform() < F)
			{
				lobe.kind = Lobe::Glossy;
				lobe.colour = V3(1);
			}
			else
			{
				lobe.kind = Lobe::Diffuse;
				lobe.colour = m->albedo.eval(sp);
			}
			return lobe;
		}
		case SurfaceKind::DiffuseTransmitter:
			lobe.kind = Lobe::Transmit;
			lobe.colour = m->albedo.eval(sp);
			return lobe;
		case SurfaceKind::Mirror:
			lobe.kind = Lobe::Mirror;
			return lobe;
		case SurfaceKind::Glass:
			lobe.kind = Lobe::Glass;
			lobe.ior = m->ior;
			return lobe;
		case SurfaceKind::GlossyGlass:
			lobe.kind = Lobe::GlossyGlass;
			lobe.ior = m->ior;
			lobe.alpha = exponentToAlpha(m->exponent.eval(sp));
			return lobe;
		case SurfaceKind::Null:
			lobe.kind = Lobe::PassThrough;
			return lobe;
		case SurfaceKind::Blend:
		{
			float t = std::fmin(std::fmax(m->blend.eval(sp), 0.0f), 1.0f);
			if(m->step_blend)
				t = t > 0.5f ? 1.0f : 0.0f;
			m = rng.uniform() < t ? m->b : m->a;
			break;
		}
		case SurfaceKind::Sum:
		{
			// Each thread keeps its weights' space, so that a hit allocates
			// nothing.
			thread_local std::vector<float> w;
			w.resize(m->parts.size());
			float total = 0;
			for(size_t i = 0; i < w.size(); ++i)
				total += (w[i] = std::fmax(0.0f, m->weights[i].eval(sp)));
			if(total <= 0)
			{
				lobe.kind = Lobe::Absorb;
				return lobe;
			}
			float pick = rng.uniform() * total;
			size_t i = 0;
			while(i + 1 < w.size() && pick >= w[i])
				pick -= w[i++];
			weight_out *= total;
			m = m->parts[i];
			break;
		}
		case SurfaceKind::Coating:
		{
			const float F = fresnelDielectric(cos_o, m->ior);
			if(rng.uniform() < F)
			{
				const float roughness = m->roughness.eval(sp);
				lobe.kind = roughness < 1e-3f ? Lobe::Mirror : Lobe::Glossy;
				lobe.alpha = roughness;
				return lobe;
			}
			// Through the layer and back: absorbed along twice its thickness.
			weight_out *= exp(m->absorption.eval(sp) * (-2 * m->thickness.eval(sp)));
			m = m->a;
			break;
		}
		case SurfaceKind::DoubleSidedThin:
		{
			const V3 t = m->transmittance.eval(sp);
			const float p = std::fmin(std::fmax(t.average(), 0.0f), 0.99f);
			if(rng.uniform() < p)
			{
				lobe.kind = Lobe::Transmit;
				lobe.colour = t / p;
				lobe.sigma = -1;  // transmission only
				return lobe;
			}
			// What is not transmitted is left to the side's own material.
			weight_out *= (V3(1) - t) * (1 / (1 - p));
			m = front ? m->a : m->b;
			break;
		}
		}
	}
	Lobe absorb;
	absorb.kind = Lobe::Absorb;
	return absorb;
}

bool sampleLobe(const Lobe& lobe, const SurfacePoint& sp, const V3& wo, Rng& rng, V3& wi, V3& weight)
{
	const Frame frame(sp.shading_normal);
	const V3 wo_local = frame.toLocal(wo);
	const float u1 = rng.uniform(), u2 = rng.uniform();
	switch(lobe.kind)
	{
	case Lobe::Diffuse:
		wi = frame.toWorld(sampleCosineHemisphere(u1, u2));
		weight = lobe.colour;
		break;
	case Lobe::OrenNayar:
	{
		const V3 wi_local = sampleCosineHemisphere(u1, u2);
		wi = frame.toWorld(wi_local);
		weight = lobe.colour * orenNayarFactor(lobe.sigma, wo_local, wi_local);
		break;
	}
	case Lobe::Transmit:
	{
		// Half reflected, half transmitted, both cosine-distributed; a
		// negative sigma marks transmission only.
		V3 local = sampleCosineHemisphere(u1, u2);
		const bool transmit_only = lobe.sigma < 0;
		if(transmit_only || rng.uniform() < 0.5f)
			local.z = -local.z;
		wi = frame.toWorld(local);
		weight = lobe.colour;
		break;
	}
	case Lobe::Glossy:
	{
		const float alpha = std::fmax(lobe.alpha, 1e-3f);
		const V3 h = sampleGGXNormal(alpha, u1, u2);
		const float wo_h = dot(wo_local, h);
		if(wo_h <= 0)
			return false;
		const V3 wi_local = reflect(-wo_local, h);
		if(wi_local.z <= 0)
			return false;
		wi = frame.toWorld(wi_local);
		const float G = ggxG1(wo_local.z, alpha) * ggxG1(wi_local.z, alpha);
		weight = lobe.colour * (G * wo_h / (std::fmax(wo_local.z, 1e-6f) * h.z));
		break;
	}
	case Lobe::Mirror:
		wi = reflect(-wo, sp.shading_normal);
		weight = V3(1);
		break;
	case Lobe::Glass:
	case Lobe::GlossyGlass:
	{
		// Entering when the ray comes from the outside of the surface.
		const float eta = sp.front_face ? lobe.ior : 1 / lobe.ior;
		V3 n = sp.shading_normal;
		weight = V3(1);
		if(lobe.kind == Lobe::GlossyGlass)
		{
			const float alpha = std::fmax(lobe.alpha, 1e-3f);
			const V3 h_local = sampleGGXNormal(alpha, u1, u2);
			n = frame.toWorld(h_local);
			const float wo_h = dot(wo, n);
			if(wo_h <= 0)
				return false;
			weight = V3(ggxG1(wo_local.z, alpha) * wo_h / (std::fmax(wo_local.z, 1e-6f) * h_local.z));
		}
		const float cos_i = dot(wo, n);
		const float F = fresnelDielectric(cos_i, eta);
		V3 refracted;
		if(rng.uniform() < F || !refract(-wo, n, eta, refracted))
			wi = reflect(-wo, n);
		else
			wi = refracted;
		break;
	}
	case Lobe::PassThrough:
		wi = -wo;
		weight = V3(1);
		break;
	case Lobe::Absorb:
		return false;
	}
	return true;
}

V3 evalLobe(const Lobe& lobe, const SurfacePoint& sp, const V3& wo, const V3& wi)
{
	const Frame frame(sp.shading_normal);
	const V3 wo_local = frame.toLocal(wo), wi_local = frame.toLocal(wi);
	switch(lobe.kind)
	{
	case Lobe::Diffuse:
		return wi_local.z > 0 ? lobe.colour * (wi_local.z / pi) : V3(0);
	case Lobe::OrenNayar:
		return wi_local.z > 0 ? lobe.colour * (wi_local.z / pi * orenNayarFactor(lobe.sigma, wo_local, wi_local)) : V3(0);
	case Lobe::Transmit:
		if(lobe.sigma < 0)
			return wi_local.z < 0 ? lobe.colour * (-wi_local.z / pi) : V3(0);
		return lobe.colour * (std::fabs(wi_local.z) / (2 * pi));
	case Lobe::Glossy:
	{
		if(wi_local.z <= 0 || wo_local.z <= 0)
			return V3(0);
		const float alpha = std::fmax(lobe.alpha, 1e-3f);
		const V3 h = normalise(wo_local + wi_local);
		const float G = ggxG1(wo_local.z, alpha) * ggxG1(wi_local.z, alpha);
		return lobe.colour * (ggxD(h.z, alpha) * G / (4 * wo_local.z));
	}
	default:
		return V3(0);
	}
}

V3 reliefNormal(const ShadingMaterial& material, const ShadePoint& sp, const V3& n, const V3& dpdu, const V3& dpdv)
{
	V3 out = n;
	if(material.has_normal_map)
	{
		// Tangent-space components from [0, 1]: x along the texture's u
		// direction, y across it, z out of the surface.
		const V3 c = material.normal_map.eval(sp) * 2.0f - V3(1);
		const V3 t = normalise(dpdu - n * dot(dpdu, n));
		out = normalise(t * c.x + cross(n, t) * c.y + n * c.z);
	}
	if(material.has_bump)
	{
		// The height's slopes by forward differences in u and v, each
		// shifting the position with the coordinates; the bumped surface
		// p + h n then has the normal (dp/du + h_u n) x (dp/dv + h_v n).
		const float step = 1e-3f;
		const float h = material.bump.eval(sp);
		ShadePoint at_u = sp, at_v = sp;
		at_u.position = sp.position + dpdu * step;
		at_u.u += step;
		at_v.position = sp.position + dpdv * step;
		at_v.v += step;
		const float h_u = (material.bump.eval(at_u) - h) / step, h_v = (material.bump.eval(at_v) - h) / step;
		const V3 bumped = cross(dpdu + out * h_u, dpdv + out * h_v);
		const float len = length(bumped);
		if(len > 0)
			out = dot(bumped, out) < 0 ? bumped * (-1 / len) : bumped * (1 / len);
	}
	return out;
}

void addEmission(const ShadingMaterial& material, const SurfacePoint& sp, const V3& weight, std::vector<V3>& layers)
{
	switch(material.kind)
	{
	case SurfaceKind::Blend:
	{
		float t = std::fmin(std::fmax(material.blend.eval(sp), 0.0f), 1.0f);
		if(material.step_blend)
			t = t > 0.5f ? 1.0f : 0.0f;
		if(material.a && t < 1)
			addEmission(*material.a, sp, weight * (1 - t), layers);
		if(material.b && t > 0)
			addEmission(*material.b, sp, weight * t, layers);
		return;
	}
	case SurfaceKind::Sum:
		for(size_t i = 0; i < material.parts.size(); ++i)
			addEmission(*material.parts[i], sp, weight * material.weights[i].eval(sp), layers);
		return;
	default:
		break;
	}
	if(!material.emits || (!sp.front_face && !material.backface_emit))
		return;
	if(material.layer < layers.size())
		layers[material.layer] += weight * material.base_emission.eval(sp) * material.emission.eval(sp);
}

} // namespace Standin
} // namespace Velorn
