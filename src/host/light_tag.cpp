#include "host/light_tag.h"

#include "c4d/base_list.h"
#include "c4d/bitmap_gadget.h"
#include "c4d/description.h"
#include "c4d/messages.h"
#include "host/description_visibility.h"
#include "host/layer_cycle.h"
#include "host/plugin_globals.h"
#include "host/plugin_ids.h"
#include "host/registration.h"
#include "support/file_utils.h"

bool LightTag::Init(GeListNode* node)
{
	BaseContainer* data = static_cast<BaseList2D*>(node)->GetDataInstance();
	setParameters(*data, {
		{lt_type, lt_type_rgb},
		{lt_rgb_colour, Vector(1, 1, 1)},
		{lt_rgb_gain, 2.2},
		{lt_uniform_value, 1.0},
		{lt_black_body_temperature, 6500.0},
		{lt_black_body_gain, 1.0},
		{lt_peak_min, 300.0},
		{lt_peak_width, 550.0},
		{lt_peak_value, 200.0},
		{lt_base_value, 0.0},
		{lt_emission_measure, lt_measure_luminance},
		{lt_emission_value, 100.0},
		{lt_ies, 0},
		{lt_emission_scale, 0},
		{lt_layer, 0},
	});
	return true;
}

bool LightTag::GetDDescription(GeListNode* node, Description* description, int32_t& flags)
{
	if(!description->LoadDescription(ID_LIGHT_TAG))
		return false;
	BaseList2D* tag = static_cast<BaseList2D*>(node);
	const BaseContainer& data = *tag->GetDataInstance();

	setLayerCycle(description, lt_layer, tag->GetDocument());
	if(realtime_edition)
		hide(description, {lt_layer, lt_group_layer});
	hide(description, {lt_preview_file});

	const int32_t type = data.GetInt32(lt_type);
	setHidden(description, {lt_group_peak}, type != lt_type_peak);
	setHidden(description, {lt_group_rgb}, type != lt_type_rgb);
	setHidden(description, {lt_group_blackbody}, type != lt_type_black_body);
	setHidden(description, {lt_group_uniform}, type != lt_type_uniform);

	setHidden(description, {lt_ies_file}, !data.GetBool(lt_ies));
	setHidden(description, {lt_emission_measure, lt_emission_value}, !data.GetBool(lt_emission_scale));

	flags |= DESCFLAGS_DESC_LOADED;
	return true;
}

bool LightTag::Message(GeListNode* node, int32_t type, void* data)
{
	const DescriptionCommand* command = static_cast<const DescriptionCommand*>(data);
	if(type == MSG_DESCRIPTION_COMMAND && command && command->id == lt_preview_button)
	{
		last_preview = renderIesPreview(*static_cast<BaseList2D*>(node)->GetDataInstance());
		if(last_preview == IesPreviewOutcome::NoProfile)
			return true;
		loadPreview(node);
		return last_preview == IesPreviewOutcome::Rendered;
	}
	if(type == MSG_DESCRIPTION_GADGET_REFRESH && command && command->id == lt_preview_gadget)
		loadPreview(node);
	return TagData::Message(node, type, data);
}

void LightTag::loadPreview(GeListNode* node)
{
	const Filename file =
		static_cast<BaseList2D*>(node)->GetDataInstance()->GetFilename(lt_preview_file, Filename("NOPATH"));
	if(!Velorn::FileUtils::fileExists(file.GetString().GetStdString()))
		return;
	auto bitmap = std::make_shared<BaseBitmap>();
	if(bitmap->Init(file) == IMAGERESULT_OK)
		preview = bitmap;
}

bool LightTag::GetDParameter(GeListNode* node, const DescID& id, GeData& t_data, int32_t& flags)
{
	if(id[0].id == lt_preview_gadget)
	{
		t_data = GeData(CUSTOMDATATYPE_BITMAP_GADGET, std::make_shared<BitmapGadgetData>(preview));
		flags |= DESCFLAGS_GET_PARAM_GET;
		return true;
	}
	return TagData::GetDParameter(node, id, t_data, flags);
}

bool LightTag::SetDParameter(GeListNode* node, const DescID& id, const GeData& t_data, int32_t& flags)
{
	if(id[0].id == lt_preview_gadget)
	{
		flags |= DESCFLAGS_SET_PARAM_SET;
		return true;
	}
	return TagData::SetDParameter(node, id, t_data, flags);
}

bool RegisterLightTag()
{
	return registerTag(ID_LIGHT_TAG, 10002, LightTag::Alloc, "tMyLightTag", "LightTag.tif");
}
