#include "bake/bake_dialog.h"

#include "bake/bake_thread.h"
#include "c4d/bake_texture.h"
#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/console.h"
#include "c4d/dialog_script.h"
#include "c4d/events.h"
#include "c4d/polygon_object.h"
#include "c4d/primitives.h"
#include "c4d/texture_tag.h"
#include "c4d/uv_projection.h"
#include "c4d/variable_tags.h"
#include "host/plugin_ids.h"
#include "materials/material_ids.h"

#include <limits>

namespace
{

const int32_t most = std::numeric_limits<int32_t>::max();

// A check box of the "Channels" group: its label, the material's switch and
// link of the channel, and the setting it fills.
struct ChannelBox
{
	int32_t id;
	const char* label;
	int32_t use;
	int32_t link;
	int32_t setting;
};

const ChannelBox channel_boxes[] = {
	{IDC_BAKE_ALBEDO, "Albedo", MAT_USE_ALBEDO, MAT_ALBEDO_LINK, BAKE_ALBEDO},
	{IDC_BAKE_SIGMA, "Sigma", MAT_USE_SIGMA, MAT_SIGMA_LINK, BAKE_SIGMA},
	{IDC_BAKE_EXPONENT, "Exponent", MAT_USE_EXPONENT, MAT_EXPONENT_LINK, BAKE_EXPONENT},
	{IDC_BAKE_BUMP, "Bump", MAT_USE_BUMP, MAT_BUMP_LINK, BAKE_BUMP},
	{IDC_BAKE_DISPLACEMENT, "Displacement", MAT_USE_DISPLACEMENT, MAT_DISPLACEMENT_LINK, BAKE_DISPLACEMENT},
	{IDC_BAKE_EMISSION, "Emission", MAT_USE_EMISSION, MAT_EMISSION_LINK, BAKE_EMISSION},
	{IDC_BAKE_BLEND, "Blend", MAT_USE_ALPHA, MAT_ALPHA_LINK, BAKE_BLEND},
};

// The bake channels of the host's service that the bake leaves off.
const int32_t channels_off[] = {1006, 1032, 1009, 1011, 1013, 1014, 1015, 1016, 1017, 1018, 1040, 1041, 2100, 2101,
	2102, 2103, 2110, 2120, 2140};

// The kinds that have no exponent, and those that have no sigma.
bool hasExponent(int32_t kind)
{
	return kind != MAT_TYPE_DIFFUSE && kind != MAT_TYPE_DIFFUSE_TRANSMITTER && kind != MAT_TYPE_OREN_NAYAR;
}

bool hasSigma(int32_t kind)
{
	return kind != MAT_TYPE_DIFFUSE && kind != MAT_TYPE_DIFFUSE_TRANSMITTER && kind != MAT_TYPE_PHONG;
}

// The place of tag among the texture tags of its object, from 0.
int32_t texturePlace(const TextureTag* tag)
{
	int32_t place = 0;
	for(BaseTag* t = tag->GetObject()->GetFirstTag(); t && t != tag; t = t->GetNext())
		if(t->GetType() == Ttexture)
			++place;
	return place;
}

} // namespace

BakeDialog::BakeDialog() = default;

BakeDialog::~BakeDialog()
{
	thread.reset();
}

void BakeDialog::SetTarget(BaseDocument* doc, TextureTag* tag)
{
	document = doc;
	tagLink = GeData(static_cast<BaseList2D*>(tag));
}

TextureTag* BakeDialog::target() const
{
	BaseList2D* node = tagLink.GetLink();
	if(!node || node->GetType() != Ttexture)
		return nullptr;
	auto* tag = static_cast<TextureTag*>(node);
	const BaseObject* op = tag->GetObject();
	const BaseMaterial* mat = tag->GetMaterial();
	if(!op || op->GetType() != Opolygon || !mat || mat->GetType() != ID_VELORN_MATERIAL)
		return nullptr;
	return tag;
}

bool BakeDialog::CreateLayout()
{
	SetTitle(String("Bake Dialog"));
	GroupBegin(IDC_BAKE_CHANNELS_GROUP, BFH_SCALEFIT, 1, 0, String("Channels"));
	for(const ChannelBox& box : channel_boxes)
		AddCheckbox(box.id, BFH_LEFT, 0, 0, String(box.label));
	GroupEnd();

	GroupBegin(IDC_BAKE_SETTINGS_GROUP, BFH_SCALEFIT, 2, 0, String("Bake Settings"));
	AddFilenameField(IDC_BAKE_SAVE_TO, BFH_SCALEFIT, 0, 0, String("Save to..."));
	AddButton(IDC_BAKE_BROWSE, BFH_RIGHT, 0, 0, String("..."));
	AddStaticText(0, BFH_LEFT, 0, 0, String("Res X"));
	AddEditNumberArrows(IDC_BAKE_RES_X, BFH_LEFT);
	AddStaticText(0, BFH_LEFT, 0, 0, String("Res Y"));
	AddEditNumberArrows(IDC_BAKE_RES_Y, BFH_LEFT);
	AddStaticText(0, BFH_LEFT, 0, 0, String("Pixel Border"));
	AddEditNumberArrows(IDC_BAKE_PIXEL_BORDER, BFH_LEFT);
	AddStaticText(0, BFH_LEFT, 0, 0, String("Super Sampling"));
	AddEditNumberArrows(IDC_BAKE_SUPER_SAMPLING, BFH_LEFT);
	GroupEnd();

	AddButton(IDC_BAKE_SHADERS, BFH_SCALEFIT, 0, 0, String("Bake Shaders"));
	return true;
}

bool BakeDialog::InitValues()
{
	SetFilename(IDC_BAKE_SAVE_TO, Filename());
	SetInt32(IDC_BAKE_RES_X, 1024, 1, most);
	SetInt32(IDC_BAKE_RES_Y, 1024, 1, most);
	SetInt32(IDC_BAKE_PIXEL_BORDER, 5, 0, most);
	SetInt32(IDC_BAKE_SUPER_SAMPLING, 0, 0, most);

	TextureTag* tag = target();
	BaseMaterial* mat = tag ? tag->GetMaterial() : nullptr;
	const BaseContainer* data = mat ? mat->GetDataInstance() : nullptr;
	for(const ChannelBox& box : channel_boxes)
		SetBool(box.id, data && data->GetBool(box.use) && data->GetLink(box.link, document, Xbase));
	if(!data)
		return true;

	const int32_t kind = data->GetInt32(MAT_TYPE);
	if(!hasExponent(kind))
	{
		Enable(IDC_BAKE_EXPONENT, false);
		SetBool(IDC_BAKE_EXPONENT, false);
	}
	if(!hasSigma(kind))
	{
		Enable(IDC_BAKE_SIGMA, false);
		SetBool(IDC_BAKE_SIGMA, false);
	}
	return true;
}

bool BakeDialog::Command(int32_t id, const BaseContainer&)
{
	if(id == IDC_BAKE_BROWSE)
	{
		Filename file;
		if(FileSelect(file, FILESELECT_SAVE, String("Save image to...")))
			SetFilename(IDC_BAKE_SAVE_TO, file);
	}
	else if(id == IDC_BAKE_SHADERS)
		bake();
	return true;
}

void BakeDialog::Timer(const BaseContainer&)
{
	if(thread && !thread->IsRunning())
	{
		SetTimer(0);
		EventAdd();
	}
}

BaseContainer BakeDialog::BakeSettings() const
{
	BaseContainer settings;
	settings.SetBool(BAKE_TEX_COLOR, true);
	int32_t value = 0;
	GetInt32(IDC_BAKE_RES_X, value);
	settings.SetInt32(BAKE_TEX_WIDTH, value);
	GetInt32(IDC_BAKE_RES_Y, value);
	settings.SetInt32(BAKE_TEX_HEIGHT, value);
	GetInt32(IDC_BAKE_SUPER_SAMPLING, value);
	settings.SetInt32(BAKE_TEX_SUPERSAMPLING, value);
	GetInt32(IDC_BAKE_PIXEL_BORDER, value);
	settings.SetInt32(BAKE_TEX_PIXELBORDER, value);
	for(int32_t id = BAKE_TEX_FILL_COLOR; id <= BAKE_TEX_COLOR_LUMINANCE; ++id)
		settings.SetFloat(id, 0.0);
	for(int32_t id : channels_off)
		settings.SetBool(id, false);

	Filename file;
	GetFilename(IDC_BAKE_SAVE_TO, file);
	settings.SetFilename(BAKE_FILE, file);
	for(const ChannelBox& box : channel_boxes)
	{
		bool on = false;
		GetBool(box.id, on);
		settings.SetBool(box.setting, on);
	}
	return settings;
}

bool BakeDialog::bake()
{
	Filename file;
	GetFilename(IDC_BAKE_SAVE_TO, file);
	if(!file.Content())
	{
		MessageDialog(String("You have to specify a file to save to."));
		return false;
	}
	// One bake at a time: the button does nothing while one runs.
	if(thread && thread->IsRunning())
		return false;
	TextureTag* tag = target();
	if(!tag || !document)
	{
		Close();
		return false;
	}
	BaseObject* op = tag->GetObject();

	document->StartUndo();
	// The current-state conversion gives a free copy of the object with
	// copies of its tags: the bake works on it while the user goes on with
	// the original.
	PolygonObject* copy = CurrentStateToObject(*op);
	const int32_t place = texturePlace(tag);
	auto* copyTag = copy ? static_cast<TextureTag*>(copy->GetTag(Ttexture, place)) : nullptr;
	UVWTag* uvw = nullptr;
	if(copyTag && tag->GetDataInstance()->GetInt32(TEXTURETAG_PROJECTION) == TEXTURETAG_PROJECTION_UVW)
	{
		uvw = static_cast<UVWTag*>(copy->GetTag(Tuvw, place));
		if(!uvw)
			uvw = static_cast<UVWTag*>(copy->GetTag(Tuvw, 0));
	}
	else if(copyTag)
	{
		// The projection becomes a UVW tag on the user's object, in front
		// of the texture tag, and the tag maps through it from now on, so
		// that the baked images fit the object as the material did.
		if(UVWTag* generated = GenerateUVW(op, op->GetMg(), tag, tag->GetMg()))
		{
			uvw = generated->GetClone();
			copy->InsertTag(uvw, copyTag->GetPred());
			copyTag->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, TEXTURETAG_PROJECTION_UVW);

			op->InsertTag(generated, tag->GetPred());
			document->AddUndo(UNDOTYPE_NEW, generated);
			document->AddUndo(UNDOTYPE_CHANGE_SMALL, tag);
			tag->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, TEXTURETAG_PROJECTION_UVW);
		}
	}
	if(!uvw)
	{
		PolygonObject::Free(copy);
		document->EndUndo();
		Close();
		return false;
	}

	BaseMaterial* material = tag->GetMaterial()->GetClone();
	if(!material)
	{
		PolygonObject::Free(copy);
		document->EndUndo();
		return false;
	}
	thread.reset();
	thread = std::make_unique<BakeThread>(BakeSettings(), copy, copyTag, uvw, material, document->GetDocumentPath());
	thread->Start(String("Evelorn Bake Thread"));
	SetTimer(250);
	document->EndUndo();
	EventAdd();
	return true;
}
