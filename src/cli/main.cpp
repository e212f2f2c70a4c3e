// The velorn command: scene and mesh tools of the Velorn scene library.

#include "cli/document_commands.h"
#include "cli/export_command.h"
#include "cli/mesh_commands.h"
#include "cli/sample_scene.h"
#include "cli/scene_commands.h"
#include "support/exceptions.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace
{

// Runs one command; a library error becomes one message on standard error
// and exit code 1.
int run(const std::function<std::string()>& command)
{
	try
	{
		std::cout << command();
		return 0;
	}
	catch(const Velorn::MessageException& e)
	{
		std::cerr << e.what() << "\n";
		return 1;
	}
}

std::string withNewline(const std::string& text) { return text + "\n"; }

// The export prints the host's console first, also when it failed.
int runExport(const ExportCommand::Options& options)
{
	std::string written;
	const int code = run([&] {
		written = ExportCommand::run(options);
		std::cout << ExportCommand::consoleText();
		return withNewline(written);
	});
	if(code != 0)
		std::cout << ExportCommand::consoleText();
	return code;
}

} // namespace

int main(int argc, char** argv)
{
	CLI::App app{"Velorn scene tools: build, check and convert Velorn scenes and meshes."};
	app.require_subcommand(1);

	std::string out_dir = "out";
	CLI::App* sample = app.add_subcommand("sample",
		"Build a sample scene that holds every kind of scene node and a mesh, and write it as DIR/sample.vls "
		"with its meshes in DIR/sample_meshes.");
	sample->add_option("-o,--out", out_dir, "Directory to write into")->capture_default_str();

	CLI::App* scene = app.add_subcommand("scene", "Check and rewrite scene files (.vls).");
	scene->require_subcommand(1);
	std::string scene_path, scene_out;
	CLI::App* check = scene->add_subcommand("check",
		"Parse, finalise and validate a scene file; print its node counts by kind, or the error with its place in the file.");
	check->add_option("FILE", scene_path, "Scene file")->required();
	CLI::App* format = scene->add_subcommand("format",
		"Parse and finalise a scene file and write it again, with its meshes, in the writer's form.");
	format->add_option("FILE", scene_path, "Scene file")->required();
	format->add_option("-o,--out", scene_out, "Scene file to write")->required();

	CLI::App* mesh = app.add_subcommand("mesh", "Inspect and convert mesh and model files (.vlmesh, .obj, .ply).");
	mesh->require_subcommand(1);
	std::string mesh_path, mesh_out;
	CLI::App* info = mesh->add_subcommand("info",
		"Load a .vlmesh, .obj or .ply file and print its counts, bounds, checksum and byte count.");
	info->add_option("FILE", mesh_path, "Mesh or model file")->required();
	CLI::App* convert = mesh->add_subcommand("convert", "Load a .vlmesh, .obj or .ply file and write it as a .vlmesh file.");
	convert->add_option("IN", mesh_path, "Mesh or model file")->required();
	convert->add_option("OUT", mesh_out, "The .vlmesh file to write")->required();

	ExportCommand::Options export_options;
	export_options.plugins = VELORN_PLUGIN_DIR;
	CLI::App* exporter = app.add_subcommand("export",
		"Load a host document (JSON, see docs/document-format.md) into the headless host, start the plug-in, "
		"export one frame and write the scene with its meshes; prints the plug-in's console.");
	exporter->add_option("DOCUMENT", export_options.document, "Document file")->required();
	exporter->add_option("-o,--out", export_options.scene,
		"Scene file to write (default: the document's name with .vls, here)");
	int frame = 0;
	CLI::Option* frame_option =
		exporter->add_option("--frame", frame, "Frame to export (default: the document's current frame)");
	exporter->add_option("--plugins", export_options.plugins, "The host's plug-in directory")->capture_default_str();

	DocumentCommands::CommandOptions command_options;
	command_options.plugins = VELORN_PLUGIN_DIR;
	std::vector<std::string> answers;
	CLI::App* command = app.add_subcommand("command",
		"Load a host document, run one of the plug-in's commands on it as a menu click would (such as "
		"\"Convert Materials\" or \"New Velorn Material\"), print the questions it asked, its undo entries and "
		"console, and save the changed document.");
	command->add_option("DOCUMENT", command_options.document, "Document file")->required();
	command->add_option("COMMAND", command_options.command, "The command's id, name or help text")->required();
	command->add_option("-o,--out", command_options.out, "Document file to save the result to (default: not saved)");
	command->add_option("--answer", answers, "The button pressed in each question box, in order: yes or no")
		->check(CLI::IsMember({"yes", "no"}));
	command->add_option("--plugins", command_options.plugins, "The host's plug-in directory")->capture_default_str();

	std::string describe_document, describe_node, describe_plugins = VELORN_PLUGIN_DIR;
	CLI::App* describe = app.add_subcommand("describe",
		"Load a host document and print what the attribute manager shows of one material, object, tag or "
		"shader: its visible groups and parameters with their ids and values, and which are disabled.");
	describe->add_option("DOCUMENT", describe_document, "Document file")->required();
	describe->add_option("NODE", describe_node, "The name of the node")->required();
	describe->add_option("--plugins", describe_plugins, "The host's plug-in directory")->capture_default_str();

	CLI11_PARSE(app, argc, argv);

	if(command->parsed())
	{
		for(const std::string& answer : answers)
			command_options.answers.push_back(answer == "yes");
		return run([&] { return DocumentCommands::runCommand(command_options); });
	}
	if(describe->parsed())
		return run([&] { return DocumentCommands::describe(describe_plugins, describe_document, describe_node); });

	if(exporter->parsed())
	{
		if(frame_option->count())
			export_options.frame = frame;
		return runExport(export_options);
	}

	if(sample->parsed())
		return run([&] { return "Wrote " + Velorn::writeSampleScene(out_dir) + "\n"; });
	if(check->parsed())
		return run([&] { return withNewline(Velorn::SceneCommands::check(scene_path)); });
	if(format->parsed())
		return run([&] { return withNewline(Velorn::SceneCommands::format(scene_path, scene_out)); });
	if(info->parsed())
		return run([&] { return Velorn::MeshCommands::info(mesh_path); });
	return run([&] { return withNewline(Velorn::MeshCommands::convert(mesh_path, mesh_out)); });
}
