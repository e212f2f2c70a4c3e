#include "c4d/material_preview_host.h"

#include "c4d/atom_array.h"
#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/document_file.h"
#include "c4d/preview_scenes.h"
#include "c4d/render_document.h"

namespace
{

std::recursive_mutex preview_mutex;
BaseDocument* current_document = nullptr;

// Sets the current preview document for the time of one request.
class CurrentPreviewDocument
{
public:
	explicit CurrentPreviewDocument(BaseDocument* doc) { current_document = doc; }
	~CurrentPreviewDocument() { current_document = nullptr; }
};

// A document of its own made from the registered scene: the preview changes
// its copy, never the registered one, which other previews start from.
BaseDocument* copyScene(const PreviewScene& scene)
{
	try
	{
		return ReadDocumentText(WriteDocumentText(*scene.document), scene.file);
	}
	catch(const Velorn::MessageException&)
	{
		return nullptr;
	}
}

MaterialPreviewResult failedAt(MaterialPreviewStep step)
{
	return MaterialPreviewResult{step, RENDERRESULT_FAILED};
}

} // namespace

MaterialPreviewLock::MaterialPreviewLock() : guard(preview_mutex) {}

BaseDocument* GetCurrentPreviewDocument()
{
	return current_document;
}

String MaterialPreviewResult::describe() const
{
	switch(step)
	{
	case MaterialPreviewStep::NotHandled:
		return String("The material does not render its own preview.");
	case MaterialPreviewStep::NoScene:
		return String("No preview scene is registered for the material.");
	case MaterialPreviewStep::PrepareRefused:
		return String("The material could not be put into the preview scene.");
	case MaterialPreviewStep::GenerateRefused:
		return String("The material refused to render its preview.");
	case MaterialPreviewStep::Answered:
		break;
	}
	switch(result)
	{
	case RENDERRESULT_OK:
		return String("The preview was rendered.");
	case RENDERRESULT_USERBREAK:
		return String("The preview was broken off.");
	default:
		return String("The preview failed (result ") + String(std::to_string(result)) + String(").");
	}
}

MaterialPreview::MaterialPreview(BaseMaterial* material_) : material(material_) {}

MaterialPreview::~MaterialPreview()
{
	invalidate();
}

void MaterialPreview::invalidate()
{
	MaterialPreviewLock lock;
	BaseDocument::Free(scene);
	shownUserObject = nullptr;
}

bool MaterialPreview::prepare(const Settings& settings)
{
	AtomArray assignments;
	MatPreviewPrepareScene request;
	request.doc = scene;
	request.assignments = &assignments;
	request.copyDocumentPath = settings.copyDocumentPath;
	request.useUserObject = settings.userObject != nullptr;
	request.userObject = settings.userObject;
	request.shownUserObject = shownUserObject;
	if(!material->Message(MATPREVIEW_PREPARE_SCENE, &request) || !request.scenePrepared)
		return false;
	shownUserObject = settings.userObject;
	return true;
}

MaterialPreviewStep MaterialPreview::makeScene(const Settings& settings)
{
	const std::vector<PreviewScene> scenes = PreviewScenes::get().of(material->GetType());
	if(scenes.empty() || !scenes.front().document)
		return MaterialPreviewStep::NoScene;
	scene = copyScene(scenes.front());
	if(!scene)
		return MaterialPreviewStep::NoScene;
	shownUserObject = nullptr;
	if(!prepare(settings))
		return MaterialPreviewStep::PrepareRefused;

	MatPreviewModifyCacheScene modify;
	modify.doc = scene;
	modify.quality = settings.quality;
	material->Message(MATPREVIEW_MODIFY_CACHE_SCENE, &modify);
	return MaterialPreviewStep::Answered;
}

MaterialPreviewResult MaterialPreview::generate(BaseBitmap& bmp, const Settings& settings)
{
	MatPreviewObjectInfo info;
	if(!material->Message(MATPREVIEW_GET_OBJECT_INFO, &info) || !info.handlePreview ||
		!(info.flags & MATPREVIEW_FLAG_OWN_RENDERER))
		return failedAt(MaterialPreviewStep::NotHandled);
	MaterialPreviewLock lock;
	// Another user object: the material exchanges the preview object.
	if(scene && settings.userObject != shownUserObject && !prepare(settings))
		return failedAt(MaterialPreviewStep::PrepareRefused);
	if(!scene)
	{
		const MaterialPreviewStep step = makeScene(settings);
		if(step != MaterialPreviewStep::Answered)
		{
			BaseDocument::Free(scene);
			return failedAt(step);
		}
	}

	// The material renders at the size of the picture it is handed.
	if(bmp.Init(settings.width, settings.height, 24) != IMAGERESULT_OK)
		return failedAt(MaterialPreviewStep::GenerateRefused);
	CurrentPreviewDocument current(scene);
	MatPreviewGenerateImage request;
	request.doc = scene;
	request.bmp = &bmp;
	request.thread = settings.thread;
	request.flags = MATPREVIEW_GENERATE_PICTURE;
	request.editorPreview = settings.editorPreview;
	request.result = RENDERRESULT_OK;
	if(!material->Message(MATPREVIEW_GENERATE_IMAGE, &request))
		return failedAt(MaterialPreviewStep::GenerateRefused);
	return MaterialPreviewResult{MaterialPreviewStep::Answered, request.result};
}
