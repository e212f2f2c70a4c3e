#include "c4d/ge_dialog.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <thread>

namespace
{

using Clock = std::chrono::steady_clock;

// The open dialogs, the one in front last.
std::vector<GeDialog*>& openList()
{
	static std::vector<GeDialog*> list;
	return list;
}

bool isOpen(GeDialog* dlg)
{
	const std::vector<GeDialog*>& list = openList();
	return std::find(list.begin(), list.end(), dlg) != list.end();
}

void forget(GeDialog* dlg)
{
	std::vector<GeDialog*>& list = openList();
	list.erase(std::remove(list.begin(), list.end(), dlg), list.end());
}

// The dialogs one run of the loop serves: a modal dialog alone, since it
// holds the user's hands, otherwise every open asynchronous dialog.
std::vector<GeDialog*> served(GeDialog* modal)
{
	if(modal)
		return isOpen(modal) ? std::vector<GeDialog*>{modal} : std::vector<GeDialog*>();
	std::vector<GeDialog*> dialogs;
	for(GeDialog* dlg : openList())
		if(!dlg->IsModal())
			dialogs.push_back(dlg);
	return dialogs;
}

// Runs the timers that are due; true when one ran. A timer may close or
// open dialogs, so each is looked up again before it runs.
bool fireDueTimers(const std::vector<GeDialog*>& dialogs)
{
	bool fired = false;
	const Clock::time_point now = Clock::now();
	for(GeDialog* dlg : dialogs)
		if(isOpen(dlg) && dlg->timerDue(now))
		{
			dlg->fireTimer();
			fired = true;
		}
	return fired;
}

void record(GeDialog* dlg, const DialogAction& action, const String& note)
{
	DialogScript::get().recordAction(DialogActionRecord{dlg->GetTitle(), action, note});
}

// The host's dialog loop; see RunOpenDialogs. With modal, it runs that
// dialog until it closes: when the script has nothing more and no timer
// runs, the user could only close the window, so the host asks the dialog
// to close, and closes it when it stays open with nothing left to wait for.
void runLoop(GeDialog* modal, double maxMs)
{
	const Clock::time_point start = Clock::now();
	std::optional<Clock::time_point> end;
	if(maxMs >= 0)
		end = start + std::chrono::microseconds((int64_t)(maxMs * 1000.0));
	Clock::time_point waitUntil = start;
	for(;;)
	{
		const std::vector<GeDialog*> dialogs = served(modal);
		if(dialogs.empty() || (end && Clock::now() >= *end))
			return;
		if(fireDueTimers(dialogs))
			continue;

		const Clock::time_point now = Clock::now();
		DialogAction action;
		if(now >= waitUntil && DialogScript::get().nextAction(action))
		{
			GeDialog* front = dialogs.back();
			if(action.kind == DialogAction::Kind::Wait)
			{
				waitUntil = now + std::chrono::milliseconds(std::max(action.ms, 0));
				record(front, action, String());
			}
			else
				record(front, action, front->TakeAction(action));
			continue;
		}

		std::optional<Clock::time_point> next;
		for(GeDialog* dlg : dialogs)
			if(dlg->GetTimerInterval() > 0 && (!next || dlg->nextTimer() < *next))
				next = dlg->nextTimer();
		if(now < waitUntil && (!next || waitUntil < *next))
			next = waitUntil;
		if(!next)
		{
			if(!modal)
				return;
			const bool kept = modal->AskClose();
			// A dialog that stays open with no timer would wait forever.
			if(!kept || modal->GetTimerInterval() == 0)
				modal->Close();
			record(modal, DialogAction::close(),
				String(modal->IsOpen() ? "the script held no more actions; kept open by the dialog" :
										 "the script held no more actions"));
			continue;
		}
		if(end && *end < *next)
			next = end;
		std::this_thread::sleep_until(*next);
	}
}

bool parseSwitch(const String& text, bool& value)
{
	const std::string t = text.ToLower().GetStdString();
	if(t == "on" || t == "1" || t == "true" || t == "yes")
		value = true;
	else if(t == "off" || t == "0" || t == "false" || t == "no")
		value = false;
	else
		return false;
	return true;
}

} // namespace

GeDialog::~GeDialog()
{
	forget(this);
}

bool GeDialog::CreateLayout()
{
	return true;
}

bool GeDialog::InitValues()
{
	return true;
}

bool GeDialog::Command(int32_t, const BaseContainer&)
{
	return true;
}

void GeDialog::Timer(const BaseContainer&)
{
}

bool GeDialog::AskClose()
{
	return false;
}

int32_t GeDialog::Message(const BaseContainer&, BaseContainer&)
{
	return 0;
}

bool GeDialog::Open(DLG_TYPE type, int32_t, int32_t, int32_t, int32_t defaultw, int32_t defaulth)
{
	if(open)
	{
		if(modal || type == DLG_TYPE_MODAL)
			return false;
		forget(this);
		openList().push_back(this);
		return true;
	}
	items.clear();
	groupStack.clear();
	if(!CreateLayout())
		return false;
	open = true;
	modal = type == DLG_TYPE_MODAL;
	openWidth = defaultw;
	openHeight = defaulth;
	openList().push_back(this);
	InitValues();
	if(modal)
		runLoop(this, -1);
	return true;
}

bool GeDialog::Close()
{
	open = false;
	timerInterval = 0;
	forget(this);
	return true;
}

void GeDialog::SetTimer(int32_t ms)
{
	timerInterval = std::max(ms, 0);
	timerNext = Clock::now() + std::chrono::milliseconds(timerInterval);
}

bool GeDialog::timerDue(Clock::time_point now) const
{
	return open && timerInterval > 0 && now >= timerNext;
}

void GeDialog::fireTimer()
{
	// The next tick counts from now: a slow Timer makes the ticks fewer,
	// never a burst of late ones.
	timerNext = Clock::now() + std::chrono::milliseconds(timerInterval);
	BaseContainer msg(BFM_TIMER_MESSAGE);
	Timer(msg);
}

bool GeDialog::addItem(DialogItem item)
{
	if(findItem(item.id) && item.id != 0)
		return false;
	item.parent = groupStack.empty() ? 0 : groupStack.back();
	items.push_back(std::move(item));
	return true;
}

bool GeDialog::GroupBegin(int32_t id, int32_t flags, int32_t cols, int32_t rows, const String& title_, int32_t)
{
	DialogItem item;
	item.kind = DialogItem::Kind::Group;
	item.id = id;
	item.label = title_;
	item.flags = flags;
	item.columns = cols;
	item.rows = rows;
	if(!addItem(std::move(item)))
		return false;
	groupStack.push_back(id);
	return true;
}

bool GeDialog::GroupEnd()
{
	if(groupStack.empty())
		return false;
	groupStack.pop_back();
	return true;
}

namespace
{

DialogItem makeItem(DialogItem::Kind kind, int32_t id, int32_t flags, int32_t w, int32_t h, const String& label)
{
	DialogItem item;
	item.kind = kind;
	item.id = id;
	item.flags = flags;
	item.width = w;
	item.height = h;
	item.label = label;
	return item;
}

} // namespace

bool GeDialog::AddStaticText(int32_t id, int32_t flags, int32_t w, int32_t h, const String& name, int32_t)
{
	return addItem(makeItem(DialogItem::Kind::StaticText, id, flags, w, h, name));
}

bool GeDialog::AddCheckbox(int32_t id, int32_t flags, int32_t w, int32_t h, const String& name)
{
	DialogItem item = makeItem(DialogItem::Kind::CheckBox, id, flags, w, h, name);
	item.value = GeData((int32_t)0);
	return addItem(std::move(item));
}

bool GeDialog::AddEditNumberArrows(int32_t id, int32_t flags, int32_t w, int32_t h)
{
	DialogItem item = makeItem(DialogItem::Kind::Number, id, flags, w, h, String());
	item.value = GeData((int32_t)0);
	return addItem(std::move(item));
}

bool GeDialog::AddEditText(int32_t id, int32_t flags, int32_t w, int32_t h)
{
	DialogItem item = makeItem(DialogItem::Kind::Text, id, flags, w, h, String());
	item.value = GeData(String());
	return addItem(std::move(item));
}

bool GeDialog::AddFilenameField(int32_t id, int32_t flags, int32_t w, int32_t h, const String& name)
{
	DialogItem item = makeItem(DialogItem::Kind::Filename, id, flags, w, h, name);
	item.value = GeData(Filename());
	return addItem(std::move(item));
}

bool GeDialog::AddButton(int32_t id, int32_t flags, int32_t w, int32_t h, const String& name)
{
	return addItem(makeItem(DialogItem::Kind::Button, id, flags, w, h, name));
}

DialogItem* GeDialog::findItem(int32_t id)
{
	for(DialogItem& item : items)
		if(item.id == id)
			return &item;
	return nullptr;
}

const DialogItem* GeDialog::FindItem(int32_t id) const
{
	return const_cast<GeDialog*>(this)->findItem(id);
}

bool GeDialog::Enable(int32_t id, bool enabled)
{
	DialogItem* item = findItem(id);
	if(!item)
		return false;
	item->enabled = enabled;
	return true;
}

bool GeDialog::IsEnabled(int32_t id) const
{
	const DialogItem* item = FindItem(id);
	return item && item->enabled;
}

bool GeDialog::SetBool(int32_t id, bool value)
{
	DialogItem* item = findItem(id);
	if(!item)
		return false;
	item->value = GeData((int32_t)value);
	return true;
}

bool GeDialog::GetBool(int32_t id, bool& value) const
{
	const DialogItem* item = FindItem(id);
	if(!item)
		return false;
	value = item->value.GetInt32() != 0;
	return true;
}

namespace
{

// A number field takes the range and the value held inside it.
template<typename T>
bool setNumber(DialogItem* item, T value, T min, T max)
{
	if(!item || min > max)
		return false;
	item->min = min;
	item->max = max;
	item->value = GeData(std::clamp(value, min, max));
	return true;
}

} // namespace

bool GeDialog::SetInt32(int32_t id, int32_t value, int32_t min, int32_t max)
{
	return setNumber(findItem(id), value, min, max);
}

bool GeDialog::GetInt32(int32_t id, int32_t& value) const
{
	const DialogItem* item = FindItem(id);
	if(!item)
		return false;
	value = item->value.GetType() == DA_REAL ? (int32_t)item->value.GetFloat() : item->value.GetInt32();
	return true;
}

bool GeDialog::SetFloat(int32_t id, double value, double min, double max)
{
	return setNumber(findItem(id), value, min, max);
}

bool GeDialog::GetFloat(int32_t id, double& value) const
{
	const DialogItem* item = FindItem(id);
	if(!item)
		return false;
	value = item->value.GetType() == DA_LONG ? (double)item->value.GetInt32() : item->value.GetFloat();
	return true;
}

bool GeDialog::SetString(int32_t id, const String& value)
{
	DialogItem* item = findItem(id);
	if(!item)
		return false;
	// A text or a static text shows the string; other items keep it as
	// their label.
	if(item->kind == DialogItem::Kind::Text)
		item->value = GeData(value);
	else
		item->label = value;
	return true;
}

bool GeDialog::GetString(int32_t id, String& value) const
{
	const DialogItem* item = FindItem(id);
	if(!item)
		return false;
	value = item->kind == DialogItem::Kind::Text ? item->value.GetString() : item->label;
	return true;
}

bool GeDialog::SetFilename(int32_t id, const Filename& value)
{
	DialogItem* item = findItem(id);
	if(!item)
		return false;
	item->value = GeData(value);
	return true;
}

bool GeDialog::GetFilename(int32_t id, Filename& value) const
{
	const DialogItem* item = FindItem(id);
	if(!item)
		return false;
	value = item->value.GetFilename();
	return true;
}

String GeDialog::setFromText(DialogItem& item, const String& text)
{
	switch(item.kind)
	{
	case DialogItem::Kind::CheckBox:
	{
		bool on = false;
		if(!parseSwitch(text, on))
			return String("\"") + text + String("\" is not on or off");
		item.value = GeData((int32_t)on);
		return String();
	}
	case DialogItem::Kind::Number:
	{
		bool error = false;
		if(item.value.GetType() == DA_REAL)
		{
			const double v = text.ToReal(&error);
			if(error)
				return String("\"") + text + String("\" is not a number");
			item.value = GeData(std::clamp(v, item.min, item.max));
		}
		else
		{
			const int32_t v = text.ToLong(&error);
			if(error)
				return String("\"") + text + String("\" is not a whole number");
			item.value = GeData((int32_t)std::clamp((double)v, item.min, item.max));
		}
		return String();
	}
	case DialogItem::Kind::Text:
		item.value = GeData(text);
		return String();
	case DialogItem::Kind::Filename:
		item.value = GeData(Filename(text));
		return String();
	default:
		return String("item ") + String::IntToString(item.id) + String(" takes no value");
	}
}

String GeDialog::TakeAction(const DialogAction& action)
{
	const String itemName = String("item ") + String::IntToString(action.id);
	switch(action.kind)
	{
	case DialogAction::Kind::Set:
	case DialogAction::Kind::Press:
	{
		DialogItem* item = findItem(action.id);
		if(!item)
			return String("no ") + itemName;
		if(!item->enabled)
			return itemName + String(" is disabled");
		BaseContainer msg(BFM_ACTION);
		msg.SetInt32(BFM_ACTION_ID, action.id);
		if(action.kind == DialogAction::Kind::Press)
		{
			if(item->kind != DialogItem::Kind::Button)
				return itemName + String(" is no button");
		}
		else
		{
			const String refused = setFromText(*item, action.value);
			if(refused.Content())
				return refused;
			msg.SetData(BFM_ACTION_VALUE, item->value);
		}
		Command(action.id, msg);
		return String();
	}
	case DialogAction::Kind::Key:
	{
		BaseContainer msg(BFM_INPUT);
		msg.SetInt32(BFM_INPUT_DEVICE, BFM_INPUT_KEYBOARD);
		msg.SetString(BFM_INPUT_ASC, action.value);
		BaseContainer result;
		Message(msg, result);
		return String();
	}
	case DialogAction::Kind::Close:
		if(AskClose())
			return String("kept open by the dialog");
		Close();
		return String();
	case DialogAction::Kind::Wait:
		break;
	}
	return String();
}

void RunOpenDialogs(double maxMs)
{
	runLoop(nullptr, maxMs);
}

void CloseOpenDialogs()
{
	for(GeDialog* dlg : OpenDialogs())
		dlg->Close();
}

std::vector<GeDialog*> OpenDialogs()
{
	return openList();
}
