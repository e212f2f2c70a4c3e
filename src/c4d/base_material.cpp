#include "c4d/base_material.h"

bool BaseMaterial::GetChannelState(int32_t channel) const
{
	return GetType() == Mmaterial && GetDataInstance()->GetBool(MATERIAL_USE_FIRST + channel);
}

BaseMaterial* BaseMaterial::GetClone() const
{
	BaseMaterial* copy = Alloc(GetType());
	if(copy)
		cloneInto(*copy);
	return copy;
}

void SetStandardMaterialDefaults(BaseContainer& data)
{
	data.SetBool(MATERIAL_USE_COLOR, true);
	data.SetBool(MATERIAL_USE_SPECULAR, true);
	data.SetVector(MATERIAL_COLOR_COLOR, Vector(0.8, 0.8, 0.8));
	data.SetFloat(MATERIAL_COLOR_BRIGHTNESS, 1.0);
	data.SetVector(MATERIAL_LUMINANCE_COLOR, Vector(1, 1, 1));
	data.SetFloat(MATERIAL_LUMINANCE_BRIGHTNESS, 1.0);
	data.SetVector(MATERIAL_TRANSPARENCY_COLOR, Vector(1, 1, 1));
	data.SetFloat(MATERIAL_TRANSPARENCY_BRIGHTNESS, 1.0);
	data.SetFloat(MATERIAL_TRANSPARENCY_REFRACTION, 1.0);
	data.SetFloat(MATERIAL_TRANSPARENCY_DISPERSION, 0.0);
	data.SetFloat(MATERIAL_REFLECTION_BRIGHTNESS, 1.0);
	data.SetFloat(MATERIAL_REFLECTION_DISPERSION, 0.0);
	data.SetFloat(MATERIAL_BUMP_STRENGTH, 0.2);
	data.SetBool(MATERIAL_ALPHA_SOFT, true);
	data.SetFloat(MATERIAL_SPECULAR_WIDTH, 0.5);
	data.SetFloat(MATERIAL_SPECULAR_HEIGHT, 0.2);
	data.SetFloat(MATERIAL_DISPLACEMENT_STRENGTH, 1.0);
	data.SetInt32(MATERIAL_ILLUMINATION_MODEL, 0);
}
