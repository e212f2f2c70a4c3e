#include "shaders/shader_plugins.h"

#include "c4d/base_document.h"
#include "c4d/description.h"
#include "c4d/plugin_registry.h"
#include "c4d/resources.h"
#include "host/plugin_ids.h"
#include "host/registration.h"
#include "host/video_post_lookup.h"
#include "shaders/perlin_noise.h"
#include "shaders/shader_ids.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace
{

const int32_t kVslTypes[] = {ID_VSL_SHADER, ID_VSL_NOISE, ID_VSL_BLEND, ID_VSL_GRADIENT, ID_VSL_NORMAL};

// The starter programs of the free-text shader, by the material link that
// holds it: vector channels, real channels with a position, and the real
// channels without one (bump, displacement, alpha).
const int32_t kVectorLinks[] = {6118, 6064, 6274, 10016, 16016};
const int32_t kRealLinks[] = {6200, 6205, 11016, 12016, 13016, 14016, 15016, 17016};
const int32_t kPlainRealLinks[] = {6069, 6074, 6052};
const int32_t kNormalMapLink = 6294;

const char* const kDefaultText = "default";

template<size_t N>
bool contains(const int32_t (&ids)[N], int32_t id)
{
	return std::find(std::begin(ids), std::end(ids), id) != std::end(ids);
}

// The material link that holds sh, or 0 when none does.
int32_t linkHolding(BaseList2D& material, BaseShader* sh)
{
	const BaseContainer& data = *material.GetDataInstance();
	for(int32_t i = 0; i < data.GetCount(); ++i)
	{
		const int32_t id = data.GetIndexId(i);
		if(data.GetLink(id) == sh)
			return id;
	}
	return 0;
}

const char* starterText(int32_t link)
{
	if(contains(kVectorLinks, link))
		return "def eval(vec3 pos) vec3:\n\tvec3(0.8)";
	if(contains(kRealLinks, link))
		return "def eval(vec3 pos) real:\n\t1.0";
	if(contains(kPlainRealLinks, link))
		return "def eval() real:\n\t0.0";
	if(link == kNormalMapLink)
		return "def eval(vec3 pos) vec3 :\n\tvec3(0.0, 0.0, 1.0)";
	return "unhandled channel";
}

// A + t (B - A), per component, without a clamp.
Vector mix(const Vector& a, const Vector& b, double t)
{
	return a + t * (b - a);
}

Vector mulComp(const Vector& a, const Vector& b)
{
	return Vector(a.x * b.x, a.y * b.y, a.z * b.z);
}

const Vector kWhite(1, 1, 1);

} // namespace

bool isVslShaderType(int type)
{
	return contains(kVslTypes, type);
}

bool VslShaderData::Init(GeListNode* node)
{
	shader = static_cast<BaseShader*>(node);
	return true;
}

// The free-text shader.

NodeData* VslFreeTextShader::Alloc()
{
	return new VslFreeTextShader();
}

bool VslFreeTextShader::Init(GeListNode* node)
{
	VslShaderData::Init(node);
	static_cast<BaseList2D*>(node)->GetDataInstance()->SetString(VSLSHADER_TEXT, String(kDefaultText));
	return true;
}

bool VslFreeTextShader::Message(GeListNode* node, int32_t type, void* data)
{
	BaseShader* sh = static_cast<BaseShader*>(node);
	// A shader owned by another shader has that shader as GetUp; only one
	// that a material owns directly sits in its list of shaders.
	GeListNode* owner = sh->GetUp() ? sh->GetUp() : sh->GetListHead() ? sh->GetListHead()->GetMain() : nullptr;
	BaseContainer& params = *sh->GetDataInstance();
	if(owner && owner->GetType() == ID_VELORN_MATERIAL && params.GetString(VSLSHADER_TEXT) == String(kDefaultText))
		params.SetString(VSLSHADER_TEXT, String(starterText(linkHolding(*static_cast<BaseList2D*>(owner), sh))));
	return VslShaderData::Message(node, type, data);
}

bool VslFreeTextShader::GetDDescription(GeListNode* node, Description* description, int32_t& flags)
{
	if(!(flags & DESCFLAGS_DESC_LOADED))
	{
		if(!description->LoadDescription(ID_VSL_SHADER))
			return false;
		flags |= DESCFLAGS_DESC_LOADED;
	}
	return VslShaderData::GetDDescription(node, description, flags);
}

Vector VslFreeTextShader::Output(BaseShader*, ChannelData*)
{
	// Its look exists only in the renderer; nothing gives it an image to
	// show in the host, so it samples white.
	return kWhite;
}

// The noise shader.

NodeData* VslNoiseShader::Alloc()
{
	return new VslNoiseShader();
}

bool VslNoiseShader::Init(GeListNode* node)
{
	VslShaderData::Init(node);
	setParameters(*static_cast<BaseList2D*>(node)->GetDataInstance(), {
		{VSLNOISE_KIND, VSLNOISE_KIND_PLAIN},
		{VSLNOISE_SPACE, VSLNOISE_SPACE_UV},
		{VSLNOISE_OUTPUT, VSLNOISE_OUTPUT_MIX},
		{VSLNOISE_SCALE, Vector(1, 1, 1)},
		{VSLNOISE_GAIN, 1.0},
		{VSLNOISE_COLOUR_A, Vector(1, 1, 1)},
		{VSLNOISE_COLOUR_B, Vector(0, 0, 0)},
	});
	return true;
}

bool VslNoiseShader::GetDEnabling(GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags,
	const BaseContainer* itemdesc)
{
	const int32_t param = id[0].id;
	if((param == VSLNOISE_COLOUR_A || param == VSLNOISE_COLOUR_B) &&
		static_cast<BaseList2D*>(node)->GetDataInstance()->GetInt32(VSLNOISE_OUTPUT) != VSLNOISE_OUTPUT_MIX)
		return false;
	return VslShaderData::GetDEnabling(node, id, t_data, flags, itemdesc);
}

int32_t VslNoiseShader::GetRenderInfo(BaseShader*)
{
	return VSL_RENDER_INFO;
}

bool VslNoiseShader::load(BaseShader* sh)
{
	if(!sh)
		return false;
	const BaseContainer& data = *sh->GetDataInstance();
	kind = data.GetInt32(VSLNOISE_KIND);
	space = data.GetInt32(VSLNOISE_SPACE);
	outputMode = data.GetInt32(VSLNOISE_OUTPUT);
	scale = data.GetVector(VSLNOISE_SCALE);
	gain = data.GetFloat(VSLNOISE_GAIN);
	documentScale = documentSceneScale(sh->GetDocument());
	colourA = data.GetVector(VSLNOISE_COLOUR_A);
	colourB = data.GetVector(VSLNOISE_COLOUR_B);
	return true;
}

INITRENDERRESULT VslNoiseShader::InitRender(BaseShader* sh, const InitRenderStruct&)
{
	load(sh);
	PerlinNoise::refreshTable();
	return INITRENDERRESULT_OK;
}

Vector VslNoiseShader::Output(BaseShader*, ChannelData* cd)
{
	Vector q;
	if(space == VSLNOISE_SPACE_3D && cd->vd)
		q = mulComp(cd->vd->p * documentScale, scale);
	else
		// v runs the other way than getTexCoords in the shader text.
		q = Vector(cd->p.x * 10 * scale.x, (1 - cd->p.y) * 10 * scale.y, cd->p.z * 10 * scale.z);

	double n = 0;
	if(kind == VSLNOISE_KIND_FRACTAL)
	{
		double amplitude = 1, frequency = 1;
		for(int octave = 0; octave < 8; ++octave)
		{
			n += amplitude * PerlinNoise::noise(frequency * q.x, frequency * q.y, frequency * q.z);
			amplitude *= 0.5;
			frequency *= 1.99;
		}
	}
	else
		n = PerlinNoise::noise(q.x, q.y, q.z);

	if(outputMode == VSLNOISE_OUTPUT_MIX)
		return mix(colourA, colourB, (n + 1) * 0.5) * gain;
	return Vector(n * gain, n * gain, n * gain);
}

// The blend shader.

NodeData* VslBlendShader::Alloc()
{
	return new VslBlendShader();
}

bool VslBlendShader::Init(GeListNode* node)
{
	VslShaderData::Init(node);
	setParameters(*static_cast<BaseList2D*>(node)->GetDataInstance(), {
		{VSLBLEND_OPERATION, VSLBLEND_MULTIPLY},
		{VSLBLEND_GAIN, 1.0},
	});
	return true;
}

int32_t VslBlendShader::GetRenderInfo(BaseShader*)
{
	return VSL_RENDER_INFO;
}

bool VslBlendShader::load(BaseShader* sh)
{
	if(!sh)
		return false;
	const BaseContainer& data = *sh->GetDataInstance();
	operation = data.GetInt32(VSLBLEND_OPERATION);
	gain = data.GetFloat(VSLBLEND_GAIN);
	const int32_t links[2] = {VSLBLEND_INPUT_1, VSLBLEND_INPUT_2};
	for(int i = 0; i < 2; ++i)
	{
		inputs[i] = Input();
		BaseList2D* linked = data.GetLink(links[i]);
		if(!linked || !isVslShaderType(linked->GetType()))
			continue;
		inputs[i].data = dynamic_cast<VslShaderData*>(linked->GetNodeData());
		if(inputs[i].data)
			inputs[i].shader = static_cast<BaseShader*>(linked);
	}
	return true;
}

INITRENDERRESULT VslBlendShader::InitRender(BaseShader* sh, const InitRenderStruct& irs)
{
	load(sh);
	for(const Input& input : inputs)
		if(input.shader)
			input.shader->InitRender(irs);
	return INITRENDERRESULT_OK;
}

void VslBlendShader::FreeRender(BaseShader*)
{
	for(Input& input : inputs)
	{
		if(input.shader)
			input.shader->FreeRender();
		input = Input();
	}
}

Vector VslBlendShader::Output(BaseShader*, ChannelData* cd)
{
	Vector values[2];
	for(int i = 0; i < 2; ++i)
		values[i] = inputs[i].data ? inputs[i].data->Output(inputs[i].shader, cd) : kWhite;
	Vector result = kWhite;
	switch(operation)
	{
	case VSLBLEND_ADD:
		result = values[0] + values[1];
		break;
	case VSLBLEND_SUBTRACT:
		result = values[0] - values[1];
		break;
	case VSLBLEND_MULTIPLY:
		result = mulComp(values[0], values[1]);
		break;
	}
	return result * gain;
}

// The gradient shader.

NodeData* VslGradientShader::Alloc()
{
	return new VslGradientShader();
}

bool VslGradientShader::Init(GeListNode* node)
{
	VslShaderData::Init(node);
	setParameters(*static_cast<BaseList2D*>(node)->GetDataInstance(), {
		{VSLGRADIENT_DIRECTION, VSLGRADIENT_U},
		{VSLGRADIENT_GAIN, 1.0},
		{VSLGRADIENT_COLOUR_A, Vector(1, 1, 1)},
		{VSLGRADIENT_COLOUR_B, Vector(0, 0, 0)},
	});
	return true;
}

int32_t VslGradientShader::GetRenderInfo(BaseShader*)
{
	return VSL_RENDER_INFO;
}

bool VslGradientShader::load(BaseShader* sh)
{
	if(!sh)
		return false;
	const BaseContainer& data = *sh->GetDataInstance();
	direction = data.GetInt32(VSLGRADIENT_DIRECTION);
	gain = data.GetFloat(VSLGRADIENT_GAIN);
	colourA = data.GetVector(VSLGRADIENT_COLOUR_A);
	colourB = data.GetVector(VSLGRADIENT_COLOUR_B);
	return true;
}

INITRENDERRESULT VslGradientShader::InitRender(BaseShader* sh, const InitRenderStruct&)
{
	load(sh);
	return INITRENDERRESULT_OK;
}

Vector VslGradientShader::Output(BaseShader*, ChannelData* cd)
{
	const double u = cd->p.x, v = cd->p.y, w = cd->p.z;
	double t = u;
	if(direction == VSLGRADIENT_V)
		t = v;
	else if(direction == VSLGRADIENT_RADIAL)
		t = 2 * std::sqrt((0.5 - u) * (0.5 - u) + (0.5 - v) * (0.5 - v) + w * w);
	return mix(colourA, colourB, t) * gain;
}

// The normal shader.

NodeData* VslNormalShader::Alloc()
{
	return new VslNormalShader();
}

bool VslNormalShader::Init(GeListNode* node)
{
	VslShaderData::Init(node);
	setParameters(*static_cast<BaseList2D*>(node)->GetDataInstance(), {
		{VSLNORMAL_COLOUR_A, Vector(1, 1, 1)},
		{VSLNORMAL_COLOUR_B, Vector(0, 0, 0)},
	});
	return true;
}

int32_t VslNormalShader::GetRenderInfo(BaseShader*)
{
	return VSL_RENDER_INFO;
}

bool VslNormalShader::load(BaseShader* sh)
{
	if(!sh)
		return false;
	const BaseContainer& data = *sh->GetDataInstance();
	colourA = data.GetVector(VSLNORMAL_COLOUR_A);
	colourB = data.GetVector(VSLNORMAL_COLOUR_B);
	return true;
}

INITRENDERRESULT VslNormalShader::InitRender(BaseShader* sh, const InitRenderStruct&)
{
	load(sh);
	return INITRENDERRESULT_OK;
}

Vector VslNormalShader::Output(BaseShader*, ChannelData* cd)
{
	const double t = cd->vd ? std::fabs(Dot(cd->vd->ray_dir, cd->vd->bumpn)) : std::fabs(Dot(cd->d, cd->n));
	return mix(colourA, colourB, t);
}

// Registrations.

bool RegisterVslShader()
{
	return RegisterShaderPlugin(ID_VSL_SHADER, GeLoadString(10019), 0, VslFreeTextShader::Alloc,
		String("xevelornvslshader"), 0);
}

bool RegisterVslNoise()
{
	return RegisterShaderPlugin(ID_VSL_NOISE, String("VSL Noise"), 0, VslNoiseShader::Alloc, String("xvslnoise"), 0);
}

bool RegisterVslBlend()
{
	return RegisterShaderPlugin(ID_VSL_BLEND, String("VSL Blend"), 0, VslBlendShader::Alloc, String("xvslblend"), 0);
}

bool RegisterVslGradient()
{
	return RegisterShaderPlugin(ID_VSL_GRADIENT, String("VSL Gradient"), 0, VslGradientShader::Alloc,
		String("xvslgradient"), 0);
}

bool RegisterVslNormal()
{
	return RegisterShaderPlugin(ID_VSL_NORMAL, String("VSL Normal"), 0, VslNormalShader::Alloc,
		String("xvslnormal"), 0);
}
