#include "materials/convert_command.h"

#include "c4d/atom_array.h"
#include "c4d/base_document.h"
#include "c4d/console.h"
#include "c4d/events.h"
#include "c4d/plugin_registry.h"
#include "c4d/texture_tag.h"
#include "host/plugin_ids.h"
#include "host/registration.h"
#include "materials/material_conversion.h"

#include <vector>

namespace
{

enum
{
	ID_CONVERT_MATERIALS = 1021852,
	CONVERT_MATERIALS_NAME_STRING = 10010,
};

// The layer that keeps the replaced materials, so that the user can still
// find (and delete) them.
const char* const OLD_MATERIALS_LAYER = "Old Materials";

LayerObject* findTopLevelLayer(BaseDocument& doc, const String& name)
{
	for(GeListNode* node = doc.GetLayerObjectRoot()->GetFirst(); node; node = node->GetNext())
		if(static_cast<LayerObject*>(node)->GetName() == name)
			return static_cast<LayerObject*>(node);
	return nullptr;
}

// The texture tags of op, its children and its following siblings: each
// object's tags first, then its children, then the next object.
void gatherTextureTags(BaseObject* op, std::vector<TextureTag*>& tags)
{
	for(; op; op = op->GetNext())
	{
		for(BaseTag* tag = op->GetFirstTag(); tag; tag = tag->GetNext())
			if(tag->GetType() == Ttexture)
				tags.push_back(static_cast<TextureTag*>(tag));
		gatherTextureTags(op->GetDown(), tags);
	}
}

// The materials to convert: the selected ones when there are any and the
// user wants only those, all of the document otherwise.
void materialsToConvert(BaseDocument& doc, AtomArray& list)
{
	doc.GetActiveMaterials(list);
	if(list.GetCount() > 0 && QuestionDialog(String("Convert only selected materials?")))
		return;
	list.Flush();
	for(BaseMaterial* mat = doc.GetFirstMaterial(); mat; mat = mat->GetNext())
		list.Append(mat);
}

class ConvertMaterialsCommand : public CommandData
{
public:
	bool Execute(BaseDocument* doc) override
	{
		if(!doc)
			return false;
		AtomArray list;
		materialsToConvert(*doc, list);
		if(list.GetCount() == 0)
			return true;

		const String layerName(OLD_MATERIALS_LAYER);
		LayerObject* layer = findTopLevelLayer(*doc, layerName);
		LayerObject* newLayer = nullptr;
		if(!layer)
		{
			layer = newLayer = LayerObject::Alloc();
			if(!layer)
				return false;
			layer->SetName(layerName);
		}

		doc->StartUndo();
		if(newLayer)
		{
			doc->GetLayerObjectRoot()->InsertLast(newLayer);
			doc->AddUndo(UNDOTYPE_NEW, newLayer);
		}

		std::vector<TextureTag*> tags;
		gatherTextureTags(doc->GetFirstObject(), tags);

		// From the last to the first: each new material goes to the front of
		// the list, so the new ones keep the order of the old ones.
		for(int32_t i = list.GetCount() - 1; i >= 0; --i)
		{
			BaseMaterial* old = static_cast<BaseMaterial*>(list.GetIndex(i));
			BaseMaterial* mat = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
			if(!mat)
				continue;
			doc->InsertMaterial(mat);
			doc->AddUndo(UNDOTYPE_NEW, mat);
			doc->AddUndo(UNDOTYPE_CHANGE, old);
			old->SetLayerObject(layer);
			// Without the plug-in's data the new material keeps its defaults.
			if(mat->GetNodeData())
				convertMaterial(old, mat);
			for(TextureTag* tag : tags)
			{
				if(tag->GetMaterial() != old)
					continue;
				doc->AddUndo(UNDOTYPE_CHANGE, tag);
				tag->SetMaterial(mat);
				tag->SetDirty(DIRTYFLAGS_DATA);
			}
		}

		doc->EndUndo();
		EventAdd();
		return true;
	}
};

} // namespace

bool RegisterConvertMaterialsCommand()
{
	return registerNamed(CONVERT_MATERIALS_NAME_STRING, [](const String& name) {
		return RegisterCommandPlugin(ID_CONVERT_MATERIALS, name, 0, moduleResourceFile("ConvertMats.tif"),
			String("Convert Materials"), new ConvertMaterialsCommand());
	});
}
