// Stands in for the renderer in tests that start it: writes its arguments,
// one a line, to the file that the environment variable
// VELORN_RECORD_ARGUMENTS names, and ends.

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv)
{
	const char* record = std::getenv("VELORN_RECORD_ARGUMENTS");
	if(!record)
		return 2;
	// Written under another name and renamed, so that a reader never sees
	// half the arguments.
	const std::string partial = std::string(record) + ".partial";
	FILE* out = std::fopen(partial.c_str(), "w");
	if(!out)
		return 1;
	for(int i = 0; i < argc; ++i)
		std::fprintf(out, "%s\n", argv[i]);
	std::fclose(out);
	return std::rename(partial.c_str(), record) == 0 ? 0 : 1;
}
