// The velorn executable run as a user runs it: scenes written to files, the
// process started, its exit code and its one line of error read back.
#include "mesh/mesh.h"
#include "scene/materials_other.h"
#include "scene/rotation.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_model.h"
#include "standin/standin_test_helpers.h"
#include "support/binary_stream.h"
#include "support/file_utils.h"
#include "support/master_buffer.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>

namespace Velorn
{
namespace
{

using namespace StandinTest;

struct RunResult
{
	int exit_code;
	std::string out, err;
};

RunResult runVelorn(const VelornTest::TempDir& dir, const std::string& arguments)
{
	const std::string out = dir.file("stdout.txt"), err = dir.file("stderr.txt");
	const std::string command = std::string("'") + STANDIN_VELORN_EXE + "' " + arguments + " >'" + out + "' 2>'" + err + "'";
	const int status = std::system(command.c_str());
	return RunResult{WIFEXITED(status) ? WEXITSTATUS(status) : -1, VelornTest::readFile(out), VelornTest::readFile(err)};
}

// A scene of a floor quad (a mesh in its own file) and a sphere under a
// uniform sky, size w by h; floor_material replaces the floor's diffuse.
std::string writeScene(const VelornTest::TempDir& dir, const std::string& name, int w, int h,
	Reference<Material> floor_material = nullptr)
{
	Reference<SceneNodeRoot> root = makeRoot(w, h, Vec3d(0, -4, 1), Vec3d(0, 0.97, -0.243));
	// Scene files need a lens of some size.
	static_cast<SceneNodeCamera&>(*root->getCameraNode()).aperture_radius = 0.001;
	addUniformBackground(*root, 1.0, 0);
	Reference<SceneNodeMaterial> grey = addMaterial(*root, floor_material.nonNull() ? floor_material : Reference<Material>(diffuse(0.5)));
	addSphere(*root, Vec3d(0, 0, 0.5), 0.5, addMaterial(*root, diffuse(0.8)));

	addFloor(*root, 2, grey);

	const std::string path = dir.file(name);
	root->writeToFile(String(path), false, nullptr);
	return path;
}

std::string meshFileOf(const VelornTest::TempDir& dir, const std::string& scene_name)
{
	const std::string meshes = dir.file(scene_name.substr(0, scene_name.find('.')) + "_meshes");
	return meshes + "/" + FileUtils::getFilesInDir(meshes).at(0);
}

TEST(VelornExecutable, BadInputEndsWithOneLineAndAnExitCode)
{
	VelornTest::TempDir dir;
	const std::string good = writeScene(dir, "good.vls", 6, 4);

	const std::string missing_mesh = writeScene(dir, "missing_mesh.vls", 6, 4);
	const std::string missing_mesh_file = meshFileOf(dir, "missing_mesh.vls");
	FileUtils::deleteFile(missing_mesh_file);

	const std::string corrupt_mesh = writeScene(dir, "corrupt_mesh.vls", 6, 4);
	const std::string corrupt_mesh_file = meshFileOf(dir, "corrupt_mesh.vls");
	VelornTest::writeFile(corrupt_mesh_file, "not a mesh at all");

	Reference<PluginMaterial> plugin = new PluginMaterial();
	plugin->plugin_name = "velvet";
	plugin->material_name = "v";
	plugin->name = "Velvet";
	const std::string unknown_kind = writeScene(dir, "unknown_kind.vls", 6, 4, plugin);
	const std::string zero = writeScene(dir, "zero.vls", 0, 4);
	const std::string huge = writeScene(dir, "huge.vls", 100000, 4);

	const std::string queue = dir.file("queue.vlq");
	VelornTest::writeFile(queue, "<render_queue><item><scene_path>" + good +
									 "</scene_path></item><item><scene_path>" + dir.file("gone.vls") +
									 "</scene_path></item></render_queue>");

	const struct
	{
		const char* name;
		std::string arguments;
		int exit_code;
		std::string message;  // the whole of standard error, or its start where a tail is given
		std::string tail;  // how the line ends, after the mesh node's running number
	} cases[] = {
		{"no scene", "", 2, "velorn: no scene or render queue given\n", ""},
		{"unknown option", "-frobnicate " + good, 2, "velorn: unknown option '-frobnicate'\n", ""},
		{"halt not a number", "-haltspp many " + good, 2, "velorn: option -haltspp needs a number, not 'many'\n", ""},
		{"missing scene", "'" + dir.file("none.vls") + "'", 1,
			"velorn: error: Scene file '" + dir.file("none.vls") + "' does not exist.\n", ""},
		{"missing mesh", "-haltspp 1 '" + missing_mesh + "'", 1,
			"velorn: error: Mesh file '" + missing_mesh_file + "' of mesh 'Mesh", "' does not exist.\n"},
		{"corrupt mesh", "-haltspp 1 '" + corrupt_mesh + "'", 1,
			"velorn: error: Mesh file '" + corrupt_mesh_file + "' of mesh 'Mesh",
			"' cannot be read: Invalid magic number.\n"},
		{"unknown material kind", "-haltspp 1 '" + unknown_kind + "'", 1,
			"velorn: error: Material 'Velvet' is of kind 'plugin', which this renderer does not support.\n", ""},
		{"zero resolution", "-haltspp 1 '" + zero + "'", 1,
			"velorn: error: Image size 0 x 4 is out of range (1 to 16384 pixels a side).\n", ""},
		{"huge resolution", "-haltspp 1 '" + huge + "'", 1,
			"velorn: error: Image size 100000 x 4 is out of range (1 to 16384 pixels a side).\n", ""},
		{"queue with a missing scene", "-haltspp 1 '" + queue + "'", 1,
			"velorn: error: Render queue names scene '" + dir.file("gone.vls") + "', which does not exist.\n", ""},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		const RunResult r = runVelorn(dir, c.arguments);
		EXPECT_EQ(r.exit_code, c.exit_code);
		if(c.tail.empty())
			EXPECT_EQ(r.err, c.message);
		else
		{
			EXPECT_EQ(r.err.substr(0, c.message.size()), c.message);
			EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1);
			ASSERT_GE(r.err.size(), c.tail.size());
			EXPECT_EQ(r.err.substr(r.err.size() - c.tail.size()), c.tail);
		}
	}
}

TEST(VelornExecutable, WritesEveryOutputItIsAskedFor)
{
	VelornTest::TempDir dir;
	const std::string scene = writeScene(dir, "scene.vls", 6, 4);
	const RunResult r = runVelorn(dir, "-seed 5 --thread_priority belownormal -n wm -p 7777 -haltspp 2 -o '" +
										   dir.file("out.png") + "' -vlio '" + dir.file("out.vli") + "' -uexro '" +
										   dir.file("out_untonemapped.exr") + "' -texro '" +
										   dir.file("out_tonemapped.exr") + "' '" + scene + "'");
	ASSERT_EQ(r.exit_code, 0) << r.err;
	EXPECT_NE(r.out.find("Network rendering ('-n wm') is not supported"), std::string::npos);
	EXPECT_NE(r.out.find("Network port ('-p') is not supported"), std::string::npos);

	// PNG and EXR by their signatures.
	EXPECT_EQ(VelornTest::readFile(dir.file("out.png")).substr(0, 4), "\x89PNG");
	EXPECT_EQ(VelornTest::readFile(dir.file("out_untonemapped.exr")).substr(0, 4), std::string("\x76\x2f\x31\x01"));
	EXPECT_EQ(VelornTest::readFile(dir.file("out_tonemapped.exr")).substr(0, 4), std::string("\x76\x2f\x31\x01"));

	// The buffer file reads back at the internal size, (6 + 8) * 1 by (4 + 8) * 1,
	// one layer.
	const std::string vli = VelornTest::readFile(dir.file("out.vli"));
	BufferInStream stream(vli.data(), vli.size());
	MasterBuffer buffer(14, 12, 1, 6, 4, {}, false);
	buffer.readFromStream(stream);
	ASSERT_EQ(buffer.layers.size(), 1u);
	EXPECT_EQ(buffer.layers[0].image.getWidth(), 14u);
	EXPECT_EQ(buffer.layers[0].image.getHeight(), 12u);
	// A corner pixel of the margin looks at the sky, of radiance 1.
	EXPECT_FLOAT_EQ(buffer.layers[0].image.getPixel(0, 0)[1], 1.0f);
}

TEST(VelornExecutable, QueueItemsNumberTheOutputsOfTheCommandLine)
{
	VelornTest::TempDir dir;
	const std::string scene = writeScene(dir, "scene.vls", 6, 4);
	const std::string queue = dir.file("queue.vlq");
	const std::string item = "<item><scene_path>" + scene + "</scene_path></item>";
	VelornTest::writeFile(queue, "<render_queue>" + item + item + "</render_queue>");
	FileUtils::createDirsForPath(dir.file("run.d"));

	const struct
	{
		const char* name;
		std::string arguments;
		std::vector<std::string> written, not_written;
	} cases[] = {
		{"extensions", "-o '" + dir.file("out.png") + "' -vlio '" + dir.file("out.vli") + "'",
			{"out_1.png", "out_2.png", "out_1.vli", "out_2.vli"}, {"out.png", "out.vli", "out_0.png", "out_3.png"}},
		// The dot of the directory is not the extension's.
		{"no extension", "-o '" + dir.file("run.d/picture") + "'", {"run.d/picture_1", "run.d/picture_2"},
			{"run_1.d/picture", "run.d/picture"}},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		const RunResult r = runVelorn(dir, "-haltspp 1 " + c.arguments + " '" + queue + "'");
		ASSERT_EQ(r.exit_code, 0) << r.err;
		for(const std::string& name : c.written)
			EXPECT_TRUE(FileUtils::fileExists(dir.file(name))) << name;
		for(const std::string& name : c.not_written)
			EXPECT_FALSE(FileUtils::fileExists(dir.file(name))) << name;
	}
}

} // namespace
} // namespace Velorn
