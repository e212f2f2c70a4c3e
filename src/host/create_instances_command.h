#pragma once

#include "c4d/node_data.h"

// "Create Instances": an instance object for each selected object, at the
// object's place and with its name, or one empty instance when nothing is
// selected. One undo step.
class CreateInstancesCommand : public CommandData
{
public:
	bool Execute(BaseDocument* doc) override;
};

bool RegisterCreateInstancesCommand();
