// Decoding speed of the model decoders: an OBJ file of one million quads
// with UVs and normals, beside a plain read of the file and beside
// tinyobjloader on the same file, and a binary PLY file of one million
// triangles beside a plain read of it. Files go to /tmp and are removed at
// the end.
#include "mesh/format_decoder_obj.h"
#include "mesh/format_decoder_ply.h"
#include "mesh/mesh.h"
#include "support/platform.h"

#include <benchmark/benchmark.h>
#include <tiny_obj_loader.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace Velorn;

const char* OBJ_PATH = "/tmp/velorn_decoder_bench.obj";
const char* PLY_PATH = "/tmp/velorn_decoder_bench.ply";

// The OBJ grid: 1000 x 1000 quads over 1001 x 1001 corners, each corner
// with its own position, UV and normal, so every face corner reads p/t/n.
const int OBJ_QUADS_PER_SIDE = 1000;
// The PLY grid: 1000 x 500 quads of two triangles, over 1001 x 501 corners.
const int PLY_COLUMNS = 1000;
const int PLY_ROWS = 500;

// The size of the file; fails the program when it cannot be written.
int64_t writeWith(const char* path, void (*write)(std::FILE*))
{
	std::FILE* f = Platform::openFile(path, "wb");
	if(!f)
	{
		std::fprintf(stderr, "cannot write %s\n", path);
		std::exit(1);
	}
	write(f);
	const int64_t size = (int64_t)std::ftell(f);
	std::fclose(f);
	return size;
}

void writeObj(std::FILE* f)
{
	const int n = OBJ_QUADS_PER_SIDE + 1;
	for(int j = 0; j < n; ++j)
		for(int i = 0; i < n; ++i)
			std::fprintf(f, "v %.6f %.6f %.6f\n", i * 0.01, j * 0.01, 0.001 * ((i * 7 + j * 3) % 100));
	for(int j = 0; j < n; ++j)
		for(int i = 0; i < n; ++i)
			std::fprintf(f, "vt %.6f %.6f\n", (double)i / (n - 1), (double)j / (n - 1));
	for(int j = 0; j < n; ++j)
		for(int i = 0; i < n; ++i)
			std::fprintf(f, "vn %.6f %.6f %.6f\n", 0.01 * (i % 10), 0.01 * (j % 10), 1.0);
	std::fprintf(f, "usemtl grid\n");
	for(int j = 0; j < n - 1; ++j)
		for(int i = 0; i < n - 1; ++i)
		{
			const int a = j * n + i + 1, b = a + 1, c = a + n + 1, d = a + n;
			std::fprintf(f, "f %d/%d/%d %d/%d/%d %d/%d/%d %d/%d/%d\n", a, a, a, b, b, b, c, c, c, d, d, d);
		}
}

template <class T>
void writeRaw(std::FILE* f, T value)
{
	std::fwrite(&value, sizeof(T), 1, f);
}

void writePly(std::FILE* f)
{
	const int columns = PLY_COLUMNS + 1, rows = PLY_ROWS + 1;
	std::fprintf(f,
		"ply\nformat binary_little_endian 1.0\nelement vertex %d\nproperty float x\nproperty float y\nproperty float z\n"
		"element face %d\nproperty list uchar int vertex_indices\nend_header\n",
		columns * rows, 2 * PLY_COLUMNS * PLY_ROWS);
	for(int j = 0; j < rows; ++j)
		for(int i = 0; i < columns; ++i)
		{
			writeRaw(f, i * 0.01f);
			writeRaw(f, j * 0.01f);
			writeRaw(f, 0.001f * ((i * 7 + j * 3) % 100));
		}
	for(int j = 0; j < PLY_ROWS; ++j)
		for(int i = 0; i < PLY_COLUMNS; ++i)
		{
			const int32_t a = j * columns + i, b = a + 1, c = a + columns + 1, d = a + columns;
			const int32_t triangles[2][3] = {{a, b, c}, {a, c, d}};
			for(const auto& t : triangles)
			{
				writeRaw(f, (uint8_t)3);
				for(int32_t index : t)
					writeRaw(f, index);
			}
		}
}

int64_t objFileSize()
{
	static const int64_t size = writeWith(OBJ_PATH, writeObj);
	return size;
}

int64_t plyFileSize()
{
	static const int64_t size = writeWith(PLY_PATH, writePly);
	return size;
}

// Rates are of the file's bytes; the size itself is shown too.
void reportBytes(benchmark::State& state, int64_t size)
{
	state.SetBytesProcessed(state.iterations() * size);
	state.counters["file_bytes"] = (double)size;
}

// Runs once per iteration until it fails; once returns the failure's text,
// empty on success.
template <class F>
void runEach(benchmark::State& state, int64_t size, F&& once)
{
	for(auto _ : state)
	{
		const std::string error = once();
		if(!error.empty())
		{
			state.SkipWithError(error.c_str());
			break;
		}
	}
	reportBytes(state, size);
}

// Reads the whole file into a new buffer with one fread, as a decoder that
// builds a new mesh has new memory to fill.
void plainRead(benchmark::State& state, const char* path, int64_t size)
{
	runEach(state, size, [&]() -> std::string {
		std::unique_ptr<char[]> buffer(new char[(size_t)size]);
		std::FILE* f = Platform::openFile(path, "rb");
		const bool complete = f && std::fread(buffer.get(), 1, (size_t)size, f) == (size_t)size;
		if(f)
			std::fclose(f);
		benchmark::DoNotOptimize(buffer.get());
		return complete ? "" : "plain read failed";
	});
}

void decode(benchmark::State& state, const ModelDecoder& decoder, const char* path, int64_t size)
{
	runEach(state, size, [&]() -> std::string {
		Mesh mesh;
		try
		{
			decoder.streamModel(path, mesh, 1);
		}
		catch(const ModelFormatDecoderExcep& e)
		{
			return e.what();
		}
		benchmark::DoNotOptimize(mesh.verts.data());
		return "";
	});
}

void BM_ObjPlainRead(benchmark::State& state) { plainRead(state, OBJ_PATH, objFileSize()); }

void BM_ObjDecode(benchmark::State& state) { decode(state, FormatDecoderObj(), OBJ_PATH, objFileSize()); }

// tinyobjloader keeps the polygons as they are (no triangulation), as our
// decoder keeps quads.
void BM_ObjTinyObjLoader(benchmark::State& state)
{
	runEach(state, objFileSize(), []() -> std::string {
		tinyobj::attrib_t attrib;
		std::vector<tinyobj::shape_t> shapes;
		std::vector<tinyobj::material_t> materials;
		std::string warning, error;
		const bool loaded = tinyobj::LoadObj(&attrib, &shapes, &materials, &warning, &error, OBJ_PATH, nullptr, false);
		benchmark::DoNotOptimize(attrib.vertices.data());
		return loaded ? "" : "tinyobjloader: " + error;
	});
}

void BM_PlyPlainRead(benchmark::State& state) { plainRead(state, PLY_PATH, plyFileSize()); }

void BM_PlyDecode(benchmark::State& state) { decode(state, FormatDecoderPLY(), PLY_PATH, plyFileSize()); }

// The vertices and triangles of the PLY grid, as arrays in memory.
struct PlyGrid
{
	std::vector<Vec3f> vertices;
	std::vector<std::array<uint32_t, 3>> triangles;
};

const PlyGrid& plyGrid()
{
	static const PlyGrid grid = [] {
		PlyGrid g;
		const int columns = PLY_COLUMNS + 1, rows = PLY_ROWS + 1;
		for(int j = 0; j < rows; ++j)
			for(int i = 0; i < columns; ++i)
				g.vertices.push_back(Vec3f{i * 0.01f, j * 0.01f, 0.001f * ((i * 7 + j * 3) % 100)});
		for(uint32_t j = 0; j < (uint32_t)PLY_ROWS; ++j)
			for(uint32_t i = 0; i < (uint32_t)PLY_COLUMNS; ++i)
			{
				const uint32_t a = j * columns + i, b = a + 1, c = a + columns + 1, d = a + columns;
				g.triangles.push_back({a, b, c});
				g.triangles.push_back({a, c, d});
			}
		return g;
	}();
	return grid;
}

// The same mesh built from those arrays through addVertex and addTriangle,
// with the vectors reserved: what the mesh itself costs.
void BM_PlyMeshOnly(benchmark::State& state)
{
	const PlyGrid& grid = plyGrid();
	for(auto _ : state)
	{
		Mesh mesh;
		mesh.verts.reserve(grid.vertices.size());
		mesh.triangles.reserve(grid.triangles.size());
		for(const Vec3f& v : grid.vertices)
			mesh.addVertex(v);
		for(const std::array<uint32_t, 3>& t : grid.triangles)
			mesh.addTriangle({t[0], t[1], t[2]}, {0, 0, 0}, 0);
		mesh.endOfModel();
		benchmark::DoNotOptimize(mesh.verts.data());
	}
	reportBytes(state, plyFileSize());
}

BENCHMARK(BM_ObjPlainRead)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ObjDecode)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ObjTinyObjLoader)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PlyPlainRead)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PlyDecode)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PlyMeshOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

// Removes the generated files when the program ends.
struct RemoveFilesAtExit
{
	~RemoveFilesAtExit()
	{
		std::remove(OBJ_PATH);
		std::remove(PLY_PATH);
	}
} remove_files_at_exit;

} // namespace

BENCHMARK_MAIN();
