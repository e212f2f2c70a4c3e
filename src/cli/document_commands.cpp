#include "cli/document_commands.h"

#include "cli/host_session.h"

#include "c4d/base_shader.h"
#include "c4d/base_tag.h"
#include "c4d/command_runner.h"
#include "c4d/description.h"
#include "c4d/dialog_script.h"
#include "c4d/document_file.h"
#include "c4d/ge_dialog.h"
#include "c4d/plugin_registry.h"
#include "support/exceptions.h"
#include "support/string_utils.h"

#include <map>

namespace DocumentCommands
{
namespace
{

const PluginRecord* findCommand(const std::string& command)
{
	for(int32_t id : PluginRegistry::get().ids())
	{
		const PluginRecord* record = PluginRegistry::get().find(id);
		if(record->kind == PluginKind::Command && record->command &&
			(std::to_string(id) == command || record->name.GetStdString() == command ||
				record->help.GetStdString() == command))
			return record;
	}
	throw Velorn::VelornException("No command '" + command + "': give its id, its name or its help text.");
}

std::string undoText(const BaseDocument& doc)
{
	static const std::map<int32_t, const char*> kinds = {
		{UNDOTYPE_CHANGE, "change"}, {UNDOTYPE_CHANGE_SMALL, "small change"}, {UNDOTYPE_NEW, "new"},
		{UNDOTYPE_DELETE, "delete"}};
	std::string text;
	for(const std::vector<UndoEntry>& group : doc.GetUndoGroups())
	{
		text += "Undo group:\n";
		for(const UndoEntry& entry : group)
		{
			const auto kind = kinds.find(entry.type);
			text += "  " + std::string(kind == kinds.end() ? std::to_string(entry.type).c_str() : kind->second) +
				" '" + entry.name.GetStdString() + "' (type " + std::to_string(entry.nodeType) + ")\n";
		}
	}
	return text;
}

std::string number(double v)
{
	return Velorn::doubleToString(v);
}

std::string nameOf(const BaseList2D* node)
{
	return node ? "'" + node->GetName().GetStdString() + "'" : std::string("none");
}

// A value as the attribute manager shows it: a switch as on or off, a cycle
// with its label.
std::string valueText(const GeData& value, const DescriptionEntry& entry)
{
	switch(value.GetType())
	{
	case DA_LONG:
	{
		const int32_t v = value.GetInt32();
		if(entry.dtype == DTYPE_BOOL)
			return v ? "on" : "off";
		const BaseContainer cycle = entry.settings.GetContainer(DESC_CYCLE);
		const GeData* label = cycle.GetDataPointer(v);
		return std::to_string(v) + (label ? " (" + label->GetString().GetStdString() + ")" : std::string());
	}
	case DA_REAL:
		return number(value.GetFloat());
	case DA_VECTOR:
	{
		const Vector v = value.GetVector();
		return number(v.x) + " " + number(v.y) + " " + number(v.z);
	}
	case DA_STRING:
		return "\"" + value.GetString().GetStdString() + "\"";
	case DA_FILENAME:
		return "\"" + value.GetFilename().GetString().GetStdString() + "\"";
	case DA_ALIASLINK:
		return nameOf(value.GetLink());
	case DA_NIL:
		return "(not set)";
	default:
		return "(value of type " + std::to_string(value.GetType()) + ")";
	}
}

BaseList2D* findShader(BaseShader* sh, const String& name)
{
	for(; sh; sh = sh->GetNext())
	{
		if(sh->GetName() == name)
			return sh;
		if(BaseList2D* found = findShader(sh->GetFirstShader(), name))
			return found;
	}
	return nullptr;
}

BaseList2D* findObjectOrTag(BaseObject* op, const String& name)
{
	for(; op; op = op->GetNext())
	{
		if(op->GetName() == name)
			return op;
		for(BaseTag* tag = op->GetFirstTag(); tag; tag = tag->GetNext())
			if(tag->GetName() == name)
				return tag;
		if(BaseList2D* found = findObjectOrTag(op->GetDown(), name))
			return found;
	}
	return nullptr;
}

BaseList2D* findNode(const BaseDocument& doc, const std::string& node)
{
	const String name(node);
	for(BaseMaterial* mat = doc.GetFirstMaterial(); mat; mat = mat->GetNext())
		if(mat->GetName() == name)
			return mat;
	if(BaseList2D* found = findObjectOrTag(doc.GetFirstObject(), name))
		return found;
	for(BaseMaterial* mat = doc.GetFirstMaterial(); mat; mat = mat->GetNext())
		if(BaseList2D* found = findShader(mat->GetFirstShader(), name))
			return found;
	throw Velorn::VelornException("The document has no material, object, tag or shader named '" + node + "'.");
}

std::string descriptionText(BaseList2D& node, const Description& description)
{
	std::map<int32_t, int> depth;
	std::string text;
	for(const DescriptionEntry& entry : description.entries())
	{
		const int32_t id = entry.id[0].id;
		const int level = entry.parent ? depth[entry.parent] + 1 : 0;
		depth[id] = level;
		if(description.IsHidden(entry.id))
			continue;
		const std::string indent(2 * level, ' ');
		const std::string name = entry.settings.GetString(DESC_NAME).GetStdString();
		if(entry.dtype == DTYPE_GROUP)
		{
			text += indent + name + " [" + std::to_string(id) + "]\n";
			continue;
		}
		GeData value;
		node.GetParameter(entry.id, value);
		text += indent + name + " [" + std::to_string(id) + "] = " + valueText(value, entry) +
			(node.IsParameterEnabled(entry.id, &description) ? "" : " (disabled)") + "\n";
	}
	return text;
}

// "10011=256" as the action of typing 256 into the item 10011.
DialogAction setAction(const std::string& text)
{
	const size_t eq = text.find('=');
	bool error = eq == std::string::npos;
	const int32_t id = error ? 0 : String(text.substr(0, eq)).ToLong(&error);
	if(error)
		throw Velorn::VelornException("--set '" + text + "': expected ID=VALUE, such as 10011=256.");
	return DialogAction::set(id, String(text.substr(eq + 1)));
}

std::string requestText(const DialogRequest& request)
{
	std::string answer;
	if(!request.answered())
		answer = "cancelled";
	else if(request.kind == DialogRequest::Kind::Question)
		answer = request.answer.yes ? "yes" : "no";
	else
		answer = "chose " + request.answer.file.GetString().GetStdString();
	return "Asked \"" + request.title.GetStdString() + "\": " + answer + "\n";
}

std::string actionText(const DialogActionRecord& record)
{
	return "Dialog \"" + record.dialog.GetStdString() + "\": " + record.action.describe().GetStdString() +
		(record.refused.Content() ? " (" + record.refused.GetStdString() + ")" : std::string()) + "\n";
}

} // namespace

std::string runCommand(const CommandOptions& options)
{
	const HostSession session(options.plugins, options.document);
	const PluginRecord* record = findCommand(options.command);
	DialogScript& script = DialogScript::get();
	script.clear();
	for(bool yes : options.answers)
		script.push(DialogAnswer::press(yes));
	for(const std::string& file : options.files)
		script.push(DialogAnswer::choose(Filename(String(file))));
	for(const std::string& set : options.sets)
		script.pushAction(setAction(set));
	for(int32_t id : options.presses)
		script.pushAction(DialogAction::press(id));

	switch(RunCommand(*record, &session.document()))
	{
	case COMMANDRESULT::DISABLED:
		throw Velorn::VelornException("The command '" + record->name.GetStdString() +
			"' is disabled for this document: what it works on is not selected.");
	case COMMANDRESULT::FAILED:
		throw Velorn::VelornException("The command '" + record->name.GetStdString() + "' failed.");
	case COMMANDRESULT::OK:
		break;
	}
	// The dialogs the command left open run as long as something happens
	// in them; then the session closes them, as the application would on
	// quitting.
	RunOpenDialogs();
	CloseOpenDialogs();

	std::string report = "Ran '" + record->name.GetStdString() + "' (" + std::to_string(record->id) + ")\n";
	for(const DialogRequest& request : script.requests())
		report += requestText(request);
	for(const DialogActionRecord& action : script.actionsTaken())
		report += actionText(action);
	report += undoText(session.document());
	report += HostSession::consoleText();
	if(!options.out.empty())
	{
		SaveDocumentFile(session.document(), Filename(String(options.out)));
		report += "Saved " + options.out + "\n";
	}
	return report;
}

std::string describe(const std::string& plugins, const std::string& document, const std::string& node)
{
	const HostSession session(plugins, document);
	BaseList2D* found = findNode(session.document(), node);
	Description description;
	if(!found->GetDescription(&description, DESCFLAGS_DESC_NONE))
		throw Velorn::VelornException("'" + node + "' (type " + std::to_string(found->GetType()) +
			") has no description.");
	return descriptionText(*found, description);
}

} // namespace DocumentCommands
