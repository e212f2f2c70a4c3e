#include "c4d/description.h"

#include "c4d/console.h"
#include "c4d/description_file.h"
#include "c4d/plugin_registry.h"
#include "c4d/resources.h"

#include <algorithm>

bool Description::LoadDescription(int32_t type)
{
	const PluginRecord* record = PluginRegistry::get().find(type);
	if(!record || !record->description.Content())
		return false;
	String failure;
	const std::shared_ptr<const DescriptionFile> file = HostResources::get().description(record->description, failure);
	if(failure.Content())
		GePrint("Cannot load the description '" + record->description + "': " + failure);
	if(!file)
		return false;
	items = file->resolve();
	return true;
}

BaseContainer* Description::GetParameterI(const DescID& id, AtomArray*)
{
	const auto found = std::find_if(items.begin(), items.end(), [&](const DescriptionEntry& e) { return e.id == id; });
	return found == items.end() ? nullptr : &found->settings;
}

const DescriptionEntry* Description::find(const DescID& id) const
{
	const auto found = std::find_if(items.begin(), items.end(), [&](const DescriptionEntry& e) { return e.id == id; });
	return found == items.end() ? nullptr : &*found;
}

bool Description::SetParameter(const DescID& id, int32_t dtype, const BaseContainer& settings, const DescID& group)
{
	if(id[0].id == 0)
		return false;
	DescriptionEntry entry{id, dtype, settings, group[0].id};
	entry.settings.SetInt32(DESC_PARENTGROUP, entry.parent);
	const auto same = std::find_if(items.begin(), items.end(), [&](const DescriptionEntry& e) { return e.id == id; });
	if(same != items.end())
	{
		*same = std::move(entry);
		return true;
	}
	// Behind the last entry that sits in the group, at any depth, so that
	// the group's entries stay together; behind the group itself when it
	// is empty, and at the end for the top or a group the description
	// does not hold.
	auto at = items.end();
	if(entry.parent != 0)
	{
		for(auto it = items.begin(); it != items.end(); ++it)
			if(it->id == group || isInside(*it, entry.parent))
				at = it + 1;
	}
	items.insert(at, std::move(entry));
	return true;
}

std::vector<DescID> Description::groupEntries(const DescID& group) const
{
	std::vector<DescID> ids;
	for(const DescriptionEntry& e : items)
		if(e.parent == group[0].id && e.id != group)
			ids.push_back(e.id);
	return ids;
}

bool Description::IsHidden(const DescID& id) const
{
	const DescriptionEntry* entry = find(id);
	// A group that names an ancestor as its own parent must not loop: no
	// chain is longer than the description.
	for(size_t depth = 0; entry && depth <= items.size(); ++depth)
	{
		if(entry->settings.GetBool(DESC_HIDE))
			return true;
		entry = entry->parent ? find(entry->parent) : nullptr;
	}
	return false;
}

bool Description::isInside(const DescriptionEntry& entry, int32_t group) const
{
	const DescriptionEntry* at = &entry;
	for(size_t depth = 0; at && depth <= items.size(); ++depth)
	{
		if(at->parent == group)
			return true;
		at = at->parent ? find(at->parent) : nullptr;
	}
	return false;
}

BaseContainer GetCustomDataTypeDefault(int32_t)
{
	// The same for every kind here: the host's attribute manager draws no
	// widgets, so no kind needs settings of its own to start with.
	BaseContainer settings;
	settings.SetString(DESC_NAME, String());
	settings.SetString(DESC_SHORT_NAME, String());
	settings.SetBool(DESC_HIDE, false);
	return settings;
}
