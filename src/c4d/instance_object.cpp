#include "c4d/instance_object.h"

void SetInstanceDefaults(BaseContainer& data)
{
	data.SetLink(INSTANCEOBJECT_LINK, nullptr);
	data.SetBool(INSTANCEOBJECT_RENDERINSTANCE, false);
}
