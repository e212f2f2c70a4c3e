// The velorn command: scene and mesh tools of the Velorn scene library.

#include "cli/command_examples.h"
#include "cli/document_commands.h"
#include "cli/draw_command.h"
#include "cli/export_command.h"
#include "cli/host_session.h"
#include "cli/material_commands.h"
#include "cli/mesh_commands.h"
#include "cli/preview_command.h"
#include "cli/render_command.h"
#include "cli/sample_scene.h"
#include "cli/tonemap_changes.h"
#include "cli/scene_commands.h"
#include "host/plugin_version.h"
#include "support/exceptions.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace
{

bool startsWithFile(const std::string& message, const std::string& file)
{
	return !file.empty() && message.compare(0, file.size() + 1, file + ":") == 0;
}

// The error of a command about file as one line, "velorn: <file>: <message>",
// with the library's message as it is. A message that starts with file, or
// with the other file the command reads, already (a document's errors do)
// does not get a file before it.
std::string errorLine(const std::string& file, const std::string& other, const std::string& message)
{
	const bool named = startsWithFile(message, file) || startsWithFile(message, other);
	return "velorn: " + (named ? message : file + ": " + message);
}

// Runs one command about file, which may read one other file too; a library
// error becomes one line on standard error and exit code 1.
int run(const std::string& file, const std::function<std::string()>& command, const std::string& other = "")
{
	try
	{
		std::cout << command();
		return 0;
	}
	catch(const Velorn::MessageException& e)
	{
		std::cerr << errorLine(file, other, e.what()) << "\n";
		return 1;
	}
}

std::string withNewline(const std::string& text) { return text + "\n"; }

// The --plugins option of a command that starts the plug-in, which defaults
// to the plug-in directory of this build.
void addPluginsOption(CLI::App* command, std::string& plugins)
{
	plugins = VELORN_PLUGIN_DIR;
	command->add_option("--plugins", plugins, "The host's plug-in directory")->capture_default_str();
}

// The --renderer option of a command that renders, which defaults to the
// stand-in renderer of this build.
void addRendererOption(CLI::App* command, std::string& renderer_dir, const std::string& help)
{
	renderer_dir = VELORN_RENDERER_DIR;
	command->add_option("--renderer", renderer_dir, help)->capture_default_str();
}

// The export prints the host's console first, also when it failed.
int runExport(const ExportCommand::Options& options)
{
	std::string written;
	const int code = run(options.document, [&] {
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
	// --quiet and --version hold for every command, also given after it:
	// the commands fall through to these options.
	app.fallthrough();
	app.set_version_flag("--version", std::string(velorn_version_text), "Print the plug-in's version and exit");
	bool quiet = false;
	app.add_flag("--quiet", quiet, "Leave the plug-in's console lines out of the output");

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
	CLI::App* exporter = app.add_subcommand("export",
		"Load a host document (JSON, see docs/document-format.md) into the headless host, start the plug-in, "
		"export one frame and write the scene with its meshes; prints the plug-in's console.");
	exporter->add_option("DOCUMENT", export_options.document, "Document file")->required();
	exporter->add_option("-o,--out", export_options.scene,
		"Scene file to write (default: the document's name with .vls, here)");
	int frame = 0;
	CLI::Option* frame_option =
		exporter->add_option("--frame", frame, "Frame to export (default: the document's current frame)");
	addPluginsOption(exporter, export_options.plugins);

	DocumentCommands::CommandOptions command_options;
	std::vector<std::string> answers;
	CLI::App* command = app.add_subcommand("command",
		"Load a host document, run one of the plug-in's commands on it as a menu click would (such as "
		"\"Convert Materials\" or \"Bake UVW Tag of Velorn Material\"), print the questions it asked, what was "
		"done in its dialog, its undo entries and console, and save the changed document.");
	command->add_option("DOCUMENT", command_options.document, "Document file")->required();
	command->add_option("COMMAND", command_options.command, "The command's id, name or help text")->required();
	command->add_option("-o,--out", command_options.out, "Document file to save the result to (default: not saved)");
	command->add_option("--answer", answers, "The button pressed in each question box, in order: yes or no")
		->check(CLI::IsMember({"yes", "no"}));
	command->add_option("--file", command_options.files, "The file chosen in each file requester, in order");
	command->add_option("--set", command_options.sets,
		"ID=VALUE: a value typed into the item ID of the dialog the command opens (check boxes: on or off), "
		"before any --press; such as --set 10011=256 --set 10017=/tmp/car.jpg");
	command->add_option("--press", command_options.presses,
		"The id of a button clicked in the dialog, after the --set values, in order; such as --press 10001");
	addPluginsOption(command, command_options.plugins);

	std::string describe_document, describe_node, describe_plugins;
	CLI::App* describe = app.add_subcommand("describe",
		"Load a host document and print what the attribute manager shows of one material, object, tag or "
		"shader: its visible groups and parameters with their ids and values, and which are disabled.");
	describe->add_option("DOCUMENT", describe_document, "Document file")->required();
	describe->add_option("NODE", describe_node, "The name of the node")->required();
	addPluginsOption(describe, describe_plugins);

	MaterialCommands::ImportOptions import_options;
	CLI::App* import_material = app.add_subcommand("import-material",
		"Import a material file of the renderer (.vlm, or a packed .pvlm) into a host document as the plug-in's "
		"materials, as the command \"Import .vlm\" does; print its console lines and warnings and save the "
		"document.");
	import_material->add_option("FILE", import_options.file, "Material file (.vlm or .pvlm)")->required();
	import_material->add_option("DOCUMENT", import_options.document, "Document file")->required();
	import_material->add_option("-o,--out", import_options.out, "Document file to save to (default: DOCUMENT)");
	addPluginsOption(import_material, import_options.plugins);

	RenderCommand::Options render_options;
	CLI::App* render = app.add_subcommand("render",
		"Run \"Render with Velorn\" on a host document: export it to the quick render folder (or where its render "
		"settings say), write a render queue for an animation and start the renderer; print the console, the "
		"scenes and the renderer's command line. Example: velorn render examples/studio.json");
	render->add_option("DOCUMENT", render_options.document, "Document file")->required();
	render->add_flag("--animation", render_options.animation,
		"Render the frame range of the document's render data, one scene a frame, as a queue");
	addRendererOption(render, render_options.renderer_dir,
		"The renderer's directory, given when the plug-in asks where the renderer is");
	addPluginsOption(render, render_options.plugins);
	render->add_flag("--in-host", render_options.in_host,
		"Render inside the host through the plug-in's video post and the renderer's SDK library (from --renderer), "
		"and save the host's picture (-o). Example: velorn render examples/studio.json --in-host -o studio.png --spp 4");
	render->add_option("-o,--output", render_options.image, "The PNG picture of an in-host render");
	render->add_option("--spp", render_options.spp, "Halt an in-host render after this many samples per pixel");
	render->add_option("--tonemap", render_options.tonemap, TonemapChanges::help);

	DrawCommand::Options draw_options;
	CLI::App* draw = app.add_subcommand("draw",
		"Draw the editor's view of a host document (the camera tag's render region, instances, section planes, "
		"the objects' wires) into a PNG.");
	draw->add_option("DOCUMENT", draw_options.document, "Document file")->required();
	draw->add_option("-o,--out", draw_options.image, "PNG file to write")->required();
	draw->add_option("--size", draw_options.size, "The view's size in pixels, WxH")->capture_default_str();
	addPluginsOption(draw, draw_options.plugins);

	PreviewCommand::Options preview_options;
	CLI::App* preview = app.add_subcommand("preview",
		"Render the material manager's preview of one material of a host document, as the host's preview asks "
		"the material for it: in the plug-in's preview scene, through the video post and the renderer's SDK "
		"library (from --renderer); save it as a PNG.");
	preview->add_option("MATERIAL", preview_options.material, "The material's name")->required();
	preview->add_option("DOCUMENT", preview_options.document, "Document file")->required();
	preview->add_option("-o,--output", preview_options.image, "PNG file to write")->required();
	preview->add_option("--size", preview_options.size, "The preview's side in pixels")->capture_default_str();
	preview->add_option("--quality", preview_options.quality, "The material's preview quality for this preview")
		->check(CLI::IsMember(std::vector<std::string>(std::begin(PreviewCommand::quality_names),
			std::end(PreviewCommand::quality_names))));
	addRendererOption(preview, preview_options.renderer_dir, "The renderer's directory");
	addPluginsOption(preview, preview_options.plugins);
	preview->footer("Example: velorn preview \"Glossy Floor\" examples/studio.json -o out/preview.png --size 64 "
					"--quality low");

	CommandExamples::addExamples(app);
	CLI11_PARSE(app, argc, argv);
	HostSession::setQuiet(quiet);

	if(preview->parsed())
		return run(preview_options.document, [&] { return PreviewCommand::run(preview_options); });
	if(draw->parsed())
		return run(draw_options.document, [&] { return DrawCommand::run(draw_options); });
	if(render->parsed())
	{
		if(render_options.in_host && render_options.image.empty())
		{
			std::cerr << "render --in-host needs -o IMAGE.png" << std::endl;
			return 2;
		}
		return run(render_options.document, [&] {
			return render_options.in_host ? RenderCommand::renderInHost(render_options) :
											RenderCommand::renderExternally(render_options);
		});
	}

	if(import_material->parsed())
		return run(
			import_options.file, [&] { return MaterialCommands::importMaterial(import_options); }, import_options.document);

	if(command->parsed())
	{
		for(const std::string& answer : answers)
			command_options.answers.push_back(answer == "yes");
		return run(command_options.document, [&] { return DocumentCommands::runCommand(command_options); });
	}
	if(describe->parsed())
		return run(describe_document, [&] { return DocumentCommands::describe(describe_plugins, describe_document, describe_node); });

	if(exporter->parsed())
	{
		if(frame_option->count())
			export_options.frame = frame;
		return runExport(export_options);
	}

	if(sample->parsed())
		return run(out_dir, [&] { return "Wrote " + Velorn::writeSampleScene(out_dir) + "\n"; });
	if(check->parsed())
		return run(scene_path, [&] { return withNewline(Velorn::SceneCommands::check(scene_path)); });
	if(format->parsed())
		return run(scene_path, [&] { return withNewline(Velorn::SceneCommands::format(scene_path, scene_out)); });
	if(info->parsed())
		return run(mesh_path, [&] { return Velorn::MeshCommands::info(mesh_path); });
	return run(mesh_path, [&] { return withNewline(Velorn::MeshCommands::convert(mesh_path, mesh_out)); });
}
