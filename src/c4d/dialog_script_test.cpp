#include "c4d/dialog_script.h"

#include <gtest/gtest.h>

TEST(DialogScript, RequestersTakeTheNextAnswer)
{
	DialogScript& script = DialogScript::get();
	script.clear();
	script.push(DialogAnswer::choose("/scenes/a.vls"));
	script.push(DialogAnswer::cancel());
	script.push(DialogAnswer::choose("/opt/velorn"));
	script.push(DialogAnswer::press(true));
	const struct
	{
		FILESELECT type;
		const char* title;
		bool chosen;
		const char* out; // what the caller's name holds afterwards
		DialogRequest::Kind kind;
		bool scripted;
	} cases[] = {
		{FILESELECT_LOAD, "Open scene", true, "/scenes/a.vls", DialogRequest::Kind::Load, true},
		{FILESELECT_SAVE, "Save scene as", false, "before", DialogRequest::Kind::Save, true},
		{FILESELECT_DIRECTORY, "Please choose the Velorn directory.", true, "/opt/velorn", DialogRequest::Kind::Directory,
			true},
		{FILESELECT_LOAD, "A button is no file", false, "before", DialogRequest::Kind::Load, true},
		{FILESELECT_DIRECTORY, "Nothing left", false, "before", DialogRequest::Kind::Directory, false},
	};
	for(size_t i = 0; i < std::size(cases); ++i)
	{
		const auto& c = cases[i];
		SCOPED_TRACE(c.title);
		Filename out("before");
		EXPECT_EQ(FileSelect(out, c.type, c.title), c.chosen);
		EXPECT_EQ(out, Filename(c.out));
		const std::vector<DialogRequest> asked = script.requests();
		ASSERT_EQ(asked.size(), i + 1);
		EXPECT_EQ(asked[i].kind, c.kind);
		EXPECT_EQ(asked[i].title, String(c.title));
		EXPECT_EQ(asked[i].scripted, c.scripted);
		EXPECT_EQ(asked[i].answered(), c.chosen);
	}
	EXPECT_EQ(script.requests()[3].answer.kind, DialogAnswer::Kind::Button);
	EXPECT_EQ(script.pending(), 0u);
}

TEST(DialogScript, ClearForgetsAnswersAndRequests)
{
	DialogScript& script = DialogScript::get();
	script.clear();
	script.push(DialogAnswer::choose("/a"));
	script.push(DialogAnswer::choose("/b"));
	Filename out;
	ASSERT_TRUE(FileSelect(out, FILESELECT_LOAD, "first"));
	EXPECT_EQ(script.pending(), 1u);
	script.clear();
	EXPECT_EQ(script.pending(), 0u);
	EXPECT_TRUE(script.requests().empty());
	EXPECT_FALSE(FileSelect(out, FILESELECT_LOAD, "after clear"));
	EXPECT_EQ(out, Filename("/a"));
	script.clear();
}
