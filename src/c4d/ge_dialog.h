#pragma once

#include "c4d/base_container.h"
#include "c4d/c4d_string.h"
#include "c4d/dialog_script.h"
#include "c4d/filename.h"
#include "c4d/ge_data.h"
#include "c4d/vector_matrix.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <vector>

// How a dialog opens: a modal one holds the caller until it closes; an
// asynchronous one stays open beside the application's other windows.
enum DLG_TYPE
{
	DLG_TYPE_MODAL = 1,
	DLG_TYPE_ASYNC = 2,
};

// Placement flags of dialog items. The headless host records them and lays
// nothing out.
enum
{
	BFH_LEFT = 1 << 0,
	BFH_RIGHT = 1 << 1,
	BFH_CENTER = 1 << 2,
	BFH_SCALEFIT = 1 << 3,
	BFV_TOP = 1 << 4,
	BFV_BOTTOM = 1 << 5,
	BFV_CENTER = 1 << 6,
	BFV_SCALEFIT = 1 << 7,
};

// Border styles of groups and texts; recorded only.
enum
{
	BORDER_NONE = 0,
	BORDER_GROUP_IN = 1,
};

// The messages a dialog gets, and their values. The numbers are this host's
// own.
enum
{
	// Message: user input. BFM_INPUT_DEVICE tells the device, BFM_INPUT_ASC
	// holds the text of the key pressed.
	BFM_INPUT = 1001,
	BFM_INPUT_DEVICE = 1002,
	BFM_INPUT_KEYBOARD = 1003,
	BFM_INPUT_ASC = 1004,
	// The container Command gets: BFM_ACTION_ID is the item, BFM_ACTION_VALUE
	// its new value (absent for a button).
	BFM_ACTION = 1010,
	BFM_ACTION_ID = 1011,
	BFM_ACTION_VALUE = 1012,
	// The container Timer gets; it comes through Message, whose base hands
	// it on to Timer.
	BFM_TIMER_MESSAGE = 1020,
	// A core message of the application (CoreMessage): BFM_CORE_ID holds its
	// id. It comes through Message, whose base hands it on to CoreMessage.
	BFM_CORE_MESSAGE = 1030,
	BFM_CORE_ID = 1031,
	// The dialog's window goes away: its user areas get this message when
	// it closes.
	BFM_DESTROY = 0x64737479,
};

// Core messages: the application's change event, sent after EventAdd.
enum
{
	EVMSG_CHANGE = 604,
};

class GeUserArea;

// The timer of a dialog or a user area: due every interval milliseconds
// once set, counted from the last tick, so that a slow handler makes the
// ticks fewer, never a burst of late ones.
class HostTimer
{
public:
	using Clock = std::chrono::steady_clock;

	// Every ms milliseconds from now on; 0 stops it.
	void set(int32_t ms);
	int32_t interval() const { return intervalMs; }
	bool due(Clock::time_point now) const { return intervalMs > 0 && now >= nextTick; }
	Clock::time_point next() const { return nextTick; }
	// Counts the next tick from now.
	void restart();

private:
	int32_t intervalMs = 0;
	Clock::time_point nextTick;
};

// One item of a dialog's layout.
struct DialogItem
{
	enum class Kind
	{
		Group,
		StaticText,
		CheckBox,
		Number,   // an integer or real field; SetInt32 or SetFloat decides which
		Text,     // a line of text
		Filename, // a file name with its text field
		Button,
		RadioGroup, // one of its children chosen; the value is the child's id
		ComboBox,   // the same as a drop-down list
		ColorField, // a colour and its brightness
		UserArea,   // a picture drawn by a GeUserArea
	};
	Kind kind = Kind::StaticText;
	int32_t id = 0;
	// The text shown: a group's title, a text's or button's or check box's label.
	String label;
	// The group the item sits in; 0 at the top.
	int32_t parent = 0;
	int32_t flags = 0;
	int32_t width = 0;
	int32_t height = 0;
	// Groups: the columns and rows asked for.
	int32_t columns = 0;
	int32_t rows = 0;
	bool enabled = true;
	GeData value;
	// The range of a number field; values set are held inside it.
	double min = std::numeric_limits<int32_t>::min();
	double max = std::numeric_limits<int32_t>::max();
	// A slider's range and the step of its arrows; the slider may cover
	// less than the range a typed value is held in.
	double sliderMin = 0;
	double sliderMax = 0;
	double step = 1;
	// The entries of a radio group or combo box: id and text.
	std::vector<std::pair<int32_t, String>> children;
	// A colour field's brightness (its colour is the value) and the largest
	// brightness it takes.
	double brightness = 1;
	double maxBrightness = 1;

	bool hasChild(int32_t childId) const;
};

// A dialog of the application, headless: nothing is drawn, but the layout
// is recorded item by item, and InitValues, Command, Timer, AskClose and
// Message run as in the application, driven by the host's dialog loop. The
// loop takes the user's actions from the dialog script (dialog_script.h) and
// feeds the timer at its interval, really sleeping between ticks.
//
// Dialogs live on the host's main thread; none of this locks.
class GeDialog
{
public:
	GeDialog() = default;
	virtual ~GeDialog();
	GeDialog(const GeDialog&) = delete;
	GeDialog& operator=(const GeDialog&) = delete;

	// Builds the layout through the Add calls below; false refuses to open.
	virtual bool CreateLayout();
	// Fills the items when the dialog opens.
	virtual bool InitValues();
	// An item was changed or pressed: msg holds BFM_ACTION_ID and, for a
	// changed value, BFM_ACTION_VALUE.
	virtual bool Command(int32_t id, const BaseContainer& msg);
	// Called at the interval of SetTimer while the dialog is open.
	virtual void Timer(const BaseContainer& msg);
	// The user wants to close the dialog: true keeps it open.
	virtual bool AskClose();
	// Every other message, such as a key (BFM_INPUT), the timer's and core
	// messages; 0 when not handled. The base hands BFM_TIMER_MESSAGE to
	// Timer and BFM_CORE_MESSAGE to CoreMessage, so an override passes what
	// it does not take on to the base.
	virtual int32_t Message(const BaseContainer& msg, BaseContainer& result);
	// A core message of the application, such as EVMSG_CHANGE.
	virtual bool CoreMessage(int32_t id, const BaseContainer& msg);

	// Opens the dialog: the layout is built anew, then InitValues runs. A
	// modal dialog returns when it has closed; the host's dialog loop runs it
	// meanwhile. An asynchronous one returns at once and is run by
	// RunOpenDialogs; opening it when it is open only brings it to the front.
	// False when CreateLayout refuses.
	bool Open(DLG_TYPE type, int32_t pluginid = 0, int32_t xpos = -1, int32_t ypos = -1, int32_t defaultw = 0,
		int32_t defaulth = 0);
	// Opens the dialog as the layout the user saved had it: asynchronous.
	bool RestoreLayout(int32_t pluginid, void* secret);
	// Closes the dialog without asking; its timer stops.
	bool Close();
	bool IsOpen() const { return open; }
	bool IsModal() const { return modal; }

	void SetTitle(const String& title_) { title = title_; }
	const String& GetTitle() const { return title; }
	// The position and size asked for by Open.
	int32_t GetOpenWidth() const { return openWidth; }
	int32_t GetOpenHeight() const { return openHeight; }

	// Timer calls every ms milliseconds from now on; 0 stops them.
	void SetTimer(int32_t ms);
	int32_t GetTimerInterval() const { return timer.interval(); }

	// Layout. Groups nest: the items between GroupBegin and GroupEnd are in it.
	bool GroupBegin(int32_t id, int32_t flags, int32_t cols, int32_t rows, const String& title_, int32_t groupflags = 0);
	bool GroupEnd();
	bool AddStaticText(int32_t id, int32_t flags, int32_t w, int32_t h, const String& name, int32_t borderstyle = 0);
	bool AddCheckbox(int32_t id, int32_t flags, int32_t w, int32_t h, const String& name);
	bool AddEditNumberArrows(int32_t id, int32_t flags, int32_t w = 0, int32_t h = 0);
	bool AddEditText(int32_t id, int32_t flags, int32_t w = 0, int32_t h = 0);
	// A file name field with the label name.
	bool AddFilenameField(int32_t id, int32_t flags, int32_t w, int32_t h, const String& name);
	bool AddButton(int32_t id, int32_t flags, int32_t w, int32_t h, const String& name);
	// A real or integer field with a slider; SetFloat gives both ranges.
	bool AddEditSlider(int32_t id, int32_t flags, int32_t w = 0, int32_t h = 0);
	bool AddRadioGroup(int32_t id, int32_t flags, int32_t columns = 1, int32_t rows = 0);
	bool AddComboBox(int32_t id, int32_t flags, int32_t w = 0, int32_t h = 0);
	// An entry of a radio group or combo box; false for any other item or
	// an entry id it has already.
	bool AddChild(int32_t id, int32_t subid, const String& child);
	bool FreeChildren(int32_t id);
	bool AddColorField(int32_t id, int32_t flags, int32_t w = 0, int32_t h = 0);
	// A place for a user area of w by h pixels (0: its GetMinSize).
	bool AddUserArea(int32_t id, int32_t flags, int32_t w = 0, int32_t h = 0);
	// Hands the place id to ua, which draws it from now on; the area gets
	// Init, then its size (Sized) and a first DrawMsg.
	bool AttachUserArea(GeUserArea& ua, int32_t id, int32_t userareaflags = 0);

	// Empties the group id and makes it the place where the next items go;
	// LayoutChanged ends the rebuild.
	bool LayoutFlushGroup(int32_t id);
	// The group id was rebuilt: the next items go to the top again.
	bool LayoutChanged(int32_t id);
	// How many times the layout was rebuilt since the dialog opened.
	int32_t GetLayoutChanges() const { return layoutChanges; }

	// Items: each call is false when the dialog has no item id.
	bool Enable(int32_t id, bool enabled);
	bool IsEnabled(int32_t id) const;
	bool SetBool(int32_t id, bool value);
	bool GetBool(int32_t id, bool& value) const;
	// The field takes the range [min, max] and value held inside it, as the
	// application holds what the user types.
	bool SetInt32(int32_t id, int32_t value, int32_t min = std::numeric_limits<int32_t>::min(),
		int32_t max = std::numeric_limits<int32_t>::max());
	bool GetInt32(int32_t id, int32_t& value) const;
	// A slider shows min to max in steps of step; min2 and max2, when they
	// are not both 0, are the range a typed value is held in instead.
	bool SetFloat(int32_t id, double value, double min = -std::numeric_limits<double>::max(),
		double max = std::numeric_limits<double>::max(), double step = 1, double min2 = 0, double max2 = 0);
	bool GetFloat(int32_t id, double& value) const;
	bool SetString(int32_t id, const String& value);
	bool GetString(int32_t id, String& value) const;
	bool SetFilename(int32_t id, const Filename& value);
	bool GetFilename(int32_t id, Filename& value) const;
	// The brightness is held in [0, maxbrightness]; flags are recorded only.
	bool SetColorField(int32_t id, const Vector& color, double brightness, double maxbrightness, int32_t flags = 0);
	bool GetColorField(int32_t id, Vector& color, double& brightness) const;

	// The layout in the order it was built.
	const std::vector<DialogItem>& GetItems() const { return items; }
	// The item id; null when there is none.
	const DialogItem* FindItem(int32_t id) const;

	// What the host's dialog loop does with one action of the user: empty
	// when the dialog took it as asked, otherwise what happened instead
	// ("no item 99", "item 10002 is disabled", "kept open by the dialog").
	String TakeAction(const DialogAction& action);

	// The loop's side of the timers, the dialog's and its user areas':
	// runs each that is due through Message; false when none was.
	bool fireDueTimers(HostTimer::Clock::time_point now);
	// The earliest tick of the dialog's timers; false when none runs.
	bool nextTimer(HostTimer::Clock::time_point& next) const;
	// Sends a core message to the dialog and its user areas.
	void sendCoreMessage(int32_t id);
	// The user areas attached, in the order of attaching.
	const std::vector<GeUserArea*>& GetUserAreas() const { return userAreas; }
	// A user area that goes away.
	void detachUserArea(GeUserArea* ua);

private:
	DialogItem* findItem(int32_t id);
	DialogItem* findChoice(int32_t id);
	bool addItem(DialogItem item);
	String setFromText(DialogItem& item, const String& text);
	void detachUserAreas();

	String title;
	std::vector<DialogItem> items;
	std::vector<int32_t> groupStack;
	bool open = false;
	bool modal = false;
	int32_t openWidth = 0;
	int32_t openHeight = 0;
	int32_t layoutChanges = 0;
	HostTimer timer;
	std::vector<GeUserArea*> userAreas;
};

// The host's dialog loop for the asynchronous dialogs that are open: takes
// the script's actions one by one for the dialog in front, runs the timers
// when due (the dialogs' and their user areas'), sends EVMSG_CHANGE after an
// EventAdd, and sleeps until the next one. Returns when no asynchronous
// dialog is open any more, or when none has a timer running and the script
// holds no action (nothing can happen until the user acts again), or after
// maxMs milliseconds when that is not negative.
void RunOpenDialogs(double maxMs = -1);
// Sends a core message to every open dialog and its user areas.
void SendCoreMessage(int32_t id);
// Closes every open dialog, as the application does when it quits.
void CloseOpenDialogs();
// The dialogs open now, the one in front last.
std::vector<GeDialog*> OpenDialogs();
