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
