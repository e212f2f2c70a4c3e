#include "c4d/base_container.h"

#include "c4d/base_list.h"

#include <algorithm>
#include <vector>

namespace
{

// The entry at index in entries, const or not; the end when there is none.
template<typename Entries>
auto atIndex(Entries& entries, int32_t index)
{
	if(index < 0 || (size_t)index >= entries.size())
		return entries.end();
	return std::next(entries.begin(), index);
}

} // namespace

BaseContainer& BaseContainer::operator=(const BaseContainer& o)
{
	if(this != &o)
	{
		id = o.id;
		entries = o.entries;
		reindex();
	}
	return *this;
}

std::vector<std::pair<int32_t, BaseContainer::Position>>::iterator BaseContainer::slot(int32_t key) const
{
	// The index is not changed through the slot of a const lookup.
	auto& index = const_cast<std::vector<std::pair<int32_t, Position>>&>(first);
	return std::lower_bound(
		index.begin(), index.end(), key, [](const std::pair<int32_t, Position>& e, int32_t k) { return e.first < k; });
}

BaseContainer::Position BaseContainer::find(int32_t key) const
{
	const auto found = slot(key);
	// The list is not changed through the position of a const lookup.
	return found == first.end() || found->first != key ? const_cast<std::list<Entry>&>(entries).end()
														: found->second;
}

void BaseContainer::index(Position pos)
{
	const auto at = slot(pos->first);
	if(at == first.end() || at->first != pos->first)
	{
		first.emplace(at, pos->first, pos);
		return;
	}
	// An id that stands more than once (menus): the one nearer the front wins.
	for(auto it = entries.begin(); it != entries.end(); ++it)
	{
		if(it == at->second)
			return;
		if(it == pos)
		{
			at->second = pos;
			return;
		}
	}
}

void BaseContainer::reindex()
{
	first.clear();
	first.reserve(entries.size());
	for(auto it = entries.begin(); it != entries.end(); ++it)
		first.emplace_back(it->first, it);
	// Sorting keeps the entries of one id in list order, so unique keeps the
	// first of each.
	std::stable_sort(first.begin(), first.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
	first.erase(std::unique(first.begin(), first.end(), [](const auto& a, const auto& b) { return a.first == b.first; }),
		first.end());
}

void BaseContainer::SetData(int32_t key, const GeData& data)
{
	const Position found = find(key);
	if(found == entries.end())
		index(entries.emplace(entries.end(), key, data));
	else
		found->second = data;
}

const GeData* BaseContainer::GetDataPointer(int32_t key) const
{
	const Position found = find(key);
	return found == entries.end() ? nullptr : &found->second;
}

BaseContainer* BaseContainer::GetContainerInstance(int32_t key)
{
	const Position found = find(key);
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
	const Position found = find(key);
	if(found == entries.end())
		return false;
	// The next entry of the id, if any, becomes its first.
	const Position next = std::find_if(std::next(found), entries.end(), [key](const Entry& e) { return e.first == key; });
	const auto at = slot(key);
	if(next == entries.end())
		first.erase(at);
	else
		at->second = next;
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
	const Position added = entries.emplace(pos, id, data);
	index(added);
	return &added->second;
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

// The values by id, each id's values in their order.
std::vector<std::pair<int32_t, const GeData*>> valuesById(const std::list<BaseContainer::Entry>& entries)
{
	std::vector<std::pair<int32_t, const GeData*>> values;
	values.reserve(entries.size());
	for(const BaseContainer::Entry& e : entries)
		values.emplace_back(e.first, &e.second);
	std::stable_sort(values.begin(), values.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
	return values;
}

} // namespace

bool BaseContainer::operator==(const BaseContainer& o) const
{
	if(id != o.id || entries.size() != o.entries.size())
		return false;
	const auto mine = valuesById(entries);
	const auto theirs = valuesById(o.entries);
	return std::equal(mine.begin(), mine.end(), theirs.begin(),
		[](const auto& a, const auto& b) { return a.first == b.first && *a.second == *b.second; });
}

BaseList2D* BaseContainer::GetLink(int32_t key, const BaseDocument*, int32_t instanceof) const
{
	BaseList2D* node = GetData(key).GetLink();
	return node && (instanceof == 0 || node->IsInstanceOf(instanceof)) ? node : nullptr;
}
