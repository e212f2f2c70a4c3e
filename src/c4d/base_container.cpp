#include "c4d/base_container.h"

#include <algorithm>

namespace
{

// The entry under key in entries, const or not; the end when there is none.
template<typename Entries>
auto findKey(Entries& entries, int32_t key)
{
	return std::find_if(entries.begin(), entries.end(), [key](const BaseContainer::Entry& e) { return e.first == key; });
}

} // namespace

void BaseContainer::SetData(int32_t key, const GeData& data)
{
	const auto found = findKey(entries, key);
	if(found == entries.end())
		entries.emplace_back(key, data);
	else
		found->second = data;
}

const GeData* BaseContainer::GetDataPointer(int32_t key) const
{
	const auto found = findKey(entries, key);
	return found == entries.end() ? nullptr : &found->second;
}

const GeData& BaseContainer::GetData(int32_t key) const
{
	static const GeData nil;
	const GeData* data = GetDataPointer(key);
	return data ? *data : nil;
}

bool BaseContainer::RemoveData(int32_t key)
{
	const auto found = findKey(entries, key);
	if(found == entries.end())
		return false;
	entries.erase(found);
	return true;
}

BaseContainer BaseContainer::GetContainer(int32_t key) const
{
	const BaseContainer* stored = GetData(key).GetContainer();
	return stored ? *stored : BaseContainer();
}

bool BaseContainer::operator==(const BaseContainer& o) const
{
	if(id != o.id || entries.size() != o.entries.size())
		return false;
	return std::all_of(entries.begin(), entries.end(), [&o](const Entry& e) {
		const GeData* other = o.GetDataPointer(e.first);
		return other && *other == e.second;
	});
}
