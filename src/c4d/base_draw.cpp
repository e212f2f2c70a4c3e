#include "c4d/base_draw.h"

BaseDraw::BaseDraw() : editorCamera(BaseObject::Alloc(Ocamera))
{
	editorCamera->SetName(String("Editor Camera"));
}

BaseObject* BaseDraw::GetSceneCamera(const BaseDocument* doc) const
{
	if(!doc)
		return nullptr;
	BaseObject* camera = doc->GetActiveCamera();
	return camera ? camera : editorCamera.get();
}

BaseDraw* BaseDocument::GetActiveBaseDraw() const
{
	static BaseDraw view;
	return &view;
}
