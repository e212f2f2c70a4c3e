#pragma once

#include "c4d/base_container.h"

#include <map>
#include <string>

// The kinds of the entries of a menu container, which are their ids. A
// command's text names the command ("PLUGIN_CMD_" and the id for a plug-in's
// command), a title's text is the name of a resource string, and a sub-menu
// is a container of entries of its own, its title first.
enum
{
	MENURESOURCE_COMMAND = 3,
	MENURESOURCE_SUBTITLE = 4,
	MENURESOURCE_SUBMENU = 5,
};

// The application's main menus by resource name. Plug-ins change them in
// place when they are asked to build their menus. Menus belong to the main
// thread.
class HostMenus
{
public:
	// The host's one set of menus, as the host starts: "M_MATERIAL_MANAGER"
	// and "M_PICTURE_VIEWER", menu bars whose entries are sub-menus.
	static HostMenus& get();

	// The menu of that name, null when the host has none. The pointer stays
	// good until reset.
	BaseContainer* find(const String& name);
	// Puts every menu back as the host starts.
	void reset();

private:
	HostMenus();

	std::map<String, BaseContainer> menus;
};

// HostMenus::find of the host's menus.
BaseContainer* GetMenuResource(const String& name);
// The entry of menu that is a command or title of that text, or the sub-menu
// that holds one at any depth, so that an entry can be inserted behind it;
// null when there is none or menu is null.
const GeData* SearchMenuResource(const BaseContainer* menu, const String& entry);

// The menu as indented text, one entry a line: "command <text>",
// "title <text>", "submenu" with its entries two spaces further in, and
// "entry <id>" for anything else.
std::string MenuOutline(const BaseContainer& menu);
