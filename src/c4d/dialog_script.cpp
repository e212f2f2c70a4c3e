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
