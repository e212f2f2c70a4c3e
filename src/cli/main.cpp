// The velorn command: scene and mesh tools of the Velorn scene library.

#include "cli/sample_scene.h"
#include "support/exceptions.h"

#include <CLI/CLI.hpp>

#include <iostream>

int main(int argc, char** argv)
{
	CLI::App app{"Velorn scene tools: build, write and check Velorn scenes and meshes."};
	app.require_subcommand(1);

	std::string out_dir = "out";
	CLI::App* sample = app.add_subcommand("sample",
		"Build a sample scene that holds every kind of scene node and a mesh, and write it as DIR/sample.vls "
		"with its meshes in DIR/sample_meshes.");
	sample->add_option("-o,--out", out_dir, "Directory to write into")->capture_default_str();

	CLI11_PARSE(app, argc, argv);

	try
	{
		if(sample->parsed())
		{
			const std::string path = Velorn::writeSampleScene(out_dir);
			std::cout << "Wrote " << path << "\n";
		}
	}
	catch(const Velorn::MessageException& e)
	{
		std::cerr << "velorn: " << e.what() << "\n";
		return 1;
	}
	return 0;
}
