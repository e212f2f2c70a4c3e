#include "c4d/ge_dialog.h"

#include "c4d/command_runner.h"
#include "c4d/dialog_script.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace
{

enum
{
	ITEM_GROUP = 100,
	ITEM_BOX = 101,
	ITEM_COUNT = 102,
	ITEM_SCALE = 103,
	ITEM_FILE = 104,
	ITEM_CLOSE = 105,
	ITEM_OFF = 106,
};

// A dialog that writes down what the host calls, in order.
class RecordingDialog : public GeDialog
{
public:
	std::vector<std::string> calls;
	int32_t timerMs = 0;
	int32_t refusals = 0;

	bool CreateLayout() override
	{
		calls.push_back("layout");
		SetTitle(String("Recorder"));
		GroupBegin(ITEM_GROUP, BFH_SCALEFIT, 2, 0, String("Values"));
		AddCheckbox(ITEM_BOX, BFH_LEFT, 0, 0, String("Box"));
		AddEditNumberArrows(ITEM_COUNT, BFH_LEFT);
		AddEditNumberArrows(ITEM_SCALE, BFH_LEFT);
		AddFilenameField(ITEM_FILE, BFH_SCALEFIT, 0, 0, String("File"));
		GroupEnd();
		AddButton(ITEM_CLOSE, BFH_LEFT, 0, 0, String("Close"));
		AddButton(ITEM_OFF, BFH_LEFT, 0, 0, String("Off"));
		return true;
	}

	bool InitValues() override
	{
		calls.push_back("init");
		SetInt32(ITEM_COUNT, 5, 1, 10);
		SetFloat(ITEM_SCALE, 0.5, 0.0, 1.0);
		Enable(ITEM_OFF, false);
		if(timerMs)
			SetTimer(timerMs);
		return true;
	}

	bool Command(int32_t id, const BaseContainer& msg) override
	{
		calls.push_back("command " + std::to_string(id) + " " + std::to_string(msg.GetInt32(BFM_ACTION_ID)));
		if(id == ITEM_CLOSE)
			Close();
		return true;
	}

	void Timer(const BaseContainer& msg) override
	{
		calls.push_back(msg.GetId() == BFM_TIMER_MESSAGE ? "timer" : "timer without its message");
	}

	bool AskClose() override
	{
		calls.push_back("ask close");
		return refusals-- > 0;
	}

	int32_t Message(const BaseContainer& msg, BaseContainer& result) override
	{
		if(msg.GetId() == BFM_INPUT && msg.GetInt32(BFM_INPUT_DEVICE) == BFM_INPUT_KEYBOARD)
			calls.push_back("key " + msg.GetString(BFM_INPUT_ASC).GetStdString());
		return GeDialog::Message(msg, result);
	}

	size_t count(const std::string& call) const
	{
		return (size_t)std::count(calls.begin(), calls.end(), call);
	}
};

class DialogTest : public testing::Test
{
protected:
	void SetUp() override { DialogScript::get().clear(); }
	void TearDown() override
	{
		CloseOpenDialogs();
		DialogScript::get().clear();
	}

	std::vector<std::string> notes() const
	{
		std::vector<std::string> out;
		for(const DialogActionRecord& r : DialogScript::get().actionsTaken())
			out.push_back(r.action.describe().GetStdString() + ": " + r.refused.GetStdString());
		return out;
	}
};

TEST_F(DialogTest, ModalDialogRunsItsTimerUntilAButtonClosesIt)
{
	RecordingDialog dlg;
	dlg.timerMs = 5;
	DialogScript::get().pushAction(DialogAction::wait(60));
	DialogScript::get().pushAction(DialogAction::press(ITEM_CLOSE));
	ASSERT_TRUE(dlg.Open(DLG_TYPE_MODAL, 0, 0, 0, 400, 300));

	EXPECT_FALSE(dlg.IsOpen());
	// 60 ms at 5 ms a tick: some ticks, all of them before the press.
	EXPECT_GE(dlg.count("timer"), 3u);
	EXPECT_EQ(dlg.calls.back(), "command 105 105");
	EXPECT_EQ(dlg.GetTimerInterval(), 0);
	EXPECT_EQ(DialogScript::get().pendingActions(), 0u);
	EXPECT_EQ(dlg.GetOpenWidth(), 400);
}

TEST_F(DialogTest, AskCloseDecidesWhetherTheWindowCloses)
{
	RecordingDialog dlg;
	dlg.refusals = 1;
	DialogScript::get().pushAction(DialogAction::close());
	DialogScript::get().pushAction(DialogAction::key(String("x")));
	DialogScript::get().pushAction(DialogAction::close());
	ASSERT_TRUE(dlg.Open(DLG_TYPE_MODAL));

	EXPECT_FALSE(dlg.IsOpen());
	EXPECT_EQ(dlg.calls, (std::vector<std::string>{"layout", "init", "ask close", "key x", "ask close"}));
	EXPECT_EQ(notes(), (std::vector<std::string>{"close: kept open by the dialog", "key x: ", "close: "}));

	// With nothing scripted and no timer, the user can only close it; a
	// dialog that refuses is closed all the same, since nothing could
	// change its mind.
	DialogScript::get().clear();
	RecordingDialog stubborn;
	stubborn.refusals = 100;
	ASSERT_TRUE(stubborn.Open(DLG_TYPE_MODAL));
	EXPECT_FALSE(stubborn.IsOpen());
	EXPECT_EQ(stubborn.count("ask close"), 1u);
	EXPECT_EQ(notes(), (std::vector<std::string>{"close: the script held no more actions"}));
}

TEST_F(DialogTest, ValuesAreHeldInTheirRangesAndImpossibleActionsRefused)
{
	RecordingDialog dlg;
	ASSERT_TRUE(dlg.Open(DLG_TYPE_ASYNC));
	ASSERT_TRUE(dlg.IsOpen());
	int32_t count = 0;
	double scale = 0;

	EXPECT_TRUE(dlg.SetInt32(ITEM_COUNT, 0, 1, 10));
	dlg.GetInt32(ITEM_COUNT, count);
	EXPECT_EQ(count, 1);
	EXPECT_TRUE(dlg.SetFloat(ITEM_SCALE, 7.0, 0.0, 2.0));
	dlg.GetFloat(ITEM_SCALE, scale);
	EXPECT_EQ(scale, 2.0);
	EXPECT_FALSE(dlg.SetInt32(999, 1));

	struct Case
	{
		DialogAction action;
		const char* note;
	};
	const Case cases[] = {
		{DialogAction::set(ITEM_COUNT, String("256")), ""},
		{DialogAction::set(ITEM_SCALE, String("-4")), ""},
		{DialogAction::set(ITEM_BOX, String("on")), ""},
		{DialogAction::set(ITEM_FILE, String("/tmp/x.jpg")), ""},
		{DialogAction::set(ITEM_COUNT, String("many")), "\"many\" is not a whole number"},
		{DialogAction::set(ITEM_BOX, String("maybe")), "\"maybe\" is not on or off"},
		{DialogAction::set(99, String("1")), "no item 99"},
		{DialogAction::press(ITEM_OFF), "item 106 is disabled"},
		{DialogAction::press(ITEM_BOX), "item 101 is no button"},
		{DialogAction::set(ITEM_GROUP, String("1")), "item 100 takes no value"},
	};
	for(const Case& c : cases)
		DialogScript::get().pushAction(c.action);
	RunOpenDialogs();

	const std::vector<DialogActionRecord> taken = DialogScript::get().actionsTaken();
	ASSERT_EQ(taken.size(), std::size(cases));
	for(size_t i = 0; i < taken.size(); ++i)
	{
		SCOPED_TRACE(cases[i].action.describe().GetStdString());
		EXPECT_EQ(taken[i].refused.GetStdString(), cases[i].note);
		EXPECT_EQ(taken[i].dialog.GetStdString(), "Recorder");
	}
	dlg.GetInt32(ITEM_COUNT, count);
	EXPECT_EQ(count, 10);
	dlg.GetFloat(ITEM_SCALE, scale);
	EXPECT_EQ(scale, 0.0);
	bool box = false;
	EXPECT_TRUE(dlg.GetBool(ITEM_BOX, box));
	EXPECT_TRUE(box);
	Filename file;
	dlg.GetFilename(ITEM_FILE, file);
	EXPECT_EQ(file.GetString().GetStdString(), "/tmp/x.jpg");
	// Only the values taken reached Command; nothing reached the disabled button.
	EXPECT_EQ(dlg.count("command 102 102"), 1u);
	EXPECT_EQ(dlg.count("command 106 106"), 0u);
	// The asynchronous dialog stays open when the loop has nothing to do.
	EXPECT_TRUE(dlg.IsOpen());
}

TEST_F(DialogTest, LayoutIsRecordedWithGroupsAndLabels)
{
	RecordingDialog dlg;
	ASSERT_TRUE(dlg.Open(DLG_TYPE_ASYNC));
	const DialogItem* group = dlg.FindItem(ITEM_GROUP);
	ASSERT_NE(group, nullptr);
	EXPECT_EQ(group->kind, DialogItem::Kind::Group);
	EXPECT_EQ(group->label.GetStdString(), "Values");
	EXPECT_EQ(dlg.FindItem(ITEM_FILE)->parent, ITEM_GROUP);
	EXPECT_EQ(dlg.FindItem(ITEM_FILE)->kind, DialogItem::Kind::Filename);
	EXPECT_EQ(dlg.FindItem(ITEM_CLOSE)->parent, 0);
	// Opening again brings it to the front without building it anew.
	ASSERT_TRUE(dlg.Open(DLG_TYPE_ASYNC));
	EXPECT_EQ(dlg.count("layout"), 1u);
	ASSERT_EQ(OpenDialogs().size(), 1u);
}

TEST_F(DialogTest, AsynchronousDialogsRunWhileTheirTimerDoes)
{
	RecordingDialog first, second;
	second.timerMs = 2;
	ASSERT_TRUE(first.Open(DLG_TYPE_ASYNC));
	ASSERT_TRUE(second.Open(DLG_TYPE_ASYNC));
	// Actions go to the dialog in front, the last opened.
	DialogScript::get().pushAction(DialogAction::key(String("q")));
	RunOpenDialogs(20);
	EXPECT_EQ(second.count("key q"), 1u);
	EXPECT_EQ(first.count("key q"), 0u);
	EXPECT_GE(second.count("timer"), 2u);
	EXPECT_TRUE(second.IsOpen());

	CloseOpenDialogs();
	EXPECT_FALSE(first.IsOpen());
	EXPECT_FALSE(second.IsOpen());
	EXPECT_TRUE(OpenDialogs().empty());
}

class StateCommand : public CommandData
{
public:
	explicit StateCommand(int32_t state_, bool result_ = true) : state(state_), result(result_) {}
	int32_t GetState(BaseDocument*) override { return state; }
	bool Execute(BaseDocument*) override
	{
		++runs;
		return result;
	}
	int32_t state;
	bool result;
	int runs = 0;
};

TEST(CommandRunner, RunsOnlyEnabledCommands)
{
	struct Case
	{
		int32_t state;
		bool result;
		COMMANDRESULT expected;
		int runs;
	};
	const Case cases[] = {
		{0, true, COMMANDRESULT::DISABLED, 0},
		{CMD_VALUE, true, COMMANDRESULT::DISABLED, 0},
		{CMD_ENABLED, true, COMMANDRESULT::OK, 1},
		{CMD_ENABLED | CMD_VALUE, true, COMMANDRESULT::OK, 1},
		{CMD_ENABLED, false, COMMANDRESULT::FAILED, 1},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.state);
		auto command = std::make_shared<StateCommand>(c.state, c.result);
		PluginRecord record;
		record.command = command;
		EXPECT_EQ(RunCommand(record, nullptr), c.expected);
		EXPECT_EQ(command->runs, c.runs);
	}
	// A command that says nothing of its state is enabled.
	CommandData plain;
	EXPECT_EQ(plain.GetState(nullptr), CMD_ENABLED);
}

} // namespace
