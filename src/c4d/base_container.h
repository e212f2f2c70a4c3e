#pragma once

#include "c4d/ge_data.h"

#include <cstdint>
#include <utility>
#include <vector>

// Typed values by numeric id, in the order the ids were first set; setting
// an id again replaces its value in place. A getter whose id is missing or
// holds another type returns the given default, as in the application.
// Lookups are linear: the containers of parameters hold tens of entries.
class BaseContainer
{
public:
	using Entry = std::pair<int32_t, GeData>;

	explicit BaseContainer(int32_t id_ = 0) : id(id_) {}

	int32_t GetId() const { return id; }
	void SetId(int32_t id_) { id = id_; }

	void SetData(int32_t key, const GeData& data);
	// The value under key, or a value of type DA_NIL.
	const GeData& GetData(int32_t key) const;
	// The value under key, or null.
	const GeData* GetDataPointer(int32_t key) const;
	// False when there was nothing under key.
	bool RemoveData(int32_t key);
	void FlushAll() { entries.clear(); }

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

	// The entries in insertion order.
	int32_t GetCount() const { return (int32_t)entries.size(); }
	std::vector<Entry>::const_iterator begin() const { return entries.begin(); }
	std::vector<Entry>::const_iterator end() const { return entries.end(); }

	// Replaces everything of dest, id included, by a copy of this container.
	void CopyTo(BaseContainer* dest) const { *dest = *this; }

	// Same id and the same values under the same keys, in whatever order.
	bool operator==(const BaseContainer& o) const;
	bool operator!=(const BaseContainer& o) const { return !(*this == o); }

private:
	int32_t id;
	std::vector<Entry> entries;
};
