#include "mesh/format_decoder_obj.h"

#include "mesh/mesh.h"
#include "mesh/text_cursor.h"
#include "support/mem_mapped_file.h"
#include "support/string_utils.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <vector>

namespace Velorn
{

namespace
{

// Corners of a face beyond this many are skipped.
const size_t MAX_FACE_CORNERS = 256;

// One pass over the text, line by line. Vertices are not shared: every face
// corner adds a mesh vertex with the position (and normal) it names.
class ObjParser
{
public:
	ObjParser(const char* text, size_t size, Mesh& mesh, float scale) : cursor(text, text + size), mesh(mesh), scale(scale) {}

	void parse()
	{
		while(!cursor.atEnd())
		{
			++line;
			cursor.skipBlanks();
			parseStatement();
			cursor.skipLine();
		}
		mesh.endOfModel();
	}

private:
	void parseStatement()
	{
		if(cursor.skipToken("v", 1))
			positions.push_back(readVec3("Parse error while reading position on line ", scale));
		else if(cursor.skipToken("vn", 2))
			normals.push_back(readVec3("Parse error while reading normal on line ", 1.0f));
		else if(cursor.skipToken("vt", 2))
			parseTexCoord();
		else if(cursor.skipToken("f", 1))
			parseFace();
		else if(cursor.skipToken("usemtl", 6))
			parseUseMaterial();
	}

	float readFloat(const char* error)
	{
		float value;
		cursor.skipBlanks();
		if(!cursor.readFloat(value))
			throw ModelFormatDecoderExcep(error + toString(line));
		return value;
	}

	Vec3f readVec3(const char* error, float factor)
	{
		const float x = readFloat(error);
		const float y = readFloat(error);
		const float z = readFloat(error);
		return Vec3f{x * factor, y * factor, z * factor};
	}

	void parseTexCoord()
	{
		const char* error = "Parse error while reading tex coord on line ";
		const float u = readFloat(error);
		const float v = readFloat(error);
		mesh.setMaxNumUVMappings(1);
		uv.clear();
		uv.push_back(Vec2f{u, v});
		mesh.addUVs(uv);
	}

	void parseUseMaterial()
	{
		cursor.skipBlanks();
		selectMaterial(cursor.readToken());
	}

	void selectMaterial(const std::string& name)
	{
		const auto known = material_indices.find(name);
		if(known != material_indices.end())
		{
			current_material = known->second;
			return;
		}
		current_material = (int64_t)material_indices.size();
		material_indices.emplace(name, (uint32_t)current_material);
		mesh.addMaterialUsed(name);
	}

	[[noreturn]] void failIndex(const char* what, uint64_t index) const
	{
		throw ModelFormatDecoderExcep(std::string(what) + " (index '" + toString(index) + "' out of bounds, on line " + toString(line) + ")");
	}

	[[noreturn]] void failSyntax(const char* after) const
	{
		throw ModelFormatDecoderExcep(std::string("syntax error: no integer following '") + after + "' (line " + toString(line) + ")");
	}

	// Reads one index that counts from 1 and returns it counting from 0.
	uint64_t readIndex(const char* syntax_after, const char* invalid_message)
	{
		uint64_t index;
		if(!cursor.readUInt(index))
			failSyntax(syntax_after);
		if(index == 0)
			failIndex(invalid_message, index);
		return index - 1;
	}

	// One corner "p", "p/t", "p//n" or "p/t/n" into slot c of the index arrays.
	// A corner without a texture index leaves that slot as it was.
	void parseCorner(size_t c)
	{
		const uint64_t position = readIndex("f", "Position index invalid.");
		uint64_t normal = 0;
		corner_has_normal[c] = false;
		if(cursor.skipChar('/'))
		{
			uint64_t tex;
			if(cursor.readUInt(tex))
			{
				if(tex == 0)
					failIndex("Invalid tex coord index.", tex);
				// Saturated, so that an index beyond the range fails the mesh's check.
				uv_indices[c] = (uint32_t)std::min<uint64_t>(tex - 1, std::numeric_limits<uint32_t>::max());
			}
			if(cursor.skipChar('/'))
			{
				normal = readIndex("/", "Invalid normal index.");
				corner_has_normal[c] = true;
			}
		}
		if(position >= positions.size())
			failIndex("Position index invalid.", position + 1);
		if(corner_has_normal[c] && normal >= normals.size())
			failIndex("Normal index invalid.", normal + 1);
		position_indices[c] = (uint32_t)position;
		normal_indices[c] = (uint32_t)normal;
	}

	void parseFace()
	{
		size_t count = 0;
		for(;; ++count)
		{
			cursor.skipBlanks();
			if(cursor.atLineEnd() || count == MAX_FACE_CORNERS)
				break;
			parseCorner(count);
		}
		const uint32_t first_vertex = (uint32_t)mesh.verts.size();
		makeRoom(count);
		for(size_t c = 0; c < count; ++c)
			addCornerVertex(c);
		if(count < 3)
			throw ModelFormatDecoderExcep("Invalid number of vertices in face: " + toString((uint32_t)count) + " (line " + toString(line) + ")");
		if(current_material < 0)
			selectMaterial("default");
		addPolygons(first_vertex, count);
	}

	// The mesh's vectors grow by half of what they hold; doubling them here
	// instead halves the copying and the fresh memory touched while a large
	// model streams in.
	template <class T>
	static void makeRoom(Vector<T>& v, size_t extra)
	{
		if(v.size() + extra > v.capacity())
			v.reserve(std::max(v.size() + extra, 2 * v.capacity()));
	}

	void makeRoom(size_t corners)
	{
		makeRoom(mesh.verts, corners);
		if(corner_has_normal[0])
			makeRoom(mesh.normals, corners);
		if(corners == 4)
			makeRoom(mesh.quads, 1);
		else if(corners >= 3)
			makeRoom(mesh.triangles, corners - 2);
	}

	void addCornerVertex(size_t c)
	{
		const Vec3f& position = positions[position_indices[c]];
		if(corner_has_normal[c])
			mesh.addVertex(position, normals[normal_indices[c]]);
		else
			mesh.addVertex(position);
	}

	void addPolygons(uint32_t n, size_t count)
	{
		const uint32_t material = (uint32_t)current_material;
		if(count == 4)
		{
			mesh.addQuad({n, n + 1, n + 2, n + 3}, {uv_indices[0], uv_indices[1], uv_indices[2], uv_indices[3]}, material);
			return;
		}
		// Three corners are a fan of one triangle.
		for(uint32_t i = 2; i < count; ++i)
			mesh.addTriangle({n, n + i - 1, n + i}, {uv_indices[0], uv_indices[i - 1], uv_indices[i]}, material);
	}

	TextCursor cursor;
	Mesh& mesh;
	const float scale;
	uint64_t line = 0;
	int64_t current_material = -1;
	std::unordered_map<std::string, uint32_t> material_indices;
	std::vector<Vec3f> positions;
	std::vector<Vec3f> normals;
	Vector<Vec2f> uv;
	uint32_t position_indices[MAX_FACE_CORNERS] = {};
	uint32_t uv_indices[MAX_FACE_CORNERS] = {};
	uint32_t normal_indices[MAX_FACE_CORNERS] = {};
	bool corner_has_normal[MAX_FACE_CORNERS] = {};
};

} // namespace

void FormatDecoderObj::decodeText(const char* text, size_t size, Mesh& mesh, float scale)
{
	translateMeshErrors([&] { ObjParser(text, size, mesh, scale).parse(); });
}

void FormatDecoderObj::streamModel(const std::string& path, Mesh& mesh, float scale) const
{
	try
	{
		const MemMappedFile file(path);
		decodeText(static_cast<const char*>(file.fileData()), file.fileSize(), mesh, scale);
	}
	catch(const PlatformUtilsExcep& e)
	{
		throw ModelFormatDecoderExcep(e.what());
	}
}

} // namespace Velorn
