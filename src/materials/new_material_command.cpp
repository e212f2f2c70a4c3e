#include "materials/new_material_command.h"

#include "c4d/base_document.h"
#include "c4d/events.h"
#include "c4d/plugin_registry.h"
#include "host/plugin_ids.h"
#include "host/registration.h"

namespace
{

enum
{
	ID_NEW_MATERIAL = 1024454,
	NEW_MATERIAL_NAME_STRING = 10024,
	// Shown in the material manager's menu rather than the plug-in menu.
	PLUGINFLAG_HIDEPLUGINMENU = 0x10000000,
};

class NewMaterialCommand : public CommandData
{
public:
	bool Execute(BaseDocument* doc) override
	{
		if(!doc)
			return false;
		BaseMaterial* mat = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
		if(!mat)
			return false;
		// As the material manager names a new material: by its kind.
		if(const PluginRecord* record = PluginRegistry::get().find(ID_VELORN_MATERIAL))
			mat->SetName(record->name);
		doc->StartUndo();
		doc->InsertMaterial(mat);
		doc->AddUndo(UNDOTYPE_NEW, mat);
		doc->EndUndo();
		doc->SetActiveMaterial(mat, SELECTION_NEW);
		EventAdd();
		return true;
	}
};

} // namespace

bool RegisterNewMaterialCommand()
{
	return registerNamed(NEW_MATERIAL_NAME_STRING, [](const String& name) {
		return RegisterCommandPlugin(ID_NEW_MATERIAL, name, PLUGINFLAG_HIDEPLUGINMENU,
			moduleResourceFile("materialhelper.tif"), String("New Velorn Material"), new NewMaterialCommand());
	});
}
