#include "materials/material_conversion.h"

#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/base_shader.h"
#include "materials/material_rules.h"
#include "materials/material_ids.h"

namespace
{

// The texture exponent of the glossy kinds after a conversion: the first
// value written there is the computed exponent, which this one replaces.
const double CONVERTED_EXPONENT_B = 15.0;

// The exponent of a mirror reflection, for a reflection without dispersion.
const double MIRROR_EXPONENT = 100000.0;

// The exponent that a dispersion (blurriness) of r gives: 1.0 gives 25,
// values towards 0 give sharper highlights.
double dispersionExponent(double r)
{
	return 5025.0 - r * 100.0 * 50.0;
}

// Writes the exponent channel's value, and the texture exponent that ends
// up fixed whatever the value was.
void setExponent(BaseContainer& dst, double e)
{
	dst.SetFloat(MAT_EXPONENT_VALUE, e);
	dst.SetFloat(MAT_EXPONENT_B, e);
	dst.SetFloat(MAT_EXPONENT_B, CONVERTED_EXPONENT_B);
}

// Reads the source's data and writes the target's, with the shader copies
// kept in the order they were made.
class Converter
{
public:
	Converter(BaseMaterial& source_, BaseMaterial& target_)
		: source(source_), target(target_), src(*source_.GetDataInstance()), dst(*target_.GetDataInstance())
	{
	}

	void run()
	{
		const int32_t kind = convertKind();
		// The transparent kinds take their colour from the absorption
		// instead.
		if(kind != MAT_TYPE_SPECULAR && kind != MAT_TYPE_GLOSSY_TRANSPARENT)
		{
			dst.SetVector(MAT_ALBEDO_COLOUR, src.GetVector(MATERIAL_COLOR_COLOR));
			dst.SetFloat(MAT_ALBEDO_SCALE, src.GetFloat(MATERIAL_COLOR_BRIGHTNESS));
		}
		if(kind == MAT_TYPE_DIFFUSE || kind == MAT_TYPE_OREN_NAYAR || kind == MAT_TYPE_PHONG)
			cloneShader(MATERIAL_COLOR_SHADER, MAT_ALBEDO_LINK);

		if(source.GetChannelState(CHANNEL_LUMINANCE))
		{
			dst.SetBool(MAT_USE_EMISSION, true);
			dst.SetInt32(MAT_EMISSION_MODE, MAT_SPECTRUM_RGB);
			dst.SetVector(MAT_EMISSION_RGB_COLOUR, src.GetVector(MATERIAL_LUMINANCE_COLOR));
			dst.SetFloat(MAT_EMISSION_RGB_SCALE, src.GetFloat(MATERIAL_LUMINANCE_BRIGHTNESS));
			cloneShader(MATERIAL_LUMINANCE_SHADER, MAT_EMISSION_LINK);
		}
		if(source.GetChannelState(CHANNEL_BUMP) && shaderOf(MATERIAL_BUMP_SHADER))
		{
			dst.SetBool(MAT_USE_BUMP, true);
			dst.SetFloat(MAT_BUMP_B, src.GetFloat(MATERIAL_BUMP_STRENGTH) * 0.01);
			cloneShader(MATERIAL_BUMP_SHADER, MAT_BUMP_LINK);
		}
		if(source.GetChannelState(CHANNEL_NORMAL) && shaderOf(MATERIAL_NORMAL_SHADER))
		{
			dst.SetBool(MAT_USE_NORMAL_MAP, true);
			cloneShader(MATERIAL_NORMAL_SHADER, MAT_NORMAL_MAP_LINK);
		}
		if(source.GetChannelState(CHANNEL_DISPLACEMENT) && shaderOf(MATERIAL_DISPLACEMENT_SHADER))
		{
			dst.SetBool(MAT_USE_DISPLACEMENT, true);
			dst.SetFloat(MAT_DISPLACEMENT_B, src.GetFloat(MATERIAL_DISPLACEMENT_STRENGTH) * 0.01);
			cloneShader(MATERIAL_DISPLACEMENT_SHADER, MAT_DISPLACEMENT_LINK);
		}
		if((kind == MAT_TYPE_PHONG || kind == MAT_TYPE_GLOSSY_TRANSPARENT) &&
			source.GetChannelState(CHANNEL_SPECULARCOLOR))
			cloneShader(MATERIAL_SPECULAR_COLOR_SHADER, MAT_EXPONENT_LINK);
		if(kind != MAT_TYPE_SPECULAR && kind != MAT_TYPE_GLOSSY_TRANSPARENT && source.GetChannelState(CHANNEL_ALPHA) &&
			shaderOf(MATERIAL_ALPHA_SHADER))
		{
			dst.SetBool(MAT_USE_ALPHA, true);
			// A hard alpha is the inverted texture: 1 - t. The two terms are
			// stored as longs, not as the reals Init gives them; readers
			// convert.
			if(!src.GetBool(MATERIAL_ALPHA_SOFT))
			{
				dst.SetInt32(MAT_ALPHA_B, -1);
				dst.SetInt32(MAT_ALPHA_C, 1);
			}
			cloneShader(MATERIAL_ALPHA_SHADER, MAT_ALPHA_LINK);
		}

		applyKindSwitchRule(dst, kind);
	}

private:
	// Sets MAT_TYPE and the values that come with the kind; returns the kind.
	int32_t convertKind()
	{
		int32_t kind;
		if(source.GetChannelState(CHANNEL_TRANSPARENCY))
		{
			const double r = src.GetFloat(MATERIAL_TRANSPARENCY_DISPERSION);
			if(r > 0)
			{
				kind = MAT_TYPE_GLOSSY_TRANSPARENT;
				setExponent(dst, dispersionExponent(r));
			}
			else
				kind = MAT_TYPE_SPECULAR;
			dst.SetFloat(MAT_MEDIUM_IOR, src.GetFloat(MATERIAL_TRANSPARENCY_REFRACTION));
			dst.SetInt32(MAT_ABSORPTION_MODE, MAT_SPECTRUM_RGB);
			dst.SetVector(MAT_ABSORPTION_RGB_COLOUR, src.GetVector(MATERIAL_TRANSPARENCY_COLOR));
			dst.SetFloat(MAT_ABSORPTION_RGB_SCALE, src.GetFloat(MATERIAL_TRANSPARENCY_BRIGHTNESS, 1.0) * 10.0);
		}
		else if(source.GetChannelState(CHANNEL_REFLECTION))
		{
			kind = MAT_TYPE_PHONG;
			const double brightness = src.GetFloat(MATERIAL_REFLECTION_BRIGHTNESS);
			dst.SetFloat(MAT_PHONG_IOR, 1.0 + brightness * brightness * 10.0);
			const double r = src.GetFloat(MATERIAL_REFLECTION_DISPERSION);
			setExponent(dst, r > 0 ? dispersionExponent(r) : MIRROR_EXPONENT);
		}
		else if(source.GetChannelState(CHANNEL_SPECULAR))
		{
			kind = MAT_TYPE_PHONG;
			dst.SetFloat(MAT_PHONG_IOR, 1.0 + src.GetFloat(MATERIAL_SPECULAR_HEIGHT) * 100.0 * 0.0070422534);
			const double width = src.GetFloat(MATERIAL_SPECULAR_WIDTH) * 100.0;
			setExponent(dst, width * width * 0.025);
		}
		else
			kind = src.GetInt32(MATERIAL_ILLUMINATION_MODEL) == 2 ? MAT_TYPE_OREN_NAYAR : MAT_TYPE_DIFFUSE;
		dst.SetInt32(MAT_TYPE, kind);
		return kind;
	}

	// The shader that the source links under id; null for none, for a
	// freed one and for a link to something else.
	BaseShader* shaderOf(int32_t id) const
	{
		return static_cast<BaseShader*>(src.GetLink(id, source.GetDocument(), Xbase));
	}

	// Links a copy of the source's shader under sourceId from the target's
	// targetId; the target owns the copy. Nothing without a shader.
	void cloneShader(int32_t sourceId, int32_t targetId)
	{
		const BaseShader* shader = shaderOf(sourceId);
		BaseShader* copy = shader ? shader->GetClone() : nullptr;
		if(!copy)
			return;
		target.InsertShader(copy, lastShader);
		lastShader = copy;
		dst.SetLink(targetId, copy);
	}

	BaseMaterial& source;
	BaseMaterial& target;
	const BaseContainer& src;
	BaseContainer& dst;
	BaseShader* lastShader = nullptr;
};

} // namespace

bool convertMaterial(BaseMaterial* source, BaseMaterial* target)
{
	if(!source || !target)
		return false;
	target->SetName(source->GetName());
	if(source->GetType() != Mmaterial)
		return true;
	Converter(*source, *target).run();
	return true;
}
