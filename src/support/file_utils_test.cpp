#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/mem_mapped_file.h"
#include "support/platform_utils.h"
#include "support/failures.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

using namespace Velorn;

// The expected paths of the next two tests are written with the POSIX
// separator; the Windows build has its own in platform_win32_test.cpp.
#ifndef _WIN32
TEST(FileUtils, PathsJoinAndSplitOnPosix)
{
	EXPECT_EQ(FileUtils::join("", "a.png"), "a.png");
	EXPECT_EQ(FileUtils::join("/scenes", "a.png"), "/scenes/a.png");
	EXPECT_EQ(FileUtils::join("/scenes/", "a.png"), "/scenes/a.png");
	EXPECT_EQ(FileUtils::join("/scenes", "/abs/a.png"), "/abs/a.png");
	EXPECT_EQ(FileUtils::getDirectory("/a/b/c.vls"), "/a/b");
	EXPECT_EQ(FileUtils::getDirectory("c.vls"), "");
	EXPECT_EQ(FileUtils::getFilename("/a/b/c.vls"), "c.vls");
	EXPECT_EQ(FileUtils::eatExtension("a/b.c.vls"), "a/b.c");
	EXPECT_EQ(FileUtils::eatExtension("a.d/b"), "a.d/b");
}

// Each expectation is the path as typed from the base directory by hand.
TEST(FileUtils, RelativePathsOnPosix)
{
	const std::string long_base = "/" + std::string(1200, 'a') + "/" + std::string(700, 'b') + "/c/d/e/f/g/h/i/j/k/l/m/n/o/p";
	const std::string long_path = "/" + std::string(1200, 'a') + "/" + std::string(800, 'z') + ".ies";
	const struct
	{
		const char* what;
		std::string base, path, expected;
	} cases[] = {
		{"below the base", "/scenes/out", "/scenes/out/ies/spot.ies", "ies/spot.ies"},
		{"base with a trailing separator", "/scenes/out/", "/scenes/out/spot.ies", "spot.ies"},
		{"a sibling directory", "/scenes/out", "/scenes/ies/spot.ies", "../ies/spot.ies"},
		{"a name that only starts like the base", "/scenes/out", "/scenes/outer/spot.ies", "../outer/spot.ies"},
		{"two levels up", "/scenes/out/frames", "/scenes/spot.ies", "../../spot.ies"},
		{"the base's own parent", "/scenes/out/frames", "/scenes/out", "../"},
		{"nothing shared but the root", "/home/me", "/data/spot.ies", "../../data/spot.ies"},
		{"another drive", "/scenes/out", "C:/ies/spot.ies", "C:/ies/spot.ies"},
		{"a base too short", "/a", "/a/b/spot.ies", ""},
		{"a path too short", "/scenes/out", "/a", ""},
		{"a base too long", "/" + std::string(2048, 'a'), "/" + std::string(2048, 'a') + "/x.ies", ""},
		// Past the common "/a...a/" (1202 characters), base has 15
		// directories (the b's, c to p): 15 steps up, then the 804
		// characters of path after it.
		{"a long result", long_base, long_path, [] {
			 std::string steps;
			 for(int i = 0; i < 15; ++i)
				 steps += "../";
			 return steps + std::string(800, 'z') + ".ies";
		 }()},
	};
	for(const auto& c : cases)
		EXPECT_EQ(FileUtils::relativePath(c.base, c.path), c.expected) << c.what;
	// 1001 steps up (x and a thousand d's) make 3003 characters, past 2048.
	std::string deep = "/x";
	for(int i = 0; i < 1000; ++i)
		deep += "/d";
	EXPECT_EQ(FileUtils::relativePath(deep, "/y/spot.ies"), FileUtils::relative_path_too_long);
}
#endif

TEST(FileUtils, WholeFilesAndDirectories)
{
	VelornTest::TempDir dir;
	const std::string a = dir.file("deep/er/a.bin");
	FileUtils::createDirsForPath(FileUtils::getDirectory(a));
	const std::vector<unsigned char> bytes = {0, 1, 2, 255};
	FileUtils::writeEntireFile(a, bytes);
	EXPECT_TRUE(FileUtils::fileExists(a));
	EXPECT_EQ(FileUtils::getFileSize(a), 4u);

	std::vector<unsigned char> read_back;
	FileUtils::readEntireFile(a, read_back);
	EXPECT_EQ(read_back, bytes);

	const std::string b = dir.file("deep/b.bin");
	FileUtils::copyFile(a, b);
	FileUtils::moveFile(b, dir.file("deep/c.bin"));
	std::vector<std::string> names = FileUtils::getFilesInDir(dir.file("deep"));
	std::sort(names.begin(), names.end());
	EXPECT_EQ(names, (std::vector<std::string>{"c.bin", "er"}));

	FileUtils::deleteFile(a);
	FileUtils::deleteEmptyDirectory(dir.file("deep/er"));
	EXPECT_FALSE(FileUtils::fileExists(dir.file("deep/er")));

	const std::string missing = dir.file("missing");
	EXPECT_EQ(VelornTest::failureOf([&] { FileUtils::getFilesInDir(missing); }), "Failed to open dir '" + missing + "'");
	EXPECT_EQ(VelornTest::failureOf([&] {
		std::string out;
		FileUtils::readEntireFile(missing, out);
	}),
		"could not open '" + missing + "' for reading.");
	EXPECT_EQ(VelornTest::failureOf([&] { FileUtils::writeEntireFile(dir.file("missing/x"), std::string("x")); }),
		"Could not open '" + dir.file("missing/x") + "' for writing.");
	EXPECT_EQ(VelornTest::failureOf([&] { FileUtils::copyFile(missing, b); }), "Failed to copy file '" + missing + "' to '" + b + "'");
	EXPECT_EQ(VelornTest::failureOf([&] { FileUtils::moveFile(missing, b); }), "Failed to move file '" + missing + "' to '" + b + "'");
	EXPECT_EQ(VelornTest::failureOf([&] { FileUtils::deleteFile(missing); }), "Failed to delete file '" + missing + "'");
	EXPECT_EQ(VelornTest::failureOf([&] { FileUtils::deleteEmptyDirectory(dir.file("deep")); }),
		"Failed to delete directory '" + dir.file("deep") + "'");
	EXPECT_EQ(VelornTest::failureOf([&] { FileUtils::getFileSize(missing); }).rfind("CreateFile failed: ", 0), 0u);
}

TEST(MemMappedFile, MapsWholeFilesAndRefusesWhatItCannot)
{
	VelornTest::TempDir dir;
	FileUtils::writeEntireFile(dir.file("data"), std::string("hello"));
	{
		MemMappedFile mapped(dir.file("data"));
		ASSERT_EQ(mapped.fileSize(), 5u);
		EXPECT_EQ(std::memcmp(mapped.fileData(), "hello", 5), 0);
	}

	FileUtils::writeEntireFile(dir.file("empty"), std::string());
	{
		// Closed again before the resize below, which Windows refuses on an
		// open file.
		MemMappedFile empty(dir.file("empty"));
		EXPECT_EQ(empty.fileSize(), 0u);
		EXPECT_EQ(empty.fileData(), nullptr);
	}

	const std::string missing = dir.file("missing");
	EXPECT_EQ(VelornTest::failureOf([&] { MemMappedFile m(missing); }).rfind("CreateFile failed for path '" + missing + "': ", 0), 0u);

	// A sparse file of 4 GiB takes no room on disk.
	std::filesystem::resize_file(dir.file("empty"), (uintmax_t)1 << 32);
	EXPECT_EQ(VelornTest::failureOf([&] { MemMappedFile m(dir.file("empty")); }), "File is too large.");
}

TEST(PlatformUtils, SystemFacts)
{
	CPUInfo info;
	PlatformUtils::getCPUInfo(info);
	EXPECT_NE(std::string(info.vendor, 12).find_first_not_of(' '), std::string::npos);
	EXPECT_FALSE(info.htt);
	EXPECT_TRUE(info.sse2); // every x86-64 processor has it

#ifndef _WIN32
	// The system's own text; Windows words it by its language.
	EXPECT_EQ(PlatformUtils::getErrorString(2), std::string("No such file or directory (error code=2)"));
#endif
	EXPECT_FALSE(PlatformUtils::getCurrentWorkingDirPath().empty());
	EXPECT_FALSE(PlatformUtils::getTempDirPath().empty());
	// The support layer is a shared library of its own, the module that holds this code.
	EXPECT_NE(PlatformUtils::getFullPathToLib().find("velorn_support"), std::string::npos);
	EXPECT_EQ(PlatformUtils::getEnvironmentVariable("PATH").empty(), false);
#ifdef _WIN32
	// ERROR_ENVVAR_NOT_FOUND.
	const int not_set = 203;
#else
	const int not_set = 2;
#endif
	EXPECT_EQ(VelornTest::failureOf([] { PlatformUtils::getEnvironmentVariable("VELORN_SURELY_NOT_SET"); }),
		"getEnvironmentVariable failed: " + PlatformUtils::getErrorString(not_set));
}
