#include "c4d/base_shader.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/plugin_registry.h"

#include "support/platform.h"

#include <algorithm>
#include <cmath>

BaseShader::~BaseShader() = default;

BaseShader* BaseShader::Alloc(int32_t type)
{
	return InitOrFree(new BaseShader(type), NodeClass::Shader);
}

BaseShader* BaseShader::GetClone() const
{
	BaseShader* copy = Alloc(GetType());
	if(copy)
		cloneInto(*copy);
	return copy;
}

ShaderData* BaseShader::shaderData() const
{
	return dynamic_cast<ShaderData*>(GetNodeData());
}

INITRENDERRESULT BaseShader::InitRender(const InitRenderStruct& irs)
{
	if(ShaderData* data = shaderData())
		return data->InitRender(this, irs);
	if(GetType() == Xbitmap)
		return loadPicture(irs);
	return INITRENDERRESULT_OK;
}

void BaseShader::FreeRender()
{
	if(ShaderData* data = shaderData())
		data->FreeRender(this);
	picture.reset();
}

INITRENDERRESULT BaseShader::loadPicture(const InitRenderStruct& irs)
{
	picture.reset();
	const std::string name = GetDataInstance()->GetFilename(BITMAPSHADER_FILENAME).GetString().GetStdString();
	if(name.empty())
		return INITRENDERRESULT_ASSETMISSING;
	Filename file(String(name.c_str()));
	if(!Velorn::Platform::isAbsolutePath(name))
	{
		// Relative to the document's folder; without one the name leads nowhere.
		if(!irs.doc || !irs.doc->GetDocumentPath().Content())
			return INITRENDERRESULT_ASSETMISSING;
		file = irs.doc->GetDocumentPath() + file;
	}
	std::unique_ptr<BaseBitmap> loaded(new BaseBitmap());
	switch(loaded->Init(file))
	{
	case IMAGERESULT_OK: break;
	case IMAGERESULT_OUTOFMEMORY: return INITRENDERRESULT_OUTOFMEMORY;
	case IMAGERESULT_NOTEXISTING: return INITRENDERRESULT_ASSETMISSING;
	default: return INITRENDERRESULT_UNKNOWNERROR;
	}
	picture = std::move(loaded);
	return INITRENDERRESULT_OK;
}

Vector BaseShader::samplePicture(const ChannelData& cd) const
{
	if(!picture)
		return Vector();
	const int32_t width = picture->GetBw(), height = picture->GetBh();
	// The picture repeats outside the unit square.
	const auto pixelOf = [](double t, int32_t size) {
		if(!std::isfinite(t))
			return 0;
		const int32_t i = (int32_t)std::floor((t - std::floor(t)) * size);
		// t just below a whole number can round up to size.
		return std::clamp(i, 0, size - 1);
	};
	uint16_t r, g, b;
	picture->GetPixel(pixelOf(cd.p.x, width), pixelOf(cd.p.y, height), &r, &g, &b);
	return Vector(r, g, b) / 255.0;
}

Vector BaseShader::Sample(ChannelData* cd)
{
	if(ShaderData* data = shaderData())
		return data->Output(this, cd);
	if(GetType() == Xcolor)
		return GetDataInstance()->GetVector(COLORSHADER_COLOR);
	if(GetType() == Xbitmap)
		return samplePicture(*cd);
	return Vector();
}

int32_t BaseShader::GetRenderInfo()
{
	ShaderData* data = shaderData();
	return data ? data->GetRenderInfo(this) : 0;
}
