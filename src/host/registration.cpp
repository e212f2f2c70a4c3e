#include "host/registration.h"

#include "c4d/resources.h"
#include "host/plugin_globals.h"

bool registerNamed(int32_t nameId, const std::function<bool(const String&)>& registration)
{
	const String name = GeLoadString(nameId);
	return !name.Content() || registration(name);
}

Filename moduleResourceFile(const char* name)
{
	const Filename dir = plugin_path ? *plugin_path : Filename();
	return dir + Filename("res") + Filename(name);
}

void setParameters(BaseContainer& data, std::initializer_list<std::pair<int32_t, GeData>> values)
{
	for(const auto& [id, value] : values)
		data.SetData(id, value);
}
