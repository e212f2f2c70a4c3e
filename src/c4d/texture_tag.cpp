#include "c4d/texture_tag.h"

#include "c4d/base_material.h"
#include "c4d/base_object.h"
#include "c4d/plugin_registry.h"

void SetTextureTagDefaults(BaseContainer& data)
{
	data.SetFloat(TEXTURETAG_OFFSETX, 0.0);
	data.SetFloat(TEXTURETAG_OFFSETY, 0.0);
	data.SetFloat(TEXTURETAG_LENGTHX, 1.0);
	data.SetFloat(TEXTURETAG_LENGTHY, 1.0);
	data.SetInt32(TEXTURETAG_PROJECTION, TEXTURETAG_PROJECTION_UVW);
	data.SetString(TEXTURETAG_RESTRICTION, String());
}

TextureTag* TextureTag::Alloc()
{
	return InitOrFree(new TextureTag(), NodeClass::Tag);
}

BaseMaterial* TextureTag::GetMaterial() const
{
	return dynamic_cast<BaseMaterial*>(GetDataInstance()->GetLink(TEXTURETAG_MATERIAL));
}

void TextureTag::SetMaterial(BaseMaterial* mat)
{
	GetDataInstance()->SetLink(TEXTURETAG_MATERIAL, mat);
}

Matrix TextureTag::GetMg() const
{
	const BaseObject* op = GetObject();
	return op ? op->GetMg() * ml : ml;
}

TextureTag* TextureTag::GetClone() const
{
	TextureTag* copy = static_cast<TextureTag*>(BaseTag::GetClone());
	if(copy)
		copy->ml = ml;
	return copy;
}
