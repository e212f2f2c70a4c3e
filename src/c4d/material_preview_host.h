#pragma once

#include "c4d/c4d_string.h"

#include <cstdint>
#include <mutex>

class AtomArray;
class BaseBitmap;
class BaseDocument;
class BaseMaterial;
class BaseObject;
class BaseThread;

// The material preview protocol: the messages that the host's preview sends
// to a material that draws its own thumbnail, by the application's numbers.
// Each message's data is the record named beside it.
enum
{
	// MatPreviewPrepareScene
	MATPREVIEW_PREPARE_SCENE = 1011142,
	// MatPreviewObjectInfo
	MATPREVIEW_GET_OBJECT_INFO = 1011147,
	// MatPreviewGenerateImage
	MATPREVIEW_GENERATE_IMAGE = 1011148,
	// MatPreviewModifyCacheScene
	MATPREVIEW_MODIFY_CACHE_SCENE = 1011149,
};

// Flags of MatPreviewObjectInfo: the material makes the picture itself, so
// the host's own renderer is never asked. This host has no renderer of its
// own and previews only materials that set it.
enum
{
	MATPREVIEW_FLAG_OWN_RENDERER = 4,
};

// Flags of MatPreviewGenerateImage: what the host asks for.
enum
{
	MATPREVIEW_GENERATE_PICTURE = 1,
};

// What the material says about its preview.
struct MatPreviewObjectInfo
{
	// The material answers the other messages of the protocol.
	bool handlePreview = false;
	// The messages go to the material itself, not to a copy of it. This
	// host always sends them to the material itself.
	bool needsSourceMaterial = false;
	bool canAnimate = false;
	int32_t flags = 0;
};

// The material puts itself into the preview's scene.
struct MatPreviewPrepareScene
{
	// Set by the material once the scene holds it.
	bool scenePrepared = false;
	BaseDocument* doc = nullptr;
	// The materials the preview shows; the material appends what it put
	// on the preview object. The document owns them.
	AtomArray* assignments = nullptr;
	// The preview document takes the path of the material's document, so
	// that relative texture names resolve.
	bool copyDocumentPath = false;
	// The user's object is to stand in for the scene's preview object.
	bool useUserObject = false;
	// The user's object, and the one the scene shows now (null: the scene's
	// own); the material exchanges them when they differ.
	BaseObject* userObject = nullptr;
	BaseObject* shownUserObject = nullptr;
};

// The material adapts the cached scene once it was prepared.
struct MatPreviewModifyCacheScene
{
	BaseDocument* doc = nullptr;
	// The host's preview quality setting.
	int32_t quality = 0;
};

// The material renders the picture into bmp, whose size is the picture's.
struct MatPreviewGenerateImage
{
	BaseDocument* doc = nullptr;
	BaseBitmap* bmp = nullptr;
	BaseThread* thread = nullptr;
	// MATPREVIEW_GENERATE_ flags; 0 asks for nothing.
	int32_t flags = 0;
	// The thumbnail of the editor (small), not of the material manager.
	bool editorPreview = false;
	// Written by the material: a RENDERRESULT_ code.
	int32_t result = 0;
};

// The host's preview records. Previews are made one at a time: whoever
// makes one holds this lock (it may be taken again on the same thread) and
// the document of the preview being made is the current one.
class MaterialPreviewLock
{
public:
	MaterialPreviewLock();

private:
	std::lock_guard<std::recursive_mutex> guard;
};

// The document of the preview being made; null between previews. Read it
// while holding MaterialPreviewLock.
BaseDocument* GetCurrentPreviewDocument();

// How far a preview came, for the caller's message.
enum class MaterialPreviewStep
{
	// Every message was answered: the result code tells the render's end.
	Answered,
	// The material does not draw its own preview.
	NotHandled,
	// The material's plug-in registered no preview scene that could be read.
	NoScene,
	// The material could not put itself into the scene.
	PrepareRefused,
	// The material answered the request for the picture with false.
	GenerateRefused,
};

struct MaterialPreviewResult
{
	MaterialPreviewStep step = MaterialPreviewStep::Answered;
	// The RENDERRESULT_ code of the material's answer; RENDERRESULT_FAILED
	// when the protocol ended before it.
	int32_t result = 0;

	// One line for the user: what came of the preview.
	String describe() const;
};

// The host's preview gui of one material: a copy of the first preview scene
// of the material's plug-in, prepared by the material, kept between
// pictures, and asked for pictures.
class MaterialPreview
{
public:
	struct Settings
	{
		int32_t width = 90;
		int32_t height = 90;
		bool editorPreview = false;
		int32_t quality = 0;
		// Carried to the preview document when the material wants it.
		bool copyDocumentPath = true;
		BaseObject* userObject = nullptr;
		// Breaks the render off; may be null.
		BaseThread* thread = nullptr;
	};

	// material must outlive the preview.
	explicit MaterialPreview(BaseMaterial* material);
	~MaterialPreview();
	MaterialPreview(const MaterialPreview&) = delete;
	MaterialPreview& operator=(const MaterialPreview&) = delete;

	// Asks the material for a picture of settings' size into bmp, preparing
	// the scene first when there is none or the user object changed.
	MaterialPreviewResult generate(BaseBitmap& bmp, const Settings& settings);
	// The material changed: the next picture starts from a fresh scene.
	void invalidate();
	// The cached scene; null before the first picture.
	BaseDocument* GetScene() const { return scene; }

private:
	// A fresh copy of the preview scene, prepared and modified by the
	// material; the step that failed otherwise.
	MaterialPreviewStep makeScene(const Settings& settings);
	// Asks the material to put itself (and settings' user object) into the
	// scene.
	bool prepare(const Settings& settings);

	BaseMaterial* material;
	BaseDocument* scene = nullptr;
	BaseObject* shownUserObject = nullptr;
};
