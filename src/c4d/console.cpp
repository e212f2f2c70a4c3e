#include "c4d/console.h"

#include "c4d/dialog_script.h"

#include <algorithm>

namespace
{

// The tag in front of an entry's text when the record is printed.
const char* printedTag(HostConsole::Kind kind)
{
	switch(kind)
	{
	case HostConsole::Kind::Print: return "";
	case HostConsole::Kind::Message: return "[message] ";
	case HostConsole::Kind::Question: return "[question] ";
	case HostConsole::Kind::Status: return "[status] ";
	case HostConsole::Kind::Bar: return "[progress] ";
	case HostConsole::Kind::Clear: return "[status cleared]";
	case HostConsole::Kind::Busy: return "[busy]";
	}
	return "";
}

} // namespace

HostConsole& HostConsole::get()
{
	static HostConsole console;
	return console;
}

void HostConsole::add(Kind kind, const String& text)
{
	std::lock_guard<std::mutex> lock(mutex);
	log.push_back({kind, text});
}

void HostConsole::setStatus(const String& text)
{
	std::lock_guard<std::mutex> lock(mutex);
	status = text;
	log.push_back({Kind::Status, text});
}

void HostConsole::setBar(int32_t percent)
{
	std::lock_guard<std::mutex> lock(mutex);
	bar = std::clamp(percent, 0, 100);
	log.push_back({Kind::Bar, String::IntToString(bar) + "%"});
}

void HostConsole::clearStatus()
{
	std::lock_guard<std::mutex> lock(mutex);
	status = String();
	bar = -1;
	log.push_back({Kind::Clear, String()});
}

std::vector<HostConsole::Entry> HostConsole::entries() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return log;
}

std::vector<String> HostConsole::texts(Kind kind) const
{
	std::lock_guard<std::mutex> lock(mutex);
	std::vector<String> out;
	for(const Entry& e : log)
		if(e.kind == kind)
			out.push_back(e.text);
	return out;
}

String HostConsole::statusText() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return status;
}

int32_t HostConsole::statusBar() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return bar;
}

void HostConsole::print(std::ostream& out) const
{
	std::lock_guard<std::mutex> lock(mutex);
	for(const Entry& e : log)
		out << printedTag(e.kind) << e.text.GetStdString() << '\n';
}

void HostConsole::clear()
{
	std::lock_guard<std::mutex> lock(mutex);
	log.clear();
	status = String();
	bar = -1;
}

void GePrint(const String& text)
{
	HostConsole::get().add(HostConsole::Kind::Print, text);
}

void MessageDialog(const String& text)
{
	// Only OK can be pressed, so the box takes no answer from the script.
	HostConsole::get().add(HostConsole::Kind::Message, text);
}

bool QuestionDialog(const String& text)
{
	const DialogRequest request = DialogScript::get().ask(DialogRequest::Kind::Question, text);
	const bool yes = request.answered() && request.answer.yes;
	HostConsole::get().add(HostConsole::Kind::Question, text + (yes ? " -> yes" : " -> no"));
	return yes;
}

void StatusSetText(const String& text)
{
	HostConsole::get().setStatus(text);
}

void StatusSetBar(int32_t percent)
{
	HostConsole::get().setBar(percent);
}

void StatusClear()
{
	HostConsole::get().clearStatus();
}

void StatusSetSpin()
{
	HostConsole::get().add(HostConsole::Kind::Busy, String());
}
