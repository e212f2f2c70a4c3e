#include "support/platform.h"

#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/mem_mapped_file.h"
#include "support/platform_utils.h"

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <dlfcn.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <cstring>
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <time.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace Velorn
{
namespace Platform
{

char preferredSeparator() { return '/'; }

bool isSeparator(char c) { return c == '/'; }

bool isAbsolutePath(const std::string& path) { return !path.empty() && path[0] == '/'; }

std::string currentWorkingDirectory()
{
	char buf[4096];
	return ::getcwd(buf, sizeof(buf)) ? std::string(buf) : std::string();
}

bool pathExists(const std::string& path)
{
	struct stat info;
	return ::stat(path.c_str(), &info) == 0;
}

bool isDirectory(const std::string& path)
{
	struct stat info;
	return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isRegularFile(const std::string& path)
{
	struct stat info;
	return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

std::string canonicalPath(const std::string& path)
{
	char* resolved = ::realpath(path.c_str(), nullptr);
	if(!resolved)
		return path;
	const std::string canonical(resolved);
	std::free(resolved);
	return canonical;
}

bool makeDirectory(const std::string& path)
{
	if(::mkdir(path.c_str(), 0777) == 0)
		return true;
	return errno == EEXIST && isDirectory(path);
}

bool listDirectory(const std::string& path, std::vector<std::string>& names)
{
	DIR* dir = ::opendir(path.c_str());
	if(!dir)
		return false;
	while(const struct dirent* entry = ::readdir(dir))
	{
		const std::string name = entry->d_name;
		if(name != "." && name != "..")
			names.push_back(name);
	}
	::closedir(dir);
	return true;
}

bool fileSize(const std::string& path, uint64_t& size)
{
	struct stat info;
	if(::stat(path.c_str(), &info) != 0)
		return false;
	size = (uint64_t)info.st_size;
	return true;
}

bool removeFile(const std::string& path) { return ::unlink(path.c_str()) == 0; }

bool removeEmptyDirectory(const std::string& path) { return ::rmdir(path.c_str()) == 0; }

bool renamePath(const std::string& from, const std::string& to) { return std::rename(from.c_str(), to.c_str()) == 0; }

FILE* openFile(const std::string& path, const char* mode) { return std::fopen(path.c_str(), mode); }

void openFileStream(std::ofstream& stream, const std::string& path, std::ios::openmode mode) { stream.open(path, mode); }

void openFileStream(std::ifstream& stream, const std::string& path, std::ios::openmode mode) { stream.open(path, mode); }

std::string errorString(int code) { return PlatformUtils::getErrorString(code); }

std::string lastErrorString() { return errorString(errno); }

int lastErrorCode() { return errno; }

namespace
{

// dlerror() hands its text out once and forgets it, so the failure of the
// last load or lookup of this thread is kept for libraryErrorString().
thread_local std::string library_error;

// The text of dlerror(), or what the failed call was when it has none.
void keepLibraryError(const std::string& fallback)
{
	const char* text = ::dlerror();
	library_error = text ? std::string(text) : fallback;
}

} // namespace

LibraryHandle loadLibrary(const std::string& path)
{
	// Symbols are bound at load time, so that a library with an unresolved
	// symbol fails here, as it does on Windows, and not at its first call.
	void* handle = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
	if(!handle)
		keepLibraryError("cannot load '" + path + "'");
	return reinterpret_cast<LibraryHandle>(handle);
}

LibrarySymbol findSymbol(LibraryHandle library, const char* name)
{
	::dlerror();
	void* address = ::dlsym(reinterpret_cast<void*>(library), name);
	if(!address)
		keepLibraryError(std::string("no symbol '") + name + "'");
	return reinterpret_cast<LibrarySymbol>(address);
}

bool freeLibrary(LibraryHandle library) { return ::dlclose(reinterpret_cast<void*>(library)) == 0; }

std::string libraryErrorString() { return library_error; }

bool setLibrarySearchDirectory(const std::string&) { return true; }

struct MutexObject
{
	pthread_mutex_t mutex;
};

MutexHandle createMutex()
{
	MutexObject* object = new MutexObject;
	pthread_mutexattr_t attributes;
	::pthread_mutexattr_init(&attributes);
	::pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
	::pthread_mutex_init(&object->mutex, &attributes);
	::pthread_mutexattr_destroy(&attributes);
	return object;
}

void lockMutex(MutexHandle mutex) { ::pthread_mutex_lock(&mutex->mutex); }

void unlockMutex(MutexHandle mutex) { ::pthread_mutex_unlock(&mutex->mutex); }

void destroyMutex(MutexHandle mutex)
{
	::pthread_mutex_destroy(&mutex->mutex);
	delete mutex;
}

// The event is a flag under a mutex with a condition variable. Each set
// counts a generation, so that a waiter woken by a set returns even if
// another thread reset the flag before the waiter got the mutex back, as a
// Windows event releases every thread that waited when it was set.
struct EventObject
{
	pthread_mutex_t mutex;
	pthread_cond_t changed;
	bool signalled = false;
	uint64_t generation = 0;
};

EventHandle createEvent()
{
	EventObject* event = new EventObject;
	::pthread_mutex_init(&event->mutex, nullptr);
	// Time-outs run on the monotonic clock, so that a change of the wall
	// clock does not stretch or cut them.
	pthread_condattr_t attributes;
	::pthread_condattr_init(&attributes);
	::pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
	::pthread_cond_init(&event->changed, &attributes);
	::pthread_condattr_destroy(&attributes);
	return event;
}

void setEvent(EventHandle event)
{
	::pthread_mutex_lock(&event->mutex);
	event->signalled = true;
	++event->generation;
	::pthread_cond_broadcast(&event->changed);
	::pthread_mutex_unlock(&event->mutex);
}

void resetEvent(EventHandle event)
{
	::pthread_mutex_lock(&event->mutex);
	event->signalled = false;
	::pthread_mutex_unlock(&event->mutex);
}

namespace
{

timespec deadlineAfter(uint32_t timeout_ms)
{
	timespec deadline;
	::clock_gettime(CLOCK_MONOTONIC, &deadline);
	deadline.tv_sec += timeout_ms / 1000;
	deadline.tv_nsec += (long)(timeout_ms % 1000) * 1000000L;
	if(deadline.tv_nsec >= 1000000000L)
	{
		deadline.tv_sec += 1;
		deadline.tv_nsec -= 1000000000L;
	}
	return deadline;
}

} // namespace

bool waitEvent(EventHandle event, bool infinite, uint32_t timeout_ms)
{
	const timespec deadline = deadlineAfter(infinite ? 0 : timeout_ms);
	::pthread_mutex_lock(&event->mutex);
	const uint64_t generation = event->generation;
	bool woken = true;
	while(!event->signalled && event->generation == generation)
	{
		if(infinite)
			::pthread_cond_wait(&event->changed, &event->mutex);
		else if(::pthread_cond_timedwait(&event->changed, &event->mutex, &deadline) == ETIMEDOUT)
		{
			woken = event->signalled || event->generation != generation;
			break;
		}
	}
	::pthread_mutex_unlock(&event->mutex);
	return woken;
}

void destroyEvent(EventHandle event)
{
	::pthread_cond_destroy(&event->changed);
	::pthread_mutex_destroy(&event->mutex);
	delete event;
}

struct ThreadObject
{
	pthread_t thread;
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

void* runThreadEntry(void* start_pointer)
{
	const ThreadStart start = *static_cast<ThreadStart*>(start_pointer);
	delete static_cast<ThreadStart*>(start_pointer);
	start.entry(start.argument);
	return nullptr;
}

} // namespace

ThreadHandle startThread(ThreadEntry entry, void* argument)
{
	ThreadObject* object = new ThreadObject;
	ThreadStart* start = new ThreadStart{entry, argument};
	if(::pthread_create(&object->thread, nullptr, &runThreadEntry, start) != 0)
	{
		delete start;
		delete object;
		return nullptr;
	}
	return object;
}

void joinThread(ThreadHandle thread)
{
	::pthread_join(thread->thread, nullptr);
	delete thread;
}

void detachThread(ThreadHandle thread)
{
	::pthread_detach(thread->thread);
	delete thread;
}

int setThreadPriority(ThreadHandle thread, ThreadPriority priority)
{
	// Threads of the ordinary policy have no priority levels here: below
	// normal becomes the batch policy, which the scheduler treats as work
	// that may wait, and normal the ordinary policy again.
	sched_param parameters{};
	parameters.sched_priority = 0;
	const int policy = priority == ThreadPriority::BelowNormal ? SCHED_BATCH : SCHED_OTHER;
	return ::pthread_setschedparam(thread->thread, policy, &parameters);
}

namespace
{

// The arguments of a command line written for Windows: blanks separate
// them, double quotes group what lies between them and are dropped.
std::vector<std::string> splitCommandLine(const std::string& command_line)
{
	std::vector<std::string> arguments;
	std::string current;
	bool quoted = false, started = false;
	for(const char c : command_line)
	{
		if(c == '"')
		{
			quoted = !quoted;
			started = true;
		}
		else if(c == ' ' && !quoted)
		{
			if(started)
				arguments.push_back(current);
			current.clear();
			started = false;
		}
		else
		{
			current += c;
			started = true;
		}
	}
	if(started)
		arguments.push_back(current);
	return arguments;
}

// Waits for a started process so that it leaves no zombie behind; its exit
// code is not wanted.
void reapProcess(void* pid)
{
	::waitpid((pid_t)(intptr_t)pid, nullptr, 0);
}

} // namespace

namespace
{

// Spawns the program with the arguments of the Windows command line; false
// with errno set when it cannot be started.
bool spawnProcess(const std::string& application, const std::string& command_line, bool below_normal, pid_t& pid)
{
	const std::vector<std::string> arguments = splitCommandLine(command_line);
	std::vector<char*> argv;
	for(const std::string& argument : arguments)
		argv.push_back(const_cast<char*>(argument.c_str()));
	argv.push_back(nullptr);
	const int error = ::posix_spawn(&pid, application.c_str(), nullptr, nullptr, argv.data(), environ);
	if(error != 0)
	{
		errno = error;
		return false;
	}
	// Below normal priority on Windows is about nice 10 here; the process
	// may run its first moments at the normal one.
	if(below_normal)
		::setpriority(PRIO_PROCESS, (id_t)pid, 10);
	return true;
}

} // namespace

bool startProcess(const std::string& application, const std::string& command_line, bool below_normal)
{
	pid_t pid;
	if(!spawnProcess(application, command_line, below_normal, pid))
		return false;
	if(ThreadHandle reaper = startThread(&reapProcess, (void*)(intptr_t)pid))
		detachThread(reaper);
	return true;
}

bool runProcess(const std::string& application, const std::string& command_line, bool below_normal, int& exit_code)
{
	pid_t pid;
	if(!spawnProcess(application, command_line, below_normal, pid))
		return false;
	int status = 0;
	pid_t waited;
	do
		waited = ::waitpid(pid, &status, 0);
	while(waited == -1 && errno == EINTR);
	if(waited == -1)
		return false;
	// A process ended by a signal reports 128 and the signal's number, as
	// shells do.
	exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
	return true;
}

} // namespace Platform

namespace PlatformUtils
{

namespace
{

// The value of an environment variable, or null when it is not set.
const char* environmentValue(const char* name) { return std::getenv(name); }

} // namespace

std::string getAPPDataDirPath()
{
	// The roaming application data of Windows is the user's configuration
	// directory here.
	if(const char* config = environmentValue("XDG_CONFIG_HOME"))
		if(*config)
			return config;
	const char* home = environmentValue("HOME");
	if(!home || !*home)
		throw PlatformUtilsExcep("SHGetFolderPath() failed, Error code: " + std::to_string(ENOENT));
	return FileUtils::join(home, ".config");
}

std::string getTempDirPath()
{
	const char* tmp = environmentValue("TMPDIR");
	return tmp && *tmp ? std::string(tmp) : std::string("/tmp");
}

std::string getCurrentWorkingDirPath()
{
	const std::string cwd = Platform::currentWorkingDirectory();
	if(cwd.empty())
		throw PlatformUtilsExcep("_wgetcwd() failed.");
	return cwd;
}

std::string getOrCreateAppDataDirectory()
{
	const std::string dir = FileUtils::join(getAPPDataDirPath(), "Velorn Renderer");
	FileUtils::createDirsForPath(dir);
	return dir;
}

std::string getFullPathToLib()
{
	Dl_info info;
	if(::dladdr((void*)&getFullPathToLib, &info) == 0 || !info.dli_fname)
		throw PlatformUtilsExcep("GetModuleFileName failed.");
	return info.dli_fname;
}

void openFileBrowserWindowAtLocation(const std::string& path)
{
	// Opens the directory that holds the file.
	const std::string dir = FileUtils::getDirectory(path);
	const char* argv[] = {"xdg-open", dir.empty() ? "." : dir.c_str(), nullptr};
	pid_t pid;
	const int error = ::posix_spawnp(&pid, "xdg-open", nullptr, nullptr, const_cast<char* const*>(argv), environ);
	if(error != 0)
		throw PlatformUtilsExcep("openFileBrowserWindowAtLocation Failed: error code: " + std::to_string(error));
}

std::string getLastErrorString() { return getErrorString(errno); }

std::string getErrorString(int code)
{
	const char* text = std::strerror(code);
	if(!text || !*text)
		return "[Unknown (error code=" + std::to_string(code) + ")]";
	return std::string(text) + " (error code=" + std::to_string(code) + ")";
}

void setThisProcessPriority(int level)
{
	// Below normal on Windows is about nice 10 here.
	if(::setpriority(PRIO_PROCESS, 0, level == 0 ? 10 : 0) != 0)
		throw PlatformUtilsExcep("SetPriorityClass failed: " + getLastErrorString());
}

int getThisProcessPriority()
{
	errno = 0;
	const int nice = ::getpriority(PRIO_PROCESS, 0);
	if(errno != 0)
		return -1;
	return nice == 10 ? 0 : nice == 0 ? 1 : -1;
}

std::string getEnvironmentVariable(const std::string& name)
{
	const char* value = environmentValue(name.c_str());
	if(!value)
		throw PlatformUtilsExcep("getEnvironmentVariable failed: " + getErrorString(ENOENT));
	return value;
}

void setEnvironmentVariable(const std::string& name, const std::string& value)
{
	if(::setenv(name.c_str(), value.c_str(), 1) != 0)
		throw PlatformUtilsExcep("setEnvironmentVariable failed: " + getLastErrorString());
}

std::string readUserRegistryString(const std::string&, const std::string&)
{
	// This system has no registry: every key counts as absent.
	return std::string();
}

std::string getLoggedInUserName()
{
	if(const char* user = environmentValue("USERNAME"))
		return user;
	const char* user = environmentValue("USER");
	return user ? user : "";
}

} // namespace PlatformUtils

MemMappedFile::MemMappedFile(const std::string& path)
{
	file_handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
	if(file_handle < 0)
		throw PlatformUtilsExcep("CreateFile failed for path '" + path + "': " + Platform::lastErrorString());
	struct stat info;
	if(::fstat(file_handle, &info) != 0)
	{
		const std::string error = Platform::lastErrorString();
		::close(file_handle);
		throw PlatformUtilsExcep("GetFileSizeEx failed: " + error);
	}
	if((uint64_t)info.st_size >= ((uint64_t)1 << 32))
	{
		::close(file_handle);
		throw PlatformUtilsExcep("File is too large.");
	}
	size = (size_t)info.st_size;
	if(size == 0)
		return; // nothing to map: readers see an empty buffer
	view = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file_handle, 0);
	if(view == MAP_FAILED)
	{
		const std::string error = Platform::lastErrorString();
		view = nullptr;
		::close(file_handle);
		throw PlatformUtilsExcep("MapViewOfFile failed: " + error);
	}
}

MemMappedFile::~MemMappedFile()
{
	if(view)
		::munmap(view, size);
	if(file_handle >= 0)
		::close(file_handle);
}

} // namespace Velorn
