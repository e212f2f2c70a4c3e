#pragma once

#include "c4d/base_document.h"
#include "c4d/camera_object.h"

#include <memory>

// A view of the editor. The headless host has one, shared by all
// documents; what it shows is the document's active camera, or its own
// editor camera when the document names none.
class BaseDraw
{
public:
	BaseDraw();
	BaseDraw(const BaseDraw&) = delete;
	BaseDraw& operator=(const BaseDraw&) = delete;

	// The object the view renders doc through: its active camera, else the
	// editor camera. Null only without a document.
	BaseObject* GetSceneCamera(const BaseDocument* doc) const;
	// The view's own camera, a camera object in no document, at the origin
	// with the host's camera defaults.
	BaseObject* GetEditorCamera() const { return editorCamera.get(); }

private:
	std::unique_ptr<BaseObject> editorCamera;
};
