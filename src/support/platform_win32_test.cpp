// The Windows platform layer, run under Wine in the cross build. Built on
// Windows only. The registry is written through the system's reg.exe, so
// that no test needs a system header.

#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/mem_mapped_file.h"
#include "support/platform.h"
#include "support/platform_utils.h"
#include "support/platform_win32.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <thread>

using namespace Velorn;

namespace
{

// U+00FC, U+00DF, U+65E5, U+672C and U+1F600 (a surrogate pair), as UTF-8.
const std::string non_ascii = "gr\xC3\xBC\xC3\x9F\x65 \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x98\x80";

std::vector<std::string> lines(const std::string& text)
{
	std::vector<std::string> result;
	std::istringstream in(text);
	for(std::string line; std::getline(in, line);)
		result.push_back(line);
	return result;
}

std::string systemTool(const std::string& name)
{
	return PlatformUtils::getEnvironmentVariable("SystemRoot") + "\\system32\\" + name;
}

// Runs reg.exe with the arguments; its exit code.
int reg(const std::string& arguments)
{
	int code = -1;
	EXPECT_TRUE(Platform::runProcess(systemTool("reg.exe"), "reg.exe " + arguments, false, code))
		<< Platform::lastErrorString();
	return code;
}

// Wine's ntdll says who it is; Windows' has no such function.
bool underWine()
{
	const Platform::LibraryHandle ntdll = Platform::loadLibrary("ntdll.dll");
	const bool wine = ntdll && Platform::findSymbol(ntdll, "wine_get_version");
	if(ntdll)
		Platform::freeLibrary(ntdll);
	return wine;
}

// The priority that a process started below normal reports. Wine 8 starts
// every process at the normal class, whatever the creation flags ask.
const char* belowNormalSeenByTheChild() { return underWine() ? "1" : "0"; }

// The probe beside the tests' own DLLs: the build puts every program there.
std::string probePath()
{
	return FileUtils::join(FileUtils::getDirectory(PlatformUtils::getFullPathToLib()), "process_probe.exe");
}

} // namespace

TEST(PlatformWin32, WideCharactersRoundTripThroughTheFileSystem)
{
	const std::wstring wide = Platform::Win32::widen(non_ascii);
	const std::wstring expected = {L'g', L'r', 0x00FC, 0x00DF, L'e', L' ', 0x65E5, 0x672C, L' ', 0xD83D, 0xDE00};
	EXPECT_EQ(wide, expected);
	EXPECT_EQ(Platform::Win32::narrow(wide), non_ascii);

	VelornTest::TempDir temp;
	const std::string dir = FileUtils::join(temp.path(), non_ascii);
	ASSERT_TRUE(Platform::makeDirectory(dir));
	const std::string file = FileUtils::join(dir, non_ascii + ".txt");
	FileUtils::writeEntireFile(file, std::string("12345"));
	std::vector<std::string> names;
	ASSERT_TRUE(Platform::listDirectory(dir, names));
	ASSERT_EQ(names, std::vector<std::string>{non_ascii + ".txt"});
	EXPECT_EQ(FileUtils::getFileSize(file), 5u);
	EXPECT_TRUE(Platform::isRegularFile(file));
	EXPECT_FALSE(Platform::isRegularFile(dir));
	EXPECT_TRUE(Platform::isDirectory(dir));
	{
		const MemMappedFile mapped(file);
		ASSERT_EQ(mapped.fileSize(), 5u);
		EXPECT_EQ(std::string(static_cast<const char*>(mapped.fileData()), 5), "12345");
	}
	const std::string moved = FileUtils::join(dir, "moved " + non_ascii);
	ASSERT_TRUE(Platform::renamePath(file, moved));
	EXPECT_FALSE(Platform::pathExists(file));
	EXPECT_EQ(Platform::canonicalPath(FileUtils::join(dir, "..\\" + non_ascii + "\\moved " + non_ascii)),
		Platform::canonicalPath(moved));
	EXPECT_TRUE(Platform::removeFile(moved));
	EXPECT_TRUE(Platform::removeEmptyDirectory(dir));
	EXPECT_FALSE(Platform::pathExists(dir));
}

TEST(PlatformWin32, EmptyFileMapsToNoView)
{
	VelornTest::TempDir temp;
	const std::string file = FileUtils::join(temp.path(), "empty");
	FileUtils::writeEntireFile(file, std::string());
	const MemMappedFile mapped(file);
	EXPECT_EQ(mapped.fileSize(), 0u);
	EXPECT_EQ(mapped.fileData(), nullptr);
	try
	{
		MemMappedFile missing(FileUtils::join(temp.path(), "missing"));
		ADD_FAILURE() << "a missing file was mapped";
	}
	catch(const PlatformUtilsExcep& e)
	{
		// ERROR_FILE_NOT_FOUND.
		const std::string start = "CreateFile failed for path '" + FileUtils::join(temp.path(), "missing") + "': ";
		EXPECT_EQ(e.what().compare(0, start.size(), start), 0) << e.what();
		EXPECT_NE(e.what().find(" (error code=2)"), std::string::npos) << e.what();
	}
}

TEST(PlatformWin32, PathsAndDirectories)
{
	EXPECT_EQ(Platform::preferredSeparator(), '\\');
	const struct
	{
		const char* path;
		bool absolute;
	} cases[] = {
		{"C:\\scenes", true}, {"c:/scenes", true}, {"\\\\server\\share", true}, {"\\scenes", true},
		{"C:scenes", false}, {"scenes\\a.vls", false}, {"", false},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.path);
		EXPECT_EQ(Platform::isAbsolutePath(c.path), c.absolute);
	}
	EXPECT_EQ(FileUtils::join("C:\\scenes", "a.vls"), "C:\\scenes\\a.vls");
	EXPECT_EQ(FileUtils::join("C:\\scenes\\", "a.vls"), "C:\\scenes\\a.vls");
	EXPECT_EQ(FileUtils::join("C:\\scenes", "D:\\a.vls"), "D:\\a.vls");
	EXPECT_EQ(FileUtils::getDirectory("C:\\a/b\\c.vls"), "C:\\a/b");
	EXPECT_EQ(FileUtils::getFilename("C:\\a\\b/c.vls"), "c.vls");
	EXPECT_EQ(FileUtils::relativePath("C:\\scenes\\out", "C:\\scenes\\ies\\spot.ies"), "..\\ies\\spot.ies");

	const std::string temp = PlatformUtils::getTempDirPath();
	EXPECT_TRUE(Platform::isDirectory(temp)) << temp;
	EXPECT_NE(temp.back(), '\\');
	const std::string appdata = PlatformUtils::getAPPDataDirPath();
	EXPECT_TRUE(Platform::isDirectory(appdata)) << appdata;
	EXPECT_EQ(PlatformUtils::getOrCreateAppDataDirectory(), appdata + "\\Velorn Renderer");
	EXPECT_TRUE(Platform::isDirectory(appdata + "\\Velorn Renderer"));
	EXPECT_EQ(PlatformUtils::getCurrentWorkingDirPath(), Platform::currentWorkingDirectory());
	const std::string lib = PlatformUtils::getFullPathToLib();
	EXPECT_EQ(FileUtils::getFilename(lib), "libvelorn_support.dll");
}

TEST(PlatformWin32, ErrorTexts)
{
	// The system's texts vary with the language; what follows them does not.
	const std::string text = PlatformUtils::getErrorString(2);
	const std::string suffix = " (error code=2)";
	ASSERT_GT(text.size(), suffix.size());
	EXPECT_EQ(text.substr(text.size() - suffix.size()), suffix);
	EXPECT_NE(text[text.size() - suffix.size() - 1], '\n');
	EXPECT_NE(text[0], '[');
	// A code without a text of the system.
	EXPECT_EQ(PlatformUtils::getErrorString(0x2FFFFFFF), "[Unknown (error code=805306367)]");
}

TEST(PlatformWin32, RegistryTextsOfTheCurrentUser)
{
	const std::string key = "Software\\Tessmark Labs Tests\\Platform";
	reg("delete \"HKCU\\" + key + "\" /f");
	EXPECT_EQ(PlatformUtils::readUserRegistryString(key, "InstallDirectory"), "") << "no key";

	ASSERT_EQ(reg("add \"HKCU\\" + key + "\" /v InstallDirectory /t REG_SZ /d \"C:\\Program Files\\" + non_ascii
				  + "\" /f"),
		0);
	ASSERT_EQ(reg("add \"HKCU\\" + key + "\" /v Expandable /t REG_EXPAND_SZ /d \"%SystemRoot%\" /f"), 0);
	ASSERT_EQ(reg("add \"HKCU\\" + key + "\" /v Long /t REG_SZ /d " + std::string(600, 'x') + " /f"), 0);
	const struct
	{
		const char* what;
		std::string key, value, expected;
	} cases[] = {
		{"a text value", key, "InstallDirectory", "C:\\Program Files\\" + non_ascii},
		{"another value name", key, "InstallDir", ""},
		{"a key one level up", "Software\\Tessmark Labs Tests", "InstallDirectory", ""},
		{"a value of another type", key, "Expandable", ""},
		// 600 characters and the terminator take 1202 bytes, more than the
		// buffer of 1024.
		{"a text longer than the buffer", key, "Long", ""},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.what);
		EXPECT_EQ(PlatformUtils::readUserRegistryString(c.key, c.value), c.expected);
	}
	reg("delete \"HKCU\\Software\\Tessmark Labs Tests\" /f");
}

TEST(PlatformWin32, ProcessesGetTheCommandLineAndThePriority)
{
	EXPECT_EQ(Platform::Win32::processCreationFlags(true), 0x4004000u);
	EXPECT_EQ(Platform::Win32::processCreationFlags(false), 0x4000000u);

	VelornTest::TempDir temp;
	const std::string record = FileUtils::join(temp.path(), "arguments of " + non_ascii.substr(0, 2));
	for(const bool below_normal : {true, false})
	{
		SCOPED_TRACE(below_normal ? "below normal" : "normal");
		int code = -1;
		ASSERT_TRUE(Platform::runProcess(probePath(),
			"process_probe.exe \"" + record + "\" \"two words\" -o \"C:\\a b\\c.png\"", below_normal, code))
			<< Platform::lastErrorString();
		EXPECT_EQ(code, 7);
		const std::vector<std::string> expected = {
			below_normal ? belowNormalSeenByTheChild() : "1", "process_probe.exe", record, "two words", "-o", "C:\\a b\\c.png"};
		EXPECT_EQ(lines(VelornTest::readFile(record)), expected);
	}

	// startProcess does not wait: the record appears some time later.
	FileUtils::deleteFile(record);
	ASSERT_TRUE(Platform::startProcess(probePath(), "process_probe.exe \"" + record + "\"", true));
	for(int i = 0; i < 200 && !Platform::pathExists(record); ++i)
		std::this_thread::sleep_for(std::chrono::milliseconds(50));
	EXPECT_EQ(lines(VelornTest::readFile(record)), (std::vector<std::string>{belowNormalSeenByTheChild(), "process_probe.exe", record}));

	int code = -1;
	EXPECT_FALSE(Platform::runProcess(FileUtils::join(temp.path(), "missing.exe"), "missing.exe", false, code));
	EXPECT_EQ(Platform::lastErrorCode(), 2);
	EXPECT_FALSE(Platform::startProcess(FileUtils::join(temp.path(), "missing.exe"), "missing.exe", false));
}

TEST(PlatformWin32, ProcessPriority)
{
	PlatformUtils::setThisProcessPriority(0);
	EXPECT_EQ(PlatformUtils::getThisProcessPriority(), 0);
	PlatformUtils::setThisProcessPriority(1);
	EXPECT_EQ(PlatformUtils::getThisProcessPriority(), 1);
}

TEST(PlatformWin32, LibrariesLoadFromTheSearchDirectory)
{
	// A copy of this layer's DLL under a name nothing else has.
	VelornTest::TempDir temp;
	const std::string dir = FileUtils::join(temp.path(), non_ascii);
	ASSERT_TRUE(Platform::makeDirectory(dir));
	FileUtils::copyFile(PlatformUtils::getFullPathToLib(), FileUtils::join(dir, "velorn_search_probe.dll"));

	EXPECT_EQ(Platform::loadLibrary("velorn_search_probe.dll"), nullptr) << "found before it was looked for";
	// ERROR_MOD_NOT_FOUND.
	EXPECT_NE(Platform::libraryErrorString().find("(error code=126)"), std::string::npos)
		<< Platform::libraryErrorString();

	ASSERT_TRUE(Platform::setLibrarySearchDirectory(dir));
	const Platform::LibraryHandle library = Platform::loadLibrary("velorn_search_probe.dll");
	ASSERT_NE(library, nullptr) << Platform::libraryErrorString();
	EXPECT_EQ(Platform::findSymbol(library, "no_such_function"), nullptr);
	// ERROR_PROC_NOT_FOUND.
	EXPECT_NE(Platform::libraryErrorString().find("(error code=127)"), std::string::npos)
		<< Platform::libraryErrorString();
	EXPECT_TRUE(Platform::freeLibrary(library));
	ASSERT_TRUE(Platform::setLibrarySearchDirectory(temp.path()));

	// The same DLL by its full UTF-8 path, and a function it exports.
	const Platform::LibraryHandle by_path = Platform::loadLibrary(FileUtils::join(dir, "velorn_search_probe.dll"));
	ASSERT_NE(by_path, nullptr) << Platform::libraryErrorString();
	EXPECT_NE(Platform::findSymbol(by_path, "_ZN6Velorn13PlatformUtils16getFullPathToLibB5cxx11Ev"), nullptr)
		<< Platform::libraryErrorString();
	EXPECT_TRUE(Platform::freeLibrary(by_path));
}
