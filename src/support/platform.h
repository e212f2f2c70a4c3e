#pragma once

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

// The operating system calls of the support library. Nothing outside the
// platform_* files includes a system header; everything else asks here.
// Paths are UTF-8 in the library and are converted where the system wants
// another form.
namespace Velorn
{
namespace Platform
{

// The separator that joined paths get: '\\' on Windows, '/' elsewhere.
char preferredSeparator();
// True when c separates directories on this platform.
bool isSeparator(char c);
bool isAbsolutePath(const std::string& path);

// The process's working directory; empty if the system cannot tell.
std::string currentWorkingDirectory();

bool pathExists(const std::string& path);
bool isDirectory(const std::string& path);
// True for a plain file; false for a directory, a device, a pipe or nothing.
bool isRegularFile(const std::string& path);
// The absolute path with links and dot components resolved, by which two
// names of one file compare equal; the path itself if it cannot be resolved.
std::string canonicalPath(const std::string& path);
// Makes one directory; true when it exists afterwards.
bool makeDirectory(const std::string& path);

// The names of the entries of a directory, without "." and "..".
// False when the directory cannot be read.
bool listDirectory(const std::string& path, std::vector<std::string>& names);
// False when the file cannot be looked at; the reason is the last error.
bool fileSize(const std::string& path, uint64_t& size);
bool removeFile(const std::string& path);
bool removeEmptyDirectory(const std::string& path);
bool renamePath(const std::string& from, const std::string& to);

// fopen on a UTF-8 path; null on failure, with the reason in the last error.
FILE* openFile(const std::string& path, const char* mode);

// Opens a file stream on a UTF-8 path. Other readers and writers are not
// locked out.
void openFileStream(std::ofstream& stream, const std::string& path, std::ios::openmode mode);
void openFileStream(std::ifstream& stream, const std::string& path, std::ios::openmode mode);

// The system's text for an error code, and for the last error of this
// thread: the text + " (error code=" + code + ")".
std::string errorString(int code);
std::string lastErrorString();
// The code of the last error of this thread (errno, GetLastError on Windows).
int lastErrorCode();

// A dynamic library loaded into the process (the module handle of Windows,
// the handle of dlopen elsewhere). Its definition is the system's.
struct LibraryModule;
using LibraryHandle = LibraryModule*;
// The address of an exported function, to be cast to its real type.
using LibrarySymbol = void (*)();

// Loads the library at a UTF-8 path, or counts up one that is loaded already.
// Null on failure, with the reason in libraryErrorString().
LibraryHandle loadLibrary(const std::string& path);
// The exported function of that name; null when the library has none.
LibrarySymbol findSymbol(LibraryHandle library, const char* name);
// Counts the library down; the system unloads it at zero. False when the
// system refused.
bool freeLibrary(LibraryHandle library);
// The system's text for why the last loadLibrary or findSymbol of this
// thread failed.
std::string libraryErrorString();
// Makes dir the first place where the libraries that a loaded library needs
// are looked for. Windows searches a process-wide directory; elsewhere a
// library finds its own dependencies through its run path, so this does
// nothing there. False when the system refused.
bool setLibrarySearchDirectory(const std::string& dir);

// Threads and what they wait on. Handles are the system's objects behind an
// opaque pointer; each is made and freed by the calls here.

// A lock that the thread holding it may take again (a critical section on
// Windows), so that nested scopes of one thread cannot deadlock.
struct MutexObject;
using MutexHandle = MutexObject*;
MutexHandle createMutex();
void lockMutex(MutexHandle mutex);
void unlockMutex(MutexHandle mutex);
void destroyMutex(MutexHandle mutex);

// A manual-reset event: once set it stays set, and every wait returns at
// once, until it is reset. It starts reset.
struct EventObject;
using EventHandle = EventObject*;
EventHandle createEvent();
void setEvent(EventHandle event);
void resetEvent(EventHandle event);
// Waits until the event is set, forever when infinite is set, else for at
// most timeout_ms. False on a time-out. A set that happens while a thread
// waits wakes it even if the event is reset again before it runs.
bool waitEvent(EventHandle event, bool infinite, uint32_t timeout_ms);
void destroyEvent(EventHandle event);

struct ThreadObject;
using ThreadHandle = ThreadObject*;
using ThreadEntry = void (*)(void* argument);
// Starts entry(argument) on a new thread. Null when the system refused.
ThreadHandle startThread(ThreadEntry entry, void* argument);
// Waits for the thread to end, then frees the handle.
void joinThread(ThreadHandle thread);
// Frees the handle without waiting; the thread runs on by itself. A thread
// may detach itself.
void detachThread(ThreadHandle thread);

enum class ThreadPriority
{
	Normal,
	BelowNormal
};
// 0, or the system's error code.
int setThreadPriority(ThreadHandle thread, ThreadPriority priority);

// Starts the program at application as a process of its own that outlives
// this one, with command_line as Windows writes one: the program's name
// and its arguments, separated by blanks, double quotes grouping an
// argument with blanks (and dropped). Below normal priority when asked.
// Nothing of the process is kept: no handle, no output, no exit code. False
// when it could not be started; the reason is the last error.
bool startProcess(const std::string& application, const std::string& command_line, bool below_normal);
// Starts the program as startProcess does and waits for it to end. False
// when it could not be started or waited for (the reason is the last
// error); otherwise true with the program's exit code in exit_code.
bool runProcess(const std::string& application, const std::string& command_line, bool below_normal, int& exit_code);

} // namespace Platform
} // namespace Velorn
