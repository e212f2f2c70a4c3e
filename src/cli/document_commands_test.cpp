#include "cli/document_commands.h"

#include "support/exceptions.h"
#include "support/failures.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

namespace
{

// A selected standard material on a cube's texture tag, and a Phong
// material of the plug-in whose exponent a shader overrides. A document
// stores the switches of the kind, as the application saves them.
const char* document = R"({"version": 1,
	"materials": [
		{"type": 5703, "name": "Paint", "active": true},
		{"type": 1024337, "name": "Metal", "params": [
			{"id": 6024, "type": "long", "value": 6027},
			{"id": 6008, "type": "bool", "value": true},
			{"id": 6200, "type": "link", "value": "Ramp"}],
			"shaders": [{"type": 5832, "name": "Ramp"}]}],
	"objects": [{"type": 5159, "name": "Cube", "tags": [
		{"type": 5616, "params": [{"id": 1010, "type": "link", "value": "Paint"}]}]}]})";

bool contains(const std::string& text, const std::string& part)
{
	return text.find(part) != std::string::npos;
}

} // namespace

TEST(DocumentCommands, ConvertMaterialsAnswersItsQuestionAndSaves)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("doc.json"), document);
	DocumentCommands::CommandOptions options;
	options.document = dir.file("doc.json");
	options.plugins = VELORN_PLUGIN_DIR;
	options.command = "Convert Materials";
	options.answers = {true};
	options.out = dir.file("converted.json");
	const std::string report = DocumentCommands::runCommand(options);
	EXPECT_TRUE(contains(report, "Ran 'Convert Materials to Velorn' (1021852)\n"
								 "Asked \"Convert only selected materials?\": yes\n"
								 "Undo group:\n  new 'Old Materials' (type 100004801)\n")) << report;
	EXPECT_TRUE(contains(report, "Saved " + options.out + "\n")) << report;
	// Only the selected material was converted.
	const std::string saved = VelornTest::readFile(options.out);
	EXPECT_TRUE(contains(saved, "\"layer\": \"Old Materials\"")) << saved;
	size_t pluginMaterials = 0;
	for(size_t at = saved.find("\"type\": 1024337"); at != std::string::npos; at = saved.find("\"type\": 1024337", at + 1))
		++pluginMaterials;
	EXPECT_EQ(pluginMaterials, 2u) << "Metal and the one that replaced Paint";

	options.command = "Unknown";
	EXPECT_EQ(VelornTest::failureOf<Velorn::MessageException>([&] { DocumentCommands::runCommand(options); }),
		"No command 'Unknown': give its id, its name or its help text.");
}

TEST(DocumentCommands, DescribeShowsTheVisiblePagesAndWhatIsDisabled)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("doc.json"), document);
	const std::string text = DocumentCommands::describe(VELORN_PLUGIN_DIR, dir.file("doc.json"), "Metal");
	EXPECT_TRUE(contains(text, "Type [6024] = 6027 (Phong)\n")) << text;
	EXPECT_TRUE(contains(text, "Albedo [6003] = on\n")) << text;
	EXPECT_TRUE(contains(text, "Exponent [6040] = 1000 (disabled)\n")) << text;
	EXPECT_TRUE(contains(text, "Texture [6200] = 'Ramp'\n")) << text;
	EXPECT_FALSE(contains(text, "[6021]")) << "the sigma page belongs to Oren-Nayar";
	EXPECT_EQ(VelornTest::failureOf<Velorn::MessageException>(
				  [&] { DocumentCommands::describe(VELORN_PLUGIN_DIR, dir.file("doc.json"), "Nothing"); }),
		"The document has no material, object, tag or shader named 'Nothing'.");
}

namespace
{

// A quad with a UVW tag and a selected texture tag of a plug-in material
// whose albedo is a colour shader.
const char* bake_document = R"({"version": 1,
	"materials": [
		{"type": 1024337, "name": "Paint", "params": [
			{"id": 6024, "type": "long", "value": 6027},
			{"id": 6003, "type": "bool", "value": true},
			{"id": 6118, "type": "link", "value": "Red"}],
			"shaders": [{"type": 5832, "name": "Red", "params": [{"id": 1000, "type": "vector", "value": [1, 0, 0]}]}]}],
	"objects": [{"type": 5100, "name": "Quad",
		"points": [[-1, 0, -1], [-1, 0, 1], [1, 0, 1], [1, 0, -1]], "polygons": [[0, 1, 2, 3]],
		"tags": [
			{"type": 5671, "uvw": [[[0, 0], [0, 1], [1, 1], [1, 0]]]},
			{"type": 5616, "active": ACTIVE, "params": [{"id": 1010, "type": "link", "value": "Paint"}]}]}]})";

std::string bakeDocument(bool active)
{
	std::string text = bake_document;
	text.replace(text.find("ACTIVE"), 6, active ? "true" : "false");
	return text;
}

} // namespace

TEST(DocumentCommands, BakeCommandTakesTheDialogValuesFromTheCommandLine)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("doc.json"), bakeDocument(true));
	DocumentCommands::CommandOptions options;
	options.document = dir.file("doc.json");
	options.plugins = VELORN_PLUGIN_DIR;
	options.command = "1024339";
	options.sets = {"10011=8", "10012=0", "10017=" + dir.file("car.jpg")};
	options.presses = {10001};
	const std::string report = DocumentCommands::runCommand(options);
	EXPECT_TRUE(contains(report, "Ran 'Bake UVW Tag of Velorn Material' (1024339)\n"
								 "Dialog \"Bake Dialog\": set 10011 to 8\n"
								 "Dialog \"Bake Dialog\": set 10012 to 0\n"))
		<< report;
	EXPECT_TRUE(contains(report, "Dialog \"Bake Dialog\": press 10001\n")) << report;
	EXPECT_TRUE(VelornTest::readFile(dir.file("car_albedo.jpg")).size() > 0);

	options.sets = {"10011"};
	EXPECT_EQ(VelornTest::failureOf<Velorn::MessageException>([&] { DocumentCommands::runCommand(options); }),
		"--set '10011': expected ID=VALUE, such as 10011=256.");

	// Without the tag selected the command is greyed out and does not run.
	VelornTest::writeFile(dir.file("doc.json"), bakeDocument(false));
	options.sets = {};
	EXPECT_EQ(VelornTest::failureOf<Velorn::MessageException>([&] { DocumentCommands::runCommand(options); }),
		"The command 'Bake UVW Tag of Velorn Material' is disabled for this document: what it works on is not "
		"selected.");
}
