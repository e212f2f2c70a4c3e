#include "c4d/plugin_registry.h"

#include "c4d/base_list.h"
#include "c4d/base_material.h"
#include "c4d/base_object.h"
#include "c4d/base_shader.h"
#include "c4d/base_tag.h"
#include "c4d/camera_object.h"
#include "c4d/light_object.h"
#include "c4d/instance_object.h"
#include "c4d/node_defaults.h"
#include "c4d/primitives.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

#include <algorithm>


namespace
{

struct HostType
{
	NodeClass cls;
	int32_t type;
	// The values the host gives a new node of the type; null for none.
	void (*defaults)(BaseContainer&) = nullptr;
	// The info flags every node of the type has.
	int32_t info = 0;
};

// A new motion blur tag blurs over the whole exposure.
void setMotionBlurDefaults(BaseContainer& bc)
{
	bc.SetFloat(MOTIONBLURTAG_STRENGTH, 1.0);
}

// The host's own node types that documents and the plug-in use.
constexpr HostType hostTypes[] = {
	{NodeClass::Object, Opolygon},
	{NodeClass::Object, Olight, SetLightDefaults},
	{NodeClass::Object, Ocamera, SetCameraDefaults},
	{NodeClass::Object, Oinstance, SetInstanceDefaults},
	{NodeClass::Object, Osphere, SetSphereDefaults},
	{NodeClass::Object, Oplane, SetPlaneDefaults},
	{NodeClass::Object, Oskipped},
	{NodeClass::Object, Onull},
	{NodeClass::Object, Oemptycache},
	{NodeClass::Object, Ofloor, nullptr, OBJECT_CAMERADEPENDENT},
	{NodeClass::Object, Osky, nullptr, OBJECT_CAMERADEPENDENT},
	{NodeClass::Object, Ocube, SetCubeDefaults},
	{NodeClass::Object, Odisc, SetDiscDefaults},
	{NodeClass::Object, Ocylinder, SetCylinderDefaults},
	{NodeClass::Tag, Tpoint},
	{NodeClass::Tag, Tpolygon},
	{NodeClass::Tag, Tphong, SetPhongTagDefaults},
	{NodeClass::Tag, Ttexture, SetTextureTagDefaults},
	{NodeClass::Tag, Tmotionblur, setMotionBlurDefaults},
	{NodeClass::Tag, Tuvw},
	{NodeClass::Tag, Tpolygonselection},
	{NodeClass::Tag, Tpointselection},
	{NodeClass::Material, Mmaterial, SetStandardMaterialDefaults},
	{NodeClass::Shader, Xcolor},
	{NodeClass::Shader, Xbitmap},
};

const HostType* findHostType(NodeClass cls, int32_t type)
{
	for(const HostType& t : hostTypes)
		if(t.cls == cls && t.type == type)
			return &t;
	return nullptr;
}

// The plug-in kind whose nodes are of the class; commands and the like
// have no nodes.
PluginKind kindOf(NodeClass cls)
{
	switch(cls)
	{
	case NodeClass::Object:
		return PluginKind::Object;
	case NodeClass::Tag:
		return PluginKind::Tag;
	case NodeClass::Material:
		return PluginKind::Material;
	case NodeClass::VideoPost:
		return PluginKind::VideoPost;
	case NodeClass::Shader:
		return PluginKind::Shader;
	}
	return PluginKind::Command;
}

bool hasNodes(PluginKind kind)
{
	return kind == PluginKind::Tag || kind == PluginKind::Object || kind == PluginKind::VideoPost ||
		kind == PluginKind::Material || kind == PluginKind::Shader;
}

PluginRecord nodePlugin(PluginKind kind, int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description)
{
	PluginRecord record;
	record.kind = kind;
	record.id = id;
	record.name = name;
	record.info = info;
	record.allocator = allocator;
	record.description = description;
	return record;
}

} // namespace

PluginRegistry& PluginRegistry::get()
{
	static PluginRegistry instance;
	return instance;
}

bool PluginRegistry::add(PluginRecord record)
{
	if(hasNodes(record.kind) && !record.allocator)
		return false;
	std::lock_guard<std::mutex> hold(mutex);
	for(const auto& r : records)
		if(r->id == record.id)
			return false;
	records.push_back(std::make_unique<PluginRecord>(std::move(record)));
	return true;
}

const PluginRecord* PluginRegistry::find(int32_t id) const
{
	std::lock_guard<std::mutex> hold(mutex);
	for(const auto& r : records)
		if(r->id == id)
			return r.get();
	return nullptr;
}

std::vector<int32_t> PluginRegistry::ids() const
{
	std::lock_guard<std::mutex> hold(mutex);
	std::vector<int32_t> out;
	for(const auto& r : records)
		out.push_back(r->id);
	return out;
}

void PluginRegistry::remove(int32_t id)
{
	std::lock_guard<std::mutex> hold(mutex);
	records.erase(std::remove_if(records.begin(), records.end(), [&](const auto& r) { return r->id == id; }),
		records.end());
}

void PluginRegistry::clear()
{
	std::lock_guard<std::mutex> hold(mutex);
	records.clear();
}

bool RegisterTagPlugin(int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description, const Filename& icon, int32_t)
{
	PluginRecord record = nodePlugin(PluginKind::Tag, id, name, info, allocator, description);
	record.icon = icon;
	return PluginRegistry::get().add(std::move(record));
}

bool RegisterObjectPlugin(int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description, const Filename& icon, int32_t)
{
	PluginRecord record = nodePlugin(PluginKind::Object, id, name, info, allocator, description);
	record.icon = icon;
	return PluginRegistry::get().add(std::move(record));
}

bool RegisterVideoPostPlugin(int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description, int32_t, int32_t priority)
{
	PluginRecord record = nodePlugin(PluginKind::VideoPost, id, name, info, allocator, description);
	record.priority = priority;
	return PluginRegistry::get().add(std::move(record));
}

bool RegisterShaderPlugin(int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description, int32_t)
{
	return PluginRegistry::get().add(nodePlugin(PluginKind::Shader, id, name, info, allocator, description));
}

bool RegisterMaterialPlugin(int32_t id, const String& name, int32_t info, DataAllocator* allocator,
	const String& description, int32_t)
{
	return PluginRegistry::get().add(nodePlugin(PluginKind::Material, id, name, info, allocator, description));
}

bool RegisterCommandPlugin(int32_t id, const String& name, int32_t info, const Filename& icon, const String& help,
	CommandData* command)
{
	PluginRecord record;
	record.kind = PluginKind::Command;
	record.id = id;
	record.name = name;
	record.info = info;
	record.icon = icon;
	record.help = help;
	record.command.reset(command);
	return PluginRegistry::get().add(std::move(record));
}

bool IsKnownNodeType(NodeClass cls, int32_t type)
{
	if(findHostType(cls, type))
		return true;
	const PluginRecord* plugin = PluginRegistry::get().find(type);
	return plugin && plugin->kind == kindOf(cls);
}

bool InitNode(BaseList2D& node, NodeClass cls)
{
	if(const HostType* host = findHostType(cls, node.GetType()))
	{
		if(host->defaults)
			host->defaults(*node.GetDataInstance());
		node.SetInfo(host->info);
		ApplyNodeDefaults(node);
		return true;
	}
	const PluginRecord* plugin = PluginRegistry::get().find(node.GetType());
	if(!plugin || plugin->kind != kindOf(cls))
		return false;
	node.SetNodeData(std::unique_ptr<NodeData>(plugin->allocator()));
	NodeData* data = node.GetNodeData();
	return data && data->Init(&node);
}
