#include "mesh/mesh_file.h"

#include "mesh/mesh.h"
#include "support/exceptions.h"
#include "support/platform.h"
#include "support/string_utils.h"

#include <cstdint>
#include <fstream>

// The file's words and floats are little-endian, and the vectors are copied
// between memory and file as they are, so this code assumes a little-endian
// host. A big-endian build would have to swap every word and element.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "The .vlmesh reader and writer assume a little-endian host."
#endif

namespace Velorn
{

namespace
{

// The bytes 6F 43 53 00: "oCS" and a zero byte.
const uint32_t MAGIC = 5456751;
const uint32_t WRITTEN_VERSION = 3;
const uint32_t MAX_STRING_LENGTH = 1024;
const uint32_t MAX_VECTOR_COUNT = 0x7FFFFFFF;

// The least number of bytes one element takes in the file.
const uint64_t MIN_STRING_BYTES = 4;
const uint64_t MIN_UV_SET_RECORD_BYTES = MIN_STRING_BYTES + 4;

// Small fields collect in the stream's buffer; the bulk vectors are handed
// over in one piece each, which the stream writes straight through.
class MeshFileWriter
{
public:
	explicit MeshFileWriter(std::ofstream& stream) : stream(stream) {}

	void writeUInt32(uint32_t word) { writeBytes(&word, sizeof(word)); }

	void writeCount(size_t count)
	{
		if(count > MAX_VECTOR_COUNT)
			throw VelornException("Vector too long.");
		writeUInt32((uint32_t)count);
	}

	void writeString(const String& s)
	{
		if(s.size() > MAX_STRING_LENGTH)
			throw VelornException("String too long.");
		writeUInt32((uint32_t)s.size());
		writeBytes(s.data(), s.size());
	}

	void writeStrings(const Vector<String>& strings)
	{
		writeCount(strings.size());
		for(const String& s : strings)
			writeString(s);
	}

	template <class T>
	void writeVector(const Vector<T>& v)
	{
		writeCount(v.size());
		writeBytes(v.data(), v.size() * sizeof(T));
	}

private:
	void writeBytes(const void* data, size_t n)
	{
		if(n != 0)
			stream.write(static_cast<const char*>(data), (std::streamsize)n);
	}

	std::ofstream& stream;
};

// Every read goes through readBytes(), which refuses to read past the end of
// the file and throws on a short read. Counts are checked against the bytes
// left in the file before a vector is sized, so that a corrupt count fails
// without allocating memory for elements that are not there.
class MeshFileReader
{
public:
	MeshFileReader(std::istream& stream, uint64_t file_size) : stream(stream), remaining(file_size) {}

	uint32_t readUInt32()
	{
		uint32_t word;
		readBytes(&word, sizeof(word));
		return word;
	}

	// A vector's element count, checked against the limit and against what
	// the rest of the file can hold.
	uint32_t readCount(uint64_t min_element_bytes)
	{
		const uint32_t count = readUInt32();
		if(count > MAX_VECTOR_COUNT)
			throw VelornException("Vector too long.");
		requireBytes(count * min_element_bytes);
		return count;
	}

	String readString()
	{
		const uint32_t length = readUInt32();
		if(length > MAX_STRING_LENGTH)
			throw VelornException("String too long.");
		char buffer[MAX_STRING_LENGTH];
		readBytes(buffer, length);
		return String(buffer, length);
	}

	void readStrings(Vector<String>& strings)
	{
		strings.resize(readCount(MIN_STRING_BYTES));
		for(String& s : strings)
			s = readString();
	}

	// Older writers stored named UV sets here; they carry nothing the mesh
	// keeps, so they are read for their checks and dropped.
	void skipUVSetRecords()
	{
		const uint32_t count = readCount(MIN_UV_SET_RECORD_BYTES);
		for(uint32_t i = 0; i < count; ++i)
		{
			readString();
			readUInt32();
		}
	}

	template <class T>
	void readVector(Vector<T>& v)
	{
		const uint32_t count = readCount(sizeof(T));
		v.resize(count);
		readBytes(v.data(), (uint64_t)count * sizeof(T));
	}

private:
	void requireBytes(uint64_t n) const
	{
		if(n > remaining)
			throw VelornException("Read failed.");
	}

	void readBytes(void* data, uint64_t n)
	{
		requireBytes(n);
		if(n == 0)
			return;
		stream.read(static_cast<char*>(data), (std::streamsize)n);
		if((uint64_t)stream.gcount() != n)
			throw VelornException("Read failed.");
		remaining -= n;
	}

	std::istream& stream;
	uint64_t remaining;
};

// The size of the open file. A stream that cannot tell it (a pipe, a file
// of the proc file system) fails here.
uint64_t fileSize(std::istream& stream, const std::string& path)
{
	stream.seekg(0, std::ios::end);
	const std::streamoff size = stream.tellg();
	stream.seekg(0, std::ios::beg);
	if(stream.fail())
		throw VelornException("Error while reading from '" + path + "'.");
	return (uint64_t)size;
}

uint32_t readUVLayout(MeshFileReader& in)
{
	const uint32_t layout = in.readUInt32();
	if(layout > 1)
		throw VelornException("Invalid uv_layout value " + toString(layout));
	return layout;
}

} // namespace

void writeMeshToFile(const std::string& path, const Mesh& mesh)
{
	mesh.checkSizes();

	std::ofstream stream;
	Platform::openFileStream(stream, path, std::ios::out | std::ios::binary | std::ios::trunc);
	if(!stream.is_open())
		throw VelornException("Failed to open file '" + path + "' for writing.");

	MeshFileWriter out(stream);
	out.writeUInt32(MAGIC);
	out.writeUInt32(WRITTEN_VERSION);
	out.writeUInt32(mesh.num_uv_mappings);
	out.writeStrings(mesh.used_materials);
	out.writeCount(0); // no UV set records
	out.writeVector(mesh.verts);
	out.writeVector(mesh.normals);
	out.writeUInt32(mesh.uv_layout);
	out.writeVector(mesh.uv_pairs);
	out.writeVector(mesh.triangles);
	out.writeVector(mesh.quads);

	// The stream's state is tested once, after the last buffered bytes have
	// gone out with the close.
	stream.close();
	if(stream.fail())
		throw VelornException("Error while writing to '" + path + "'.");
}

void readMeshFromFile(const std::string& path, Mesh& mesh)
{
	std::ifstream stream;
	Platform::openFileStream(stream, path, std::ios::in | std::ios::binary);
	if(!stream.is_open())
		throw VelornException("Failed to open file '" + path + "' for reading.");
	readMeshFromStream(stream, path, mesh);
}

void readMeshFromStream(std::istream& stream, const std::string& path, Mesh& mesh)
{
	MeshFileReader in(stream, fileSize(stream, path));
	if(in.readUInt32() != MAGIC)
		throw VelornException("Invalid magic number.");
	const uint32_t version = in.readUInt32();
	if(version < 1 || version > 3)
		throw VelornException("Unsupported format version.");

	mesh.num_uv_mappings = in.readUInt32();
	in.readStrings(mesh.used_materials);
	in.skipUVSetRecords();
	in.readVector(mesh.verts);
	in.readVector(mesh.normals);
	// Versions 1 and 2 have no uv_layout, version 1 no quads; a version 1
	// file leaves the mesh's quads as they were.
	mesh.uv_layout = version >= 3 ? readUVLayout(in) : 0;
	in.readVector(mesh.uv_pairs);
	in.readVector(mesh.triangles);
	if(version >= 2)
		in.readVector(mesh.quads);

	// The box, the radius and the material count are not stored: they are
	// always computed afresh.
	mesh.endOfModel();
}

} // namespace Velorn
