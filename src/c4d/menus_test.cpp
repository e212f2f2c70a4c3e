#include "c4d/menus.h"

#include <gtest/gtest.h>

namespace
{

const char* const picture_viewer_outline = "submenu\n"
										   "  title IDS_OUTWINDOW_FILE\n"
										   "  command IDM_OPEN_PICTURE\n"
										   "  command IDM_SAVE_PICTURE\n"
										   "submenu\n"
										   "  title IDS_OUTWINDOW_EDIT\n"
										   "  command IDM_COPY\n"
										   "submenu\n"
										   "  title IDS_OUTWINDOW_VIEW\n"
										   "  command IDM_ZOOM_IN\n"
										   "  command IDM_ZOOM_OUT\n";

} // namespace

TEST(HostMenus, SearchFindsTheEntryOfTheMenuThatHoldsTheText)
{
	HostMenus::get().reset();
	EXPECT_EQ(GetMenuResource("M_NOT_A_MENU"), nullptr);
	const BaseContainer* viewer = GetMenuResource("M_PICTURE_VIEWER");
	ASSERT_NE(viewer, nullptr);
	EXPECT_EQ(MenuOutline(*viewer), picture_viewer_outline);

	// A title or command inside a sub-menu gives the sub-menu's entry.
	EXPECT_EQ(SearchMenuResource(viewer, "IDS_OUTWINDOW_VIEW"), viewer->GetIndexData(2));
	EXPECT_EQ(SearchMenuResource(viewer, "IDM_COPY"), viewer->GetIndexData(1));
	const BaseContainer* file = viewer->GetIndexData(0)->GetContainer();
	EXPECT_EQ(SearchMenuResource(file, "IDM_SAVE_PICTURE"), file->GetIndexData(2));
	EXPECT_EQ(SearchMenuResource(viewer, "PLUGIN_CMD_1023599"), nullptr);
	EXPECT_EQ(SearchMenuResource(nullptr, "IDM_COPY"), nullptr);

	// At any depth.
	BaseContainer inner;
	inner.InsData(MENURESOURCE_COMMAND, "IDM_DEEP");
	BaseContainer middle;
	middle.InsData(MENURESOURCE_SUBTITLE, "IDS_MIDDLE");
	middle.InsData(MENURESOURCE_SUBMENU, inner);
	BaseContainer top;
	top.InsData(MENURESOURCE_COMMAND, "IDM_TOP");
	top.InsData(MENURESOURCE_SUBMENU, middle);
	top.InsData(7, 1);
	EXPECT_EQ(SearchMenuResource(&top, "IDM_DEEP"), top.GetIndexData(1));
	EXPECT_EQ(SearchMenuResource(&top, "IDM_TOP"), top.GetIndexData(0));
	EXPECT_EQ(MenuOutline(top), "command IDM_TOP\nsubmenu\n  title IDS_MIDDLE\n  submenu\n    command IDM_DEEP\nentry 7\n");
}

TEST(HostMenus, PlugInsChangeTheHostsMenusInPlaceUntilReset)
{
	HostMenus::get().reset();
	BaseContainer* manager = GetMenuResource("M_MATERIAL_MANAGER");
	BaseContainer* viewer = GetMenuResource("M_PICTURE_VIEWER");
	ASSERT_NE(manager, nullptr);
	ASSERT_NE(viewer, nullptr);
	const BaseContainer manager_before = *manager;

	// A command behind the entry at index 1 of the manager's sub-menu 1, and
	// a sub-menu of commands behind the viewer's "IDS_OUTWINDOW_VIEW".
	BaseContainer* create = manager->GetIndexData(1)->GetContainerInstance();
	ASSERT_NE(create, nullptr);
	create->InsDataAfter(MENURESOURCE_COMMAND, "PLUGIN_CMD_1024454", create->GetIndexData(1));
	BaseContainer velorn;
	velorn.InsData(MENURESOURCE_SUBTITLE, "Velorn Renderer");
	velorn.InsData(MENURESOURCE_COMMAND, "PLUGIN_CMD_1023599");
	viewer->InsDataAfter(MENURESOURCE_SUBMENU, velorn, SearchMenuResource(viewer, "IDS_OUTWINDOW_VIEW"));

	EXPECT_EQ(GetMenuResource("M_MATERIAL_MANAGER"), manager);
	EXPECT_EQ(MenuOutline(*manager), "submenu\n"
									 "  title IDS_MATERIAL_FILE\n"
									 "  command IDM_LOAD_MATERIALS\n"
									 "  command IDM_SAVE_MATERIALS\n"
									 "submenu\n"
									 "  title IDS_MATERIAL_CREATE\n"
									 "  command IDM_NEW_MATERIAL\n"
									 "  command PLUGIN_CMD_1024454\n"
									 "  command IDM_NEW_SHADER\n"
									 "submenu\n"
									 "  title IDS_MATERIAL_EDIT\n"
									 "  command IDM_COPY\n"
									 "  command IDM_PASTE\n"
									 "  command IDM_DELETE\n");
	EXPECT_EQ(MenuOutline(*GetMenuResource("M_PICTURE_VIEWER")), std::string(picture_viewer_outline) +
																	 "submenu\n"
																	 "  title Velorn Renderer\n"
																	 "  command PLUGIN_CMD_1023599\n");
	EXPECT_EQ(SearchMenuResource(manager, "PLUGIN_CMD_1024454"), manager->GetIndexData(1));
	// A copy taken before keeps the menu as it was.
	EXPECT_EQ(SearchMenuResource(&manager_before, "PLUGIN_CMD_1024454"), nullptr);

	HostMenus::get().reset();
	EXPECT_EQ(*GetMenuResource("M_MATERIAL_MANAGER"), manager_before);
	EXPECT_EQ(MenuOutline(*GetMenuResource("M_PICTURE_VIEWER")), picture_viewer_outline);
}
