#include "c4d/menus.h"
#include "host/module/plugin_start.h"

namespace
{

const char* const NEW_MATERIAL_COMMAND = "PLUGIN_CMD_1024454";
const char* const TONEMAPPING_COMMAND = "PLUGIN_CMD_1023599";

// The sub-menu of the picture viewer that holds the render commands.
BaseContainer renderCommandsMenu()
{
	BaseContainer menu;
	menu.InsData(MENURESOURCE_SUBTITLE, String("Velorn Renderer"));
	for(const char* command : {TONEMAPPING_COMMAND, "PLUGIN_CMD_1023695", "PLUGIN_CMD_1023696", "PLUGIN_CMD_1027825"})
		menu.InsData(MENURESOURCE_COMMAND, String(command));
	return menu;
}

} // namespace

// "New Velorn Material" goes into the material manager's second menu,
// behind its second entry.
void EnhanceMaterialManagerMenu()
{
	BaseContainer* menu = GetMenuResource(String("M_MATERIAL_MANAGER"));
	GeData* second = menu ? menu->GetIndexData(1) : nullptr;
	BaseContainer* sub = second ? second->GetContainerInstance() : nullptr;
	if(!sub || SearchMenuResource(sub, String(NEW_MATERIAL_COMMAND)))
		return;
	sub->InsDataAfter(MENURESOURCE_COMMAND, String(NEW_MATERIAL_COMMAND), sub->GetIndexData(1));
}

// The render commands go into the picture viewer's menu bar as a sub-menu
// behind its View menu, or at the end without one.
void EnhancePictureViewerMenu()
{
	BaseContainer* menu = GetMenuResource(String("M_PICTURE_VIEWER"));
	if(!menu || SearchMenuResource(menu, String(TONEMAPPING_COMMAND)))
		return;
	const GeData* view = SearchMenuResource(menu, String("IDS_OUTWINDOW_VIEW"));
	menu->InsDataAfter(MENURESOURCE_SUBMENU, renderCommandsMenu(), view);
}
