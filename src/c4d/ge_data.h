#pragma once

#include "c4d/base_time.h"
#include "c4d/filename.h"
#include "c4d/vector_matrix.h"

#include <cstdint>
#include <memory>
#include <variant>

class BaseContainer;
class BaseList2D;

// The data of a data type that the host or a plug-in defines beyond the
// kinds below (the picture of a preview gadget, say). A GeData holds it
// under its type id, shared and never changed.
class CustomDataType
{
public:
	virtual ~CustomDataType() = default;
};

// The kinds of value a GeData holds. Booleans are stored as longs (0 or 1).
enum
{
	DA_NIL = 0,
	DA_LONG = 15,
	DA_REAL = 19,
	DA_TIME = 22,
	DA_VECTOR = 23,
	DA_STRING = 130,
	DA_FILENAME = 131,
	DA_CONTAINER = 132,
	DA_ALIASLINK = 133,
};

// One typed value of a parameter. A link is only a pointer to a node that
// the document owns. A container is held as a shared, never changed copy, so
// copying a GeData stays cheap while keeping value semantics.
class GeData
{
public:
	GeData() = default;
	GeData(int32_t v) : value(v) {}
	GeData(double v) : value(v) {}
	GeData(const Vector& v) : value(v) {}
	GeData(const String& v) : value(v) {}
	GeData(const char* v) : value(String(v)) {}
	GeData(const Filename& v) : value(v) {}
	GeData(const BaseTime& v) : value(v) {}
	GeData(const BaseContainer& v);
	// A link to v; it reads as null once v is deleted.
	GeData(BaseList2D* v);
	// Custom data of the data type type; GetType answers type.
	GeData(int32_t type, std::shared_ptr<const CustomDataType> data);

	// One of the DA_ constants.
	int32_t GetType() const;

	// The value when it has the asked type, otherwise preset. Numbers
	// convert as in the application: a real read as a long is truncated
	// towards zero, a long read as a real is its value.
	int32_t GetInt32(int32_t preset = 0) const;
	double GetFloat(double preset = 0) const;
	Vector GetVector(const Vector& preset = Vector()) const { return get(preset); }
	String GetString(const String& preset = String()) const { return get(preset); }
	Filename GetFilename(const Filename& preset = Filename()) const { return get(preset); }
	BaseTime GetTime(const BaseTime& preset = BaseTime()) const { return get(preset); }
	// The linked node; null when the node has been deleted, preset when the
	// value is no link.
	BaseList2D* GetLink(BaseList2D* preset = nullptr) const;
	// The stored container, or null when the value is of another type.
	const BaseContainer* GetContainer() const;
	// The stored container to be changed in place, or null. Copies of this
	// value made before keep the container they had; copies made while the
	// pointer is in use share its changes.
	BaseContainer* GetContainerInstance();
	// The custom data when the value is of the data type type, else null.
	const CustomDataType* GetCustomDataType(int32_t type) const;

	// Same type and same value; containers compare by content, links by the
	// node they read as.
	bool operator==(const GeData& o) const;
	bool operator!=(const GeData& o) const { return !(*this == o); }

private:
	template<typename T>
	T get(const T& preset) const
	{
		const T* stored = std::get_if<T>(&value);
		return stored ? *stored : preset;
	}

	// A link keeps the node's liveness token beside the pointer.
	struct Link
	{
		BaseList2D* node;
		std::weak_ptr<const char> alive;

		// The node, or null once it has been deleted.
		BaseList2D* resolve() const { return alive.expired() ? nullptr : node; }
		bool operator==(const Link& o) const { return resolve() == o.resolve(); }
	};

	// Custom data compares by identity.
	struct Custom
	{
		int32_t type;
		std::shared_ptr<const CustomDataType> data;

		bool operator==(const Custom& o) const { return type == o.type && data == o.data; }
	};

	std::variant<std::monostate, int32_t, double, Vector, String, Filename, BaseTime,
		std::shared_ptr<const BaseContainer>, Link, Custom> value;
};
