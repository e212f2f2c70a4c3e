#pragma once

#include "standin/shading_values.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Velorn
{

class Material;
class SceneNodeMaterial;

namespace Standin
{

// The kinds of surface this renderer shades, each a simplified, physically
// plausible stand-in for a scene material class.
enum class SurfaceKind
{
	Diffuse,
	OrenNayar,
	Phong,
	DiffuseTransmitter,
	Mirror,
	Glass,
	GlossyGlass,
	Blend,
	Sum,
	Coating,
	DoubleSidedThin,
	Null
};

// A material ready for shading: its channels as constants or textures, its
// emission and the materials it is made of.
struct ShadingMaterial
{
	SurfaceKind kind = SurfaceKind::Diffuse;
	std::string name;
	// A channel of it or of one of its parts reads texture coordinates (a
	// texture or a shader): hits on other materials skip computing them.
	bool reads_coordinates = false;

	ColourValue albedo;      // diffuse, Oren-Nayar, Phong's diffuse part, transmitter
	ColourValue specular;    // Phong's metal colour, when has_specular
	bool has_specular = false;
	ScalarValue exponent;    // Phong and glossy glass: a Phong exponent
	ScalarValue sigma;       // Oren-Nayar roughness, in radians
	float ior = 1.5f;

	// Emitted radiance: base_emission times emission, each 1 when absent.
	bool emits = false;
	ColourValue base_emission;
	ColourValue emission;
	unsigned layer = 0;
	bool backface_emit = false;

	// Blend: a, b and the share of b; sum: parts and weights.
	const ShadingMaterial* a = nullptr;
	const ShadingMaterial* b = nullptr;
	ScalarValue blend;
	bool step_blend = false;
	std::vector<const ShadingMaterial*> parts;
	std::vector<ScalarValue> weights;

	// Coating: the layer over substrate (in a).
	ColourValue absorption;
	ScalarValue thickness;
	ScalarValue roughness;

	// Double-sided thin: front in a, back in b.
	ColourValue transmittance;

	// Relief of the surface: a bump height in metres, and a normal map in
	// the surface's tangent space ((0.5, 0.5, 1) is straight out).
	bool has_bump = false, has_normal_map = false;
	ScalarValue bump;
	ColourValue normal_map;

	bool hasRelief() const { return has_bump || has_normal_map; }
};

// The materials of a scene, converted once from the scene's material nodes.
// Throws Exception for a material kind this renderer does not know.
class MaterialLibrary
{
public:
	explicit MaterialLibrary(TextureCache& textures_) : textures(textures_) {}

	// The converted material of a node; null gives a grey diffuse default.
	const ShadingMaterial* get(const SceneNodeMaterial* node);
	// A material without a node (the background's).
	const ShadingMaterial* convert(const Material& material, const std::string& name);

	// One line for each material with shaders this renderer cannot read,
	// which read as constants.
	std::vector<std::string> shader_warnings;

private:
	ShadingMaterial* make();

	TextureCache& textures;
	std::vector<std::unique_ptr<ShadingMaterial>> storage;
	std::map<const SceneNodeMaterial*, const ShadingMaterial*> by_node;
	const ShadingMaterial* default_material = nullptr;
};

// What a surface looks like at a hit, in world space: the position, texture
// coordinates and viewing cosine that channels read, and the normals.
struct SurfacePoint : ShadePoint
{
	V3 geometric_normal;  // facing the incoming ray
	V3 shading_normal;    // on the same side as geometric_normal
	bool front_face = true;  // the ray came from the side the normal of the surface points to
	float time = 0;          // of the ray that met it, while the shutter is open
};

// One lobe of a material at a hit, with its parameters evaluated: what a
// composite material comes down to when one of its parts is chosen.
struct Lobe
{
	enum Kind
	{
		Diffuse,
		OrenNayar,
		Glossy,
		Transmit,
		Mirror,
		Glass,
		GlossyGlass,
		PassThrough,
		Absorb
	} kind = Diffuse;
	V3 colour = V3(1);
	float alpha = 0;    // microfacet roughness
	float sigma = 0;    // Oren-Nayar, radians
	float ior = 1.5f;
};

// Chooses the lobe of a material at a point for a ray leaving towards wo
// (unit, pointing away from the surface). weight_out multiplies the path by
// the choice's colour over its probability.
Lobe chooseLobe(const ShadingMaterial& material, const SurfacePoint& sp, const V3& wo, Rng& rng, V3& weight_out);

// True for lobes whose scattering has no density (light sources cannot be
// sampled through them).
inline bool isSpecularLobe(const Lobe& lobe)
{
	return lobe.kind == Lobe::Mirror || lobe.kind == Lobe::Glass || lobe.kind == Lobe::GlossyGlass ||
		   lobe.kind == Lobe::PassThrough || lobe.kind == Lobe::Absorb;
}

// Samples a direction wi from the lobe; weight is f * |cos| / pdf. False
// when the path ends.
bool sampleLobe(const Lobe& lobe, const SurfacePoint& sp, const V3& wo, Rng& rng, V3& wi, V3& weight);

// f * |cos(wi)| of a non-specular lobe, for light sampling.
V3 evalLobe(const Lobe& lobe, const SurfacePoint& sp, const V3& wo, const V3& wi);

// The shading normal n tilted by the material's normal map and bump at sp,
// given how the surface moves with its texture coordinates (dpdu, dpdv).
// Composite materials give their own relief only, not their parts'.
V3 reliefNormal(const ShadingMaterial& material, const ShadePoint& sp, const V3& n, const V3& dpdu, const V3& dpdv);

// Adds the light a material sends towards wo at sp, times weight, into
// layers (one entry per light layer). Composites add their parts' light in
// proportion to their blend or weights.
void addEmission(const ShadingMaterial& material, const SurfacePoint& sp, const V3& weight, std::vector<V3>& layers);

// The Phong exponent as a microfacet roughness.
inline float exponentToAlpha(float exponent) { return std::sqrt(2.0f / (std::fmax(exponent, 0.0f) + 2.0f)); }

} // namespace Standin
} // namespace Velorn
