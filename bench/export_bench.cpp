// The export of polygon objects into meshes and .vlmesh files: a document of
// 200 polygon objects with 5,000,000 quads in all, each object a distinct
// mesh with a Phong tag and a UVW tag, exported with the merging and with
// the plain builder, beside the plain write of the same mesh files; or the
// memory an export needs on top of the document (--memory, see main).
// Files go to /tmp and are removed at the end.

#include "run_benchmarks.h"
#include "waved_grid.h"

#include "c4d/base_document.h"
#include "c4d/polygon_object.h"
#include "c4d/variable_tags.h"
#include "export/mesh_exporter.h"

#include "mesh/mesh_file.h"
#include "scene/ostream.h"
#include "scene/scene_node_root.h"
#include "scene/write_context.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using Velorn::Mesh;
using Velorn::Reference;

namespace
{

const char* const DIR = "/tmp/velorn_export_bench";
const int32_t OBJECTS = 200;
// Each object is a grid of 125 x 200 quads over 126 x 201 points.
const int32_t CELLS_U = 125;
const int32_t CELLS_V = 200;

// A waved grid. The Phong angle spans the gentle wave, so each point has
// one normal: merging leaves one vertex and one UV pair per point.
PolygonObject* makeGridObject(int32_t k)
{
	PolygonObject* op =
		makeWavedGrid(k, CELLS_U, CELLS_V, 0.11, 0.07, Vector(), String("Grid ") + String::IntToString(k));
	BaseContainer& phong = *op->MakeTag(Tphong)->GetDataInstance();
	phong.SetBool(PHONGTAG_PHONG_ANGLELIMIT, true);
	phong.SetFloat(PHONGTAG_PHONG_ANGLE, 80.0 * 3.14159265358979323846 / 180.0);
	return op;
}

BaseDocument* document()
{
	static BaseDocument* const doc = [] {
		BaseDocument* d = BaseDocument::Alloc();
		for(int32_t k = OBJECTS - 1; k >= 0; --k)
			d->InsertObject(makeGridObject(k), nullptr, nullptr);
		return d;
	}();
	return doc;
}

Velorn::WriteContext writeContext()
{
	Velorn::WriteContext context;
	context.scene_dir = DIR;
	context.scene_path = std::string(DIR) + "/bench.vls";
	return context;
}

// One object as the export does it: the checksum over the raw arrays, the
// mesh, its node and the node's mesh file. The node stays in root.
Reference<Velorn::SceneNodeMesh> exportObject(BaseObject* op, bool merge, Velorn::SceneNodeRoot& root)
{
	std::vector<TextureMaterial> materials;
	listTextureMaterials(op, materials);
	benchmark::DoNotOptimize(meshChecksum(op, materials, false, 0.01f));
	MeshExporter exporter;
	MaterialContext context;
	Reference<Mesh> mesh = exporter.build(document(), op, 0.01f, false, merge, false, context);
	Reference<Velorn::SceneNodeMesh> node = makeMeshNode(op, mesh, merge, root);
	Velorn::BufferOStream xml;
	Velorn::WriteContext write_context = writeContext();
	node->writeXML(xml, 1, write_context);
	return node;
}

int64_t fileSize(const std::string& path) { return (int64_t)std::filesystem::file_size(path); }

// The process's resident memory and its peak since the last reset, in
// bytes, from /proc (Linux); -1 where they cannot be read.
int64_t statusValue(const char* key)
{
	std::ifstream status("/proc/self/status");
	std::string line;
	while(std::getline(status, line))
		if(line.compare(0, std::strlen(key), key) == 0)
			return std::stoll(line.substr(std::strlen(key) + 1)) * 1024;
	return -1;
}

bool resetPeak()
{
	std::ofstream clear("/proc/self/clear_refs");
	clear << "5";
	return (bool)clear.flush();
}

// Exports every object once, keeping the mesh nodes until the end (as a
// scene does until it is written) or dropping each after its file is
// written; prints the peak growth of resident memory against the bytes of
// the mesh files.
void measureMemory(bool merge, bool keep)
{
	BaseDocument* doc = document();
	const bool reset = resetPeak();
	const int64_t before = statusValue("VmRSS:");
	int64_t total_bytes = 0, largest = 0;
	{
		Velorn::SceneNodeRoot root;
		const Velorn::WriteContext context = writeContext();
		for(BaseObject* op = doc->GetFirstObject(); op; op = op->GetNext())
		{
			Reference<Velorn::SceneNodeMesh> node = exportObject(op, merge, root);
			const int64_t bytes = fileSize(node->meshFilePath(context.scene_dir, context.scene_path));
			total_bytes += bytes;
			largest = std::max(largest, bytes);
			if(!keep)
				root.removeChildNode(node);
		}
	}
	const int64_t peak = reset ? statusValue("VmHWM:") - before : -1;
	const int64_t against = keep ? total_bytes : largest;
	std::printf("%-8s %-22s peak growth %8.1f MB, mesh files %8.1f MB (%s), ratio %.2f\n", merge ? "merging" : "plain",
		keep ? "meshes kept" : "each mesh dropped", peak / 1e6, against / 1e6, keep ? "all" : "largest",
		(double)peak / (double)against);
}

// Builds every object's mesh, so that only the writing is timed.
struct BuiltMeshes
{
	explicit BuiltMeshes(bool merge)
	{
		const Velorn::WriteContext context = writeContext();
		for(BaseObject* op = document()->GetFirstObject(); op; op = op->GetNext())
		{
			Velorn::SceneNodeRoot root;
			MeshExporter exporter;
			MaterialContext materials;
			Reference<Velorn::SceneNodeMesh> node =
				makeMeshNode(op, exporter.build(document(), op, 0.01f, false, merge, false, materials), merge, root);
			paths.push_back(node->meshFilePath(context.scene_dir, context.scene_path));
			meshes.push_back(node->mesh);
			std::filesystem::create_directories(std::filesystem::path(paths.back()).parent_path());
			Velorn::writeMeshToFile(paths.back(), *meshes.back());
			bytes += fileSize(paths.back());
		}
	}

	std::vector<Reference<Mesh>> meshes;
	std::vector<std::string> paths;
	int64_t bytes = 0;
};

void setCounters(benchmark::State& state, int64_t bytes)
{
	state.SetBytesProcessed(state.iterations() * bytes);
	state.SetItemsProcessed(state.iterations() * (int64_t)OBJECTS * CELLS_U * CELLS_V);
	state.counters["file_bytes"] = (double)bytes;
}

// Arg 1: the merging builder; 0: the plain builder. Items are polygons.
void BM_Export(benchmark::State& state)
{
	const bool merge = state.range(0) != 0;
	BaseDocument* doc = document();
	int64_t bytes = 0;
	for(auto _ : state)
	{
		Velorn::SceneNodeRoot root;
		const Velorn::WriteContext context = writeContext();
		bytes = 0;
		for(BaseObject* op = doc->GetFirstObject(); op; op = op->GetNext())
		{
			Reference<Velorn::SceneNodeMesh> node = exportObject(op, merge, root);
			root.removeChildNode(node);
			state.PauseTiming();
			bytes += fileSize(node->meshFilePath(context.scene_dir, context.scene_path));
			state.ResumeTiming();
		}
	}
	setCounters(state, bytes);
}

// The parts of an export on their own: the object's checksum, and the
// building of its mesh with the merging (1) or the plain (0) builder.
void BM_ObjectChecksum(benchmark::State& state)
{
	std::vector<TextureMaterial> materials;
	for(auto _ : state)
		for(BaseObject* op = document()->GetFirstObject(); op; op = op->GetNext())
		{
			listTextureMaterials(op, materials);
			benchmark::DoNotOptimize(meshChecksum(op, materials, false, 0.01f));
		}
	state.SetItemsProcessed(state.iterations() * (int64_t)OBJECTS * CELLS_U * CELLS_V);
}

void BM_Build(benchmark::State& state)
{
	const bool merge = state.range(0) != 0;
	for(auto _ : state)
		for(BaseObject* op = document()->GetFirstObject(); op; op = op->GetNext())
		{
			MeshExporter exporter;
			MaterialContext context;
			benchmark::DoNotOptimize(exporter.build(document(), op, 0.01f, false, merge, false, context).getPointer());
		}
	state.SetItemsProcessed(state.iterations() * (int64_t)OBJECTS * CELLS_U * CELLS_V);
}

// The host's Phong normals of every object, which the build asks for.
void BM_HostPhongNormals(benchmark::State& state)
{
	for(auto _ : state)
		for(BaseObject* op = document()->GetFirstObject(); op; op = op->GetNext())
			benchmark::DoNotOptimize(static_cast<PolygonObject*>(op)->CreatePhongNormals().data());
	state.SetItemsProcessed(state.iterations() * (int64_t)OBJECTS * CELLS_U * CELLS_V);
}

// The same files written from meshes already built.
void BM_WriteBuilt(benchmark::State& state)
{
	const BuiltMeshes built(state.range(0) != 0);
	for(auto _ : state)
		for(size_t i = 0; i < built.meshes.size(); ++i)
			Velorn::writeMeshToFile(built.paths[i], *built.meshes[i]);
	setCounters(state, built.bytes);
}

BENCHMARK(BM_Export)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WriteBuilt)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ObjectChecksum)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Build)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_HostPhongNormals)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

// "--memory merging|plain kept|dropped" measures one export's memory and
// exits: each measurement needs a process of its own, since memory that an
// earlier export gave back stays with the process and would hide the next
// one's growth. Without it the benchmarks run.
int main(int argc, char** argv)
{
	if(argc == 4 && std::strcmp(argv[1], "--memory") == 0)
	{
		const int64_t empty = statusValue("VmRSS:");
		document();
		std::printf("document: %d objects, %d polygons, resident %.1f MB\n", OBJECTS, OBJECTS * CELLS_U * CELLS_V,
			(statusValue("VmRSS:") - empty) / 1e6);
		measureMemory(std::strcmp(argv[2], "merging") == 0, std::strcmp(argv[3], "kept") == 0);
		std::filesystem::remove_all(DIR);
		return 0;
	}
	const int status = runBenchmarks(argc, argv);
	std::filesystem::remove_all(DIR);
	return status;
}
