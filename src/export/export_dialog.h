#pragma once

#include "c4d/ge_dialog.h"

#include <memory>

class BaseDocument;
class ExportThread;

// The small modal dialog of "Render with Velorn": it finds the renderer,
// starts the export thread and watches it every 250 ms; closing it, or
// the keys "x" and "q", ask the thread to stop. It closes when the thread
// has ended, showing the export's failure if there was one.
class ExportDialog : public GeDialog
{
public:
	explicit ExportDialog(BaseDocument* doc);
	~ExportDialog() override;

	bool CreateLayout() override;
	bool InitValues() override;
	void Timer(const BaseContainer& msg) override;
	bool AskClose() override;
	int32_t Message(const BaseContainer& msg, BaseContainer& result) override;

private:
	BaseDocument* document;
	std::unique_ptr<ExportThread> thread;
};

// Registers "Render with Velorn", which opens the dialog on the active
// document.
bool RegisterRenderCommand();
