#include "c4d/command_runner.h"

COMMANDRESULT RunCommand(const PluginRecord& record, BaseDocument* doc)
{
	if(!record.command || !(record.command->GetState(doc) & CMD_ENABLED))
		return COMMANDRESULT::DISABLED;
	return record.command->Execute(doc) ? COMMANDRESULT::OK : COMMANDRESULT::FAILED;
}
