#include "cli/export_command.h"
#include "cli/scene_commands.h"

#include "support/exceptions.h"
#include "support/failures.h"
#include "support/file_utils.h"
#include "support/platform.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

namespace
{

ExportCommand::Options options(const std::string& document, const std::string& scene)
{
	ExportCommand::Options o;
	o.document = document;
	o.scene = scene;
	o.plugins = VELORN_PLUGIN_DIR;
	return o;
}

bool contains(const std::string& text, const std::string& part)
{
	return text.find(part) != std::string::npos;
}

} // namespace

TEST(ExportCommand, BundledExampleExportsToACheckedScene)
{
	VelornTest::TempDir dir;
	const std::string scene = dir.file("out/studio.vls");
	const std::string example = VelornTest::testDataPath("../examples/studio.json");
	EXPECT_EQ(ExportCommand::run(options(example, scene)), "Wrote " + scene);

	// The plug-in was loaded from the directory given.
	const std::string console = ExportCommand::consoleText();
	EXPECT_TRUE(contains(console, "Loading velorn from: " VELORN_PLUGIN_DIR "\n")) << console;
	// The tag's settings reach the scene: the camera response of entry 52.
	const std::string text = VelornTest::readFile(scene);
	EXPECT_TRUE(contains(text, "data/camera_response_functions/Portra-100TCD.txt")) << text;
	// Primitives, the model, the instance, the area light, the softbox's
	// panel and the moving ball all arrive: six meshes (the instance shares
	// the crate's), seven models, one sphere; the meshes lie beside the
	// scene. Beside the driver's three materials stand the seven the
	// objects wear or link (the coating's substrate is the host's crate
	// paint, converted), and the glass's medium.
	EXPECT_EQ(Velorn::SceneCommands::check(scene),
		scene + ": 30 nodes: 1 Camera, 1 Render Settings, 10 Material, 6 Mesh, 7 Object, 1 Sphere, 1 Medium, "
				"1 Tone Mapping, 1 Background Settings, 1 Metadata");
	for(const char* kind : {"<phong>", "<coating>", "<specular>", "def eval(vec3 pos) vec3: (lerp("})
		EXPECT_TRUE(contains(text, kind)) << kind;
	EXPECT_EQ(Velorn::FileUtils::getFilesInDir(dir.file("out/studio_meshes")).size(), 6u);
}

TEST(ExportCommand, BadDocumentsFailAndWriteNothing)
{
	VelornTest::TempDir dir;
	const std::string objects = R"({"version": 1, "objects": [{"type": 5103, "name": "Cam"}, )";
	const struct
	{
		std::string text;
		std::string message;
	} cases[] = {
		{objects + R"({"type": 1099999}]})", "objects[1].type: unknown object type 1099999"},
		{objects + R"({"type": 5140, "params": [{"id": 1, "type": "link", "value": "Gone"}]}]})",
			"objects[1].params[0].value: the link names 'Gone'"},
		{objects + R"({"type": 5140, "params": [{"id": 1, "type": "real", "value": "x"}]}]})",
			"objects[1].params[0].value: expected a number"},
		{objects + R"({"type": 5100, "model": "gone.obj"}]})", "objects[1].model: no model file"},
		{R"({"version": 1})", "The document has no objects: there is nothing to export."},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.text);
		const std::string document = dir.file("bad.json");
		VelornTest::writeFile(document, c.text);
		const std::string message = VelornTest::failureOf<Velorn::MessageException>(
			[&] { ExportCommand::run(options(document, dir.file("out/bad.vls"))); });
		EXPECT_TRUE(contains(message, c.message)) << message;
		EXPECT_FALSE(Velorn::FileUtils::fileExists(dir.file("out/bad.vls")));
	}
	EXPECT_FALSE(Velorn::Platform::isDirectory(dir.file("out/textures.bad")));
}

TEST(ExportCommand, OutputDirectoryThatCannotBeMadeIsReported)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("blocker"), "a file where a directory should go");
	const std::string example = VelornTest::testDataPath("../examples/studio.json");
	const std::string message = VelornTest::failureOf<Velorn::MessageException>(
		[&] { ExportCommand::run(options(example, dir.file("blocker/sub/studio.vls"))); });
	EXPECT_EQ(message.rfind("Cannot create the output directory '" + dir.file("blocker/sub") + "'", 0), 0u) << message;
}
