#include "materials/material_preview.h"

#include "c4d/atom_array.h"
#include "c4d/base_bitmap.h"
#include "c4d/base_shader.h"
#include "c4d/light_object.h"
#include "c4d/material_preview_host.h"
#include "c4d/render_data.h"
#include "c4d/render_document.h"
#include "c4d/texture_tag.h"
#include "host/plugin_ids.h"
#include "host/registration.h"
#include "host/video_post_lookup.h"
#include "materials/material_ids.h"

#include <vector>

namespace
{

// Render data items that a preview render sets: the first marks a
// thumbnail of the editor, the second is set to 1 for every preview.
const int32_t RDATA_EDITOR_PREVIEW = 5300;
const int32_t RDATA_PREVIEW_RENDER = 5002;
// RenderDocument's flags for a preview: an external render (1) and a
// preview render (8).
const int32_t preview_render_flags = RENDERFLAGS_EXTERNAL | RENDERFLAGS_PREVIEWRENDER;
// The halt value of the video post is this many times the quality's samples.
const double halt_factor = 4.0;
// How far the preview scene's "Polygon" is moved up, in host units.
const double polygon_lift = 1100.0;
// The side of the area light each preview light becomes, in host units.
const double area_light_size = 400.0;

// The material links that cloneWithLinks follows for the material's kind.
std::vector<int32_t> clonedLinks(const BaseContainer& data)
{
	std::vector<int32_t> links;
	const int32_t kind = data.GetInt32(MAT_TYPE);
	switch(kind)
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
		links = {MAT_MEDIUM_SOURCE};
		break;
	case MAT_TYPE_DIFFUSE_TRANSMITTER:
		if(data.GetBool(MAT_USE_MEDIUM))
			links = {MAT_MEDIUM_SOURCE};
		break;
	default:
		break;
	}
	if(kind != MAT_TYPE_BLEND && data.GetBool(MAT_USE_ALPHA))
		links.push_back(MAT_BLEND_A);
	return links;
}

// Only a blend with neither input has nothing to render.
bool holdsRenderable(const BaseContainer& data, const BaseDocument* doc)
{
	return data.GetInt32(MAT_TYPE) != MAT_TYPE_BLEND || data.GetLink(MAT_BLEND_A, doc, Mbase) ||
		   data.GetLink(MAT_BLEND_B, doc, Mbase);
}

// Calls f with every object of the tree below first, depth first.
template<typename F>
void walkObjects(BaseObject* first, const F& f)
{
	for(BaseObject* op = first; op; op = op->GetNext())
	{
		f(op);
		walkObjects(op->GetDown(), f);
	}
}

void removeObject(BaseDocument* doc, const char* name)
{
	BaseObject* op = doc->SearchObject(String(name));
	if(!op)
		return;
	if(doc->GetActiveCamera() == op)
		doc->SetActiveCamera(nullptr);
	op->Remove();
	BaseObject::Free(op);
}

// Puts a copy of the user's object in the place of the preview object,
// named as it was and wearing its texture tag; the copy, or the preview
// object when no copy could be made.
BaseObject* exchangeObject(BaseObject* object, const BaseObject* user_object)
{
	BaseObject* copy = user_object->GetClone();
	if(!copy)
		return object;
	copy->SetName(object->GetName());
	copy->SetMl(object->GetMl());
	copy->InsertAfter(object);
	if(BaseTag* tag = object->GetTag(Ttexture))
	{
		tag->Remove();
		copy->InsertTag(tag);
	}
	object->Remove();
	BaseObject::Free(object);
	return copy;
}

bool answerObjectInfo(MatPreviewObjectInfo* info)
{
	if(!info)
		return false;
	info->handlePreview = true;
	info->needsSourceMaterial = true;
	info->canAnimate = false;
	info->flags = MATPREVIEW_FLAG_OWN_RENDERER;
	return true;
}

bool prepareScene(BaseMaterial* material, MatPreviewPrepareScene* prepare)
{
	if(!prepare || !prepare->doc)
		return false;
	BaseDocument* doc = prepare->doc;
	const BaseDocument* own = material->GetDocument();
	if(prepare->copyDocumentPath && own)
		doc->SetDocumentPath(own->GetDocumentPath());

	MaterialClones clones;
	BaseMaterial* clone = cloneWithLinks(material, doc, clones);
	if(!clone)
		return false;

	BaseObject* object = doc->SearchObject(String("Object"));
	if(object && prepare->useUserObject && prepare->userObject && prepare->userObject != prepare->shownUserObject)
		object = exchangeObject(object, prepare->userObject);
	if(prepare->assignments)
		prepare->assignments->Append(clone);
	if(TextureTag* tag = object ? static_cast<TextureTag*>(object->GetTag(Ttexture)) : nullptr)
		tag->SetMaterial(clone);
	prepare->scenePrepared = true;
	return true;
}

void addVideoPost(BaseDocument* doc)
{
	BaseVideoPost* post = BaseVideoPost::Alloc(ID_VIDEO_POST);
	if(!post)
		return;
	doc->GetActiveRenderData()->InsertVideoPost(post);
	post->DelBit(BIT_ACTIVE);
	setParameters(*post->GetDataInstance(), {
		{vp_auto_threads, 1},
		{vp_max_depth, 100},
		{vp_render_mode, vp_render_mode_bidirectional},
		{vp_material_preview, 1},
		{vp_save_vli, 0},
		{vp_image_save_period, 1000000.0},
		{vp_unit, vp_unit_cm},
	});
}

// Every light gets the plug-in's light tag and becomes an area light; the
// lights after the one named "Light" glow less.
void makeAreaLights(BaseDocument* doc)
{
	bool past_light = false;
	walkObjects(doc->GetFirstObject(), [&](BaseObject* op) {
		if(op->GetType() == Olight)
		{
			if(BaseTag* tag = op->MakeTag(ID_LIGHT_TAG))
			{
				BaseContainer& data = *tag->GetDataInstance();
				data.SetInt32(lt_type, lt_type_black_body);
				if(past_light)
					data.SetFloat(lt_black_body_gain, 0.4);
			}
			BaseContainer& light = *op->GetDataInstance();
			light.SetInt32(LIGHT_TYPE, LIGHT_TYPE_AREA);
			light.SetFloat(LIGHT_AREADEFINITION_SIZEX, area_light_size);
			light.SetFloat(LIGHT_AREADEFINITION_SIZEY, area_light_size);
		}
		if(op->GetName() == String("Light"))
			past_light = true;
	});
}

void liftPolygon(BaseDocument* doc)
{
	BaseObject* polygon = doc->SearchObject(String("Polygon"));
	if(!polygon)
		return;
	Matrix mg = polygon->GetMg();
	mg.off.y += polygon_lift;
	polygon->SetMg(mg);
}

void tagCamera(BaseDocument* doc)
{
	BaseObject* camera = doc->GetActiveCamera();
	BaseTag* tag = camera ? camera->MakeTag(ID_CAMERA_TAG) : nullptr;
	if(!tag)
		return;
	setParameters(*tag->GetDataInstance(), {
		{ct_f_number, 64.0},
		{ct_exposure_divisor, 1000.0},
		{ct_tonemap, ct_tonemap_camera},
		{ct_film_iso, 200},
		{ct_ev_adjust, 0.0},
		{ct_super_sample, 2},
		{ct_response_function, 28},
	});
}

// The floor's material shows the picture of the preview's background.
void dressFloor(BaseDocument* doc)
{
	BaseObject* floor = doc->SearchObject(String("Floor"));
	const TextureTag* tag = floor ? static_cast<const TextureTag*>(floor->GetTag(Ttexture)) : nullptr;
	BaseMaterial* material = tag ? tag->GetMaterial() : nullptr;
	BaseShader* shader = material ? BaseShader::Alloc(Xbitmap) : nullptr;
	if(!shader)
		return;
	shader->GetDataInstance()->SetFilename(BITMAPSHADER_FILENAME, moduleResourceFile("previewBackground.jpg"));
	material->InsertShader(shader);
	material->GetDataInstance()->SetLink(MATERIAL_COLOR_SHADER, shader);
}

bool modifyScene(MatPreviewModifyCacheScene* modify)
{
	if(!modify || !modify->doc)
		return false;
	BaseDocument* doc = modify->doc;
	// A scene modified once keeps its changes.
	if(findVideoPostContainer(doc))
		return true;
	addVideoPost(doc);
	removeObject(doc, "Environment");
	removeObject(doc, "Sky");
	makeAreaLights(doc);
	liftPolygon(doc);
	tagCamera(doc);
	dressFloor(doc);
	return true;
}

bool generateImage(BaseMaterial* material, MatPreviewGenerateImage* image, uint8_t& preview_failed)
{
	if(preview_failed)
		return false;
	// Nothing asked for, or nothing to render into.
	if(!image || !image->doc || !image->bmp || !image->flags)
		return true;

	MaterialPreviewLock lock;
	BaseDocument* doc = GetCurrentPreviewDocument();
	BaseContainer* post = doc ? findVideoPostContainer(doc) : nullptr;
	const BaseContainer& data = *material->GetDataInstance();
	const int32_t quality = data.GetInt32(MAT_PREVIEW_QUALITY);
	if(!post || !holdsRenderable(data, material->GetDocument()) || quality == MAT_PREVIEW_OFF)
	{
		image->result = RENDERRESULT_RENDER_FAILED;
		preview_failed = 1;
		return true;
	}

	post->SetFloat(vp_halt_spp, previewSamplesPerPixel(quality) * halt_factor);
	BaseContainer& render_data = *doc->GetActiveRenderData()->GetDataInstance();
	if(image->editorPreview)
		render_data.SetInt32(RDATA_EDITOR_PREVIEW, 1);
	render_data.SetInt32(RDATA_XRES, image->bmp->GetBw());
	render_data.SetInt32(RDATA_YRES, image->bmp->GetBh());
	render_data.SetInt32(RDATA_PREVIEW_RENDER, 1);
	const BaseContainer render_copy = render_data;
	image->result = RenderDocument(doc, render_copy, image->bmp, preview_render_flags, image->thread);
	if(image->result == RENDERRESULT_RENDER_FAILED)
		preview_failed = 1;
	return true;
}

} // namespace

bool isPreviewMessage(int32_t type)
{
	return type == MATPREVIEW_GET_OBJECT_INFO || type == MATPREVIEW_PREPARE_SCENE ||
		   type == MATPREVIEW_MODIFY_CACHE_SCENE || type == MATPREVIEW_GENERATE_IMAGE;
}

bool answerPreviewMessage(BaseMaterial* material, int32_t type, void* data, uint8_t& preview_failed)
{
	switch(type)
	{
	case MATPREVIEW_GET_OBJECT_INFO:
		return answerObjectInfo(static_cast<MatPreviewObjectInfo*>(data));
	case MATPREVIEW_PREPARE_SCENE:
		return prepareScene(material, static_cast<MatPreviewPrepareScene*>(data));
	case MATPREVIEW_MODIFY_CACHE_SCENE:
		return modifyScene(static_cast<MatPreviewModifyCacheScene*>(data));
	case MATPREVIEW_GENERATE_IMAGE:
		return generateImage(material, static_cast<MatPreviewGenerateImage*>(data), preview_failed);
	default:
		return false;
	}
}

BaseMaterial* cloneWithLinks(const BaseMaterial* material, BaseDocument* doc, MaterialClones& clones)
{
	const auto found = clones.find(material);
	if(found != clones.end())
		return found->second;
	BaseMaterial* clone = material->GetClone();
	if(!clone)
		return nullptr;
	doc->InsertMaterial(clone);
	clones[material] = clone;
	if(clone->GetType() != ID_VELORN_MATERIAL)
		return clone;

	BaseContainer& data = *clone->GetDataInstance();
	for(int32_t id : clonedLinks(data))
	{
		const auto* linked = dynamic_cast<const BaseMaterial*>(data.GetLink(id, doc, Mbase));
		if(!linked)
			continue;
		BaseMaterial* linked_clone = cloneWithLinks(linked, doc, clones);
		if(!linked_clone)
			return nullptr;
		data.SetLink(id, linked_clone);
	}
	return clone;
}

int32_t previewSamplesPerPixel(int32_t quality)
{
	switch(quality)
	{
	case MAT_PREVIEW_LOW:
		return 6;
	case MAT_PREVIEW_HIGH:
		return 24;
	case MAT_PREVIEW_VERY_HIGH:
		return 48;
	default:
		return 12;
	}
}
