#include "support/platform.h"

#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/mem_mapped_file.h"
#include "support/platform_utils.h"
#include "support/platform_win32.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#include <shlobj.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <process.h>

// Every path and text that reaches Windows goes through the wide-character
// calls: the library holds UTF-8, and the narrow calls would read it in the
// machine's ANSI code page.
namespace Velorn
{
namespace Platform
{
namespace Win32
{

std::wstring widen(const std::string& text)
{
	if(text.empty())
		return std::wstring();
	const int length = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), (int)text.size(), nullptr, 0);
	std::wstring wide((size_t)length, L'\0');
	::MultiByteToWideChar(CP_UTF8, 0, text.data(), (int)text.size(), &wide[0], length);
	return wide;
}

std::string narrow(const std::wstring& text)
{
	if(text.empty())
		return std::string();
	const int length =
		::WideCharToMultiByte(CP_UTF8, 0, text.data(), (int)text.size(), nullptr, 0, nullptr, nullptr);
	std::string utf8((size_t)length, '\0');
	::WideCharToMultiByte(CP_UTF8, 0, text.data(), (int)text.size(), &utf8[0], length, nullptr, nullptr);
	return utf8;
}

uint32_t processCreationFlags(bool below_normal)
{
	// The default error mode keeps this process's choice (no dialog on a
	// missing disk, for instance) from reaching a program that outlives it.
	return CREATE_DEFAULT_ERROR_MODE | (below_normal ? BELOW_NORMAL_PRIORITY_CLASS : 0);
}

} // namespace Win32

using Win32::narrow;
using Win32::widen;

char preferredSeparator() { return '\\'; }

bool isSeparator(char c) { return c == '\\' || c == '/'; }

bool isAbsolutePath(const std::string& path)
{
	// "C:\...", or a path from the root of the current drive or a share
	// ("\...", "\\server\..."), which a join must not put under another one.
	if(!path.empty() && isSeparator(path[0]))
		return true;
	return path.size() >= 3 && std::isalpha((unsigned char)path[0]) && path[1] == ':' && isSeparator(path[2]);
}

std::string currentWorkingDirectory()
{
	const DWORD length = ::GetCurrentDirectoryW(0, nullptr);
	if(length == 0)
		return std::string();
	std::wstring dir(length, L'\0');
	const DWORD written = ::GetCurrentDirectoryW(length, &dir[0]);
	if(written == 0 || written >= length)
		return std::string();
	dir.resize(written);
	return narrow(dir);
}

namespace
{

DWORD attributesOf(const std::string& path) { return ::GetFileAttributesW(widen(path).c_str()); }

} // namespace

bool pathExists(const std::string& path) { return attributesOf(path) != INVALID_FILE_ATTRIBUTES; }

bool isDirectory(const std::string& path)
{
	const DWORD attributes = attributesOf(path);
	return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool isRegularFile(const std::string& path)
{
	const DWORD attributes = attributesOf(path);
	return attributes != INVALID_FILE_ATTRIBUTES
		&& !(attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE));
}

std::string canonicalPath(const std::string& path)
{
	// The final path of the opened file resolves links, dot components, short
	// names and the case of each component. Directories need the backup flag
	// to be opened at all.
	const HANDLE file = ::CreateFileW(widen(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
		nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
	if(file == INVALID_HANDLE_VALUE)
		return path;
	wchar_t buffer[32768];
	const DWORD length = ::GetFinalPathNameByHandleW(file, buffer, 32768, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
	::CloseHandle(file);
	if(length == 0 || length >= 32768)
		return path;
	std::wstring canonical(buffer, length);
	// The result carries the long-path prefix "\\?\" (or "\\?\UNC\" for a
	// share), which ordinary paths do not.
	if(canonical.compare(0, 8, L"\\\\?\\UNC\\") == 0)
		canonical = L"\\\\" + canonical.substr(8);
	else if(canonical.compare(0, 4, L"\\\\?\\") == 0)
		canonical = canonical.substr(4);
	return narrow(canonical);
}

bool makeDirectory(const std::string& path)
{
	if(::CreateDirectoryW(widen(path).c_str(), nullptr))
		return true;
	return ::GetLastError() == ERROR_ALREADY_EXISTS && isDirectory(path);
}

bool listDirectory(const std::string& path, std::vector<std::string>& names)
{
	WIN32_FIND_DATAW entry;
	const HANDLE find = ::FindFirstFileW(widen(FileUtils::join(path, "*")).c_str(), &entry);
	if(find == INVALID_HANDLE_VALUE)
		// An empty directory still has "." and "..": no entry at all means
		// the directory itself is not there.
		return false;
	do
	{
		const std::string name = narrow(entry.cFileName);
		if(name != "." && name != "..")
			names.push_back(name);
	} while(::FindNextFileW(find, &entry));
	::FindClose(find);
	return true;
}

bool fileSize(const std::string& path, uint64_t& size)
{
	WIN32_FILE_ATTRIBUTE_DATA data;
	if(!::GetFileAttributesExW(widen(path).c_str(), GetFileExInfoStandard, &data))
		return false;
	size = ((uint64_t)data.nFileSizeHigh << 32) | data.nFileSizeLow;
	return true;
}

bool removeFile(const std::string& path) { return ::DeleteFileW(widen(path).c_str()) != 0; }

bool removeEmptyDirectory(const std::string& path) { return ::RemoveDirectoryW(widen(path).c_str()) != 0; }

bool renamePath(const std::string& from, const std::string& to)
{
	// A file that is there already is replaced, as rename does elsewhere.
	return ::MoveFileExW(widen(from).c_str(), widen(to).c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

FILE* openFile(const std::string& path, const char* mode) { return ::_wfopen(widen(path).c_str(), widen(mode).c_str()); }

void openFileStream(std::ofstream& stream, const std::string& path, std::ios::openmode mode)
{
	stream.open(std::filesystem::path(widen(path)), mode);
}

void openFileStream(std::ifstream& stream, const std::string& path, std::ios::openmode mode)
{
	stream.open(std::filesystem::path(widen(path)), mode);
}

std::string errorString(int code) { return PlatformUtils::getErrorString(code); }

std::string lastErrorString() { return errorString(lastErrorCode()); }

int lastErrorCode() { return (int)::GetLastError(); }

namespace
{

// The reason of the last failed load or lookup of this thread, taken at the
// failure, before another call can overwrite the last error.
thread_local std::string library_error;

} // namespace

LibraryHandle loadLibrary(const std::string& path)
{
	const HMODULE module = ::LoadLibraryW(widen(path).c_str());
	if(!module)
		library_error = lastErrorString();
	return reinterpret_cast<LibraryHandle>(module);
}

LibrarySymbol findSymbol(LibraryHandle library, const char* name)
{
	const FARPROC address = ::GetProcAddress(reinterpret_cast<HMODULE>(library), name);
	if(!address)
		library_error = lastErrorString();
	return reinterpret_cast<LibrarySymbol>(address);
}

bool freeLibrary(LibraryHandle library) { return ::FreeLibrary(reinterpret_cast<HMODULE>(library)) != 0; }

std::string libraryErrorString() { return library_error; }

bool setLibrarySearchDirectory(const std::string& dir) { return ::SetDllDirectoryW(widen(dir).c_str()) != 0; }

struct MutexObject
{
	CRITICAL_SECTION section;
};

MutexHandle createMutex()
{
	MutexObject* object = new MutexObject;
	::InitializeCriticalSection(&object->section);
	return object;
}

void lockMutex(MutexHandle mutex) { ::EnterCriticalSection(&mutex->section); }

void unlockMutex(MutexHandle mutex) { ::LeaveCriticalSection(&mutex->section); }

void destroyMutex(MutexHandle mutex)
{
	::DeleteCriticalSection(&mutex->section);
	delete mutex;
}

struct EventObject
{
	HANDLE event;
};

EventHandle createEvent()
{
	// Manual reset, starting reset.
	return new EventObject{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
}

void setEvent(EventHandle event) { ::SetEvent(event->event); }

void resetEvent(EventHandle event) { ::ResetEvent(event->event); }

bool waitEvent(EventHandle event, bool infinite, uint32_t timeout_ms)
{
	return ::WaitForSingleObject(event->event, infinite ? INFINITE : (DWORD)timeout_ms) == WAIT_OBJECT_0;
}

void destroyEvent(EventHandle event)
{
	::CloseHandle(event->event);
	delete event;
}

struct ThreadObject
{
	HANDLE thread;
};

namespace
{

// What the new thread runs; it belongs to the new thread, so that the
// handle can be freed at any time.
struct ThreadStart
{
	ThreadEntry entry;
	void* argument;
};

unsigned __stdcall runThreadEntry(void* start_pointer)
{
	const ThreadStart start = *static_cast<ThreadStart*>(start_pointer);
	delete static_cast<ThreadStart*>(start_pointer);
	start.entry(start.argument);
	return 0;
}

} // namespace

ThreadHandle startThread(ThreadEntry entry, void* argument)
{
	// _beginthreadex rather than CreateThread, so that the C runtime sets up
	// its per-thread state for the new thread.
	ThreadStart* start = new ThreadStart{entry, argument};
	const uintptr_t handle = ::_beginthreadex(nullptr, 0, &runThreadEntry, start, 0, nullptr);
	if(handle == 0)
	{
		delete start;
		return nullptr;
	}
	return new ThreadObject{reinterpret_cast<HANDLE>(handle)};
}

void joinThread(ThreadHandle thread)
{
	::WaitForSingleObject(thread->thread, INFINITE);
	::CloseHandle(thread->thread);
	delete thread;
}

void detachThread(ThreadHandle thread)
{
	::CloseHandle(thread->thread);
	delete thread;
}

int setThreadPriority(ThreadHandle thread, ThreadPriority priority)
{
	const int level = priority == ThreadPriority::BelowNormal ? THREAD_PRIORITY_BELOW_NORMAL : THREAD_PRIORITY_NORMAL;
	return ::SetThreadPriority(thread->thread, level) ? 0 : (int)::GetLastError();
}

namespace
{

// Creates the process with the command line as it is. CreateProcessW may
// write into the command line, so it gets a copy in a buffer of its own,
// of the text's length and the terminator.
bool createProcess(const std::string& application, const std::string& command_line, bool below_normal,
	PROCESS_INFORMATION& process)
{
	const std::wstring line = widen(command_line);
	std::vector<wchar_t> buffer(line.begin(), line.end());
	buffer.push_back(L'\0');
	STARTUPINFOW startup;
	std::memset(&startup, 0, sizeof(startup));
	startup.cb = sizeof(startup);
	std::memset(&process, 0, sizeof(process));
	return ::CreateProcessW(widen(application).c_str(), buffer.data(), nullptr, nullptr, FALSE,
			   Win32::processCreationFlags(below_normal), nullptr, nullptr, &startup, &process)
		!= 0;
}

} // namespace

bool startProcess(const std::string& application, const std::string& command_line, bool below_normal)
{
	PROCESS_INFORMATION process;
	if(!createProcess(application, command_line, below_normal, process))
		return false;
	::CloseHandle(process.hThread);
	::CloseHandle(process.hProcess);
	return true;
}

bool runProcess(const std::string& application, const std::string& command_line, bool below_normal, int& exit_code)
{
	PROCESS_INFORMATION process;
	if(!createProcess(application, command_line, below_normal, process))
		return false;
	::CloseHandle(process.hThread);
	DWORD code = 0;
	const bool waited = ::WaitForSingleObject(process.hProcess, INFINITE) == WAIT_OBJECT_0
		&& ::GetExitCodeProcess(process.hProcess, &code);
	const DWORD error = ::GetLastError();
	::CloseHandle(process.hProcess);
	if(!waited)
	{
		::SetLastError(error);
		return false;
	}
	exit_code = (int)code;
	return true;
}

} // namespace Platform

namespace PlatformUtils
{

using Platform::Win32::narrow;
using Platform::Win32::widen;

std::string getAPPDataDirPath()
{
	wchar_t path[MAX_PATH];
	const HRESULT result = ::SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, path);
	if(FAILED(result))
		throw PlatformUtilsExcep("SHGetFolderPath() failed, Error code: " + std::to_string((long)result));
	return narrow(path);
}

std::string getTempDirPath()
{
	wchar_t path[MAX_PATH + 1];
	DWORD length = ::GetTempPathW(MAX_PATH + 1, path);
	if(length == 0 || length > MAX_PATH)
		throw PlatformUtilsExcep("GetTempPath() failed.");
	// Without the trailing backslash, as the other directories come.
	if(length > 3 && path[length - 1] == L'\\')
		--length;
	return narrow(std::wstring(path, length));
}

std::string getCurrentWorkingDirPath()
{
	wchar_t* cwd = ::_wgetcwd(nullptr, 0);
	if(!cwd)
		throw PlatformUtilsExcep("_wgetcwd() failed.");
	const std::string path = narrow(cwd);
	std::free(cwd);
	return path;
}

std::string getOrCreateAppDataDirectory()
{
	const std::string dir = getAPPDataDirPath() + "\\" + "Velorn Renderer";
	FileUtils::createDirsForPath(dir);
	return dir;
}

std::string getFullPathToLib()
{
	// The module that holds this function, not the process's executable.
	HMODULE module = nullptr;
	if(!::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
		   reinterpret_cast<LPCWSTR>(&getFullPathToLib), &module))
		throw PlatformUtilsExcep("GetModuleFileName failed.");
	wchar_t path[32768];
	const DWORD length = ::GetModuleFileNameW(module, path, 32768);
	if(length == 0 || length >= 32768)
		throw PlatformUtilsExcep("GetModuleFileName failed.");
	return narrow(std::wstring(path, length));
}

void openFileBrowserWindowAtLocation(const std::string& path)
{
	const std::wstring line = widen("explorer /select," + path);
	std::vector<wchar_t> buffer(line.begin(), line.end());
	buffer.push_back(L'\0');
	STARTUPINFOW startup;
	std::memset(&startup, 0, sizeof(startup));
	startup.cb = sizeof(startup);
	PROCESS_INFORMATION process;
	if(!::CreateProcessW(nullptr, buffer.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
		throw PlatformUtilsExcep(
			"openFileBrowserWindowAtLocation Failed: error code: " + std::to_string(::GetLastError()));
	::CloseHandle(process.hThread);
	::CloseHandle(process.hProcess);
}

std::string getLastErrorString() { return getErrorString((int)::GetLastError()); }

std::string getErrorString(int code)
{
	wchar_t text[2048];
	DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, (DWORD)code,
		MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, 2048, nullptr);
	// The system's texts end in a line break, which has no place inside a
	// message that goes on.
	while(length > 0 && (text[length - 1] == L'\n' || text[length - 1] == L'\r' || text[length - 1] == L' '))
		--length;
	if(length == 0)
		return "[Unknown (error code=" + std::to_string(code) + ")]";
	return narrow(std::wstring(text, length)) + " (error code=" + std::to_string(code) + ")";
}

void setThisProcessPriority(int level)
{
	if(!::SetPriorityClass(::GetCurrentProcess(), level == 0 ? BELOW_NORMAL_PRIORITY_CLASS : NORMAL_PRIORITY_CLASS))
		throw PlatformUtilsExcep("SetPriorityClass failed: " + getLastErrorString());
}

int getThisProcessPriority()
{
	switch(::GetPriorityClass(::GetCurrentProcess()))
	{
	case BELOW_NORMAL_PRIORITY_CLASS: return 0;
	case NORMAL_PRIORITY_CLASS: return 1;
	default: return -1;
	}
}

std::string getEnvironmentVariable(const std::string& name)
{
	const std::wstring wide_name = widen(name);
	const DWORD length = ::GetEnvironmentVariableW(wide_name.c_str(), nullptr, 0);
	if(length == 0)
		throw PlatformUtilsExcep("getEnvironmentVariable failed: " + getLastErrorString());
	std::wstring value(length, L'\0');
	const DWORD written = ::GetEnvironmentVariableW(wide_name.c_str(), &value[0], length);
	value.resize(written);
	return narrow(value);
}

void setEnvironmentVariable(const std::string& name, const std::string& value)
{
	// Both the process's environment, which started programs inherit, and
	// the C runtime's copy, which getenv reads.
	if(!::SetEnvironmentVariableW(widen(name).c_str(), widen(value).c_str()))
		throw PlatformUtilsExcep("setEnvironmentVariable failed: " + getLastErrorString());
	::_wputenv(widen(name + "=" + value).c_str());
}

std::string readUserRegistryString(const std::string& key, const std::string& value_name)
{
	// All access, as the renderer's installer expects its keys to be opened;
	// a key that the user may not write counts as absent.
	HKEY handle;
	if(::RegOpenKeyExW(HKEY_CURRENT_USER, widen(key).c_str(), 0, KEY_ALL_ACCESS, &handle) != ERROR_SUCCESS)
		return std::string();
	// 1024 bytes: 511 characters and the terminator.
	wchar_t buffer[512];
	DWORD size = sizeof(buffer);
	DWORD type = 0;
	const LONG result = ::RegQueryValueExW(
		handle, widen(value_name).c_str(), nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size);
	::RegCloseKey(handle);
	if(result != ERROR_SUCCESS || type != REG_SZ)
		return std::string();
	// The stored text may or may not hold its terminator.
	std::wstring text(buffer, size / sizeof(wchar_t));
	while(!text.empty() && text.back() == L'\0')
		text.pop_back();
	return narrow(text);
}

std::string getLoggedInUserName()
{
	if(const wchar_t* user = ::_wgetenv(L"USERNAME"))
		return narrow(user);
	return std::string();
}

} // namespace PlatformUtils

MemMappedFile::MemMappedFile(const std::string& path)
{
	const HANDLE file = ::CreateFileW(Platform::Win32::widen(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
		OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
	if(file == INVALID_HANDLE_VALUE)
		throw PlatformUtilsExcep("CreateFile failed for path '" + path + "': " + Platform::lastErrorString());
	file_handle = file;
	LARGE_INTEGER file_size;
	if(!::GetFileSizeEx(file, &file_size))
	{
		const std::string error = Platform::lastErrorString();
		::CloseHandle(file);
		throw PlatformUtilsExcep("GetFileSizeEx failed: " + error);
	}
	// One view of the whole file: the high half of the size must be 0.
	if(file_size.HighPart != 0)
	{
		::CloseHandle(file);
		throw PlatformUtilsExcep("File is too large.");
	}
	size = (size_t)file_size.LowPart;
	if(size == 0)
		return; // nothing to map: readers see an empty buffer
	const HANDLE mapping = ::CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
	if(!mapping)
	{
		const std::string error = Platform::lastErrorString();
		::CloseHandle(file);
		throw PlatformUtilsExcep("CreateFileMapping failed: " + error);
	}
	mapping_handle = mapping;
	view = ::MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, size);
	if(!view)
	{
		const std::string error = Platform::lastErrorString();
		::CloseHandle(mapping);
		::CloseHandle(file);
		throw PlatformUtilsExcep("MapViewOfFile failed: " + error);
	}
}

MemMappedFile::~MemMappedFile()
{
	if(view)
		::UnmapViewOfFile(view);
	if(mapping_handle)
		::CloseHandle(mapping_handle);
	if(file_handle)
		::CloseHandle(file_handle);
}

} // namespace Velorn
