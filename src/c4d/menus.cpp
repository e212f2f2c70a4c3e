#include "c4d/menus.h"

#include <initializer_list>

namespace
{

BaseContainer subMenu(const char* title, std::initializer_list<const char*> commands)
{
	BaseContainer menu;
	menu.InsData(MENURESOURCE_SUBTITLE, title);
	for(const char* command : commands)
		menu.InsData(MENURESOURCE_COMMAND, command);
	return menu;
}

BaseContainer menuBar(std::initializer_list<BaseContainer> menus)
{
	BaseContainer bar;
	for(const BaseContainer& menu : menus)
		bar.InsData(MENURESOURCE_SUBMENU, menu);
	return bar;
}

// The menus of a host that has just started. Plug-ins find the places of
// their entries by text and by index, so the order is part of the menus.
std::map<String, BaseContainer> startMenus()
{
	return {
		{"M_MATERIAL_MANAGER", menuBar({
			subMenu("IDS_MATERIAL_FILE", {"IDM_LOAD_MATERIALS", "IDM_SAVE_MATERIALS"}),
			subMenu("IDS_MATERIAL_CREATE", {"IDM_NEW_MATERIAL", "IDM_NEW_SHADER"}),
			subMenu("IDS_MATERIAL_EDIT", {"IDM_COPY", "IDM_PASTE", "IDM_DELETE"}),
		})},
		{"M_PICTURE_VIEWER", menuBar({
			subMenu("IDS_OUTWINDOW_FILE", {"IDM_OPEN_PICTURE", "IDM_SAVE_PICTURE"}),
			subMenu("IDS_OUTWINDOW_EDIT", {"IDM_COPY"}),
			subMenu("IDS_OUTWINDOW_VIEW", {"IDM_ZOOM_IN", "IDM_ZOOM_OUT"}),
		})},
	};
}

bool holdsEntry(const GeData& data, const String& entry)
{
	if(const BaseContainer* sub = data.GetContainer())
		return SearchMenuResource(sub, entry) != nullptr;
	return data.GetType() == DA_STRING && data.GetString() == entry;
}

void outline(const BaseContainer& menu, const std::string& indent, std::string& out)
{
	for(const BaseContainer::Entry& e : menu)
	{
		out += indent;
		switch(e.first)
		{
		case MENURESOURCE_COMMAND: out += "command " + e.second.GetString().GetStdString() + "\n"; break;
		case MENURESOURCE_SUBTITLE: out += "title " + e.second.GetString().GetStdString() + "\n"; break;
		case MENURESOURCE_SUBMENU:
			out += "submenu\n";
			if(const BaseContainer* sub = e.second.GetContainer())
				outline(*sub, indent + "  ", out);
			break;
		default: out += "entry " + std::to_string(e.first) + "\n";
		}
	}
}

} // namespace

HostMenus& HostMenus::get()
{
	static HostMenus host_menus;
	return host_menus;
}

HostMenus::HostMenus() : menus(startMenus())
{
}

BaseContainer* HostMenus::find(const String& name)
{
	const auto found = menus.find(name);
	return found == menus.end() ? nullptr : &found->second;
}

void HostMenus::reset()
{
	menus = startMenus();
}

BaseContainer* GetMenuResource(const String& name)
{
	return HostMenus::get().find(name);
}

const GeData* SearchMenuResource(const BaseContainer* menu, const String& entry)
{
	if(!menu)
		return nullptr;
	for(const BaseContainer::Entry& e : *menu)
		if(holdsEntry(e.second, entry))
			return &e.second;
	return nullptr;
}

std::string MenuOutline(const BaseContainer& menu)
{
	std::string out;
	outline(menu, "", out);
	return out;
}
