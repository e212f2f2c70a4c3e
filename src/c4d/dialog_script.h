#pragma once

#include "c4d/filename.h"

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
	// Forgets the answers and the requests.
	void clear();

	// Takes the next answer for a dialog of kind with title and records it.
	DialogRequest ask(DialogRequest::Kind kind, const String& title);

private:
	mutable std::mutex mutex;
	std::deque<DialogAnswer> answers;
	std::vector<DialogRequest> asked;
};

// The host's file requester: out gets the chosen file or directory; false
// when the user cancelled, leaving out as it was.
bool FileSelect(Filename& out, FILESELECT type, const String& title);
