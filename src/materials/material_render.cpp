// What the host sees of the plug-in's material when it renders by itself
// and when it draws the viewport: a coarse stand-in of the renderer's
// material, and the viewport image.

#include "materials/material_plugin.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_container.h"
#include "c4d/base_material.h"
#include "c4d/base_shader.h"
#include "materials/material_ids.h"

#include <algorithm>
#include <cmath>

namespace
{

// How deep reflections go in the host's render, and how far they look.
const int32_t MAX_REFLECTION_DEPTH = 4;
const double REFLECTION_DISTANCE = 100000000.0;
const double REFLECTION_WEIGHT = 0.15;

// A sample component as a viewport byte: floored at 0, times 255,
// truncated, capped at 255.
int32_t viewByte(double v)
{
	return (int32_t)std::min(std::max(v, 0.0) * 255.0, 255.0);
}

float component(const Vector& v, int i)
{
	return (float)(i == 0 ? v.x : i == 1 ? v.y : v.z);
}

Vector viewColourOf(const float colour[3])
{
	return Vector(colour[0], colour[1], colour[2]);
}

// The sample of shader at (u, v) for the viewport, which has no surface
// behind its pixels.
Vector viewSample(BaseShader* shader, double u, double v)
{
	ChannelData cd;
	cd.p = Vector(u, v, 0);
	return shader->Sample(&cd);
}

} // namespace

std::unique_ptr<VelornMaterial::Sampler> VelornMaterial::makeSampler(
	const BaseContainer& data, int32_t link, int32_t first_term, const InitRenderStruct& irs, INITRENDERRESULT& result)
{
	auto* shader = static_cast<BaseShader*>(data.GetLink(link, irs.doc, Xbase));
	if(!shader)
		return nullptr;
	auto sampler = std::make_unique<Sampler>(Sampler{shader, (float)data.GetFloat(first_term),
		(float)data.GetFloat(first_term + 1), (float)data.GetFloat(first_term + 2)});
	result = shader->InitRender(irs);
	return sampler;
}

Vector VelornMaterial::sample(const Sampler& sampler, VolumeData* vd)
{
	ChannelData cd;
	cd.p = vd->uvw;
	cd.n = vd->bumpn;
	cd.d = vd->ray_dir;
	cd.vd = vd;
	const Vector t = sampler.shader->Sample(&cd);
	const auto scaled = [&](double x) { return sampler.a * x * x + sampler.b * x + sampler.c; };
	return Vector(scaled(t.x), scaled(t.y), scaled(t.z));
}

INITRENDERRESULT VelornMaterial::InitRender(BaseMaterial* mat, const InitRenderStruct& irs)
{
	const BaseContainer* data = mat ? mat->GetDataInstance() : nullptr;
	if(!data || !irs.doc)
		return INITRENDERRESULT_OK;
	materialType = data->GetInt32(MAT_TYPE);
	refractive = materialType == MAT_TYPE_GLOSSY_TRANSPARENT
		|| (materialType == MAT_TYPE_SPECULAR && data->GetBool(MAT_TRANSPARENT));
	reflective = materialType == MAT_TYPE_PHONG || materialType == MAT_TYPE_SPECULAR
		|| materialType == MAT_TYPE_GLOSSY_TRANSPARENT;
	const int32_t ior = materialType == MAT_TYPE_PHONG ? (int32_t)MAT_PHONG_IOR : (int32_t)MAT_MEDIUM_IOR;
	viewIor = (float)data->GetFloat(ior);

	const Vector albedo = data->GetVector(MAT_ALBEDO_COLOUR) * data->GetFloat(MAT_ALBEDO_SCALE);
	const Vector emission = data->GetBool(MAT_USE_EMISSION)
		? data->GetVector(MAT_EMISSION_RGB_COLOUR) * data->GetFloat(MAT_EMISSION_RGB_SCALE)
		: Vector();
	for(int i = 0; i < 3; ++i)
	{
		viewColour[i] = component(albedo, i);
		viewEmission[i] = component(emission, i);
	}

	INITRENDERRESULT result = INITRENDERRESULT_OK;
	albedoSampler = makeSampler(*data, MAT_ALBEDO_LINK, MAT_ALBEDO_A, irs, result);
	if(result == INITRENDERRESULT_OK)
		emissionSampler = makeSampler(*data, MAT_EMISSION_LINK, MAT_EMISSION_A, irs, result);
	if(result != INITRENDERRESULT_OK)
		FreeRender(mat);
	return result;
}

void VelornMaterial::FreeRender(BaseMaterial*)
{
	for(std::unique_ptr<Sampler>* sampler : {&albedoSampler, &emissionSampler})
	{
		if(*sampler)
			(*sampler)->shader->FreeRender();
		sampler->reset();
	}
}

Vector VelornMaterial::reflection(VolumeData* vd) const
{
	if(!reflective || vd->raydepth >= MAX_REFLECTION_DEPTH)
		return Vector();
	const Vector& d = vd->ray_dir;
	const Vector& n = vd->bumpn;
	const Vector mirrored = (d - n * (2.0 * Dot(d, n))).GetNormalized();
	return vd->TraceColor(mirrored, REFLECTION_DISTANCE) * REFLECTION_WEIGHT;
}

// Snell's law with the view IOR: the ratio of indices is the current
// medium's, divided by the material's when the ray enters (it runs against
// the normal). Where no direction passes, the ray reflects totally.
void VelornMaterial::refract(VolumeData* vd) const
{
	const Vector& d = vd->ray_dir;
	Vector n = vd->bumpn;
	double k = Dot(d, n);
	double r = vd->ior;
	if(k < 0.0)
		r /= viewIor;
	else
	{
		// Leaving: the normal is turned towards the ray's side.
		n = -n;
		k = -k;
	}
	const double root = 1.0 - (1.0 - k * k) * r * r;
	if(root < 0.0)
		vd->tray_dir = (d - n * (2.0 * k)).GetNormalized();
	else
		vd->tray_dir = (d * r - n * (r * k + std::sqrt(root))).GetNormalized();
}

void VelornMaterial::CalcSurface(BaseMaterial*, VolumeData* vd)
{
	if(!vd)
		return;
	Vector colour = albedoSampler ? sample(*albedoSampler, vd) : viewColourOf(viewColour);
	if(materialType == MAT_TYPE_SPECULAR)
		colour = Vector();
	if(refractive)
		refract(vd);
	Vector diffuse, specular;
	vd->IlluminanceSimple(&diffuse, &specular, 0.0);
	vd->col = ((diffuse + specular) ^ colour) + reflection(vd)
		+ (emissionSampler ? sample(*emissionSampler, vd) : viewColourOf(viewEmission));
}

void VelornMaterial::CalcTransparency(BaseMaterial*, VolumeData* vd)
{
	if(vd)
		vd->trans = refractive ? Vector(1, 1, 1) : Vector();
}

bool VelornMaterial::InitGLImage(BaseMaterial* mat, BaseDocument* doc, BaseThread*, BaseBitmap* bmp)
{
	const BaseContainer* data = mat ? mat->GetDataInstance() : nullptr;
	if(!data || !doc || !bmp)
		return false;
	const int32_t width = bmp->GetBw();
	const int32_t height = bmp->GetBh();
	if(bmp->Init(width, height, 24) != IMAGERESULT_OK)
		return false;
	const InitRenderStruct irs(doc);

	if(auto* albedo = static_cast<BaseShader*>(data->GetLink(MAT_ALBEDO_LINK, doc, Xbase)))
	{
		if(albedo->InitRender(irs) != INITRENDERRESULT_OK)
			return false;
		for(int32_t y = 0; y < height; ++y)
			for(int32_t x = 0; x < width; ++x)
			{
				const Vector c = viewSample(albedo, (double)x / width, (double)y / height);
				bmp->SetPixel(x, y, viewByte(c.x), viewByte(c.y), viewByte(c.z));
			}
		albedo->FreeRender();
	}
	else
	{
		const Vector c = data->GetVector(MAT_ALBEDO_COLOUR) * data->GetFloat(MAT_ALBEDO_SCALE);
		bmp->Clear(viewByte(c.x), viewByte(c.y), viewByte(c.z));
	}

	if(!data->GetBool(MAT_USE_ALPHA))
		return true;
	BaseBitmap* alpha = bmp->GetInternalChannel();
	if(!alpha)
		alpha = bmp->AddChannel(true, false);
	if(!alpha)
		return false;
	auto* mask = static_cast<BaseShader*>(data->GetLink(MAT_ALPHA_LINK, doc, Xbase));
	if(!mask)
	{
		const int32_t value = viewByte(data->GetFloat(MAT_ALPHA_VALUE));
		for(int32_t y = 0; y < height; ++y)
			for(int32_t x = 0; x < width; ++x)
				bmp->SetAlphaPixel(alpha, x, y, value);
		return true;
	}
	if(mask->InitRender(irs) != INITRENDERRESULT_OK)
		return false;
	const bool step = data->GetBool(MAT_BLEND_STEP);
	for(int32_t y = 0; y < height; ++y)
		for(int32_t x = 0; x < width; ++x)
		{
			const Vector c = viewSample(mask, (double)x / width, (double)y / height);
			const double mean = (c.x + c.y + c.z) * 0.333333333333333;
			bmp->SetAlphaPixel(alpha, x, y, step ? (mean >= 0.5 && mean <= 1.0 ? 255 : 0) : viewByte(mean));
		}
	mask->FreeRender();
	return true;
}
