#pragma once

#include "c4d/base_container.h"

// Parameters of instance objects (Oinstance).
enum
{
	// Link: the object the instance repeats.
	INSTANCEOBJECT_LINK = 1001,
	// Bool: the renderer gets a reference to the linked geometry instead of
	// a copy of it.
	INSTANCEOBJECT_RENDERINSTANCE = 1002,
};

// Sets the parameters a new instance object has in the host: no link, no
// render instance.
void SetInstanceDefaults(BaseContainer& data);
