#include "materials/material_rules.h"

#include "c4d/base_shader.h"
#include "host/plugin_ids.h"
#include "materials/material_ids.h"
#include "shaders/shader_ids.h"

#include <algorithm>
#include <initializer_list>
#include <set>

namespace
{

// The switches that the kind switch rule writes, in the order of the
// values of a KindSwitches row.
const int32_t kRuleSwitches[] = {
	MAT_USE_ALBEDO, MAT_USE_SPECULAR, MAT_USE_MEDIUM, MAT_USE_EXPONENT, MAT_USE_SIGMA, MAT_USE_SPECULAR_OPTIONS,
	MAT_USE_ABSORPTION_LAYER, MAT_USE_COATING, MAT_USE_DOUBLE_SIDED, MAT_USE_COAT_ABSORPTION, MAT_USE_COAT_THICKNESS,
	MAT_USE_ROUGHNESS, MAT_USE_BACK_ROUGHNESS, MAT_USE_FRESNEL_SCALE, MAT_USE_BACK_FRESNEL_SCALE,
	MAT_USE_TRANSMITTANCE, MAT_USE_R_F,
};
const int kRuleSwitchCount = sizeof(kRuleSwitches) / sizeof(kRuleSwitches[0]);

// Keep: the rule leaves the switch as the user had it. A Phong material
// keeps its fresnel scale, a transmitter its medium, a specular or glossy
// material its absorption layer.
const int8_t K = -1;

struct KindSwitches
{
	int32_t kind;
	int8_t values[kRuleSwitchCount];
};

const KindSwitches kKindSwitches[] = {
	{MAT_TYPE_DIFFUSE, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
	{MAT_TYPE_OREN_NAYAR, {1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
	{MAT_TYPE_PHONG, {1, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, K, 0, 0, 0}},
	{MAT_TYPE_DIFFUSE_TRANSMITTER, {1, 0, K, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
	{MAT_TYPE_SPECULAR, {0, 0, 1, 0, 0, 1, K, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
	{MAT_TYPE_BLEND, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
	{MAT_TYPE_GLOSSY_TRANSPARENT, {0, 0, 1, 1, 0, 0, K, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
	{MAT_TYPE_NULL, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
	{MAT_TYPE_COATING, {0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 1, 1, 0, 1, 0, 0, 0}},
	{MAT_TYPE_DOUBLE_SIDED_THIN, {0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 1, 1, 1, 1, 1}},
};

// The surface switches that a blend and a null material turn off, since
// neither has a surface of its own. No other kind touches them.
const int32_t kSurfaceSwitches[] = {MAT_USE_BUMP, MAT_USE_NORMAL_MAP, MAT_USE_DISPLACEMENT, MAT_USE_EMISSION};

struct SwitchKinds
{
	std::initializer_list<int32_t> switches;
	// Empty: every kind.
	std::initializer_list<int32_t> kinds;
	// The kinds that do not show the switch, when kinds is empty.
	std::initializer_list<int32_t> except;
};

const SwitchKinds kSwitchKinds[] = {
	{{MAT_USE_ALPHA}, {}, {}},
	{{MAT_USE_ALBEDO}, {MAT_TYPE_DIFFUSE, MAT_TYPE_OREN_NAYAR, MAT_TYPE_PHONG, MAT_TYPE_DIFFUSE_TRANSMITTER}, {}},
	{{MAT_USE_SPECULAR}, {MAT_TYPE_PHONG}, {}},
	{{MAT_USE_MEDIUM}, {MAT_TYPE_DIFFUSE_TRANSMITTER, MAT_TYPE_SPECULAR, MAT_TYPE_GLOSSY_TRANSPARENT}, {}},
	{{MAT_USE_EXPONENT}, {MAT_TYPE_PHONG, MAT_TYPE_GLOSSY_TRANSPARENT}, {}},
	{{MAT_USE_SIGMA}, {MAT_TYPE_OREN_NAYAR}, {}},
	{{MAT_USE_BUMP, MAT_USE_NORMAL_MAP, MAT_USE_DISPLACEMENT, MAT_USE_EMISSION}, {}, {MAT_TYPE_BLEND, MAT_TYPE_NULL}},
	{{MAT_USE_SPECULAR_OPTIONS}, {MAT_TYPE_SPECULAR}, {}},
	{{MAT_USE_ABSORPTION_LAYER}, {MAT_TYPE_SPECULAR, MAT_TYPE_GLOSSY_TRANSPARENT}, {}},
	{{MAT_USE_COATING, MAT_USE_COAT_ABSORPTION, MAT_USE_COAT_THICKNESS}, {MAT_TYPE_COATING}, {}},
	{{MAT_USE_ROUGHNESS}, {MAT_TYPE_COATING, MAT_TYPE_DOUBLE_SIDED_THIN}, {}},
	{{MAT_USE_FRESNEL_SCALE}, {MAT_TYPE_PHONG, MAT_TYPE_COATING, MAT_TYPE_DOUBLE_SIDED_THIN}, {}},
	{{MAT_USE_DOUBLE_SIDED, MAT_USE_BACK_FRESNEL_SCALE, MAT_USE_BACK_ROUGHNESS, MAT_USE_TRANSMITTANCE, MAT_USE_R_F},
		{MAT_TYPE_DOUBLE_SIDED_THIN}, {}},
};

bool contains(std::initializer_list<int32_t> list, int32_t value)
{
	return std::find(list.begin(), list.end(), value) != list.end();
}

// How an own id's enabling depends on a link: enabled while the link is
// empty, while it holds a shader, or by the texture test.
enum class LinkCondition
{
	Empty,
	Present,
	Texture,
};

struct EnablingRule
{
	std::initializer_list<int32_t> ids;
	int32_t link;
	LinkCondition condition;
};

const EnablingRule kEnablingRules[] = {
	{{MAT_EXPONENT_VALUE}, MAT_EXPONENT_LINK, LinkCondition::Empty},
	{{MAT_SIGMA_VALUE}, MAT_SIGMA_LINK, LinkCondition::Empty},
	{{MAT_ALBEDO_SCALE, MAT_ALBEDO_COLOUR, MAT_ALBEDO_GAMMA}, MAT_ALBEDO_LINK, LinkCondition::Empty},
	{{MAT_ALPHA_VALUE}, MAT_ALPHA_LINK, LinkCondition::Empty},
	{{MAT_BLEND_STEP}, MAT_ALPHA_LINK, LinkCondition::Present},
	{{MAT_ABSORPTION_LAYER_COLOUR, MAT_ABSORPTION_LAYER_SCALE, MAT_ABSORPTION_LAYER_GAMMA}, MAT_ABSORPTION_LAYER_LINK,
		LinkCondition::Empty},
	{{MAT_ALPHA_EXPONENT, MAT_ALPHA_A, MAT_ALPHA_B, MAT_ALPHA_C, MAT_ALPHA_SMOOTH}, MAT_ALPHA_LINK,
		LinkCondition::Texture},
	{{MAT_EMISSION_EXPONENT, MAT_EMISSION_A, MAT_EMISSION_B, MAT_EMISSION_C}, MAT_EMISSION_LINK,
		LinkCondition::Texture},
	{{MAT_BUMP_EXPONENT, MAT_BUMP_A, MAT_BUMP_B, MAT_BUMP_C, MAT_BUMP_SMOOTH}, MAT_BUMP_LINK, LinkCondition::Texture},
	{{MAT_DISPLACEMENT_EXPONENT, MAT_DISPLACEMENT_A, MAT_DISPLACEMENT_B, MAT_DISPLACEMENT_C, MAT_DISPLACEMENT_SMOOTH},
		MAT_DISPLACEMENT_LINK, LinkCondition::Texture},
	{{MAT_ALBEDO_EXPONENT, MAT_ALBEDO_A, MAT_ALBEDO_B, MAT_ALBEDO_C}, MAT_ALBEDO_LINK, LinkCondition::Texture},
	{{MAT_EXPONENT_EXPONENT, MAT_EXPONENT_A, MAT_EXPONENT_B, MAT_EXPONENT_C, MAT_EXPONENT_SMOOTH}, MAT_EXPONENT_LINK,
		LinkCondition::Texture},
	{{MAT_SIGMA_EXPONENT, MAT_SIGMA_A, MAT_SIGMA_B, MAT_SIGMA_C, MAT_SIGMA_SMOOTH}, MAT_SIGMA_LINK,
		LinkCondition::Texture},
	{{MAT_ABSORPTION_LAYER_EXPONENT, MAT_ABSORPTION_LAYER_A, MAT_ABSORPTION_LAYER_B, MAT_ABSORPTION_LAYER_C},
		MAT_ABSORPTION_LAYER_LINK, LinkCondition::Texture},
	{{MAT_NORMAL_MAP_EXPONENT, MAT_NORMAL_MAP_A, MAT_NORMAL_MAP_B, MAT_NORMAL_MAP_C}, MAT_NORMAL_MAP_LINK,
		LinkCondition::Texture},
};

bool linkCondition(const BaseContainer& data, int32_t link, LinkCondition condition, const BaseDocument* doc)
{
	switch(condition)
	{
	case LinkCondition::Empty:
		return !linkedShader(data, link, doc);
	case LinkCondition::Present:
		return linkedShader(data, link, doc) != nullptr;
	case LinkCondition::Texture:
		return hasForeignTexture(data, link, doc);
	}
	return true;
}

// Enabling of the parameters of a generic channel; true for ids of no
// generic channel.
bool isGenericParameterEnabled(const BaseContainer& data, int32_t id, const BaseDocument* doc)
{
	for(const GenericChannel& channel : genericChannels())
	{
		const int32_t offset = id - channel.base;
		if(offset < MAT_CH_MODE || offset > MAT_CH_SMOOTH)
			continue;
		const int32_t link = channel.base + MAT_CH_LINK;
		if(offset >= MAT_CH_EXPONENT && offset <= MAT_CH_C)
			return hasForeignTexture(data, link, doc);
		if(channel.spectrum)
		{
			static const std::initializer_list<int32_t> values = {MAT_CH_MODE, MAT_CH_COLOUR, MAT_CH_SCALE,
				MAT_CH_GAMMA, MAT_CH_TEMPERATURE, MAT_CH_GAIN, MAT_CH_PEAK_MIN, MAT_CH_PEAK_WIDTH, MAT_CH_PEAK_VALUE,
				MAT_CH_BASE_VALUE, MAT_CH_UNIFORM};
			if(contains(values, offset))
				return !linkedShader(data, link, doc);
			return true;
		}
		if(offset == MAT_CH_VALUE)
			return !linkedShader(data, link, doc);
		if(offset == MAT_CH_SMOOTH)
			return hasForeignTexture(data, link, doc);
		return true;
	}
	return true;
}

bool reaches(BaseList2D* mat, const BaseList2D* target, const BaseDocument* doc, std::set<const BaseList2D*>& entered)
{
	if(!entered.insert(mat).second)
		return false;
	const BaseContainer* data = mat->GetDataInstance();
	for(int32_t id : usedMaterialLinks(*data))
	{
		BaseList2D* linked = data->GetLink(id, doc, Mbase);
		if(!linked)
			continue;
		if(linked == target)
			return true;
		if(linked->GetType() == ID_VELORN_MATERIAL && reaches(linked, target, doc, entered))
			return true;
	}
	return false;
}

} // namespace

bool applyKindSwitchRule(BaseContainer& data, int32_t kind)
{
	const KindSwitches* row = nullptr;
	for(const KindSwitches& r : kKindSwitches)
		if(r.kind == kind)
			row = &r;
	if(!row)
		return false;
	for(int i = 0; i < kRuleSwitchCount; ++i)
		if(row->values[i] != K)
			data.SetBool(kRuleSwitches[i], row->values[i] != 0);
	if(kind == MAT_TYPE_BLEND)
		data.SetBool(MAT_USE_ALPHA, true);
	if(kind == MAT_TYPE_BLEND || kind == MAT_TYPE_NULL)
		for(int32_t id : kSurfaceSwitches)
			data.SetBool(id, false);
	return true;
}

bool isSwitchShown(int32_t switch_id, int32_t kind)
{
	for(const SwitchKinds& entry : kSwitchKinds)
	{
		if(!contains(entry.switches, switch_id))
			continue;
		// "Every kind" holds for a value no kind has as well.
		if(entry.kinds.size() == 0)
			return !contains(entry.except, kind);
		return contains(entry.kinds, kind);
	}
	return true;
}

const std::vector<SwitchPage>& switchPages()
{
	static const std::vector<SwitchPage> pages = {
		{MAT_USE_ALPHA, MAT_PAGE_ALPHA},
		{MAT_USE_ALBEDO, MAT_PAGE_ALBEDO},
		{MAT_USE_SPECULAR, MAT_PAGE_SPECULAR},
		{MAT_USE_MEDIUM, MAT_PAGE_MEDIUM},
		{MAT_USE_EXPONENT, MAT_PAGE_EXPONENT},
		{MAT_USE_SIGMA, MAT_PAGE_SIGMA},
		{MAT_USE_BUMP, MAT_PAGE_BUMP},
		{MAT_USE_NORMAL_MAP, MAT_PAGE_NORMAL_MAP},
		{MAT_USE_DISPLACEMENT, MAT_PAGE_DISPLACEMENT},
		{MAT_USE_EMISSION, MAT_PAGE_EMISSION},
		{MAT_USE_SPECULAR_OPTIONS, MAT_PAGE_SPECULAR_OPTIONS},
		{MAT_USE_ABSORPTION_LAYER, MAT_PAGE_ABSORPTION_LAYER},
		{MAT_USE_COATING, MAT_PAGE_COATING},
		{MAT_USE_COAT_ABSORPTION, MAT_PAGE_COAT_ABSORPTION},
		{MAT_USE_COAT_THICKNESS, MAT_PAGE_COAT_THICKNESS},
		{MAT_USE_ROUGHNESS, MAT_PAGE_ROUGHNESS},
		{MAT_USE_DOUBLE_SIDED, MAT_PAGE_DOUBLE_SIDED},
		{MAT_USE_FRESNEL_SCALE, MAT_PAGE_FRESNEL_SCALE},
		{MAT_USE_BACK_FRESNEL_SCALE, MAT_PAGE_BACK_FRESNEL_SCALE},
		{MAT_USE_BACK_ROUGHNESS, MAT_PAGE_BACK_ROUGHNESS},
		{MAT_USE_TRANSMITTANCE, MAT_PAGE_TRANSMITTANCE},
		{MAT_USE_R_F, MAT_PAGE_R_F},
	};
	return pages;
}

bool isPageShown(const BaseContainer& data, int32_t switch_id)
{
	return !data.GetDataPointer(switch_id) || data.GetBool(switch_id);
}

const std::vector<int32_t>& shaderLinkIds()
{
	static const std::vector<int32_t> ids = {MAT_ALBEDO_LINK, MAT_BUMP_LINK, MAT_NORMAL_MAP_LINK,
		MAT_DISPLACEMENT_LINK, MAT_EMISSION_LINK, MAT_EXPONENT_LINK, MAT_SIGMA_LINK, MAT_ABSORPTION_LAYER_LINK,
		MAT_ALPHA_LINK, MAT_CH_COAT_ABSORPTION + MAT_CH_LINK, MAT_CH_COAT_THICKNESS + MAT_CH_LINK,
		MAT_CH_ROUGHNESS + MAT_CH_LINK, MAT_CH_FRESNEL_SCALE + MAT_CH_LINK, MAT_CH_BACK_FRESNEL_SCALE + MAT_CH_LINK,
		MAT_CH_BACK_ROUGHNESS + MAT_CH_LINK, MAT_CH_TRANSMITTANCE + MAT_CH_LINK, MAT_CH_R_F + MAT_CH_LINK};
	return ids;
}

const std::vector<int32_t>& replaceableMaterialLinkIds()
{
	static const std::vector<int32_t> ids = {MAT_BLEND_A, MAT_BLEND_B, MAT_COAT_SUBSTRATE, MAT_THIN_FRONT,
		MAT_THIN_BACK, MAT_MEDIUM_SOURCE};
	return ids;
}

const std::vector<GenericChannel>& genericChannels()
{
	static const std::vector<GenericChannel> channels = {
		{MAT_CH_COAT_ABSORPTION, MAT_PAGE_COAT_ABSORPTION, true},
		{MAT_CH_TRANSMITTANCE, MAT_PAGE_TRANSMITTANCE, true},
		{MAT_CH_COAT_THICKNESS, MAT_PAGE_COAT_THICKNESS, false},
		{MAT_CH_ROUGHNESS, MAT_PAGE_ROUGHNESS, false},
		{MAT_CH_BACK_ROUGHNESS, MAT_PAGE_BACK_ROUGHNESS, false},
		{MAT_CH_FRESNEL_SCALE, MAT_PAGE_FRESNEL_SCALE, false},
		{MAT_CH_BACK_FRESNEL_SCALE, MAT_PAGE_BACK_FRESNEL_SCALE, false},
		{MAT_CH_R_F, MAT_PAGE_R_F, false},
	};
	return channels;
}

BaseShader* linkedShader(const BaseContainer& data, int32_t id, const BaseDocument* doc)
{
	return static_cast<BaseShader*>(data.GetLink(id, doc, Xbase));
}

bool hasForeignTexture(const BaseContainer& data, int32_t id, const BaseDocument* doc)
{
	const BaseShader* shader = linkedShader(data, id, doc);
	if(!shader)
		return false;
	// The plug-in's own shaders: their text is the texture, so the texture
	// settings of a channel do not apply to them.
	return !isVslShaderType(shader->GetType());
}

bool isMaterialParameterEnabled(const BaseContainer& data, int32_t id, const BaseDocument* doc)
{
	if(id == MAT_MEDIUM_IOR || id == MAT_MEDIUM_CAUCHY_B)
		return data.GetInt32(MAT_TYPE) != MAT_TYPE_DIFFUSE_TRANSMITTER;
	for(const EnablingRule& rule : kEnablingRules)
		if(contains(rule.ids, id))
			return linkCondition(data, rule.link, rule.condition, doc);
	return isGenericParameterEnabled(data, id, doc);
}

std::vector<int32_t> usedMaterialLinks(const BaseContainer& data)
{
	std::vector<int32_t> links;
	switch(data.GetInt32(MAT_TYPE))
	{
	case MAT_TYPE_BLEND:
		links = {MAT_BLEND_A, MAT_BLEND_B};
		break;
	case MAT_TYPE_COATING:
		links = {MAT_COAT_SUBSTRATE};
		break;
	case MAT_TYPE_DOUBLE_SIDED_THIN:
		links = {MAT_THIN_FRONT, MAT_THIN_BACK};
		break;
	case MAT_TYPE_SPECULAR:
	case MAT_TYPE_GLOSSY_TRANSPARENT:
	case MAT_TYPE_DIFFUSE_TRANSMITTER:
		if(data.GetBool(MAT_USE_MEDIUM))
			links = {MAT_MEDIUM_SOURCE};
		break;
	default:
		break;
	}
	if(data.GetBool(MAT_USE_ALPHA))
		links.push_back(MAT_BLEND_A);
	return links;
}

bool materialReaches(BaseList2D* mat, const BaseList2D* target, const BaseDocument* doc)
{
	std::set<const BaseList2D*> entered;
	return mat && reaches(mat, target, doc, entered);
}
