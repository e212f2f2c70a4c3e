#pragma once

#include "c4d/c4d_string.h"

#include <cstdint>
#include <mutex>
#include <ostream>
#include <vector>

// What the application would show in its console, its message boxes and its
// status bar. The headless host has no screen, so every call is recorded, in
// the order it happened, for tests to read and for the command line to print.
// Renders print from their own threads: every member locks.
class HostConsole
{
public:
	enum class Kind
	{
		Print,    // a console line
		Message,  // a message box
		Question, // a yes/no box; text ends with the answer given
		Status,   // the status bar's text
		Bar,      // the status bar's progress, text is the percentage
		Clear,    // the status bar emptied
		Busy,     // the status bar shows that work goes on
	};
	struct Entry
	{
		Kind kind;
		String text;
	};

	// The host's one console.
	static HostConsole& get();

	void add(Kind kind, const String& text);
	void setStatus(const String& text);
	void setBar(int32_t percent);
	void clearStatus();

	// Everything recorded, oldest first.
	std::vector<Entry> entries() const;
	// The texts of the entries of one kind, oldest first.
	std::vector<String> texts(Kind kind) const;
	String statusText() const;
	// The progress of the status bar; -1 when none is shown.
	int32_t statusBar() const;

	// One line per entry: console lines as they are, the others behind a
	// tag ("[message] ...", "[status] ...").
	void print(std::ostream& out) const;
	// Forgets the record and empties the status bar.
	void clear();

private:
	mutable std::mutex mutex;
	std::vector<Entry> log;
	String status;
	int32_t bar = -1;
};

// Appends a line to the console.
void GePrint(const String& text);
// A message box with an OK button.
void MessageDialog(const String& text);
// A yes/no box. The answer is the next button press of the dialog script;
// without one the box counts as cancelled, which is "no".
bool QuestionDialog(const String& text);
void StatusSetText(const String& text);
// The progress bar of the status bar, percent clipped to 0..100.
void StatusSetBar(int32_t percent);
void StatusClear();
// The status bar shows that work goes on, without a measure of it.
void StatusSetSpin();
