// The headless host's gadgets of choice and colour, groups rebuilt at run
// time, and user areas with their timers, core messages and pictures.
#include "c4d/events.h"
#include "c4d/ge_dialog.h"
#include "c4d/ge_user_area.h"
#include "c4d/picture_test_helpers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

// A user area that writes down what the host calls and draws itself red.
class RecordingArea : public GeUserArea
{
public:
	std::vector<std::string> calls;

	bool GetMinSize(int32_t& w, int32_t& h) override
	{
		w = 4;
		h = 3;
		return true;
	}
	void Sized(int32_t w, int32_t h) override { calls.push_back("sized " + std::to_string(w) + "x" + std::to_string(h)); }
	void DrawMsg(int32_t, int32_t, int32_t x2, int32_t y2, const BaseContainer&) override
	{
		calls.push_back("draw to " + std::to_string(x2) + "," + std::to_string(y2));
		DrawSetPen(Vector(1, 0, 0));
		DrawRectangle(0, 0, GetWidth() - 1, GetHeight() - 1);
	}
	void Timer(const BaseContainer&) override { calls.push_back("timer"); }
	bool CoreMessage(int32_t id, const BaseContainer&) override
	{
		calls.push_back("core " + std::to_string(id));
		return true;
	}
	int32_t Message(const BaseContainer& msg, BaseContainer& result) override
	{
		if(msg.GetId() == BFM_DESTROY)
			calls.push_back("destroy");
		return GeUserArea::Message(msg, result);
	}
};

class ChoiceDialog : public GeDialog
{
public:
	RecordingArea area;
	int32_t rows = 2;
	std::vector<std::string> core;

	bool CreateLayout() override
	{
		AddRadioGroup(10, BFH_LEFT);
		AddChild(10, 11, String("One"));
		AddChild(10, 12, String("Two"));
		AddComboBox(20, BFH_LEFT);
		AddChild(20, 0, String("None"));
		AddChild(20, 7, String("Seven"));
		AddColorField(30, BFH_LEFT);
		GroupBegin(40, BFH_LEFT, 1, 0, String("Rows"));
		GroupEnd();
		AddUserArea(50, BFH_LEFT);
		AttachUserArea(area, 50);
		fillRows();
		return true;
	}
	void fillRows()
	{
		LayoutFlushGroup(40);
		GroupBegin(41, BFH_LEFT, 1, 0, String());
		for(int32_t i = 0; i < rows; ++i)
			AddCheckbox(100 + i, BFH_LEFT, 0, 0, String("Row"));
		GroupEnd();
		LayoutChanged(40);
	}
	bool CoreMessage(int32_t id, const BaseContainer&) override
	{
		core.push_back(std::to_string(id));
		return true;
	}
};

std::string take(GeDialog& dialog, int32_t id, const char* value)
{
	return dialog.TakeAction(DialogAction::set(id, String(value))).GetStdString();
}

TEST(DialogGadgets, ChoicesColoursAndRebuiltGroups)
{
	ChoiceDialog dialog;
	ASSERT_TRUE(dialog.Open(DLG_TYPE_ASYNC));
	EXPECT_FALSE(dialog.AddChild(10, 11, String("again")));
	EXPECT_FALSE(dialog.AddChild(30, 1, String("no list")));
	EXPECT_EQ(take(dialog, 10, "12"), "");
	int32_t value = 0;
	EXPECT_TRUE(dialog.GetInt32(10, value));
	EXPECT_EQ(value, 12);
	EXPECT_EQ(take(dialog, 10, "13"), "item 10 has no entry \"13\"");
	EXPECT_EQ(take(dialog, 20, "7"), "");
	EXPECT_TRUE(dialog.FreeChildren(20));
	EXPECT_EQ(take(dialog, 20, "7"), "item 20 has no entry \"7\"");

	// The brightness is held at the field's maximum, 5.
	EXPECT_TRUE(dialog.SetColorField(30, Vector(0.5, 0.25, 1), 2.5, 5.0));
	Vector colour;
	double brightness = 0;
	EXPECT_EQ(take(dialog, 30, "1,0,0,7"), "");
	EXPECT_TRUE(dialog.GetColorField(30, colour, brightness));
	EXPECT_EQ(colour, Vector(1, 0, 0));
	EXPECT_EQ(brightness, 5.0);
	EXPECT_EQ(take(dialog, 30, "0,1,0"), "");
	EXPECT_TRUE(dialog.GetColorField(30, colour, brightness));
	EXPECT_EQ(brightness, 5.0);
	EXPECT_EQ(take(dialog, 30, "red"), "\"red\" is not r,g,b or r,g,b,brightness");

	// A flushed group loses its items, nested ones too, and takes new ones;
	// the items after it stay.
	EXPECT_NE(dialog.FindItem(101), nullptr);
	dialog.rows = 1;
	dialog.fillRows();
	EXPECT_EQ(dialog.FindItem(101), nullptr);
	ASSERT_NE(dialog.FindItem(100), nullptr);
	EXPECT_EQ(dialog.FindItem(100)->parent, 41);
	EXPECT_EQ(dialog.FindItem(41)->parent, 40);
	EXPECT_NE(dialog.FindItem(50), nullptr);
	EXPECT_EQ(dialog.GetLayoutChanges(), 2);
	// The next item goes to the top again.
	EXPECT_TRUE(dialog.AddButton(60, BFH_LEFT, 0, 0, String("Top")));
	EXPECT_EQ(dialog.FindItem(60)->parent, 0);
	dialog.Close();
}

TEST(DialogGadgets, UserAreasDrawRunTimersAndHearCoreMessages)
{
	DialogScript::get().clear();
	// A change that an earlier test left pending is not this test's.
	TakeChangeEvent();
	ChoiceDialog dialog;
	ASSERT_TRUE(dialog.Open(DLG_TYPE_ASYNC));
	RecordingArea& area = dialog.area;
	// Attached at the size it asked for, then drawn.
	EXPECT_EQ(area.GetDialog(), &dialog);
	EXPECT_EQ(area.calls, (std::vector<std::string>{"sized 4x3", "draw to 4,3"}));
	EXPECT_EQ(pixelOf(area.GetCanvas(), 3, 2), (Rgb{255, 0, 0}));
	area.resize(4, 3);
	EXPECT_EQ(area.calls.size(), 2u);
	area.resize(6, 2);
	EXPECT_EQ(area.calls.back(), "draw to 6,2");
	EXPECT_EQ(area.GetCanvas().GetBw(), 6);

	// The loop runs the area's timer through its Message, at most once a
	// period: the system's timer may be coarser than 10 ms (Windows steps
	// by about 15.6 ms), so only a floor and a ceiling are certain.
	area.calls.clear();
	area.SetTimer(10);
	RunOpenDialogs(100);
	const auto ticks = std::count(area.calls.begin(), area.calls.end(), "timer");
	EXPECT_GE(ticks, 2);
	EXPECT_LE(ticks, 10);

	// EventAdd reaches the open dialog and its areas once, as EVMSG_CHANGE.
	area.calls.clear();
	dialog.core.clear();
	EventAdd();
	EventAdd();
	area.SetTimer(0);
	RunOpenDialogs(5);
	EXPECT_EQ(dialog.core, std::vector<std::string>{"604"});
	EXPECT_EQ(area.calls, std::vector<std::string>{"core 604"});

	// Closing tells the areas, once.
	dialog.Close();
	dialog.Close();
	EXPECT_EQ(area.calls.back(), "destroy");
	EXPECT_EQ(std::count(area.calls.begin(), area.calls.end(), "destroy"), 1);
}

} // namespace
