#include "export/export_dialog.h"

#include "c4d/console.h"
#include "c4d/node_data.h"
#include "c4d/plugin_registry.h"
#include "export/export_thread.h"
#include "host/registration.h"
#include "host/settings.h"

namespace
{

enum
{
	ID_RENDER_COMMAND = 1023920,
	RENDER_COMMAND_NAME_STRING = 10020,
	// The dialog's one text.
	IDC_EXPORTING_TEXT = 10001,
	TIMER_MS = 250,
};

// Opens the export dialog modally on the document.
class RenderCommand : public CommandData
{
public:
	bool Execute(BaseDocument* doc) override
	{
		ExportDialog dialog(doc);
		return dialog.Open(DLG_TYPE_MODAL, ID_RENDER_COMMAND, 0, 0, 400, 400);
	}
};

} // namespace

ExportDialog::ExportDialog(BaseDocument* doc) : document(doc) {}

ExportDialog::~ExportDialog() = default;

bool ExportDialog::CreateLayout()
{
	SetTitle(String("VLS Exporting..."));
	return AddStaticText(IDC_EXPORTING_TEXT, BFH_LEFT, 400, 100, String("Exporting..."));
}

bool ExportDialog::InitValues()
{
	if(!document)
		return false;
	if(thread)
		return true;
	Filename renderer;
	if(!findRenderer(false, renderer))
	{
		askRendererDir();
		if(!findRenderer(false, renderer))
		{
			Close();
			return false;
		}
	}
	thread = std::make_unique<ExportThread>(document);
	thread->Start(thread->GetThreadName());
	SetTimer(TIMER_MS);
	return true;
}

void ExportDialog::Timer(const BaseContainer&)
{
	if(!thread || thread->IsRunning())
		return;
	thread->Wait();
	if(thread->failed == 1)
		MessageDialog(String("Export failed:\n") + thread->error_text + String("."));
	thread.reset();
	SetTimer(0);
	Close();
}

bool ExportDialog::AskClose()
{
	if(thread && thread->IsRunning())
	{
		thread->End(false);
		return true;
	}
	return false;
}

int32_t ExportDialog::Message(const BaseContainer& msg, BaseContainer& result)
{
	if(msg.GetId() == BFM_INPUT && msg.GetInt32(BFM_INPUT_DEVICE) == BFM_INPUT_KEYBOARD)
	{
		const String key = msg.GetString(BFM_INPUT_ASC);
		if(key == String("x") || key == String("q"))
		{
			if(!AskClose())
				Close();
			return 1;
		}
	}
	return GeDialog::Message(msg, result);
}

bool RegisterRenderCommand()
{
	return registerNamed(RENDER_COMMAND_NAME_STRING, [](const String& name) {
		return RegisterCommandPlugin(ID_RENDER_COMMAND, name, 0, moduleResourceFile("Export.tif"),
			String("Render with Velorn"), new RenderCommand());
	});
}
