// Started by the tests of the process calls: writes the priority it runs at
// (0 below normal, 1 normal, -1 other) and then its arguments, one a line,
// to the file named by its first argument, and ends with exit code 7, so
// that a waiting caller can tell its code from a default one.

#include "support/platform_utils.h"

#include <cstdio>
#include <string>

int main(int argc, char** argv)
{
	if(argc < 2)
		return 2;
	// Written under another name and renamed, so that a reader never sees
	// half the arguments.
	const std::string partial = std::string(argv[1]) + ".partial";
	FILE* out = std::fopen(partial.c_str(), "wb");
	if(!out)
		return 1;
	std::fprintf(out, "%d\n", Velorn::PlatformUtils::getThisProcessPriority());
	for(int i = 0; i < argc; ++i)
		std::fprintf(out, "%s\n", argv[i]);
	std::fclose(out);
	std::remove(argv[1]);
	return std::rename(partial.c_str(), argv[1]) == 0 ? 7 : 1;
}
