#pragma once

#include "c4d/filename.h"

#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

// The kinds of the host's file requester.
enum FILESELECT
{
	FILESELECT_LOAD,
	FILESELECT_SAVE,
	FILESELECT_DIRECTORY,
};

// One answer a user would give to a dialog.
struct DialogAnswer
{
	enum class Kind
	{
		File,   // a file or directory chosen in a requester
		Button, // a button pressed in a question box
		Cancel, // the dialog closed without an answer
	};
	Kind kind = Kind::Cancel;
	Filename file;
	bool yes = false;

	static DialogAnswer choose(const Filename& file);
	static DialogAnswer press(bool yes);
	static DialogAnswer cancel();
};

// A dialog the host was asked to show, with what it answered.
struct DialogRequest
{
	enum class Kind
	{
		Load,
		Save,
		Directory,
		Question,
	};
	Kind kind;
	String title;
	// The answer taken from the script; Cancel when the script was empty.
	DialogAnswer answer;
	// False when the script held no answer.
	bool scripted;

	// Whether the answer is one this dialog can take (a file for a
	// requester, a button for a question); anything else is a cancel.
	bool answered() const;
};

// What a user does in an open dialog (ge_dialog.h): the host's dialog loop
// takes these in order and hands each to the dialog in front.
struct DialogAction
{
	enum class Kind
	{
		Set,   // types value into the item id (a check box takes on/off, 1/0, true/false)
		Press, // clicks the button id
		Key,   // presses the key whose text is value
		Close, // clicks the window's close box
		Wait,  // does nothing for ms milliseconds, so that timers run meanwhile
	};
	Kind kind = Kind::Close;
	int32_t id = 0;
	String value;
	int32_t ms = 0;

	static DialogAction set(int32_t id, const String& value);
	static DialogAction press(int32_t id);
	static DialogAction key(const String& text);
	static DialogAction close();
	static DialogAction wait(int32_t ms);

	// "set 10011 to 256", "press 10001", "key x", "close", "wait 20 ms".
	String describe() const;
};

// A dialog action as the dialog took it.
struct DialogActionRecord
{
	// The title of the dialog the action went to.
	String dialog;
	DialogAction action;
	// Empty when the dialog took the action; otherwise why no user could
	// have done it ("no item 99", "item 10002 is disabled").
	String refused;
};

// Where the application would wait for the user, the headless host takes the
// next answer of this script, which the caller or a test fills beforehand.
// An empty script cancels. An answer of the wrong kind (a button press for a
// file requester, a file for a question) cancels as well, since no user
// could give it; the request record keeps it for the test to see.
class DialogScript
{
public:
	// The host's one script.
	static DialogScript& get();

	void push(const DialogAnswer& answer);
	// The answers not taken yet.
	size_t pending() const;
	// Every dialog asked for, oldest first.
	std::vector<DialogRequest> requests() const;
	// Forgets the answers, the dialog actions and the records of both.
	void clear();

	// Takes the next answer for a dialog of kind with title and records it.
	DialogRequest ask(DialogRequest::Kind kind, const String& title);

	// Dialog actions, kept apart from the answers: a button that opens a
	// file requester takes its action here and its file from the answers.
	void pushAction(const DialogAction& action);
	size_t pendingActions() const;
	// Takes the next action; false when there is none.
	bool nextAction(DialogAction& action);
	// Every action taken, oldest first.
	void recordAction(const DialogActionRecord& record);
	std::vector<DialogActionRecord> actionsTaken() const;

private:
	mutable std::mutex mutex;
	std::deque<DialogAnswer> answers;
	std::vector<DialogRequest> asked;
	std::deque<DialogAction> actions;
	std::vector<DialogActionRecord> taken;
};

// The host's file requester: out gets the chosen file or directory; false
// when the user cancelled, leaving out as it was.
bool FileSelect(Filename& out, FILESELECT type, const String& title);
