#include "host/registration.h"

#include "c4d/plugin_registry.h"
#include "c4d/resources.h"
#include "host/plugin_globals.h"

bool registerNamed(int32_t nameId, const std::function<bool(const String&)>& registration)
{
	const String name = GeLoadString(nameId);
	return !name.Content() || registration(name);
}

bool registerTag(int32_t id, int32_t nameId, DataAllocator* allocator, const char* description, const char* icon)
{
	return registerNamed(nameId, [&](const String& name) {
		return RegisterTagPlugin(id, name, TAG_VISIBLE, allocator, String(description), moduleResourceFile(icon), 0);
	});
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
