#pragma once

#include "c4d/plugin_registry.h"

#include <initializer_list>

// Registers plug-ins of one kind under the ids, whose nodes get no defaults,
// so that tests can make and read nodes of plug-in types without the plug-in.
inline void registerPlainPlugins(PluginKind kind, std::initializer_list<int32_t> ids)
{
	for(int32_t id : ids)
	{
		PluginRecord record;
		record.kind = kind;
		record.id = id;
		record.name = String("Plain test plug-in");
		record.allocator = []() -> NodeData* { return new NodeData(); };
		PluginRegistry::get().add(std::move(record));
	}
}
