#include "c4d/dialog_script.h"

namespace
{

DialogRequest::Kind requestKind(FILESELECT type)
{
	switch(type)
	{
	case FILESELECT_LOAD: return DialogRequest::Kind::Load;
	case FILESELECT_SAVE: return DialogRequest::Kind::Save;
	case FILESELECT_DIRECTORY: return DialogRequest::Kind::Directory;
	}
	return DialogRequest::Kind::Load;
}

} // namespace

bool DialogRequest::answered() const
{
	const DialogAnswer::Kind fitting = kind == Kind::Question ? DialogAnswer::Kind::Button : DialogAnswer::Kind::File;
	return answer.kind == fitting;
}

DialogAnswer DialogAnswer::choose(const Filename& file)
{
	DialogAnswer a;
	a.kind = Kind::File;
	a.file = file;
	return a;
}

DialogAnswer DialogAnswer::press(bool yes)
{
	DialogAnswer a;
	a.kind = Kind::Button;
	a.yes = yes;
	return a;
}

DialogAnswer DialogAnswer::cancel()
{
	return DialogAnswer();
}

DialogAction DialogAction::set(int32_t id, const String& value)
{
	DialogAction a;
	a.kind = Kind::Set;
	a.id = id;
	a.value = value;
	return a;
}

DialogAction DialogAction::press(int32_t id)
{
	DialogAction a;
	a.kind = Kind::Press;
	a.id = id;
	return a;
}

DialogAction DialogAction::key(const String& text)
{
	DialogAction a;
	a.kind = Kind::Key;
	a.value = text;
	return a;
}

DialogAction DialogAction::close()
{
	return DialogAction();
}

DialogAction DialogAction::wait(int32_t ms)
{
	DialogAction a;
	a.kind = Kind::Wait;
	a.ms = ms;
	return a;
}

String DialogAction::describe() const
{
	switch(kind)
	{
	case Kind::Set: return String("set ") + String::IntToString(id) + String(" to ") + value;
	case Kind::Press: return String("press ") + String::IntToString(id);
	case Kind::Key: return String("key ") + value;
	case Kind::Close: return String("close");
	case Kind::Wait: return String("wait ") + String::IntToString(ms) + String(" ms");
	}
	return String();
}

DialogScript& DialogScript::get()
{
	static DialogScript script;
	return script;
}

void DialogScript::push(const DialogAnswer& answer)
{
	std::lock_guard<std::mutex> lock(mutex);
	answers.push_back(answer);
}

size_t DialogScript::pending() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return answers.size();
}

std::vector<DialogRequest> DialogScript::requests() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return asked;
}

void DialogScript::clear()
{
	std::lock_guard<std::mutex> lock(mutex);
	answers.clear();
	asked.clear();
	actions.clear();
	taken.clear();
}

void DialogScript::pushAction(const DialogAction& action)
{
	std::lock_guard<std::mutex> lock(mutex);
	actions.push_back(action);
}

size_t DialogScript::pendingActions() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return actions.size();
}

bool DialogScript::nextAction(DialogAction& action)
{
	std::lock_guard<std::mutex> lock(mutex);
	if(actions.empty())
		return false;
	action = actions.front();
	actions.pop_front();
	return true;
}

void DialogScript::recordAction(const DialogActionRecord& record)
{
	std::lock_guard<std::mutex> lock(mutex);
	taken.push_back(record);
}

std::vector<DialogActionRecord> DialogScript::actionsTaken() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return taken;
}

DialogRequest DialogScript::ask(DialogRequest::Kind kind, const String& title)
{
	std::lock_guard<std::mutex> lock(mutex);
	DialogRequest request{kind, title, DialogAnswer::cancel(), !answers.empty()};
	if(request.scripted)
	{
		request.answer = answers.front();
		answers.pop_front();
	}
	asked.push_back(request);
	return request;
}

bool FileSelect(Filename& out, FILESELECT type, const String& title)
{
	const DialogRequest request = DialogScript::get().ask(requestKind(type), title);
	if(!request.answered())
		return false;
	out = request.answer.file;
	return true;
}
