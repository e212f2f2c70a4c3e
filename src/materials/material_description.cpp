#include "materials/material_plugin.h"

#include "c4d/base_list.h"
#include "c4d/description.h"
#include "c4d/resources.h"
#include "host/layer_cycle.h"
#include "host/plugin_globals.h"
#include "host/plugin_ids.h"
#include "materials/material_ids.h"
#include "materials/material_rules.h"
#include "materials/nk_table.h"

#include <initializer_list>
#include <utility>

// What the attribute manager shows of the material: the description file,
// then what depends on the values: the n-k cycle, the entries of the
// generic channels, which switches, pages and spectrum modes show, the
// layer names and the groups that only make sense with another value set.

namespace
{

// The range of a number entry: the values it may take, the arrows' step
// and the slider's range.
struct Range
{
	double min;
	double max;
	double step;
	double min_slider;
	double max_slider;
};

const double kHuge = 1000000.0;

// Ranges of the generic channels' numbers.
const Range kScaleRange = {0, 100, 0.01, 0, 100};
const Range kGammaRange = {0, 100, 0.1, 0.4, 5};
const Range kTemperatureRange = {0, 40000, 10, 0, 10000};
const Range kGainRange = {0, kHuge, 0.1, 0, 10};
const Range kPeakMinRange = {400, 700, 10, 400, 700};
const Range kPeakWidthRange = {0, 500, 10, 0, 500};
const Range kPeakValueRange = {0, kHuge, 1, 0, kHuge};
const Range kUniformRange = {0, kHuge, 0.1, 0, 10};
const Range kTermRange = {-kHuge, kHuge, 0.1, -1, 1};
const Range kValueRange = {0, kHuge, 0.1, 0, 10};
const Range kFractionRange = {0, 1, 0.01, 0, 1};
const Range kThicknessRange = {0, kHuge, 1, 0, 5000};

BaseContainer named(int32_t dtype, const String& name)
{
	BaseContainer settings = GetCustomDataTypeDefault(dtype);
	settings.SetString(DESC_NAME, name);
	settings.SetString(DESC_SHORT_NAME, name);
	return settings;
}

// The label of a generic channel's entry: the resource string of its offset.
String label(int32_t offset)
{
	return GeLoadString(offset);
}

// The group of a spectrum channel's mode at base + offset.
void addModeGroup(Description* description, int32_t base, int32_t offset, int32_t page)
{
	description->SetParameter(DescID(base + offset), DTYPE_GROUP, named(DTYPE_GROUP, label(offset)), DescID(page));
}

void addNumber(Description* description, int32_t id, const String& name, const Range& range, int32_t group)
{
	BaseContainer settings = named(DTYPE_REAL, name);
	settings.SetFloat(DESC_MIN, range.min);
	settings.SetFloat(DESC_MAX, range.max);
	settings.SetFloat(DESC_STEP, range.step);
	settings.SetFloat(DESC_MINSLIDER, range.min_slider);
	settings.SetFloat(DESC_MAXSLIDER, range.max_slider);
	description->SetParameter(DescID(id), DTYPE_REAL, settings, DescID(group));
}

void addChannelNumber(Description* description, int32_t base, int32_t offset, const Range& range, int32_t group)
{
	addNumber(description, base + offset, label(offset), range, group);
}

// The shader link of a channel and the settings of its texture.
void addTexture(Description* description, int32_t base, int32_t page)
{
	BaseContainer link = named(DTYPE_BASELISTLINK, label(MAT_CH_LINK));
	BaseContainer accept;
	accept.SetInt32(Xbase, Xbase);
	link.SetContainer(DESC_ACCEPT, accept);
	description->SetParameter(DescID(base + MAT_CH_LINK), DTYPE_BASELISTLINK, link, DescID(page));
	addChannelNumber(description, base, MAT_CH_EXPONENT, kGammaRange, page);
	addChannelNumber(description, base, MAT_CH_A, kTermRange, page);
	addChannelNumber(description, base, MAT_CH_B, kTermRange, page);
	addChannelNumber(description, base, MAT_CH_C, kTermRange, page);
}

BaseContainer spectrumModeCycle()
{
	BaseContainer cycle;
	cycle.SetString(MAT_SPECTRUM_RGB, String("RGB"));
	cycle.SetString(MAT_SPECTRUM_BLACKBODY, String("Blackbody"));
	cycle.SetString(MAT_SPECTRUM_PEAK, String("Peak"));
	cycle.SetString(MAT_SPECTRUM_UNIFORM, String("Uniform"));
	cycle.SetString(MAT_SPECTRUM_TABULATED, String("Tabulated"));
	return cycle;
}

// A spectrum channel: the mode, one group per mode with its values, then
// the texture.
void addSpectrumChannel(Description* description, int32_t base, int32_t page)
{
	BaseContainer mode = named(DTYPE_LONG, label(MAT_CH_MODE));
	mode.SetContainer(DESC_CYCLE, spectrumModeCycle());
	description->SetParameter(DescID(base + MAT_CH_MODE), DTYPE_LONG, mode, DescID(page));

	const int32_t rgb = base + MAT_CH_GROUP_RGB;
	addModeGroup(description, base, MAT_CH_GROUP_RGB, page);
	description->SetParameter(DescID(base + MAT_CH_COLOUR), DTYPE_COLOR, named(DTYPE_COLOR, label(MAT_CH_COLOUR)),
		DescID(rgb));
	addChannelNumber(description, base, MAT_CH_SCALE, kScaleRange, rgb);
	addChannelNumber(description, base, MAT_CH_GAMMA, kGammaRange, rgb);

	const int32_t blackbody = base + MAT_CH_GROUP_BLACKBODY;
	addModeGroup(description, base, MAT_CH_GROUP_BLACKBODY, page);
	addChannelNumber(description, base, MAT_CH_TEMPERATURE, kTemperatureRange, blackbody);
	addChannelNumber(description, base, MAT_CH_GAIN, kGainRange, blackbody);

	const int32_t peak = base + MAT_CH_GROUP_PEAK;
	addModeGroup(description, base, MAT_CH_GROUP_PEAK, page);
	addChannelNumber(description, base, MAT_CH_PEAK_MIN, kPeakMinRange, peak);
	addChannelNumber(description, base, MAT_CH_PEAK_WIDTH, kPeakWidthRange, peak);
	addChannelNumber(description, base, MAT_CH_PEAK_VALUE, kPeakValueRange, peak);
	addChannelNumber(description, base, MAT_CH_BASE_VALUE, kPeakValueRange, peak);

	const int32_t uniform = base + MAT_CH_GROUP_UNIFORM;
	addModeGroup(description, base, MAT_CH_GROUP_UNIFORM, page);
	addChannelNumber(description, base, MAT_CH_UNIFORM, kUniformRange, uniform);

	addTexture(description, base, page);
}

// A real channel: the constant, the texture and its smooth flag. Fractions
// and scales run from 0 to 1; the coat thickness is in micrometres.
void addRealChannel(Description* description, int32_t base, int32_t page)
{
	Range range = kValueRange;
	String suffix;
	if(base == MAT_CH_COAT_THICKNESS)
	{
		range = kThicknessRange;
		suffix = String(" (\xC2\xB5m)");
	}
	else if(base == MAT_CH_ROUGHNESS || base == MAT_CH_BACK_ROUGHNESS || base == MAT_CH_FRESNEL_SCALE ||
		base == MAT_CH_BACK_FRESNEL_SCALE || base == MAT_CH_R_F)
		range = kFractionRange;
	addNumber(description, base + MAT_CH_VALUE, label(MAT_CH_VALUE) + suffix, range, page);
	addTexture(description, base, page);
	description->SetParameter(DescID(base + MAT_CH_SMOOTH), DTYPE_BOOL, named(DTYPE_BOOL, label(MAT_CH_SMOOTH)),
		DescID(page));
}

void setHidden(Description* description, int32_t id, bool hidden)
{
	if(BaseContainer* settings = description->GetParameterI(DescID(id)))
		settings->SetBool(DESC_HIDE, hidden);
}

// The groups of a spectrum's modes: only the selected mode's group shows.
void showMode(Description* description, int32_t mode, std::initializer_list<std::pair<int32_t, int32_t>> groups)
{
	for(const auto& [value, group] : groups)
		setHidden(description, group, value != mode);
}

void showSpectrumModes(Description* description, const BaseContainer& data)
{
	showMode(description, data.GetInt32(MAT_ABSORPTION_MODE), {
		{MAT_SPECTRUM_RGB, MAT_ABSORPTION_GROUP_RGB},
		{MAT_SPECTRUM_BLACKBODY, MAT_ABSORPTION_GROUP_BLACKBODY},
		{MAT_SPECTRUM_PEAK, MAT_ABSORPTION_GROUP_PEAK},
		{MAT_SPECTRUM_UNIFORM, MAT_ABSORPTION_GROUP_UNIFORM},
		{MAT_SPECTRUM_TABULATED, MAT_ABSORPTION_GROUP_TABULATED},
	});
	showMode(description, data.GetInt32(MAT_SCATTERING_MODE), {
		{MAT_SPECTRUM_RGB, MAT_SCATTERING_GROUP_RGB},
		{MAT_SPECTRUM_BLACKBODY, MAT_SCATTERING_GROUP_BLACKBODY},
		{MAT_SPECTRUM_PEAK, MAT_SCATTERING_GROUP_PEAK},
		{MAT_SPECTRUM_UNIFORM, MAT_SCATTERING_GROUP_UNIFORM},
		{MAT_SPECTRUM_TABULATED, MAT_SCATTERING_GROUP_TABULATED},
	});
	showMode(description, data.GetInt32(MAT_EMISSION_MODE), {
		{MAT_SPECTRUM_RGB, MAT_EMISSION_GROUP_RGB},
		{MAT_SPECTRUM_BLACKBODY, MAT_EMISSION_GROUP_BLACKBODY},
		{MAT_SPECTRUM_PEAK, MAT_EMISSION_GROUP_PEAK},
		{MAT_SPECTRUM_UNIFORM, MAT_EMISSION_GROUP_UNIFORM},
		{MAT_SPECTRUM_TABULATED, MAT_EMISSION_GROUP_TABULATED},
	});
	// A generic channel has no table: in that mode no group shows.
	for(const GenericChannel& channel : genericChannels())
	{
		if(!channel.spectrum)
			continue;
		const int32_t base = channel.base;
		showMode(description, data.GetInt32(base + MAT_CH_MODE), {
			{MAT_SPECTRUM_RGB, base + MAT_CH_GROUP_RGB},
			{MAT_SPECTRUM_BLACKBODY, base + MAT_CH_GROUP_BLACKBODY},
			{MAT_SPECTRUM_UNIFORM, base + MAT_CH_GROUP_UNIFORM},
			{MAT_SPECTRUM_PEAK, base + MAT_CH_GROUP_PEAK},
		});
	}
}

// The n-k cycle lists the files of the table; an older document's file
// name becomes its index first. False when the description has no cycle.
bool installNkCycle(Description* description, BaseContainer& data)
{
	BaseContainer* settings = description->GetParameterI(DescID(MAT_PHONG_NK_FILE));
	if(!settings)
		return false;
	MigrateNkName(data);
	BaseContainer cycle;
	for(int32_t i = 0; i < NkFileCount(); ++i)
		cycle.SetString(i, String(NkFileName(i)));
	settings->SetContainer(DESC_CYCLE, cycle);
	return true;
}

// The entries that only make sense with another value. They only ever
// hide, so that what the realtime edition hides first stays hidden.
void applyDependencies(Description* description, const BaseContainer& data)
{
	auto hide = [&](int32_t id) { setHidden(description, id, true); };

	if(realtime_edition)
	{
		const int32_t hidden[] = {MAT_MEDIUM_GROUP_SSS, MAT_MEDIUM_SSS, MAT_EMISSION_LAYER, MAT_IES_ON, MAT_IES_FILE};
		for(int32_t id : hidden)
			hide(id);
	}

	if(!data.GetBool(MAT_EMISSION_SCALE_ON))
		hide(MAT_EMISSION_SCALE_GROUP);
	if(!data.GetBool(MAT_IES_ON))
		hide(MAT_IES_FILE);

	int32_t medium = MAT_MEDIUM_GROUP_BASIC;
	switch(data.GetInt32(MAT_MEDIUM_KIND))
	{
	case MAT_MEDIUM_DERMIS:
		medium = MAT_MEDIUM_GROUP_DERMIS;
		break;
	case MAT_MEDIUM_EPIDERMIS:
		medium = MAT_MEDIUM_GROUP_EPIDERMIS;
		break;
	case MAT_MEDIUM_ATMOSPHERE:
		medium = MAT_MEDIUM_GROUP_ATMOSPHERE;
		break;
	default:
		break;
	}
	for(int32_t group : {MAT_MEDIUM_GROUP_BASIC, MAT_MEDIUM_GROUP_DERMIS, MAT_MEDIUM_GROUP_EPIDERMIS,
			MAT_MEDIUM_GROUP_ATMOSPHERE})
		if(group != medium)
			hide(group);

	const bool sss = data.GetBool(MAT_MEDIUM_SSS);
	if(!sss)
		hide(MAT_MEDIUM_GROUP_SSS);
	if(!sss || data.GetInt32(MAT_PHASE_KIND) != MAT_PHASE_HENYEY_GREENSTEIN)
		hide(MAT_PHASE_GROUP_HENYEY_GREENSTEIN);

	if(!data.GetBool(MAT_PHONG_USE_NK))
	{
		hide(MAT_PHONG_NK_FILE);
		if(data.GetBool(MAT_PHONG_SPECULAR_MODE))
			hide(MAT_PHONG_IOR);
	}
	else
		hide(MAT_PHONG_GROUP_NO_NK);
}

} // namespace

bool VelornMaterial::GetDDescription(GeListNode* node, Description* description, int32_t& flags)
{
	if(!description->LoadDescription(ID_VELORN_MATERIAL))
		return false;
	BaseList2D* material = static_cast<BaseList2D*>(node);
	BaseContainer& data = *material->GetDataInstance();
	if(!installNkCycle(description, data))
		return false;

	for(const GenericChannel& channel : genericChannels())
	{
		if(channel.spectrum)
			addSpectrumChannel(description, channel.base, channel.page);
		else
			addRealChannel(description, channel.base, channel.page);
	}

	const int32_t kind = data.GetInt32(MAT_TYPE);
	for(const SwitchPage& entry : switchPages())
	{
		setHidden(description, entry.switch_id, !isSwitchShown(entry.switch_id, kind));
		setHidden(description, entry.page, !isPageShown(data, entry.switch_id));
	}
	showSpectrumModes(description, data);

	setLayerCycle(description, MAT_EMISSION_LAYER, material->GetDocument());
	applyDependencies(description, data);

	// The description is complete; the base sees the loaded flag and keeps it.
	flags |= DESCFLAGS_DESC_LOADED;
	return MaterialData::GetDDescription(node, description, flags);
}
