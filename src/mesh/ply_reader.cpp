#include "mesh/ply_reader.h"

#include "mesh/text_cursor.h"
#include "support/exceptions.h"
#include "support/mem_mapped_file.h"
#include "support/string_utils.h"

#include <limits>

namespace Velorn
{

namespace
{

struct TypeName
{
	const char* name;
	PlyType type;
};

// Both the classic names and the sized ones are in use.
const TypeName TYPE_NAMES[] = {{"char", PlyType::Int8}, {"int8", PlyType::Int8}, {"uchar", PlyType::UInt8},
	{"uint8", PlyType::UInt8}, {"short", PlyType::Int16}, {"int16", PlyType::Int16}, {"ushort", PlyType::UInt16},
	{"uint16", PlyType::UInt16}, {"int", PlyType::Int32}, {"int32", PlyType::Int32}, {"uint", PlyType::UInt32},
	{"uint32", PlyType::UInt32}, {"float", PlyType::Float32}, {"float32", PlyType::Float32},
	{"double", PlyType::Float64}, {"float64", PlyType::Float64}};

bool typeFromName(const std::string& name, PlyType& type)
{
	for(const TypeName& entry : TYPE_NAMES)
		if(name == entry.name)
		{
			type = entry.type;
			return true;
		}
	return false;
}

size_t typeSize(PlyType type)
{
	switch(type)
	{
	case PlyType::Int8:
	case PlyType::UInt8:
		return 1;
	case PlyType::Int16:
	case PlyType::UInt16:
		return 2;
	case PlyType::Int32:
	case PlyType::UInt32:
	case PlyType::Float32:
		return 4;
	case PlyType::Float64:
		return 8;
	}
	return 8;
}

bool isFloatType(PlyType type) { return type == PlyType::Float32 || type == PlyType::Float64; }

// The range of an integer type, for values read from text.
void integerRange(PlyType type, int64_t& min_out, int64_t& max_out)
{
	const int bits = (int)typeSize(type) * 8;
	const bool is_signed = type == PlyType::Int8 || type == PlyType::Int16 || type == PlyType::Int32;
	min_out = is_signed ? -((int64_t)1 << (bits - 1)) : 0;
	max_out = is_signed ? ((int64_t)1 << (bits - 1)) - 1 : ((int64_t)1 << bits) - 1;
}

std::string quoted(const std::string& s) { return "'" + s + "'"; }

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
const bool HOST_IS_BIG_ENDIAN = true;
#else
const bool HOST_IS_BIG_ENDIAN = false;
#endif

// Values of a binary body; Swap when the file's byte order is not the host's.
template <bool Swap>
class BinarySource
{
public:
	BinarySource(const char* begin, const char* end) : p(begin), end(end) {}

	bool read(PlyType type, double& value)
	{
		switch(type)
		{
		case PlyType::Int8: return load<int8_t>(value);
		case PlyType::UInt8: return load<uint8_t>(value);
		case PlyType::Int16: return load<int16_t>(value);
		case PlyType::UInt16: return load<uint16_t>(value);
		case PlyType::Int32: return load<int32_t>(value);
		case PlyType::UInt32: return load<uint32_t>(value);
		case PlyType::Float32: return load<float>(value);
		case PlyType::Float64: return load<double>(value);
		}
		return false;
	}

	bool canHold(uint64_t count, PlyType type) const { return count <= (uint64_t)(end - p) / typeSize(type); }

	bool skip(uint64_t count, PlyType type)
	{
		if(!canHold(count, type))
			return false;
		p += count * typeSize(type);
		return true;
	}

private:
	template <class T>
	bool load(double& value)
	{
		if((size_t)(end - p) < sizeof(T))
			return false;
		value = loadPlyValue<Swap, T>(p);
		p += sizeof(T);
		return true;
	}

	const char* p;
	const char* end;
};

// Values of an ASCII body: numbers separated by blanks and line ends.
// Integers must be whole numbers within the range of their type.
class AsciiSource
{
public:
	AsciiSource(const char* begin, const char* end) : cursor(begin, end), end(end) {}

	bool read(PlyType type, double& value)
	{
		cursor.skipWhitespace();
		if(isFloatType(type))
			return readFloat(type, value);
		int64_t integer, min, max;
		integerRange(type, min, max);
		if(!cursor.readInt(integer) || !cursor.atTokenEnd() || integer < min || integer > max)
			return false;
		value = (double)integer;
		return true;
	}

	// Each value takes at least one byte.
	bool canHold(uint64_t count, PlyType) const { return count <= (uint64_t)(end - cursor.position()); }

	bool skip(uint64_t count, PlyType type)
	{
		double ignored;
		for(uint64_t i = 0; i < count; ++i)
			if(!read(type, ignored))
				return false;
		return true;
	}

private:
	bool readFloat(PlyType type, double& value)
	{
		if(type == PlyType::Float64)
			return cursor.readDouble(value) && cursor.atTokenEnd();
		float f;
		if(!cursor.readFloat(f) || !cursor.atTokenEnd())
			return false;
		value = f;
		return true;
	}

	TextCursor cursor;
	const char* end;
};

// The fewest bytes one instance of the element takes in the body: in binary
// the sizes of its scalars and list lengths, in text one byte per property.
uint64_t minInstanceSize(const PlyElement& element, PlyStorage storage)
{
	if(storage == PlyStorage::Ascii)
		return element.properties.size();
	uint64_t bytes = 0;
	for(const PlyProperty& property : element.properties)
		bytes += typeSize(property.is_list ? property.count_type : property.value_type);
	return bytes;
}

} // namespace

PlyReader::PlyReader() = default;
PlyReader::~PlyReader() = default;

bool PlyReader::fail(const std::string& message)
{
	error_message = message;
	return false;
}

bool PlyReader::open(const std::string& path)
{
	close();
	try
	{
		file.reset(new MemMappedFile(path));
	}
	catch(const PlatformUtilsExcep& e)
	{
		return fail(e.what());
	}
	data = static_cast<const char*>(file->fileData());
	size = file->fileSize();
	return true;
}

void PlyReader::openMemory(const char* bytes, size_t n)
{
	close();
	data = bytes;
	size = n;
}

void PlyReader::close()
{
	file.reset();
	data = nullptr;
	size = 0;
	body_offset = 0;
	has_format = false;
	header_read = false;
	counts_fit = false;
	storage_kind = PlyStorage::Ascii;
	element_list.clear();
}

bool PlyReader::readHeader()
{
	TextCursor cursor(data, data + size);
	if(!cursor.skipToken("ply", 3))
		return fail("not a PLY file: the first line is not 'ply'");
	cursor.skipBlanks();
	cursor.skipChar('\r');
	if(!cursor.skipChar('\n'))
		return fail("not a PLY file: the first line is not 'ply'");
	if(!parseHeaderLines(cursor))
		return false;
	body_offset = (size_t)(cursor.position() - data);
	header_read = true;
	counts_fit = countsProblem().empty();
	return true;
}

bool PlyReader::parseHeaderLines(TextCursor& cursor)
{
	for(size_t line = 2; !cursor.atEnd(); ++line)
	{
		cursor.skipBlanks();
		const std::string keyword = cursor.readToken();
		bool ok = true;
		if(keyword == "end_header")
		{
			cursor.skipBlanks();
			cursor.skipChar('\r');
			if(!cursor.skipChar('\n') && !cursor.atEnd())
				return fail("unexpected text after 'end_header'");
			if(!has_format)
				return fail("the header has no 'format' line");
			return true;
		}
		if(keyword == "format")
			ok = parseFormat(cursor);
		else if(keyword == "element")
			ok = parseElement(cursor);
		else if(keyword == "property")
			ok = parseProperty(cursor);
		else if(keyword != "comment" && keyword != "obj_info")
			return fail("unknown header line " + quoted(keyword) + " (line " + toString((uint64_t)line) + ")");
		if(!ok)
			return fail(error_message + " (line " + toString((uint64_t)line) + ")");
		cursor.skipLine();
	}
	return fail("the header has no 'end_header' line");
}

bool PlyReader::parseFormat(TextCursor& cursor)
{
	cursor.skipBlanks();
	const std::string kind = cursor.readToken();
	cursor.skipBlanks();
	const std::string version = cursor.readToken();
	if(kind == "ascii")
		storage_kind = PlyStorage::Ascii;
	else if(kind == "binary_little_endian")
		storage_kind = PlyStorage::BinaryLittleEndian;
	else if(kind == "binary_big_endian")
		storage_kind = PlyStorage::BinaryBigEndian;
	else
		return fail("unknown format " + quoted(kind));
	if(version != "1.0")
		return fail("unsupported version " + quoted(version));
	if(has_format || !element_list.empty())
		return fail("'format' must come once, before the elements");
	has_format = true;
	return true;
}

bool PlyReader::parseElement(TextCursor& cursor)
{
	PlyElement element;
	cursor.skipBlanks();
	element.name = cursor.readToken();
	cursor.skipBlanks();
	if(element.name.empty() || !cursor.readUInt(element.count) || !cursor.atTokenEnd())
		return fail("an element needs a name and a count");
	if(element.count == std::numeric_limits<uint64_t>::max())
		return fail("count of element " + quoted(element.name) + " out of range");
	element_list.push_back(element);
	return true;
}

bool PlyReader::parseProperty(TextCursor& cursor)
{
	if(element_list.empty())
		return fail("a property before any element");
	PlyProperty property;
	cursor.skipBlanks();
	std::string type_name = cursor.readToken();
	if(type_name == "list")
	{
		property.is_list = true;
		cursor.skipBlanks();
		const std::string count_name = cursor.readToken();
		if(!typeFromName(count_name, property.count_type) || isFloatType(property.count_type))
			return fail("bad list length type " + quoted(count_name));
		cursor.skipBlanks();
		type_name = cursor.readToken();
	}
	if(!typeFromName(type_name, property.value_type))
		return fail("unknown property type " + quoted(type_name));
	cursor.skipBlanks();
	property.name = cursor.readToken();
	if(property.name.empty())
		return fail("a property needs a name");
	element_list.back().properties.push_back(property);
	return true;
}

std::string PlyReader::countsProblem() const
{
	uint64_t remaining = size - body_offset;
	for(const PlyElement& element : element_list)
	{
		const uint64_t instance_size = minInstanceSize(element, storage_kind);
		if(instance_size == 0)
			continue;
		if(element.count > remaining / instance_size)
			return "element " + quoted(element.name) + " claims " + toString(element.count) +
				" instances, more than the body of " + toString((uint64_t)(size - body_offset)) + " bytes can hold";
		remaining -= element.count * instance_size;
	}
	return "";
}

uint64_t PlyReader::setReadCallback(const std::string& element, const std::string& property, PlyReadCallback callback,
	void* user_data, long user_index)
{
	for(PlyElement& e : element_list)
		if(e.name == element)
			for(PlyProperty& p : e.properties)
				if(p.name == property)
				{
					p.callback = callback;
					p.user_data = user_data;
					p.user_index = user_index;
					return counts_fit ? e.count : 0;
				}
	return 0;
}

bool PlyReader::swapsBytes() const
{
	return storage_kind != PlyStorage::Ascii && (storage_kind == PlyStorage::BinaryBigEndian) != HOST_IS_BIG_ENDIAN;
}

bool PlyReader::body(const char*& begin, const char*& end)
{
	if(!header_read)
		return fail("the header has not been read");
	if(!counts_fit)
		return fail(countsProblem());
	begin = data + body_offset;
	end = data + size;
	return true;
}

bool PlyReader::readBody()
{
	const char* begin = nullptr;
	const char* end = nullptr;
	if(!body(begin, end))
		return false;
	if(storage_kind == PlyStorage::Ascii)
	{
		AsciiSource source(begin, end);
		return readElements(source);
	}
	if(swapsBytes())
	{
		BinarySource<true> source(begin, end);
		return readElements(source);
	}
	BinarySource<false> source(begin, end);
	return readElements(source);
}

inline bool PlyReader::deliver(const PlyArgument& argument) { return argument.property->callback(argument) || fail("stopped by the read callback"); }

template <class Source>
bool PlyReader::readElements(Source& source)
{
	for(const PlyElement& element : element_list)
	{
		// Without properties there is nothing to read, however many instances.
		if(element.properties.empty())
			continue;
		PlyArgument argument{};
		argument.element = &element;
		for(uint64_t i = 0; i < element.count; ++i)
		{
			argument.instance_index = i;
			for(const PlyProperty& property : element.properties)
				if(!readProperty(source, argument, property))
					return fail(error_message + " in property " + quoted(property.name) + " of element " +
						quoted(element.name) + ", instance " + toString(i));
		}
	}
	return true;
}

template <class Source>
bool PlyReader::readProperty(Source& source, PlyArgument& argument, const PlyProperty& property)
{
	argument.property = &property;
	argument.user_data = property.user_data;
	argument.user_index = property.user_index;
	if(!property.is_list)
	{
		argument.list_length = 1;
		argument.value_index = 0;
		if(!property.callback)
			return source.skip(1, property.value_type) || fail("bad or missing value");
		return (source.read(property.value_type, argument.value) || fail("bad or missing value")) && deliver(argument);
	}
	double length = 0;
	if(!source.read(property.count_type, length) || length < 0)
		return fail("bad or missing list length");
	if(!source.canHold((uint64_t)length, property.value_type))
		return fail("a list of " + toString((uint64_t)length) + " entries runs past the end of the data");
	if(!property.callback)
		return source.skip((uint64_t)length, property.value_type) || fail("bad or missing list entry");
	argument.list_length = (uint32_t)length;
	argument.value_index = -1;
	argument.value = length;
	if(!deliver(argument))
		return false;
	for(uint32_t j = 0; j < argument.list_length; ++j)
	{
		argument.value_index = j;
		if(!source.read(property.value_type, argument.value))
			return fail("bad or missing list entry");
		if(!deliver(argument))
			return false;
	}
	return true;
}

} // namespace Velorn
