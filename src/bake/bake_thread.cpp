#include "bake/bake_thread.h"

#include "c4d/bake_texture.h"
#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/base_shader.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"
#include "materials/material_ids.h"
#include "shaders/shader_ids.h"

namespace
{

enum
{
	// The colour shader link of the host's standard material.
	STANDARD_COLOR_SHADER = 8000,
	JPEG_QUALITY = 100,
};

} // namespace

const std::array<BakeChannel, 7> bake_channels = {{
	{MAT_ALBEDO_LINK, BAKE_ALBEDO, "_albedo.jpg", false},
	{MAT_EXPONENT_LINK, BAKE_EXPONENT, "_exponent.jpg", true},
	{MAT_ALPHA_LINK, BAKE_BLEND, "_alpha.jpg", true},
	{MAT_EMISSION_LINK, BAKE_EMISSION, "_emission.jpg", false},
	{MAT_BUMP_LINK, BAKE_BUMP, "_bump.jpg", true},
	{MAT_DISPLACEMENT_LINK, BAKE_DISPLACEMENT, "_displacement.jpg", true},
	{MAT_SIGMA_LINK, BAKE_SIGMA, "_sigma.jpg", true},
}};

Filename bakeFileName(const Filename& base, const BakeChannel& channel)
{
	Filename stem = base;
	stem.SetSuffix(String());
	return Filename(stem.GetString() + String(channel.suffix));
}

BakeThread::BakeThread(const BaseContainer& settings_, BaseObject* object, TextureTag* tag_, UVWTag* uvw_,
	BaseMaterial* material_, const Filename& documentPath)
	: settings(settings_), document(BaseDocument::Alloc()), tag(tag_), uvw(uvw_), material(material_),
	  standard(BaseMaterial::Alloc(Mmaterial))
{
	// Shaders that name their files relative to the document find them
	// beside the user's document.
	document->SetDocumentPath(documentPath);
	document->InsertObject(object, nullptr, nullptr);
	document->InsertMaterial(material);
	if(standard)
	{
		document->InsertMaterial(standard, material);
		tag->SetMaterial(standard);
	}
}

BakeThread::~BakeThread()
{
	End(true);
	BaseDocument::Free(document);
}

String BakeThread::GetThreadName() const
{
	return String("Evelorn Bake Thread");
}

Filename BakeThread::GetFile(int32_t link) const
{
	std::lock_guard<std::mutex> lock(filesMutex);
	for(size_t i = 0; i < bake_channels.size(); ++i)
		if(bake_channels[i].link == link)
			return files[i];
	return Filename();
}

void BakeThread::Main()
{
	if(!document || !standard)
		return;
	for(size_t i = 0; i < bake_channels.size() && !TestBreak(); ++i)
	{
		const BakeChannel& channel = bake_channels[i];
		if(!settings.GetBool(channel.setting))
			continue;
		// Shader text only means something to the renderer: the host
		// cannot render it, so there is nothing to bake.
		auto* shader = static_cast<BaseShader*>(material->GetDataInstance()->GetLink(channel.link, document, Xbase));
		if(!shader || shader->GetType() == ID_VSL_SHADER)
			continue;
		bakeChannel(i, shader);
	}
	// The copies are of no use once the files are written.
	BaseDocument::Free(document);
}

bool BakeThread::bakeChannel(size_t index, BaseShader* shader)
{
	BaseShader* copy = shader->GetClone();
	if(!copy)
		return false;
	standard->InsertShader(copy);
	standard->GetDataInstance()->SetLink(STANDARD_COLOR_SHADER, copy);

	bool written = false;
	BAKE_TEX_ERR err = BAKE_TEX_ERR_NONE;
	BaseDocument* bakeDoc = InitBakeTexture(document, tag, uvw, nullptr, settings, &err, Get());
	if(bakeDoc)
	{
		BaseBitmap bmp;
		const int32_t width = settings.GetInt32(BAKE_TEX_WIDTH);
		const int32_t height = settings.GetInt32(BAKE_TEX_HEIGHT);
		if(bmp.Init(width, height) == IMAGERESULT_OK &&
			BakeTexture(bakeDoc, settings, &bmp, Get()) == BAKE_TEX_ERR_NONE)
		{
			const BakeChannel& channel = bake_channels[index];
			const Filename file = bakeFileName(settings.GetFilename(BAKE_FILE), channel);
			BaseContainer data;
			data.SetInt32(JPGSAVER_QUALITY, JPEG_QUALITY);
			if(bmp.Save(file, FILTER_JPG, &data, channel.grey ? SAVEBIT_GREYSCALE : SAVEBIT_NONE) == IMAGERESULT_OK)
			{
				std::lock_guard<std::mutex> lock(filesMutex);
				files[index] = file;
				written = true;
			}
		}
		BaseDocument::Free(bakeDoc);
	}
	standard->GetDataInstance()->RemoveData(STANDARD_COLOR_SHADER);
	GeListNode::Free(copy);
	return written;
}
