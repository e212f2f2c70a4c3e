#include "c4d/base_material.h"

#include "c4d/base_bitmap.h"
#include "c4d/node_data.h"

#include <algorithm>
#include <cmath>

namespace
{

// A colour component from 0 to 1 as a byte.
int32_t toByte(double v)
{
	return (int32_t)std::lround(std::clamp(v, 0.0, 1.0) * 255.0);
}

} // namespace

BaseMaterial::BaseMaterial(int32_t type) : TypedList2D(type) {}

BaseMaterial::~BaseMaterial() = default;

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

INITRENDERRESULT BaseMaterial::InitRender(const InitRenderStruct& irs)
{
	auto* data = dynamic_cast<MaterialData*>(GetNodeData());
	return data ? data->InitRender(this, irs) : INITRENDERRESULT_OK;
}

void BaseMaterial::FreeRender()
{
	if(auto* data = dynamic_cast<MaterialData*>(GetNodeData()))
		data->FreeRender(this);
}

void BaseMaterial::CalcSurface(VolumeData* vd)
{
	if(auto* data = dynamic_cast<MaterialData*>(GetNodeData()))
		data->CalcSurface(this, vd);
}

void BaseMaterial::CalcTransparency(VolumeData* vd)
{
	if(auto* data = dynamic_cast<MaterialData*>(GetNodeData()))
		data->CalcTransparency(this, vd);
}

bool BaseMaterial::Update(BaseDocument* doc)
{
	auto image = std::make_unique<BaseBitmap>();
	if(image->Init(EDITOR_IMAGE_SIZE, EDITOR_IMAGE_SIZE, 24) != IMAGERESULT_OK)
		return false;
	if(auto* data = dynamic_cast<MaterialData*>(GetNodeData()))
	{
		if(!data->InitGLImage(this, doc, nullptr, image.get()))
		{
			editorImage.reset();
			return false;
		}
	}
	else
	{
		const BaseContainer* bc = GetDataInstance();
		const Vector colour = bc->GetVector(MATERIAL_COLOR_COLOR) * bc->GetFloat(MATERIAL_COLOR_BRIGHTNESS);
		image->Clear(toByte(colour.x), toByte(colour.y), toByte(colour.z));
	}
	editorImage = std::move(image);
	return true;
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
