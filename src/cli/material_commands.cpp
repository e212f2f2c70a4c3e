#include "cli/material_commands.h"

#include "cli/host_session.h"

#include "c4d/console.h"
#include "c4d/dialog_script.h"
#include "c4d/document_file.h"
#include "c4d/plugin_registry.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

namespace MaterialCommands
{
namespace
{

const int32_t ID_IMPORT_MATERIAL = 1022469;

} // namespace

std::string importMaterial(const ImportOptions& options)
{
	const HostSession session(options.plugins, options.document);
	const PluginRecord* record = PluginRegistry::get().find(ID_IMPORT_MATERIAL);
	if(!record || record->kind != PluginKind::Command || !record->command)
		throw Velorn::VelornException("The plug-in has no command \"Import .vlm\" (" +
			std::to_string(ID_IMPORT_MATERIAL) + ").");

	// Only what the import prints goes into the report, not the start-up.
	HostConsole::get().clear();
	DialogScript::get().clear();
	DialogScript::get().push(DialogAnswer::choose(Filename(String(Velorn::FileUtils::makeAbsolute(options.file)))));
	if(!record->command->Execute(&session.document()))
		throw Velorn::VelornException("The command \"Import .vlm\" failed.");

	std::string report;
	// The console lines (unless quiet) and the warnings dialog, in the order
	// they came.
	for(const HostConsole::Entry& entry : HostConsole::get().entries())
		if((entry.kind == HostConsole::Kind::Print && !HostSession::quiet()) || entry.kind == HostConsole::Kind::Message)
			report += entry.text.GetStdString() + "\n";
	const std::string target = options.out.empty() ? options.document : options.out;
	SaveDocumentFile(session.document(), Filename(String(target)));
	return report + "Saved " + target + "\n";
}

} // namespace MaterialCommands
