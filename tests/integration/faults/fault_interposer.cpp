// Makes one call of a C function fail, or ends the process before it: loaded into the panel with LD_PRELOAD.
//
// FRONTPANEL_FAULT is FUNCTION:NUMBER, which fails the call of that number from main on, counted from 1, or
// FUNCTION:NUMBER:kill, which ends the process by SIGKILL in place of the call. With NUMBER 0 nothing fails.
// FRONTPANEL_FAULT_COUNT names a file for the number of calls. Commands that the panel runs are left alone, and so
// are the allocations of the JSON documents that the library hands out: their type is rapidjson's, which does not
// look at what it gets.

// Both the plain functions and those for large files are defined here.
#undef _FILE_OFFSET_BITS
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
}

namespace {

using Main = int (*)(int, char**, char**);

char function[20];  // what fails; empty until main begins
long fault_number = 0;
bool kills = false;
const char* count_file = nullptr;
pid_t process = 0;
Main real_main = nullptr;
std::atomic<long> calls{0};

template <typename Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Whether the code that called is the library's own. Its `new` is called by the standard library.
bool is_of_library(const void* caller) {
    Dl_info info = {};
    return dladdr(caller, &info) != 0 && info.dli_fname != nullptr &&
           std::strstr(info.dli_fname, "libfrontpanel_data") != nullptr;
}

// Counts a call; whether it is the one to fail.
bool fails(const char* name, const void* caller = nullptr) {
    if (std::strcmp(name, function) != 0 || getpid() != process || ++calls != fault_number) {
        return false;
    }
    if (caller != nullptr && is_of_library(caller)) {
        return false;
    }
    if (kills) {
        kill(process, SIGKILL);
    }
    return true;
}

template <typename Result>
Result failure(int error, Result result) {
    errno = error;
    return result;
}

void write_count() {
    const long count = calls;
    function[0] = '\0';
    std::FILE* const file = std::fopen(count_file, "w");
    if (file != nullptr) {
        std::fprintf(file, "%ld\n", count);
        std::fclose(file);
    }
}

int main_with_faults(int count, char** arguments, char** environment) {
    const char* const fault = std::getenv("FRONTPANEL_FAULT");
    count_file = std::getenv("FRONTPANEL_FAULT_COUNT");
    char name[sizeof function] = "";
    char ending[8] = "";
    if (fault != nullptr &&
        std::sscanf(fault, "%19[^:]:%ld:%7s", name, &fault_number, ending) >= 2) {
        kills = std::strcmp(ending, "kill") == 0;
        process = getpid();
        std::strcpy(function, name);
    }
    unsetenv("LD_PRELOAD");
    const int status = real_main(count, arguments, environment);
    if (count_file != nullptr) {
        write_count();
    }
    return status;
}

mode_t mode_of(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

int __libc_start_main(Main main, int count, char** arguments, void (*init)(), void (*fini)(),
                      void (*linker_fini)(), void* stack_end) {
    real_main = main;
    return real<int(Main, int, char**, void (*)(), void (*)(), void (*)(), void*)>(
        "__libc_start_main")(main_with_faults, count, arguments, init, fini, linker_fini,
                             stack_end);
}

void* malloc(size_t size) {
    return fails("malloc", __builtin_return_address(0)) ? failure(ENOMEM, nullptr)
                                                        : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    return fails("malloc", __builtin_return_address(0)) ? failure(ENOMEM, nullptr)
                                                        : __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size) {
    return fails("malloc", __builtin_return_address(0)) ? failure(ENOMEM, nullptr)
                                                        : __libc_realloc(memory, size);
}

int open(const char* name, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_of(flags, arguments);
    va_end(arguments);
    return fails("open") ? failure(EMFILE, -1)
                         : real<int(const char*, int, ...)>("open")(name, flags, mode);
}

int open64(const char* name, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_of(flags, arguments);
    va_end(arguments);
    return fails("open") ? failure(EMFILE, -1)
                         : real<int(const char*, int, ...)>("open64")(name, flags, mode);
}

std::FILE* fopen(const char* name, const char* mode) {
    return fails("open") ? failure(EMFILE, nullptr)
                         : real<std::FILE*(const char*, const char*)>("fopen")(name, mode);
}

std::FILE* fopen64(const char* name, const char* mode) {
    return fails("open") ? failure(EMFILE, nullptr)
                         : real<std::FILE*(const char*, const char*)>("fopen64")(name, mode);
}

ssize_t read(int descriptor, void* bytes, size_t length) {
    return fails("read") ? failure(EIO, ssize_t{-1})
                         : real<ssize_t(int, void*, size_t)>("read")(descriptor, bytes, length);
}

ssize_t write(int descriptor, const void* bytes, size_t length) {
    return fails("write")
               ? failure(ENOSPC, ssize_t{-1})
               : real<ssize_t(int, const void*, size_t)>("write")(descriptor, bytes, length);
}

ssize_t writev(int descriptor, const iovec* parts, int count) {
    return fails("write")
               ? failure(ENOSPC, ssize_t{-1})
               : real<ssize_t(int, const iovec*, int)>("writev")(descriptor, parts, count);
}

int fsync(int descriptor) {
    return fails("fsync") ? failure(EIO, -1) : real<int(int)>("fsync")(descriptor);
}

int rename(const char* before, const char* after) noexcept {
    return fails("rename") ? failure(EIO, -1)
                           : real<int(const char*, const char*)>("rename")(before, after);
}

pid_t fork() noexcept {
    return fails("fork") ? failure(EAGAIN, pid_t{-1}) : real<pid_t()>("fork")();
}

pid_t waitpid(pid_t child, int* status, int options) {
    return fails("waitpid") ? failure(ECHILD, pid_t{-1})
                            : real<pid_t(pid_t, int*, int)>("waitpid")(child, status, options);
}

int system(const char* command) {
    return fails("system") ? failure(EAGAIN, -1) : real<int(const char*)>("system")(command);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) noexcept {
    return fails("pthread_create")
               ? EAGAIN
               : real<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>(
                     "pthread_create")(thread, attributes, start, argument);
}

}  // extern "C"
