// Building, checksumming, writing and reading a mesh of 10 million triangles
// with normals and one UV set, beside a plain fwrite and fread of the same
// number of bytes. Files go to /tmp and are removed at the end.

#include "run_benchmarks.h"

#include "mesh/mesh.h"
#include "mesh/mesh_file.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Velorn;

namespace
{

const char* const MESH_PATH = "/tmp/velorn_mesh_bench.vlmesh";
const char* const PLAIN_PATH = "/tmp/velorn_mesh_bench_plain.bin";

// A grid of 2000 x 2500 cells, two triangles each: 10,000,000 triangles over
// 5,004,501 vertices.
const uint32_t CELLS_X = 2000;
const uint32_t CELLS_Y = 2500;

uint32_t vertexIndex(uint32_t i, uint32_t j) { return j * (CELLS_X + 1) + i; }

// A gently waved grid, so that normals and heights are not all alike.
Reference<Mesh> buildGridMesh()
{
	Reference<Mesh> mesh = new Mesh();
	mesh->setMaxNumUVMappings(1);
	mesh->addMaterialUsed("ground");
	mesh->addMaterialUsed("stone");
	Vector<Vec2f> uv(1);
	for(uint32_t j = 0; j <= CELLS_Y; ++j)
		for(uint32_t i = 0; i <= CELLS_X; ++i)
		{
			const float wave = (float)((i * 7 + j * 13) % 100) * 0.001f;
			mesh->addVertex(Vec3f{i * 0.01f, j * 0.01f, wave}, Vec3f{wave, -wave, 1});
			uv[0] = Vec2f{(float)i / CELLS_X, (float)j / CELLS_Y};
			mesh->addUVs(uv);
		}
	for(uint32_t j = 0; j < CELLS_Y; ++j)
		for(uint32_t i = 0; i < CELLS_X; ++i)
		{
			const uint32_t a = vertexIndex(i, j), b = vertexIndex(i + 1, j);
			const uint32_t c = vertexIndex(i + 1, j + 1), d = vertexIndex(i, j + 1);
			const uint32_t material = (i + j) % 2;
			mesh->addTriangle({a, b, c}, {a, b, c}, material);
			mesh->addTriangle({a, c, d}, {a, c, d}, material);
		}
	mesh->endOfModel();
	return mesh;
}

const Mesh& gridMesh()
{
	static const Reference<Mesh> mesh = buildGridMesh();
	return *mesh;
}

int64_t fileSize(const char* path)
{
	std::FILE* f = std::fopen(path, "rb");
	if(!f)
		throw std::runtime_error(std::string("cannot open ") + path);
	std::fseek(f, 0, SEEK_END);
	const long size = std::ftell(f);
	std::fclose(f);
	return size;
}

// The size of the grid mesh's file, written once for the benchmarks that
// need it on disk.
int64_t meshFileSize()
{
	static const int64_t size = [] {
		writeMeshToFile(MESH_PATH, gridMesh());
		return fileSize(MESH_PATH);
	}();
	return size;
}

// A buffer of as many bytes as the mesh file, touched once so that page
// faults stay out of the plain read and write.
std::vector<char>& plainBuffer()
{
	static std::vector<char> buffer((size_t)meshFileSize(), 1);
	return buffer;
}

void setBytes(benchmark::State& state, int64_t bytes_per_iteration)
{
	state.SetBytesProcessed(state.iterations() * bytes_per_iteration);
}

void BM_BuildMesh(benchmark::State& state)
{
	for(auto _ : state)
		benchmark::DoNotOptimize(buildGridMesh());
	setBytes(state, meshFileSize());
}

void BM_Checksum(benchmark::State& state)
{
	const Mesh& mesh = gridMesh();
	uint64_t byte_count = 0;
	for(auto _ : state)
		benchmark::DoNotOptimize(mesh.checksum(byte_count));
	setBytes(state, meshFileSize());
}

void BM_Write(benchmark::State& state)
{
	const Mesh& mesh = gridMesh();
	for(auto _ : state)
		writeMeshToFile(MESH_PATH, mesh);
	setBytes(state, meshFileSize());
}

// What an export does: the checksum names the file, then it is written.
void BM_ChecksumAndWrite(benchmark::State& state)
{
	const Mesh& mesh = gridMesh();
	uint64_t byte_count = 0;
	for(auto _ : state)
	{
		benchmark::DoNotOptimize(mesh.checksum(byte_count));
		writeMeshToFile(MESH_PATH, mesh);
	}
	setBytes(state, meshFileSize());
}

// A new mesh each time: its vectors come in fresh, unmapped pages.
void BM_Read(benchmark::State& state)
{
	for(auto _ : state)
	{
		Reference<Mesh> mesh = new Mesh();
		readMeshFromFile(MESH_PATH, *mesh);
		benchmark::DoNotOptimize(mesh->triangles.data());
	}
	setBytes(state, meshFileSize());
}

// The same mesh again and again: its vectors already have the right sizes,
// so this measures the reader without the cost of fresh memory.
void BM_ReadIntoSameMesh(benchmark::State& state)
{
	Mesh mesh;
	for(auto _ : state)
	{
		readMeshFromFile(MESH_PATH, mesh);
		benchmark::DoNotOptimize(mesh.triangles.data());
	}
	setBytes(state, meshFileSize());
}

void BM_PlainWrite(benchmark::State& state)
{
	const std::vector<char>& buffer = plainBuffer();
	for(auto _ : state)
	{
		std::FILE* f = std::fopen(PLAIN_PATH, "wb");
		if(!f || std::fwrite(buffer.data(), 1, buffer.size(), f) != buffer.size() || std::fclose(f) != 0)
		{
			state.SkipWithError("plain write failed");
			break;
		}
	}
	setBytes(state, (int64_t)buffer.size());
}

// Reads the whole mesh file into buffer with one fread.
bool plainRead(char* buffer, size_t size)
{
	std::FILE* f = std::fopen(MESH_PATH, "rb");
	if(!f)
		return false;
	const bool complete = std::fread(buffer, 1, size, f) == size;
	std::fclose(f);
	return complete;
}

void BM_PlainRead(benchmark::State& state)
{
	std::vector<char>& buffer = plainBuffer();
	for(auto _ : state)
		if(!plainRead(buffer.data(), buffer.size()))
		{
			state.SkipWithError("plain read failed");
			break;
		}
	setBytes(state, (int64_t)buffer.size());
}

// A new, untouched buffer each time, as a reader that makes a new mesh has.
void BM_PlainReadFreshBuffer(benchmark::State& state)
{
	const size_t size = (size_t)meshFileSize();
	for(auto _ : state)
	{
		std::unique_ptr<char[]> buffer(new char[size]);
		if(!plainRead(buffer.get(), size))
		{
			state.SkipWithError("plain read failed");
			break;
		}
		benchmark::DoNotOptimize(buffer.get());
	}
	setBytes(state, (int64_t)size);
}

BENCHMARK(BM_BuildMesh)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Checksum)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PlainWrite)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Write)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ChecksumAndWrite)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PlainRead)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadIntoSameMesh)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PlainReadFreshBuffer)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Read)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
	const int status = runBenchmarks(argc, argv);
	std::remove(MESH_PATH);
	std::remove(PLAIN_PATH);
	return status;
}
