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
		if(!reader.readBody())
			throw ModelFormatDecoderExcep("read of body failed.");
		reader.close();
		mesh.endOfModel();
	});
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
