#pragma once

#include "c4d/ge_data.h"

#include <cstdint>
#include <list>
#include <utility>
#include <vector>

class BaseDocument;

// Typed values by numeric id, in the order the ids were first set; setting
// an id again replaces its value in place. A getter whose id is missing or
// holds another type returns the given default, as in the application.
// Lookups by id go through an index of each id's first entry: a material
// holds a few hundred parameters, which its export reads many times.
//
// An id may also stand more than once, as in menus, whose ids are the kinds
// of their entries: InsData and InsDataAfter add an entry whatever ids are
// there already, and everything that goes by id takes the first entry of
// that id. Entries stay where they are in memory until they are removed, so
// a pointer to one stays good while others are inserted.
class BaseContainer
{
public:
	using Entry = std::pair<int32_t, GeData>;
	using const_iterator = std::list<Entry>::const_iterator;

	explicit BaseContainer(int32_t id_ = 0) : id(id_) {}
	BaseContainer(const BaseContainer& o) : id(o.id), entries(o.entries) { reindex(); }
	BaseContainer& operator=(const BaseContainer& o);
	// A moved list keeps its elements, so the index stays good.
	BaseContainer(BaseContainer&&) = default;
	BaseContainer& operator=(BaseContainer&&) = default;

	int32_t GetId() const { return id; }
	void SetId(int32_t id_) { id = id_; }

	void SetData(int32_t key, const GeData& data);
	// The value under key, or a value of type DA_NIL.
	const GeData& GetData(int32_t key) const;
	// The value under key, or null.
	const GeData* GetDataPointer(int32_t key) const;
	// The container under key, to be changed in place; null when key holds
	// none. It stays good until its entry is removed or set again.
	BaseContainer* GetContainerInstance(int32_t key);
	// False when there was nothing under key.
	bool RemoveData(int32_t key);
	void FlushAll()
	{
		entries.clear();
		first.clear();
	}

	void SetBool(int32_t key, bool v) { SetData(key, GeData((int32_t)v)); }
	void SetInt32(int32_t key, int32_t v) { SetData(key, GeData(v)); }
	void SetFloat(int32_t key, double v) { SetData(key, GeData(v)); }
	void SetVector(int32_t key, const Vector& v) { SetData(key, GeData(v)); }
	void SetString(int32_t key, const String& v) { SetData(key, GeData(v)); }
	void SetFilename(int32_t key, const Filename& v) { SetData(key, GeData(v)); }
	void SetTime(int32_t key, const BaseTime& v) { SetData(key, GeData(v)); }
	void SetContainer(int32_t key, const BaseContainer& v) { SetData(key, GeData(v)); }
	void SetLink(int32_t key, BaseList2D* v) { SetData(key, GeData(v)); }

	bool GetBool(int32_t key, bool preset = false) const { return GetData(key).GetInt32(preset) != 0; }
	int32_t GetInt32(int32_t key, int32_t preset = 0) const { return GetData(key).GetInt32(preset); }
	double GetFloat(int32_t key, double preset = 0) const { return GetData(key).GetFloat(preset); }
	Vector GetVector(int32_t key, const Vector& preset = Vector()) const { return GetData(key).GetVector(preset); }
	String GetString(int32_t key, const String& preset = String()) const { return GetData(key).GetString(preset); }
	Filename GetFilename(int32_t key, const Filename& preset = Filename()) const { return GetData(key).GetFilename(preset); }
	BaseTime GetTime(int32_t key, const BaseTime& preset = BaseTime()) const { return GetData(key).GetTime(preset); }
	// A copy of the container under key; an empty container when there is none.
	BaseContainer GetContainer(int32_t key) const;
	BaseList2D* GetLink(int32_t key, BaseList2D* preset = nullptr) const { return GetData(key).GetLink(preset); }
	// The linked node when it is an instance of instanceof (any node for 0);
	// null otherwise, and for a deleted node. doc is accepted for the
	// application's signature.
	BaseList2D* GetLink(int32_t key, const BaseDocument* doc, int32_t instanceof = 0) const;

	// Adds an entry at the end, even when id is there already.
	GeData* InsData(int32_t id, const GeData& data);
	// Adds an entry right behind after, an entry of this container; at the
	// end when after is null or not one of its entries.
	GeData* InsDataAfter(int32_t id, const GeData& data, const GeData* after);

	// The entries in insertion order.
	int32_t GetCount() const { return (int32_t)entries.size(); }
	const_iterator begin() const { return entries.begin(); }
	const_iterator end() const { return entries.end(); }
	// The id of the entry at index; -1 when there is none.
	int32_t GetIndexId(int32_t index) const;
	// The value of the entry at index; null when there is none.
	GeData* GetIndexData(int32_t index);
	const GeData* GetIndexData(int32_t index) const;

	// Replaces everything of dest, id included, by a copy of this container.
	void CopyTo(BaseContainer* dest) const { *dest = *this; }

	// Same id and the same values under the same keys, in whatever order
	// (the entries of one key in the same order).
	bool operator==(const BaseContainer& o) const;
	bool operator!=(const BaseContainer& o) const { return !(*this == o); }

private:
	using Position = std::list<Entry>::iterator;

	// The first entry of key; the end when there is none.
	Position find(int32_t key) const;
	// The index slot of key, or where it would go.
	std::vector<std::pair<int32_t, Position>>::iterator slot(int32_t key) const;
	// Indexes the entry at pos when it is the first of its id.
	void index(Position pos);
	void reindex();

	int32_t id;
	std::list<Entry> entries;
	// Each id's first entry, sorted by id. A plug-in material holds about 200
	// parameters that its export reads many times: a binary search in one
	// block of memory finds them faster than a hash table of scattered
	// nodes.
	std::vector<std::pair<int32_t, Position>> first;
};
