#include "bake/shader_bake.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/base_shader.h"
#include "c4d/primitives.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

namespace
{

// The service's settings for a bake of the colour channel alone into a
// picture of width by height: every other channel off, no colour or
// blending terms, no pixel border, no super sampling.
BaseContainer colourBakeSettings(int32_t width, int32_t height)
{
	static const int32_t otherChannels[] = {BAKE_TEX_USE_CAMERA_VECTOR, BAKE_TEX_UV_LEFT, BAKE_TEX_NORMAL,
		BAKE_TEX_SURFACECOLOR, 1013, 1014, 1015, 1016, 1017, 1018, 1040, 1041, 2100, 2101, 2102, 2103, 2110, 2120, 2140};
	static const int32_t colourTerms[] = {
		BAKE_TEX_FILL_COLOR, BAKE_TEX_COLOR_ILLUM, BAKE_TEX_COLOR_SHADOWS, BAKE_TEX_COLOR_LUMINANCE};
	BaseContainer settings;
	for(const int32_t off : otherChannels)
		settings.SetBool(off, false);
	for(const int32_t term : colourTerms)
		settings.SetFloat(term, 0.0);
	settings.SetBool(BAKE_TEX_COLOR, true);
	settings.SetInt32(BAKE_TEX_WIDTH, width);
	settings.SetInt32(BAKE_TEX_HEIGHT, height);
	settings.SetInt32(BAKE_TEX_PIXELBORDER, 0);
	settings.SetInt32(BAKE_TEX_SUPERSAMPLING, 0);
	return settings;
}

} // namespace

BAKE_TEX_ERR bakeShaderToBitmap(BaseBitmap* target, BaseShader* shader, BaseDocument* sourceDocument)
{
	if(!target || target->GetBw() < 1 || target->GetBh() < 1)
		return BAKE_TEX_ERR_WRONG_BITMAP;
	if(!shader)
		return BAKE_TEX_ERR_TEXTURE_MISSING;

	// A document of its own, placed and timed as the source, so that the
	// shader reads relative file names and animated values as there.
	BaseDocument* doc = BaseDocument::Alloc();
	if(sourceDocument)
	{
		doc->SetDocumentPath(sourceDocument->GetDocumentPath());
		doc->SetDocumentName(sourceDocument->GetDocumentName());
		doc->SetFps(sourceDocument->GetFps());
		doc->SetTime(sourceDocument->GetTime());
	}
	const BaseContainer settings = colourBakeSettings(target->GetBw(), target->GetBh());

	// A plane of size 1 whose UVs cover the square, worn by a standard
	// material through a UVW-mapped texture tag.
	BaseObject* plane = BaseObject::Alloc(Oplane);
	BaseMaterial* material = BaseMaterial::Alloc(Mmaterial);
	TextureTag* tag = TextureTag::Alloc();
	BaseShader* copy = shader->GetClone();
	BAKE_TEX_ERR result = BAKE_TEX_ERR_NO_MEM;
	if(plane && material && tag && copy)
	{
		plane->GetDataInstance()->SetFloat(PRIM_PLANE_WIDTH, 1.0);
		plane->GetDataInstance()->SetFloat(PRIM_PLANE_HEIGHT, 1.0);
		doc->InsertObject(plane, nullptr, nullptr);
		doc->InsertMaterial(material);
		tag->SetMaterial(material);
		tag->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, TEXTURETAG_PROJECTION_UVW);
		plane->InsertTag(tag);
		material->GetDataInstance()->SetLink(MATERIAL_COLOR_SHADER, copy);
		material->InsertShader(copy);

		// The plane's UVs are those of the cache its generator builds.
		doc->ExecutePasses(nullptr, false, false, true, 0);
		BaseObject* cache = plane->GetCache();
		UVWTag* uvw = cache ? static_cast<UVWTag*>(cache->GetTag(Tuvw)) : nullptr;
		BaseDocument* bakeDoc = InitBakeTexture(doc, tag, uvw, nullptr, settings, &result, nullptr);
		if(bakeDoc)
			result = BakeTexture(bakeDoc, settings, target, nullptr);
		BaseDocument::Free(bakeDoc);
	}
	else
		BaseShader::Free(copy);

	// The temporary nodes go in the reverse order of their making.
	TextureTag::Free(tag);
	BaseMaterial::Free(material);
	BaseObject::Free(plane);
	BaseDocument::Free(doc);
	return result;
}
