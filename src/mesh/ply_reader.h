#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Velorn
{

class MemMappedFile;
class TextCursor;

enum class PlyStorage
{
	Ascii,
	BinaryLittleEndian,
	BinaryBigEndian
};

enum class PlyType
{
	Int8,
	UInt8,
	Int16,
	UInt16,
	Int32,
	UInt32,
	Float32,
	Float64
};

struct PlyElement;
struct PlyProperty;

// The binary value of type T at p; Swap when the file's byte order is not
// the host's (PlyReader::swapsBytes()).
template <bool Swap, class T>
T loadPlyValue(const char* p)
{
	unsigned char bytes[sizeof(T)];
	std::memcpy(bytes, p, sizeof(T));
	if(Swap)
		for(size_t i = 0; i < sizeof(T) / 2; ++i)
			std::swap(bytes[i], bytes[sizeof(T) - 1 - i]);
	T value;
	std::memcpy(&value, bytes, sizeof(T));
	return value;
}

// What a read callback is told about one value of the body.
struct PlyArgument
{
	const PlyElement* element;
	uint64_t instance_index;
	const PlyProperty* property;
	// The number of entries of a list property; 1 for a scalar property.
	uint32_t list_length;
	// -1 when value is the length of a list, else the entry's place in it.
	int64_t value_index;
	double value;
	void* user_data;
	long user_index;
};

// Returns false to stop reading; readBody() then fails. Exceptions pass
// through readBody() to its caller.
using PlyReadCallback = bool (*)(const PlyArgument& argument);

struct PlyProperty
{
	std::string name;
	bool is_list = false;
	// The type of a list's length; lists only, always an integer type.
	PlyType count_type = PlyType::UInt8;
	PlyType value_type = PlyType::Float32;
	PlyReadCallback callback = nullptr;
	void* user_data = nullptr;
	long user_index = 0;
};

struct PlyElement
{
	std::string name;
	uint64_t count = 0;
	std::vector<PlyProperty> properties;
};

// A reader of PLY files, ASCII and binary of either byte order, that hands
// each value of the body to a callback as a double. Used in this order:
// open, readHeader, setReadCallback for the properties wanted, readBody,
// close. Each step reports failure by its return value and keeps the reason
// in error(). Before the body is read, every count of the header is checked
// against the size of the data, so a hostile file fails at once; nothing is
// ever allocated by what a file claims.
class PlyReader
{
public:
	PlyReader();
	~PlyReader();
	PlyReader(const PlyReader&) = delete;
	PlyReader& operator=(const PlyReader&) = delete;

	// Maps the file at path into memory.
	bool open(const std::string& path);
	// Reads size bytes at data, which must outlive the reader.
	void openMemory(const char* data, size_t size);
	bool readHeader();
	// Sets the callback of a property of an element and returns the number
	// of instances of that element; 0 when there is no such property, and
	// when the counts of the header claim more than the data can hold (the
	// body then fails), so that the result is safe to reserve memory by.
	uint64_t setReadCallback(const std::string& element, const std::string& property, PlyReadCallback callback,
		void* user_data, long user_index);
	bool readBody();
	// The bytes of the body, for a caller that reads a binary body of a
	// layout it knows in bulk instead of through readBody(). False, with the
	// reason in error(), where readBody() would fail before its first value:
	// the header is not read, or its counts do not fit the data.
	bool body(const char*& begin, const char*& end);
	void close();

	const std::string& error() const { return error_message; }
	PlyStorage storage() const { return storage_kind; }
	// Whether the body is binary in the byte order other than the host's.
	bool swapsBytes() const;
	const std::vector<PlyElement>& elements() const { return element_list; }

private:
	bool fail(const std::string& message);
	bool parseHeaderLines(TextCursor& cursor);
	bool parseFormat(TextCursor& cursor);
	bool parseElement(TextCursor& cursor);
	bool parseProperty(TextCursor& cursor);
	// Why the counts cannot fit the data after the header; empty when they can.
	std::string countsProblem() const;
	template <class Source>
	bool readElements(Source& source);
	template <class Source>
	bool readProperty(Source& source, PlyArgument& argument, const PlyProperty& property);
	bool deliver(const PlyArgument& argument);

	std::unique_ptr<MemMappedFile> file;
	const char* data = nullptr;
	size_t size = 0;
	size_t body_offset = 0;
	bool has_format = false;
	bool header_read = false;
	bool counts_fit = false;
	PlyStorage storage_kind = PlyStorage::Ascii;
	std::vector<PlyElement> element_list;
	std::string error_message;
};

} // namespace Velorn
