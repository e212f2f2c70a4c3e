#pragma once

#include "c4d/base_list.h"
#include "c4d/c4d_string.h"
#include "c4d/filename.h"
#include "c4d/node_data.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

// The classes of nodes a type id can name. A type is known to the host when
// it is one of the host's own types of that class or a registered plug-in
// of the matching kind.
enum class NodeClass
{
	Object,
	Tag,
	Material,
	VideoPost,
	Shader,
};

// The kinds of plug-ins the host keeps registrations of.
enum class PluginKind
{
	Tag,
	Object,
	VideoPost,
	Material,
	Shader,
	Command,
	Message,
	CustomGui,
};

// One registration, as the plug-in gave it.
struct PluginRecord
{
	int32_t id = 0;
	PluginKind kind = PluginKind::Command;
	String name;
	int32_t info = 0;
	// The description resource of node kinds.
	String description;
	Filename icon;
	// The help text of commands.
	String help;
	int32_t priority = 0;
	// Makes the NodeData of node kinds.
	DataAllocator* allocator = nullptr;
	std::shared_ptr<CommandData> command;
	// The handler of message plug-ins (special_events.h).
	std::shared_ptr<class MessageData> message;
};

// Every plug-in registered with the host, in the order of registration.
// The registry outlives a module only until the host unloads it: the host
// clears it then, since allocators and commands live in the module's code.
class PluginRegistry
{
public:
	static PluginRegistry& get();

	// False when the id is taken or a node kind comes without an allocator;
	// the registry is then unchanged.
	bool add(PluginRecord record);
	// The registration of id; null when there is none.
	const PluginRecord* find(int32_t id) const;
	// The ids registered, in the order of registration.
	std::vector<int32_t> ids() const;
	// Takes the registration of id out; nothing when there is none.
	void remove(int32_t id);
	void clear();

private:
	mutable std::mutex mutex;
	std::vector<std::unique_ptr<PluginRecord>> records;
};

// The registration calls of the plug-in API. Icons are image files, usually
// in the module's res folder.
bool RegisterTagPlugin(int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description, const Filename& icon, int32_t disklevel);
bool RegisterObjectPlugin(int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description, const Filename& icon, int32_t disklevel);
bool RegisterVideoPostPlugin(int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description, int32_t disklevel, int32_t priority);
bool RegisterShaderPlugin(int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description, int32_t disklevel);
bool RegisterMaterialPlugin(int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description, int32_t disklevel);
// The registry takes command; it is deleted at once when the call fails.
bool RegisterCommandPlugin(int32_t id, const String& name, int32_t info, const Filename& icon, const String& help,
	CommandData* command);

// Whether type names a host type of the class or a plug-in of its kind.
bool IsKnownNodeType(NodeClass cls, int32_t type);
// What the host does with a node it has just made: the node gets the
// defaults of its host type, or its plug-in's NodeData with Init run.
// False when the type is unknown to the host or Init refuses.
bool InitNode(BaseList2D& node, NodeClass cls);

// Runs InitNode on a node just made; frees it and gives null when the host
// refuses it, as the application's Alloc calls do.
template<typename T>
T* InitOrFree(T* node, NodeClass cls)
{
	if(!InitNode(*node, cls))
		GeListNode::Free(node);
	return node;
}
