#include "mesh/format_decoder_ply.h"

#include "mesh/mesh.h"
#include "mesh/ply_reader.h"

#include <limits>

namespace Velorn
{

namespace
{

// What the callbacks of one decoding share. It lives on the stack of that
// decoding, so decoders may run at once.
struct PlyDecodeState
{
	Mesh& mesh;
	float scale;
	float position[3];
	uint32_t corners[3];
};

// x, y, z come with the user indices 0, 1, 2; the vertex is added at z.
bool readVertexValue(const PlyArgument& argument)
{
	PlyDecodeState& state = *static_cast<PlyDecodeState*>(argument.user_data);
	state.position[argument.user_index] = (float)argument.value;
	if(argument.user_index == 2)
		state.mesh.addVertex(Vec3f{state.position[0] * state.scale, state.position[1] * state.scale, state.position[2] * state.scale});
	return true;
}

[[noreturn]] void bodyFailed() { throw ModelFormatDecoderExcep("read of body failed."); }

// The index rounded to the nearest whole number, halves away from zero.
// Values no vertex index can have (negative, too large, NaN) become the
// largest index, which the mesh rejects as out of bounds.
uint32_t toVertexIndex(double value)
{
	if(!(value > -0.5 && value < (double)std::numeric_limits<uint32_t>::max() + 0.5))
		return std::numeric_limits<uint32_t>::max();
	if(value < 0)
		return 0;
	const uint64_t whole = (uint64_t)value;
	return (uint32_t)(whole + (value - (double)whole >= 0.5 ? 1 : 0));
}

// Entries 0 to 2 of a face's list; the triangle is added at the third, and
// later entries are ignored.
bool readFaceIndex(const PlyArgument& argument)
{
	if(argument.value_index < 0 || argument.value_index > 2)
		return true;
	PlyDecodeState& state = *static_cast<PlyDecodeState*>(argument.user_data);
	state.corners[argument.value_index] = toVertexIndex(argument.value);
	if(argument.value_index == 2)
		state.mesh.addTriangle(state.corners, {0, 0, 0}, 0);
	return true;
}

bool isProperty(const PlyProperty& property, const char* name, PlyType type)
{
	return !property.is_list && property.name == name && property.value_type == type;
}

// Exactly float x, y, z, in that order.
bool isBulkVertex(const PlyElement& element)
{
	const std::vector<PlyProperty>& p = element.properties;
	return element.name == "vertex" && p.size() == 3 && isProperty(p[0], "x", PlyType::Float32) &&
		isProperty(p[1], "y", PlyType::Float32) && isProperty(p[2], "z", PlyType::Float32);
}

// Exactly a list of uchar length and int or uint entries named vertex_indices.
bool isBulkFace(const PlyElement& element)
{
	if(element.name != "face" || element.properties.size() != 1)
		return false;
	const PlyProperty& p = element.properties[0];
	return p.is_list && p.name == "vertex_indices" && p.count_type == PlyType::UInt8 &&
		(p.value_type == PlyType::Int32 || p.value_type == PlyType::UInt32);
}

// Reads the body of a file that FormatDecoderPLY::readsInBulk accepts,
// straight from its bytes, into the mesh by the same steps as the
// callbacks: the same vertices, the same triangles, and a failure at the
// same face. The header's counts fit the data, so the vertices are all
// there; each face list is checked before its entries are read.
template <bool Swap>
class BulkBody
{
public:
	BulkBody(const char* begin, const char* end, PlyDecodeState& state) : p(begin), end(end), state(state) {}

	void read(const std::vector<PlyElement>& elements)
	{
		readVertices(elements[0].count);
		if(elements.size() == 1)
			return;
		if(elements[1].properties[0].value_type == PlyType::Int32)
			readFaces<int32_t>(elements[1].count);
		else
			readFaces<uint32_t>(elements[1].count);
	}

private:
	void readVertices(uint64_t count)
	{
		const float scale = state.scale;
		for(uint64_t i = 0; i < count; ++i, p += 3 * sizeof(float))
			state.mesh.addVertex(Vec3f{loadPlyValue<Swap, float>(p) * scale,
				loadPlyValue<Swap, float>(p + sizeof(float)) * scale, loadPlyValue<Swap, float>(p + 2 * sizeof(float)) * scale});
	}

	// Entry is int32_t or uint32_t.
	template <class Entry>
	void readFaces(uint64_t count)
	{
		for(uint64_t i = 0; i < count; ++i)
		{
			if(p == end)
				bodyFailed();
			const size_t length = (uint8_t)*p++;
			if(length > (size_t)(end - p) / sizeof(Entry))
				bodyFailed();
			if(length >= 3)
			{
				for(size_t c = 0; c < 3; ++c)
					state.corners[c] = vertexIndex(loadPlyValue<Swap, Entry>(p + c * sizeof(Entry)));
				state.mesh.addTriangle(state.corners, {0, 0, 0}, 0);
			}
			p += length * sizeof(Entry);
		}
	}

	// As toVertexIndex gives for the entry as a double: a negative index
	// becomes the largest.
	static uint32_t vertexIndex(int32_t entry)
	{
		return entry < 0 ? std::numeric_limits<uint32_t>::max() : (uint32_t)entry;
	}
	static uint32_t vertexIndex(uint32_t entry) { return entry; }

	const char* p;
	const char* end;
	PlyDecodeState& state;
};

void readBulkBody(PlyReader& reader, PlyDecodeState& state)
{
	const char* begin = nullptr;
	const char* end = nullptr;
	if(!reader.body(begin, end))
		bodyFailed();
	if(reader.swapsBytes())
		BulkBody<true>(begin, end, state).read(reader.elements());
	else
		BulkBody<false>(begin, end, state).read(reader.elements());
}

// Every PLY mesh has the one material "default" and no UVs.
void startMesh(Mesh& mesh)
{
	mesh.setMaxNumUVMappings(0);
	mesh.addMaterialUsed("default");
}

} // namespace

void FormatDecoderPLY::decode(PlyReader& reader, Mesh& mesh, float scale)
{
	if(!reader.readHeader())
		throw ModelFormatDecoderExcep("could not read header.");
	PlyDecodeState state{mesh, scale, {0, 0, 0}, {0, 0, 0}};
	const char* axes[] = {"x", "y", "z"};
	uint64_t vertex_count = 0;
	for(long i = 0; i < 3; ++i)
		vertex_count = reader.setReadCallback("vertex", axes[i], readVertexValue, &state, i);
	const uint64_t face_count = reader.setReadCallback("face", "vertex_indices", readFaceIndex, &state, 0);
	// The counts are checked against the file's size, so this reserves no
	// more than a few times the file's bytes, and saves the copies of growth.
	mesh.verts.reserve(mesh.verts.size() + vertex_count);
	mesh.triangles.reserve(mesh.triangles.size() + face_count);
	translateMeshErrors([&] {
		if(readsInBulk(reader))
			readBulkBody(reader, state);
		else if(!reader.readBody())
			bodyFailed();
		reader.close();
		mesh.endOfModel();
	});
}

bool FormatDecoderPLY::readsInBulk(const PlyReader& reader)
{
	const std::vector<PlyElement>& elements = reader.elements();
	return reader.storage() != PlyStorage::Ascii && (elements.size() == 1 || elements.size() == 2) &&
		isBulkVertex(elements[0]) && (elements.size() == 1 || isBulkFace(elements[1]));
}

void FormatDecoderPLY::decodeBytes(const char* bytes, size_t size, Mesh& mesh, float scale)
{
	startMesh(mesh);
	PlyReader reader;
	reader.openMemory(bytes, size);
	decode(reader, mesh, scale);
}

void FormatDecoderPLY::streamModel(const std::string& path, Mesh& mesh, float scale) const
{
	startMesh(mesh);
	PlyReader reader;
	if(!reader.open(path))
		throw ModelFormatDecoderExcep("could not open file '" + path + "' for reading.");
	decode(reader, mesh, scale);
}

} // namespace Velorn
