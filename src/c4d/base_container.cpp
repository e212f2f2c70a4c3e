#include "c4d/base_container.h"

#include "c4d/base_list.h"

#include <algorithm>
#include <vector>

namespace
{

// The entry under key in entries, const or not; the end when there is none.
template<typename Entries>
auto findKey(Entries& entries, int32_t key)
{
	return std::find_if(entries.begin(), entries.end(), [key](const BaseContainer::Entry& e) { return e.first == key; });
}

// The entry at index in entries, const or not; the end when there is none.
template<typename Entries>
auto atIndex(Entries& entries, int32_t index)
{
	if(index < 0 || (size_t)index >= entries.size())
		return entries.end();
	return std::next(entries.begin(), index);
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

BaseContainer* BaseContainer::GetContainerInstance(int32_t key)
{
	const auto found = findKey(entries, key);
	return found == entries.end() ? nullptr : found->second.GetContainerInstance();
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

GeData* BaseContainer::InsData(int32_t id, const GeData& data)
{
	return InsDataAfter(id, data, nullptr);
}

GeData* BaseContainer::InsDataAfter(int32_t id, const GeData& data, const GeData* after)
{
	auto pos = std::find_if(entries.begin(), entries.end(), [after](const Entry& e) { return &e.second == after; });
	if(pos != entries.end())
		++pos;
	return &entries.emplace(pos, id, data)->second;
}

int32_t BaseContainer::GetIndexId(int32_t index) const
{
	const auto found = atIndex(entries, index);
	return found == entries.end() ? -1 : found->first;
}

GeData* BaseContainer::GetIndexData(int32_t index)
{
	const auto found = atIndex(entries, index);
	return found == entries.end() ? nullptr : &found->second;
}

const GeData* BaseContainer::GetIndexData(int32_t index) const
{
	const auto found = atIndex(entries, index);
	return found == entries.end() ? nullptr : &found->second;
}

BaseContainer BaseContainer::GetContainer(int32_t key) const
{
	const BaseContainer* stored = GetData(key).GetContainer();
	return stored ? *stored : BaseContainer();
}

namespace
{

// The values under key, in their order.
std::vector<const GeData*> valuesOf(const std::list<BaseContainer::Entry>& entries, int32_t key)
{
	std::vector<const GeData*> values;
	for(const BaseContainer::Entry& e : entries)
		if(e.first == key)
			values.push_back(&e.second);
	return values;
}

} // namespace

bool BaseContainer::operator==(const BaseContainer& o) const
{
	if(id != o.id || entries.size() != o.entries.size())
		return false;
	return std::all_of(entries.begin(), entries.end(), [this, &o](const Entry& e) {
		const std::vector<const GeData*> mine = valuesOf(entries, e.first);
		const std::vector<const GeData*> theirs = valuesOf(o.entries, e.first);
		return std::equal(mine.begin(), mine.end(), theirs.begin(), theirs.end(),
			[](const GeData* a, const GeData* b) { return *a == *b; });
	});
}

BaseList2D* BaseContainer::GetLink(int32_t key, const BaseDocument*, int32_t instanceof) const
{
	BaseList2D* node = GetData(key).GetLink();
	return node && (instanceof == 0 || node->IsInstanceOf(instanceof)) ? node : nullptr;
}
