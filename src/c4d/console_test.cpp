#include "c4d/console.h"

#include "c4d/dialog_script.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <thread>

TEST(HostConsole, RecordsStatusAndPrintsInOrder)
{
	HostConsole& console = HostConsole::get();
	console.clear();
	const struct
	{
		std::function<void()> call;
		const char* status;
		int32_t bar;
	} steps[] = {
		{[] { GePrint("Loading velorn from: /plugins/velorn"); }, "", -1},
		{[] { StatusSetText("Exporting"); }, "Exporting", -1},
		{[] { StatusSetBar(40); }, "Exporting", 40},
		{[] { MessageDialog("Could not find velorn.exe"); }, "Exporting", 40},
		{[] { StatusSetBar(150); }, "Exporting", 100},
		{[] { StatusSetBar(-3); }, "Exporting", 0},
		{[] { StatusClear(); }, "", -1},
	};
	for(const auto& step : steps)
	{
		step.call();
		SCOPED_TRACE(console.entries().size());
		EXPECT_EQ(console.statusText(), String(step.status));
		EXPECT_EQ(console.statusBar(), step.bar);
	}
	std::ostringstream printed;
	console.print(printed);
	EXPECT_EQ(printed.str(), "Loading velorn from: /plugins/velorn\n"
							 "[status] Exporting\n"
							 "[progress] 40%\n"
							 "[message] Could not find velorn.exe\n"
							 "[progress] 100%\n"
							 "[progress] 0%\n"
							 "[status cleared]\n");
	EXPECT_EQ(console.texts(HostConsole::Kind::Message), std::vector<String>{"Could not find velorn.exe"});

	console.clear();
	EXPECT_TRUE(console.entries().empty());
}

TEST(HostConsole, KeepsEveryLineOfConcurrentThreadsInTheirOrder)
{
	HostConsole& console = HostConsole::get();
	console.clear();
	const int threads = 8, lines = 500;
	std::vector<std::thread> workers;
	for(int t = 0; t < threads; ++t)
		workers.emplace_back([t] {
			for(int i = 0; i < lines; ++i)
				GePrint(String::IntToString(t) + " " + String::IntToString(i));
		});
	for(std::thread& w : workers)
		w.join();

	const std::vector<String> printed = console.texts(HostConsole::Kind::Print);
	ASSERT_EQ(printed.size(), (size_t)(threads * lines));
	std::vector<int> next(threads, 0);
	for(const String& line : printed)
	{
		int32_t space = 0;
		ASSERT_TRUE(line.FindFirst(" ", &space));
		const int32_t t = line.SubStr(0, space).ToLong();
		ASSERT_EQ(line.SubStr(space + 1, line.GetLength()).ToLong(), next[t]++) << line.GetStdString();
	}
	EXPECT_EQ(next, std::vector<int>(threads, lines));
	console.clear();
}

TEST(HostConsole, QuestionsTakeScriptedButtons)
{
	HostConsole::get().clear();
	DialogScript& script = DialogScript::get();
	script.clear();
	script.push(DialogAnswer::press(true));
	script.push(DialogAnswer::press(false));
	script.push(DialogAnswer::choose("/not/a/button"));
	const struct
	{
		const char* question;
		bool answer;
	} cases[] = {
		{"Overwrite the scene?", true},
		{"Delete the textures?", false},
		{"A file is no answer?", false},
		{"An empty script?", false},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.question);
		EXPECT_EQ(QuestionDialog(c.question), c.answer);
		EXPECT_EQ(script.requests().back().kind, DialogRequest::Kind::Question);
		EXPECT_EQ(script.requests().back().title, String(c.question));
	}
	EXPECT_EQ(HostConsole::get().texts(HostConsole::Kind::Question),
		(std::vector<String>{"Overwrite the scene? -> yes", "Delete the textures? -> no", "A file is no answer? -> no",
			"An empty script? -> no"}));
	EXPECT_FALSE(script.requests().back().scripted);

	// A message box has only OK and leaves the script alone.
	script.push(DialogAnswer::press(true));
	MessageDialog("Done");
	EXPECT_EQ(script.pending(), 1u);
	script.clear();
	HostConsole::get().clear();
}
