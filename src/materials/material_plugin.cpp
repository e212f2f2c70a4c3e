#include "materials/material_plugin.h"
#include "materials/material_export.h"

#include "c4d/base_document.h"
#include "c4d/base_list.h"
#include "c4d/base_material.h"
#include "c4d/description.h"
#include "c4d/events.h"
#include "c4d/messages.h"
#include "c4d/plugin_registry.h"
#include "c4d/resources.h"
#include "host/plugin_ids.h"
#include "host/registration.h"
#include "materials/material_ids.h"
#include "materials/material_preview.h"
#include "materials/material_rules.h"

#include <algorithm>

namespace
{

// What the material tells the host's renderer it needs: texture transforms
// (SHADERINFO_TRANSFORM) and three bits of the application's that this host
// keeps without reading them.
const int32_t kRenderInfo = 0x6000006;

// The default values of a spectrum channel, by offset; the uniform value
// differs between the channels.
void initSpectrumChannel(BaseContainer& data, int32_t base, double uniform)
{
	setParameters(data, {
		{base + MAT_CH_MODE, MAT_SPECTRUM_UNIFORM},
		{base + MAT_CH_COLOUR, Vector(0.8, 0.8, 0.8)},
		{base + MAT_CH_SCALE, 0.8},
		{base + MAT_CH_GAMMA, 2.2},
		{base + MAT_CH_TEMPERATURE, 6500.0},
		{base + MAT_CH_GAIN, 1.0},
		{base + MAT_CH_PEAK_MIN, 450.0},
		{base + MAT_CH_PEAK_WIDTH, 200.0},
		{base + MAT_CH_PEAK_VALUE, 1.0},
		{base + MAT_CH_BASE_VALUE, 0.0},
		{base + MAT_CH_UNIFORM, uniform},
		{base + MAT_CH_EXPONENT, 2.2},
		{base + MAT_CH_A, 0.0},
		{base + MAT_CH_B, 1.0},
		{base + MAT_CH_C, 0.0},
	});
}

void initRealChannel(BaseContainer& data, int32_t base, double value)
{
	setParameters(data, {
		{base + MAT_CH_EXPONENT, 1.0},
		{base + MAT_CH_A, 0.0},
		{base + MAT_CH_B, 1.0},
		{base + MAT_CH_C, 0.0},
		{base + MAT_CH_VALUE, value},
		{base + MAT_CH_SMOOTH, 0},
	});
}

} // namespace

NodeData* VelornMaterial::Alloc()
{
	VelornMaterial* material = new VelornMaterial();
	for(int i = 0; i < 3; ++i)
	{
		material->viewColour[i] = 0;
		material->viewEmission[i] = 0;
	}
	material->previewFailed = 0;
	return material;
}

bool VelornMaterial::Init(GeListNode* node)
{
	BaseContainer& data = *static_cast<BaseList2D*>(node)->GetDataInstance();
	// Links start empty and are not stored; MAT_BACKFACE_EMIT and the n-k
	// name of older documents are not set either.
	setParameters(data, {
		{MAT_TYPE, MAT_TYPE_DIFFUSE},
		{MAT_PREVIEW_QUALITY, MAT_PREVIEW_MEDIUM},
		{MAT_SHADOW_CATCHER, 0},
		{MAT_KEEP_IN_CLAY, 0},
		{MAT_TRANSPARENT, 1},
		{MAT_PRIVATE_DATA, String()},

		{MAT_ALBEDO_COLOUR, Vector(1, 1, 1)},
		{MAT_ALBEDO_SCALE, 0.8},
		{MAT_ALBEDO_GAMMA, 2.2},
		{MAT_ALBEDO_EXPONENT, 2.2},
		{MAT_ALBEDO_A, 0.0},
		{MAT_ALBEDO_B, 1.0},
		{MAT_ALBEDO_C, 0.0},
		{MAT_EXPONENT_VALUE, 1000.0},
		{MAT_EXPONENT_EXPONENT, 1.0},
		{MAT_EXPONENT_A, 0.0},
		{MAT_EXPONENT_B, 1.0},
		{MAT_EXPONENT_C, 0.0},
		{MAT_EXPONENT_SMOOTH, 0},
		{MAT_SIGMA_VALUE, 0.2},
		{MAT_SIGMA_EXPONENT, 1.0},
		{MAT_SIGMA_A, 0.0},
		{MAT_SIGMA_B, 1.0},
		{MAT_SIGMA_C, 0.0},
		{MAT_SIGMA_SMOOTH, 0},
		{MAT_ALPHA_VALUE, 0.5},
		{MAT_ALPHA_EXPONENT, 1.0},
		{MAT_ALPHA_A, 0.0},
		{MAT_ALPHA_B, 1.0},
		{MAT_ALPHA_C, 0.0},
		{MAT_ALPHA_SMOOTH, 0},
		{MAT_BUMP_EXPONENT, 1.0},
		{MAT_BUMP_A, 0.0},
		{MAT_BUMP_B, 0.001},
		{MAT_BUMP_C, 0.0},
		{MAT_BUMP_SMOOTH, 0},
		{MAT_DISPLACEMENT_EXPONENT, 1.0},
		{MAT_DISPLACEMENT_A, 0.0},
		{MAT_DISPLACEMENT_B, 0.001},
		{MAT_DISPLACEMENT_C, 0.0},
		{MAT_DISPLACEMENT_SMOOTH, 0},
		{MAT_NORMAL_MAP_EXPONENT, 1.0},
		{MAT_NORMAL_MAP_A, 0.0},
		{MAT_NORMAL_MAP_B, 1.0},
		{MAT_NORMAL_MAP_C, 0.0},
		{MAT_EMISSION_EXPONENT, 2.2},
		{MAT_EMISSION_A, 0.0},
		{MAT_EMISSION_B, 1.0},
		{MAT_EMISSION_C, 0.0},
		{MAT_ABSORPTION_LAYER_COLOUR, Vector(1, 1, 1)},
		{MAT_ABSORPTION_LAYER_SCALE, 0.8},
		{MAT_ABSORPTION_LAYER_GAMMA, 2.2},
		{MAT_ABSORPTION_LAYER_EXPONENT, 2.2},
		{MAT_ABSORPTION_LAYER_A, 0.0},
		{MAT_ABSORPTION_LAYER_B, 1.0},
		{MAT_ABSORPTION_LAYER_C, 0.0},

		{MAT_BAKE_WIDTH, 1024},
		{MAT_BAKE_HEIGHT, 1024},

		{MAT_PHONG_IOR, 1.6},
		{MAT_PHONG_SPECULAR_MODE, 0},
		{MAT_PHONG_USE_NK, 0},
		{MAT_PHONG_NK_FILE, 1},
		{MAT_BLEND_STEP, 0},
		{MAT_COAT_IOR, 1.5},
		{MAT_COAT_INTERFERENCE, 0},
		{MAT_THIN_IOR, 1.5},
		{MAT_EMISSION_LAYER, 0},

		{MAT_EMISSION_MODE, MAT_SPECTRUM_RGB},
		{MAT_EMISSION_RGB_COLOUR, Vector(1, 1, 1)},
		{MAT_EMISSION_RGB_GAMMA, 1.0},
		{MAT_EMISSION_RGB_SCALE, 0.8},
		{MAT_EMISSION_BLACKBODY_TEMPERATURE, 6500.0},
		{MAT_EMISSION_BLACKBODY_GAIN, 1.0},
		{MAT_EMISSION_PEAK_MIN, 100.0},
		{MAT_EMISSION_PEAK_WIDTH, 600.0},
		{MAT_EMISSION_PEAK_BASE, 1.0},
		{MAT_EMISSION_PEAK_VALUE, 1.0},
		{MAT_EMISSION_UNIFORM, 1.0},
		// The emission table's start and end stay unset and its values are
		// a long: readers take their own defaults (400, 700, no values).
		{MAT_EMISSION_TABLE_VALUES, 0},

		{MAT_ABSORPTION_MODE, MAT_SPECTRUM_RGB},
		{MAT_ABSORPTION_RGB_COLOUR, Vector(1, 1, 1)},
		{MAT_ABSORPTION_RGB_GAMMA, 1.0},
		{MAT_ABSORPTION_RGB_SCALE, 1.0},
		{MAT_ABSORPTION_BLACKBODY_TEMPERATURE, 6500.0},
		{MAT_ABSORPTION_BLACKBODY_GAIN, 1.0},
		{MAT_ABSORPTION_PEAK_MIN, 100.0},
		{MAT_ABSORPTION_PEAK_WIDTH, 600.0},
		{MAT_ABSORPTION_PEAK_BASE, 1.0},
		{MAT_ABSORPTION_PEAK_VALUE, 1.0},
		{MAT_ABSORPTION_UNIFORM, 0.0},
		// Table start and end are stored as longs and read as reals.
		{MAT_ABSORPTION_TABLE_START, 400},
		{MAT_ABSORPTION_TABLE_END, 700},
		{MAT_ABSORPTION_TABLE_VALUES, String("0.1 0.1")},

		{MAT_SCATTERING_MODE, MAT_SPECTRUM_UNIFORM},
		{MAT_SCATTERING_RGB_COLOUR, Vector(0, 0, 0)},
		{MAT_SCATTERING_RGB_GAMMA, 1.0},
		{MAT_SCATTERING_RGB_SCALE, 1.0},
		{MAT_SCATTERING_BLACKBODY_TEMPERATURE, 6500.0},
		{MAT_SCATTERING_BLACKBODY_GAIN, 1.0},
		{MAT_SCATTERING_PEAK_MIN, 100.0},
		{MAT_SCATTERING_PEAK_WIDTH, 600.0},
		{MAT_SCATTERING_PEAK_BASE, 1.0},
		{MAT_SCATTERING_PEAK_VALUE, 1.0},
		{MAT_SCATTERING_UNIFORM, 0.0},
		{MAT_SCATTERING_TABLE_START, 400},
		{MAT_SCATTERING_TABLE_END, 700},
		{MAT_SCATTERING_TABLE_VALUES, String("0.1 0.1")},

		{MAT_MEDIUM_KIND, MAT_MEDIUM_BASIC},
		{MAT_MEDIUM_PRECEDENCE, 10},
		{MAT_MEDIUM_IOR, 1.6},
		{MAT_MEDIUM_CAUCHY_B, 0.0},
		{MAT_MEDIUM_SSS, 0},
		{MAT_DERMIS_HEMOGLOBIN, 0.05},
		{MAT_EPIDERMIS_MELANIN, 0.25},
		{MAT_EPIDERMIS_TYPE_BLEND, 0.5},
		{MAT_ATMOSPHERE_TURBIDITY, 2.0},
		{MAT_ATMOSPHERE_CENTRE, Vector(0, 0, 0)},
		{MAT_PHASE_KIND, MAT_PHASE_UNIFORM},
		{MAT_PHASE_G, Vector(0.9, 0.9, 0.9)},
		{MAT_PHASE_G_GAMMA, 2.2},
	});

	initSpectrumChannel(data, MAT_CH_COAT_ABSORPTION, 0.0);
	initSpectrumChannel(data, MAT_CH_TRANSMITTANCE, 0.5);
	initRealChannel(data, MAT_CH_COAT_THICKNESS, 1000.0);
	initRealChannel(data, MAT_CH_ROUGHNESS, 0.3);
	initRealChannel(data, MAT_CH_BACK_ROUGHNESS, 0.3);
	initRealChannel(data, MAT_CH_FRESNEL_SCALE, 1.0);
	initRealChannel(data, MAT_CH_BACK_FRESNEL_SCALE, 1.0);
	initRealChannel(data, MAT_CH_R_F, 0.5);

	applyKindSwitchRule(data, MAT_TYPE_DIFFUSE);
	// The blend factor and the normal map are stored off so that their
	// pages stay hidden on a new material. Bump, displacement and emission
	// stay unset: every reader takes them as off (a new material does not
	// emit), while their pages, an unset switch counting as on there, show.
	data.SetBool(MAT_USE_ALPHA, false);
	data.SetBool(MAT_USE_NORMAL_MAP, false);
	return true;
}

bool VelornMaterial::Message(GeListNode* node, int32_t type, void* data)
{
	BaseList2D* material = static_cast<BaseList2D*>(node);
	BaseContainer* bc = material->GetDataInstance();
	const BaseDocument* doc = material->GetDocument();
	// Linked shaders see every message, so that they take part in the
	// host's shader menus and tree.
	for(int32_t id : shaderLinkIds())
		HandleShaderMessage(node, linkedShader(*bc, id, doc), type, data);

	if(isPreviewMessage(type))
		return answerPreviewMessage(static_cast<BaseMaterial*>(node), type, data, previewFailed);

	switch(type)
	{
	case MSG_UPDATE:
		++dirtyCount;
		break;
	case MSG_DESCRIPTION_VALIDATE:
		validateKind(*bc);
		break;
	case MSG_MATERIAL_CHANGED:
		markUsers(node);
		break;
	case MSG_MULTI_MARKMATERIALS:
		markMaterials(node, data);
		break;
	default:
		break;
	}
	return MaterialData::Message(node, type, data);
}

void VelornMaterial::validateKind(BaseContainer& data)
{
	const int32_t kind = data.GetInt32(MAT_TYPE);
	if(switchKind != 0 && kind != switchKind)
		applyKindSwitchRule(data, kind);
	switchKind = kind;
}

void VelornMaterial::markUsers(GeListNode* node)
{
	BaseDocument* doc = static_cast<BaseList2D*>(node)->GetDocument();
	if(!doc)
		return;
	for(BaseMaterial* other = doc->GetFirstMaterial(); other; other = other->GetNext())
	{
		if(other == node || other->GetType() != ID_VELORN_MATERIAL)
			continue;
		if(!materialReaches(other, static_cast<BaseList2D*>(node), doc))
			continue;
		other->SetDirty(DIRTYFLAGS_DATA);
		other->Message(MSG_UPDATE);
		EventAdd();
	}
}

void VelornMaterial::markMaterials(GeListNode* node, void* data)
{
	BaseList2D* material = static_cast<BaseList2D*>(node);
	BaseContainer* bc = material->GetDataInstance();
	const BaseDocument* doc = material->GetDocument();
	if(!data)
	{
		for(int32_t id : usedMaterialLinks(*bc))
			if(BaseList2D* linked = bc->GetLink(id, doc, Mbase))
				linked->SetBit(BIT_MATMARK);
		return;
	}
	const MarkMaterials* replace = static_cast<const MarkMaterials*>(data);
	if(!replace->omat)
		return;
	for(int32_t id : replaceableMaterialLinkIds())
	{
		if(bc->GetLink(id, doc, Mbase) != replace->omat)
			continue;
		bc->SetLink(id, replace->nmat);
		++dirtyCount;
	}
}

bool VelornMaterial::GetDParameter(GeListNode* node, const DescID& id, GeData& t_data, int32_t& flags)
{
	return MaterialData::GetDParameter(node, id, t_data, flags);
}

bool VelornMaterial::SetDParameter(GeListNode* node, const DescID& id, const GeData& t_data, int32_t& flags)
{
	++dirtyCount;
	BaseList2D* material = static_cast<BaseList2D*>(node);
	const BaseContainer& data = *material->GetDataInstance();
	const int32_t pid = id[0].id;
	// The first change of kind after the node was made still has to reset
	// the switches: the kind they belong to is the one stored now.
	if(pid == MAT_TYPE && switchKind == 0)
		switchKind = data.GetInt32(MAT_TYPE);

	// A material link that would make the material use itself, directly or
	// through the materials it links to, is refused.
	const std::vector<int32_t>& links = replaceableMaterialLinkIds();
	if(std::find(links.begin(), links.end(), pid) != links.end())
	{
		BaseList2D* linked = t_data.GetLink();
		const BaseDocument* doc = material->GetDocument();
		if(linked && (linked == material ||
			(linked->GetType() == ID_VELORN_MATERIAL && materialReaches(linked, material, doc))))
			return false;
	}
	return MaterialData::SetDParameter(node, id, t_data, flags);
}

bool VelornMaterial::GetDEnabling(GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags,
	const BaseContainer* itemdesc)
{
	BaseList2D* material = static_cast<BaseList2D*>(node);
	if(!isMaterialParameterEnabled(*material->GetDataInstance(), id[0].id, material->GetDocument()))
		return false;
	return MaterialData::GetDEnabling(node, id, t_data, flags, itemdesc);
}

int32_t VelornMaterial::GetRenderInfo(BaseMaterial*)
{
	return kRenderInfo;
}

bool RegisterVelornMaterial()
{
	// With the material, the export learns to write it.
	InstallMaterialExport();
	return RegisterMaterialPlugin(ID_VELORN_MATERIAL, GeLoadString(10025), 0x20000001, VelornMaterial::Alloc,
		String("Mvelornmaterial"), 0);
}
