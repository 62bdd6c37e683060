// Before the real program: one call of the system, or one from then on, fails on whatever thread makes it.
//
// FAULTS_FOLDER: calls count from the moment a folder of this name is looked for or made. FAULTS_CALL: the
// one that fails, from 1; 0 for none. FAULTS_LASTING: 1 where all that follow fail, too. FAULTS_COUNT: a file
// for the number of calls that there were, and the name of the one that failed.
#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

long Number(const char* name) {
    const char* const text = std::getenv(name);
    return text == nullptr ? 0 : std::atol(text);
}

std::atomic<bool> counting = false;
std::atomic<long> calls = 0;

std::atomic<const char*> failed = "none";

/// Whether this call is to fail.
bool Fails(const char* name, int reason) {
    static const long failing = Number("FAULTS_CALL");
    static const bool lasting = Number("FAULTS_LASTING") != 0;
    if (!counting) return false;
    const long call = ++calls;
    if (failing == 0 || call < failing || (call > failing && !lasting)) return false;
    errno = reason;
    if (call == failing) failed = name;
    return true;
}

void Look(const char* path) {
    static const char* const folder = std::getenv("FAULTS_FOLDER");
    if (!counting && folder != nullptr && path != nullptr && std::strstr(path, folder) != nullptr)
        counting = true;
}

template <class Function>
Function Next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

bool IsReport(int file) {
    return file == STDOUT_FILENO || file == STDERR_FILENO;
}

struct Counter {
    ~Counter() {
        const char* const path = std::getenv("FAULTS_COUNT");
        if (path == nullptr) return;
        counting = false;
        if (std::FILE* const file = std::fopen(path, "w")) {
            static_cast<void>(std::fprintf(file, "%ld %s", calls.load(), failed.load()));
            static_cast<void>(std::fclose(file));
        }
    }
} counter;

mode_t ModeOf(int flags, va_list rest) {
    return (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
}

}  // namespace

#define NEXT(name) static const auto next = Next<decltype(&name)>(#name)
#define OPEN(name)                                                  \
    int name(const char* path, int flags, ...) {                    \
        NEXT(name);                                                 \
        va_list rest;                                               \
        va_start(rest, flags);                                      \
        const mode_t mode = ModeOf(flags, rest);                    \
        va_end(rest);                                               \
        Look(path);                                                 \
        return Fails(#name, EMFILE) ? -1 : next(path, flags, mode); \
    }
#define FOPEN(name)                                               \
    FILE* name(const char* path, const char* mode) {              \
        NEXT(name);                                               \
        Look(path);                                               \
        return Fails(#name, EMFILE) ? nullptr : next(path, mode); \
    }

extern "C" {
OPEN(open)
OPEN(open64)
FOPEN(fopen)
FOPEN(fopen64)
int mkdir(const char* path, mode_t mode) {
    NEXT(mkdir);
    Look(path);
    return Fails("mkdir", EACCES) ? -1 : next(path, mode);
}
int rename(const char* from, const char* to) {
    NEXT(rename);
    return Fails("rename", EACCES) ? -1 : next(from, to);
}
int renameat2(int a, const char* from, int b, const char* to, unsigned flags) {
    NEXT(renameat2);
    return Fails("renameat2", EACCES) ? -1 : next(a, from, b, to, flags);
}
int unlink(const char* path) {
    NEXT(unlink);
    return Fails("unlink", EACCES) ? -1 : next(path);
}
ssize_t write(int file, const void* bytes, size_t count) {
    NEXT(write);
    return !IsReport(file) && Fails("write", ENOSPC) ? -1 : next(file, bytes, count);
}
ssize_t pread(int file, void* bytes, size_t count, off_t at) {
    NEXT(pread);
    return Fails("pread", EIO) ? -1 : next(file, bytes, count, at);
}
ssize_t pread64(int file, void* bytes, size_t count, off64_t at) {
    NEXT(pread64);
    return Fails("pread64", EIO) ? -1 : next(file, bytes, count, at);
}
ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t at) {
    NEXT(pwrite64);
    return Fails("pwrite64", ENOSPC) ? -1 : next(file, bytes, count, at);
}
size_t fread(void* bytes, size_t size, size_t count, FILE* file) {
    NEXT(fread);
    return Fails("fread", EIO) ? 0 : next(bytes, size, count, file);
}
size_t fwrite(const void* bytes, size_t size, size_t count, FILE* file) {
    NEXT(fwrite);
    return file != stdout && file != stderr && Fails("fwrite", ENOSPC) ? 0 : next(bytes, size, count, file);
}
int fclose(FILE* file) {
    NEXT(fclose);
    const bool fails = Fails("fclose", EIO);
    const int closed = next(file);
    return fails ? EOF : closed;
}
int posix_spawn(pid_t* pid, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* words, char* const* environment) {
    NEXT(posix_spawn);
    return Fails("posix_spawn", EAGAIN) ? EAGAIN : next(pid, path, actions, attributes, words, environment);
}
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*work)(void*), void* with) {
    NEXT(pthread_create);
    return Fails("pthread_create", EAGAIN) ? EAGAIN : next(thread, attributes, work, with);
}
}

/// Memory: blocks of this size or more count.
void* operator new(std::size_t size) {
    constexpr std::size_t kLarge = 4096;
    void* const memory = size >= kLarge && Fails("operator new", ENOMEM) ? nullptr : std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
