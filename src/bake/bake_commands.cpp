#include "bake/bake_commands.h"

#include "bake/bake_dialog.h"
#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/plugin_registry.h"
#include "c4d/texture_tag.h"
#include "host/plugin_ids.h"
#include "host/registration.h"

namespace
{

enum
{
	BAKE_MATERIAL_NAME_STRING = 10022,
	BAKE_UVW_TAG_NAME_STRING = 10023,
};

// Whether tag is a texture tag of the plug-in material on a polygon object.
bool bakeable(BaseTag* tag)
{
	if(!tag || tag->GetType() != Ttexture)
		return false;
	const BaseObject* op = tag->GetObject();
	const BaseMaterial* mat = static_cast<TextureTag*>(tag)->GetMaterial();
	return op && op->GetType() == Opolygon && mat && mat->GetType() == ID_VELORN_MATERIAL;
}

// A command that opens the bake dialog for the tag that find gives; it is
// disabled while find gives none.
class BakeCommand : public CommandData
{
public:
	BakeCommand(int32_t id_, TextureTag* (*find_)(BaseDocument*)) : id(id_), find(find_) {}

	int32_t GetState(BaseDocument* doc) override
	{
		return find(doc) ? CMD_ENABLED : 0;
	}

	bool Execute(BaseDocument* doc) override
	{
		TextureTag* tag = find(doc);
		if(!tag)
			return false;
		// A dialog open for another tag starts over for this one.
		dialog.Close();
		dialog.SetTarget(doc, tag);
		return dialog.Open(DLG_TYPE_ASYNC, id, -1, -1, 0, 0);
	}

private:
	int32_t id;
	TextureTag* (*find)(BaseDocument*);
	BakeDialog dialog;
};

bool registerBakeCommand(int32_t id, int32_t nameId, const char* help, CommandData* (*alloc)())
{
	return registerNamed(nameId, [&](const String& name) {
		return RegisterCommandPlugin(id, name, 0, moduleResourceFile("About.tif"), String(help), alloc());
	});
}

} // namespace

TextureTag* selectedBakeTag(BaseDocument* doc)
{
	BaseTag* tag = doc ? doc->GetActiveTag() : nullptr;
	return bakeable(tag) ? static_cast<TextureTag*>(tag) : nullptr;
}

TextureTag* objectBakeTag(BaseDocument* doc)
{
	BaseObject* op = doc ? doc->GetActiveObject() : nullptr;
	for(BaseTag* tag = op ? op->GetFirstTag() : nullptr; tag; tag = tag->GetNext())
		if(bakeable(tag))
			return static_cast<TextureTag*>(tag);
	return nullptr;
}

CommandData* AllocBakeUVWTagCommand()
{
	return new BakeCommand(ID_BAKE_UVW_TAG_COMMAND, selectedBakeTag);
}

CommandData* AllocBakeMaterialCommand()
{
	return new BakeCommand(ID_BAKE_MATERIAL_COMMAND, objectBakeTag);
}

bool RegisterBakeUVWTagCommand()
{
	return registerBakeCommand(ID_BAKE_UVW_TAG_COMMAND, BAKE_UVW_TAG_NAME_STRING, "Bake UVW Tag of Velorn Material",
		AllocBakeUVWTagCommand);
}

bool RegisterBakeMaterialCommand()
{
	return registerBakeCommand(ID_BAKE_MATERIAL_COMMAND, BAKE_MATERIAL_NAME_STRING, "Bake Material on Object",
		AllocBakeMaterialCommand);
}
