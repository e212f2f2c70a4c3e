#include "mesh/mesh.h"
#include "mesh/model_decoder.h"
#include "support/file_utils.h"

#include <gtest/gtest.h>

#include <string>

using namespace Velorn;

namespace
{

// Debian's assimp-testmodels, installed by scripts/install-deps.
const std::string MODELS = "/usr/share/assimp/models";

// What one file gives under our decoders. The counts were worked out from
// the files with grep and awk, and the degenerate fan triangles (dropped by
// the mesh) by hand from the positions: see the notes beside each entry.
struct Expected
{
	const char* file;
	const char* error; // empty when the file decodes
	size_t vertices, normals, triangles, quads, materials;
	uint32_t uv_mappings;
};

const Expected EXPECTED[] = {
	// 3732 faces of 3 corners with p/t/n; one "vt", no usemtl.
	{"OBJ/WusonOBJ.obj", "", 11196, 11196, 3732, 0, 1, 1},
	{"OBJ/box.obj", "", 24, 0, 0, 6, 1, 0},
	// UTF-16: every line starts with a zero byte, so no statement is known.
	{"OBJ/box_UTF16BE.obj", "", 0, 0, 0, 0, 0, 0},
	// One face of 936 corners over positions 1 2 3 4 1 2 ...: the first 256
	// count, and of the fan's 254 triangles the 126 that touch a corner at
	// position 1 again are degenerate.
	{"OBJ/box_longline.obj", "", 256 + 20, 0, 128, 5, 1, 0},
	// The material name is its first word, "Material".
	{"OBJ/box_mat_with_spaces.obj", "", 24, 0, 0, 6, 1, 0},
	{"OBJ/box_without_lineending.obj", "", 24, 0, 0, 6, 1, 0},
	// One face of 66 corners: a fan of 64 triangles, none degenerate.
	{"OBJ/concave_polygon.obj", "", 66, 66, 64, 0, 1, 0},
	// CR LF line ends and blanks before them.
	{"OBJ/cube_mtllib_after_g.obj", "", 36, 36, 12, 0, 1, 0},
	// Three names, "mtl3", "mtl", "mtl2", used in turns.
	{"OBJ/cube_usemtl.obj", "", 36, 36, 12, 0, 3, 0},
	// Colours after the positions are ignored; the material is "default".
	{"OBJ/cube_with_vertexcolors.obj", "", 36, 36, 12, 0, 1, 0},
	{"OBJ/cube_with_vertexcolors_uni.obj", "", 36, 36, 12, 0, 1, 0},
	// "usemtl" without a name: one material with the empty name.
	{"OBJ/empty_mat.obj", "", 768, 768, 256, 0, 1, 0},
	// Four "vt" of three values each, one triangle.
	{"OBJ/multiple_spaces.obj", "", 3, 0, 1, 0, 1, 1},
	// Every line parses ("3.1+e2" reads 3.1 and leaves the rest); the one
	// face over (0,0,0), (1,2,3), (-1,-2,-3) is degenerate.
	{"OBJ/number_formats.obj", "", 3, 0, 0, 0, 1, 0},
	// Positions and normals but no face.
	{"OBJ/point_cloud.obj", "", 0, 0, 0, 0, 0, 0},
	// 2710 triangles of which 4 are degenerate; 12 material names, one of
	// them with a byte above 127; faces without texture index keep record 0.
	{"OBJ/regr01.obj", "", 8130, 0, 2706, 0, 12, 1},
	{"OBJ/regr_3429812.obj", "", 10, 0, 2, 1, 1, 0},
	// The material name is its first word, "Hard".
	{"OBJ/space_in_material_name.obj", "", 66, 66, 64, 0, 1, 0},
	// 1368 triangles of which 56 are degenerate; four material names.
	{"OBJ/spider.obj", "", 4104, 4104, 1312, 0, 4, 1},
	// Lines and points are skipped; "usemtl" still names the material.
	{"OBJ/testline.obj", "", 0, 0, 0, 0, 1, 0},
	{"OBJ/testmixed.obj", "", 24, 0, 0, 6, 1, 0},
	{"OBJ/testpoints.obj", "", 0, 0, 0, 0, 1, 0},
	// Line 3 of the header is no PLY keyword ("Created by Blender3D").
	{"PLY/Wuson.ply", "could not read header.", 0, 0, 0, 0, 0, 0},
	// Its faces are "vertex_index", which the decoder does not read.
	{"PLY/cube.ply", "", 8, 0, 0, 0, 1, 0},
	{"PLY/cube_binary.ply", "", 8, 0, 12, 0, 1, 0},
	// Six faces of four entries: one triangle each.
	{"PLY/cube_uv.ply", "", 24, 0, 6, 0, 1, 0},
	{"PLY/float-color.ply", "", 3, 0, 1, 0, 1, 0},
	// The header gives each vertex a list the body does not have: the
	// seventh value of a vertex is read as a list length, "7.941797".
	{"PLY/issue623.ply", "read of body failed.", 0, 0, 0, 0, 0, 0},
	{"PLY/points.ply", "", 4, 0, 0, 0, 1, 0},
	// The header claims 70051 binary vertices of 31 bytes, 2171581 bytes,
	// but only 2171512 follow "end_header": the file is cut short.
	{"PLY/pond.0.ply", "read of body failed.", 0, 0, 0, 0, 0, 0},
	{"invalid/empty.obj", "", 0, 0, 0, 0, 0, 0},
	{"invalid/empty.ply", "could not read header.", 0, 0, 0, 0, 0, 0},
	{"invalid/malformed.obj", "Position index invalid. (index '12' out of bounds, on line 23)", 0, 0, 0, 0, 0, 0},
	// A face line "f" with no corner.
	{"invalid/malformed2.obj", "Invalid number of vertices in face: 0 (line 23)", 0, 0, 0, 0, 0, 0},
};

} // namespace

TEST(AssimpTestModels, EveryFileDecodesAsExpected)
{
	if(!FileUtils::fileExists(MODELS))
		GTEST_SKIP() << MODELS << " is missing: install the package assimp-testmodels (scripts/install-deps does)";
	EXPECT_EQ(sizeof(EXPECTED) / sizeof(EXPECTED[0]), 34u);
	for(const Expected& e : EXPECTED)
	{
		SCOPED_TRACE(e.file);
		Mesh mesh;
		try
		{
			loadModel(FileUtils::join(MODELS, e.file), mesh, 1);
			EXPECT_STREQ("", e.error);
		}
		catch(const ModelFormatDecoderExcep& x)
		{
			EXPECT_EQ(x.what(), e.error);
			continue;
		}
		EXPECT_EQ(mesh.verts.size(), e.vertices);
		EXPECT_EQ(mesh.normals.size(), e.normals);
		EXPECT_EQ(mesh.triangles.size(), e.triangles);
		EXPECT_EQ(mesh.quads.size(), e.quads);
		EXPECT_EQ(mesh.used_materials.size(), e.materials);
		EXPECT_EQ(mesh.num_uv_mappings, e.uv_mappings);
	}
}
