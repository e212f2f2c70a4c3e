// The velorn program as a user runs it: its output, its errors and its exit
// code, through a POSIX shell in a scratch directory. Windows has no such
// shell to redirect and collect them, so these tests are built elsewhere
// only; their names say so.
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace
{

struct Outcome
{
	int code;
	std::string out;
	std::string err;
};

// Runs velorn with the arguments (shell words) in dir.
Outcome velorn(const VelornTest::TempDir& dir, const std::string& args)
{
	const std::string command = "cd '" + dir.path() + "' && '" VELORN_EXECUTABLE "' " + args +
		" >stdout.txt 2>stderr.txt; echo $? >code.txt";
	if(std::system(command.c_str()) != 0)
		ADD_FAILURE() << "the shell failed: " << command;
	return {std::stoi(VelornTest::readFile(dir.file("code.txt"))), VelornTest::readFile(dir.file("stdout.txt")),
		VelornTest::readFile(dir.file("stderr.txt"))};
}

// A document with one sphere, which exports.
const char* SPHERE_DOCUMENT = R"({"version": 1, "objects": [{"type": 5160, "name": "Ball"}]})";

const char* BANNER = "._.-.Velorn for Cinema 4D 3.6.24\n";

} // namespace

// An error is one line that names the file it is about, with the library's
// message as it is; a document that cannot be read fails before the
// plug-in starts, so nothing of its start-up is printed.
TEST(VelornCommandInPosixShell, ErrorsNameTheirFile)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("cut.vlmesh"), "ab");
	VelornTest::writeFile(dir.file("bad.vls"), "<scene>\n\t<camera>\n\t\t<aperture_radius>0</aperture_radius>\n\t</camera>\n</scene>\n");
	VelornTest::writeFile(dir.file("quad.obj"), "v 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n");
	VelornTest::writeFile(dir.file("broken.json"), "{\"version\": 1,\n  \"objects\": [\n");
	VelornTest::writeFile(dir.file("future.json"), "{\"version\": 2}");
	struct Case
	{
		const char* args;
		const char* err;
	};
	const Case cases[] = {
		{"mesh info cut.vlmesh", "velorn: cut.vlmesh: Read failed.\n"},
		{"scene check bad.vls",
			"velorn: bad.vls: Aperture_radius must be greater than zero (e.g. 0.001)  (In element 'camera', around line 2, "
			"column 5)\n"},
		{"mesh convert quad.obj quad.bin", "velorn: quad.obj: The output file must end in .vlmesh: 'quad.bin'\n"},
		{"export missing.json", "velorn: missing.json: could not open 'missing.json' for reading.\n"},
		{"describe broken.json Ball", "velorn: broken.json:3:1: not valid JSON\n"},
		{"command broken.json \"Convert Materials\"", "velorn: broken.json:3:1: not valid JSON\n"},
		{"import-material missing.vlm broken.json", "velorn: broken.json:3:1: not valid JSON\n"},
		{"render future.json", "velorn: future.json: version: unsupported version 2; this host reads version 1\n"},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.args);
		const Outcome outcome = velorn(dir, c.args);
		EXPECT_EQ(outcome.code, 1);
		EXPECT_EQ(outcome.err, c.err);
		EXPECT_EQ(outcome.out, "");
	}
}

// --quiet and --version go with every command, before or after it.
TEST(VelornCommandInPosixShell, QuietAndVersion)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("ball.json"), SPHERE_DOCUMENT);
	const std::string wrote = "Wrote " + dir.file("ball.vls") + "\n";

	const Outcome loud = velorn(dir, "export ball.json");
	EXPECT_EQ(loud.code, 0) << loud.err;
	EXPECT_NE(loud.out.find(BANNER), std::string::npos) << loud.out;
	EXPECT_NE(loud.out.find("Starting export..."), std::string::npos) << loud.out;

	struct Case
	{
		const char* args;
		std::string out;
	};
	const Case cases[] = {
		{"export ball.json --quiet", wrote},
		{"--quiet export ball.json", wrote},
		{"--version", "Velorn for Cinema 4D 3.6.24\n"},
		{"mesh info --version", "Velorn for Cinema 4D 3.6.24\n"},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.args);
		const Outcome outcome = velorn(dir, c.args);
		EXPECT_EQ(outcome.code, 0) << outcome.err;
		EXPECT_EQ(outcome.out, c.out);
	}
}

// The --help of velorn and of every command ends with an example of it.
TEST(VelornCommandInPosixShell, EveryHelpShowsAnExample)
{
	VelornTest::TempDir dir;
	const std::vector<std::string> commands = {"", "sample", "scene", "scene check", "scene format", "mesh", "mesh info",
		"mesh convert", "export", "command", "describe", "import-material", "render", "draw", "preview"};
	for(const std::string& command : commands)
	{
		SCOPED_TRACE(command);
		const Outcome outcome = velorn(dir, command + " --help");
		EXPECT_EQ(outcome.code, 0);
		const std::string example = "\nExample: velorn " + (command.empty() ? "" : command + " ");
		EXPECT_NE(outcome.out.find(example), std::string::npos) << outcome.out;
	}
}
