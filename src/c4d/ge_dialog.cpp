#include "c4d/ge_dialog.h"

#include "c4d/events.h"
#include "c4d/ge_user_area.h"

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
		if(isOpen(dlg) && dlg->fireDueTimers(now))
			fired = true;
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
		if(TakeChangeEvent())
		{
			SendCoreMessage(EVMSG_CHANGE);
			continue;
		}
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
		{
			Clock::time_point tick;
			if(dlg->nextTimer(tick) && (!next || tick < *next))
				next = tick;
		}
		if(now < waitUntil && (!next || waitUntil < *next))
			next = waitUntil;
		if(!next)
		{
			if(!modal)
				return;
			const bool kept = modal->AskClose();
			// A dialog that stays open with no timer would wait forever.
			Clock::time_point tick;
			if(!kept || !modal->nextTimer(tick))
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

void HostTimer::set(int32_t ms)
{
	intervalMs = std::max(ms, 0);
	restart();
}

void HostTimer::restart()
{
	nextTick = Clock::now() + std::chrono::milliseconds(intervalMs);
}

bool DialogItem::hasChild(int32_t childId) const
{
	return std::any_of(children.begin(), children.end(), [&](const auto& c) { return c.first == childId; });
}

GeDialog::~GeDialog()
{
	forget(this);
	detachUserAreas();
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

int32_t GeDialog::Message(const BaseContainer& msg, BaseContainer&)
{
	return HostMessages::dispatch(*this, msg);
}

bool GeDialog::CoreMessage(int32_t, const BaseContainer&)
{
	return true;
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
	detachUserAreas();
	layoutChanges = 0;
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

bool GeDialog::RestoreLayout(int32_t pluginid, void*)
{
	return Open(DLG_TYPE_ASYNC, pluginid);
}

bool GeDialog::Close()
{
	const bool was_open = open;
	open = false;
	timer.set(0);
	forget(this);
	const std::vector<GeUserArea*> areas = userAreas;
	for(GeUserArea* ua : areas)
	{
		ua->SetTimer(0);
		if(was_open)
		{
			BaseContainer msg(BFM_DESTROY), result;
			ua->Message(msg, result);
		}
	}
	return true;
}

void GeDialog::SetTimer(int32_t ms)
{
	timer.set(ms);
}

bool GeDialog::fireDueTimers(Clock::time_point now)
{
	if(!open)
		return false;
	bool fired = HostMessages::fireWhenDue(*this, timer, now);
	// An area's Message may close the dialog or attach other areas.
	const std::vector<GeUserArea*> areas = userAreas;
	for(GeUserArea* ua : areas)
		if(open && std::find(userAreas.begin(), userAreas.end(), ua) != userAreas.end())
			fired = HostMessages::fireWhenDue(*ua, ua->hostTimer(), now) || fired;
	return fired;
}

bool GeDialog::nextTimer(Clock::time_point& next) const
{
	bool any = false;
	if(open && timer.interval() > 0)
	{
		next = timer.next();
		any = true;
	}
	for(GeUserArea* ua : userAreas)
		if(open && ua->GetTimerInterval() > 0 && (!any || ua->hostTimer().next() < next))
		{
			next = ua->hostTimer().next();
			any = true;
		}
	return any;
}

void GeDialog::sendCoreMessage(int32_t id)
{
	BaseContainer msg(BFM_CORE_MESSAGE);
	msg.SetInt32(BFM_CORE_ID, id);
	BaseContainer result;
	Message(msg, result);
	const std::vector<GeUserArea*> areas = userAreas;
	for(GeUserArea* ua : areas)
		if(std::find(userAreas.begin(), userAreas.end(), ua) != userAreas.end())
			ua->Message(msg, result);
}

void GeDialog::detachUserArea(GeUserArea* ua)
{
	userAreas.erase(std::remove(userAreas.begin(), userAreas.end(), ua), userAreas.end());
}

void GeDialog::detachUserAreas()
{
	for(GeUserArea* ua : userAreas)
		ua->detach();
	userAreas.clear();
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

bool GeDialog::AddEditSlider(int32_t id, int32_t flags, int32_t w, int32_t h)
{
	return AddEditNumberArrows(id, flags, w, h);
}

bool GeDialog::AddRadioGroup(int32_t id, int32_t flags, int32_t columns, int32_t rows)
{
	DialogItem item = makeItem(DialogItem::Kind::RadioGroup, id, flags, 0, 0, String());
	item.columns = columns;
	item.rows = rows;
	item.value = GeData((int32_t)0);
	return addItem(std::move(item));
}

bool GeDialog::AddComboBox(int32_t id, int32_t flags, int32_t w, int32_t h)
{
	DialogItem item = makeItem(DialogItem::Kind::ComboBox, id, flags, w, h, String());
	item.value = GeData((int32_t)0);
	return addItem(std::move(item));
}

DialogItem* GeDialog::findChoice(int32_t id)
{
	DialogItem* item = findItem(id);
	return item && (item->kind == DialogItem::Kind::RadioGroup || item->kind == DialogItem::Kind::ComboBox) ? item :
																											  nullptr;
}

bool GeDialog::AddChild(int32_t id, int32_t subid, const String& child)
{
	DialogItem* item = findChoice(id);
	if(!item || item->hasChild(subid))
		return false;
	item->children.emplace_back(subid, child);
	return true;
}

bool GeDialog::FreeChildren(int32_t id)
{
	DialogItem* item = findChoice(id);
	if(!item)
		return false;
	item->children.clear();
	return true;
}

bool GeDialog::AddColorField(int32_t id, int32_t flags, int32_t w, int32_t h)
{
	DialogItem item = makeItem(DialogItem::Kind::ColorField, id, flags, w, h, String());
	item.value = GeData(Vector());
	return addItem(std::move(item));
}

bool GeDialog::AddUserArea(int32_t id, int32_t flags, int32_t w, int32_t h)
{
	return addItem(makeItem(DialogItem::Kind::UserArea, id, flags, w, h, String()));
}

bool GeDialog::AttachUserArea(GeUserArea& ua, int32_t id, int32_t)
{
	const DialogItem* item = findItem(id);
	if(!item || item->kind != DialogItem::Kind::UserArea)
		return false;
	if(GeDialog* former = ua.GetDialog())
		former->detachUserArea(&ua);
	userAreas.push_back(&ua);
	int32_t w = item->width, h = item->height;
	int32_t minW = 0, minH = 0;
	if(ua.GetMinSize(minW, minH))
	{
		w = std::max(w, minW);
		h = std::max(h, minH);
	}
	ua.attach(this, w, h);
	return true;
}

bool GeDialog::LayoutFlushGroup(int32_t id)
{
	const DialogItem* group = findItem(id);
	if(!group || group->kind != DialogItem::Kind::Group)
		return false;
	// The group's items, and the items of the groups inside it.
	std::vector<int32_t> flushed{id};
	for(size_t i = 0; i < flushed.size(); ++i)
		for(const DialogItem& item : items)
			if(item.parent == flushed[i] && item.kind == DialogItem::Kind::Group && item.id != 0)
				flushed.push_back(item.id);
	items.erase(std::remove_if(items.begin(), items.end(),
					[&](const DialogItem& item) {
						return std::find(flushed.begin(), flushed.end(), item.parent) != flushed.end();
					}),
		items.end());
	groupStack.assign(1, id);
	return true;
}

bool GeDialog::LayoutChanged(int32_t id)
{
	if(!findItem(id))
		return false;
	groupStack.clear();
	++layoutChanges;
	return true;
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

bool GeDialog::SetFloat(int32_t id, double value, double min, double max, double step, double min2, double max2)
{
	DialogItem* item = findItem(id);
	const bool typedRange = min2 != 0 || max2 != 0;
	if(!setNumber(item, value, typedRange ? min2 : min, typedRange ? max2 : max))
		return false;
	item->sliderMin = min;
	item->sliderMax = max;
	item->step = step;
	return true;
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

bool GeDialog::SetColorField(int32_t id, const Vector& color, double brightness, double maxbrightness, int32_t)
{
	DialogItem* item = findItem(id);
	if(!item || item->kind != DialogItem::Kind::ColorField)
		return false;
	item->value = GeData(color);
	item->maxBrightness = maxbrightness;
	item->brightness = std::clamp(brightness, 0.0, std::max(maxbrightness, 0.0));
	return true;
}

bool GeDialog::GetColorField(int32_t id, Vector& color, double& brightness) const
{
	const DialogItem* item = FindItem(id);
	if(!item || item->kind != DialogItem::Kind::ColorField)
		return false;
	color = item->value.GetVector();
	brightness = item->brightness;
	return true;
}

namespace
{

// "r,g,b" or "r,g,b,brightness": the colour's components and its
// brightness, which stays as it was when the text gives none.
String colourFromText(DialogItem& item, const String& text)
{
	std::vector<double> parts;
	std::string rest = text.GetStdString();
	for(;;)
	{
		const size_t comma = rest.find(',');
		bool error = false;
		const double v = String(rest.substr(0, comma)).ToReal(&error);
		if(error)
			return String("\"") + text + String("\" is not r,g,b or r,g,b,brightness");
		parts.push_back(v);
		if(comma == std::string::npos)
			break;
		rest = rest.substr(comma + 1);
	}
	if(parts.size() != 3 && parts.size() != 4)
		return String("\"") + text + String("\" is not r,g,b or r,g,b,brightness");
	item.value = GeData(Vector(parts[0], parts[1], parts[2]));
	if(parts.size() == 4)
		item.brightness = std::clamp(parts[3], 0.0, std::max(item.maxBrightness, 0.0));
	return String();
}

} // namespace

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
	case DialogItem::Kind::RadioGroup:
	case DialogItem::Kind::ComboBox:
	{
		bool error = false;
		const int32_t entry = text.ToLong(&error);
		if(error || !item.hasChild(entry))
			return String("item ") + String::IntToString(item.id) + String(" has no entry \"") + text + String("\"");
		item.value = GeData(entry);
		return String();
	}
	case DialogItem::Kind::ColorField:
		return colourFromText(item, text);
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

void SendCoreMessage(int32_t id)
{
	// A message may close or open dialogs: each is looked up again.
	for(GeDialog* dlg : OpenDialogs())
		if(isOpen(dlg))
			dlg->sendCoreMessage(id);
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
