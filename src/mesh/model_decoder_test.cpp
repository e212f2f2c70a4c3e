#include "mesh/model_decoder.h"

#include "mesh/format_decoder_obj.h"
#include "mesh/format_decoder_ply.h"
#include "mesh/mesh.h"
#include "mesh/mesh_file.h"
#include "mesh/mesh_test_helpers.h"
#include "mesh/velorn_mesh_decoder.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <typeinfo>

using namespace Velorn;
using VelornTest::expectDecoderError;

TEST(ModelDecoder, ExtensionSelectsTheDecoder)
{
	const struct
	{
		std::string path;
		const std::type_info& decoder;
	} cases[] = {
		{"dir.ply/model.OBJ", typeid(FormatDecoderObj)},
		{"/models/x.y.Ply", typeid(FormatDecoderPLY)},
		{"C.VLMESH", typeid(VelornMeshDecoder)},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.path);
		EXPECT_EQ(typeid(findDecoder(c.path)), c.decoder);
	}

	const struct
	{
		std::string path;
		std::string message;
	} failures[] = {
		{"", "filename too short: ''"},
		{"model", "filename too short: 'model'"},
		{"dir.obj/model", "filename too short: 'dir.obj/model'"},
		{"model.", "key '' not found"},
		{"model.OBJX", "key 'OBJX' not found"},
		{"model.obj.gz", "key 'gz' not found"},
	};
	for(const auto& c : failures)
	{
		SCOPED_TRACE(c.path);
		Mesh mesh;
		expectDecoderError([&] { loadModel(c.path, mesh, 1); }, c.message);
	}
}

TEST(VelornMeshDecoder, ReadsMeshFilesAndReportsTheirFailures)
{
	VelornTest::TempDir dir;
	Mesh original;
	original.addMaterialUsed("red");
	original.addVertex(Vec3f{0, 0, 0});
	original.addVertex(Vec3f{1, 0, 0});
	original.addVertex(Vec3f{0, 1, 0});
	original.addTriangle({0, 1, 2}, {0, 0, 0}, 0);
	original.endOfModel();
	const std::string path = dir.file("tri.vlmesh");
	writeMeshToFile(path, original);

	Mesh loaded;
	loadModel(path, loaded, 100); // scale does not apply to mesh files
	EXPECT_EQ(loaded.verts, original.verts);
	EXPECT_EQ(loaded.used_materials, original.used_materials);
	EXPECT_EQ(loaded.triangles.size(), 1u);
	EXPECT_EQ(loaded.num_materials_referenced, 1u);

	// The mesh file's failures come out as the decoders' class.
	const std::string bad = dir.file("bad.vlmesh");
	VelornTest::writeFile(bad, "not a mesh");
	expectDecoderError([&] { loadModel(bad, loaded, 1); }, "Invalid magic number.");
}
