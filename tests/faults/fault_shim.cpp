// Preloaded into a process, makes one of its calls fail, or all from one on. For scripts/faults.
//
// A program may also set faults itself, by the functions of fault_shim.h. Otherwise:
// VEXA_FAULT is "CALL NUMBER ERROR ONWARDS": the name of a call below, which one of them counted
// from 0 since main started, an errno or 0 for a short count, and 1 to go on failing. CALL "new" is
// operator new. VEXA_FAULT_COUNT names a file that gets the number of calls of that name.
#include "tests/faults/fault_shim.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Plan {
  char mCall[32] = {};
  long mNumber = -1;
  int mError = 0, mOnwards = 0;
} gPlan;
std::atomic<long> gCalls{0}, gBlocks{0};
std::atomic<bool> gIsStarted{false};
int (*gMain)(int, char**, char**) = nullptr;

template <class Function>
Function real(Function, const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// Whether this call of that name is one to fail.
bool fails(const char* call) {
  if (!gIsStarted || std::strcmp(call, gPlan.mCall) != 0) return false;
  const long number = gCalls++;
  if (gPlan.mNumber < 0) return false;
  return number == gPlan.mNumber || (gPlan.mOnwards != 0 && number > gPlan.mNumber);
}

void report() {
  const char* path = std::getenv("VEXA_FAULT_COUNT");
  if (path == nullptr) return;
  gIsStarted = false;
  std::FILE* file = std::fopen(path, "w");
  if (file == nullptr) return;
  std::fprintf(file, "%ld\n", gCalls.load());
  std::fclose(file);
}

int startedMain(int count, char** arguments, char** environment) {
  if (const char* plan = std::getenv("VEXA_FAULT")) {
    std::sscanf(plan, "%31s %ld %d %d", gPlan.mCall, &gPlan.mNumber, &gPlan.mError,
                &gPlan.mOnwards);
  }
  std::atexit(report);
  gIsStarted = true;
  return gMain(count, arguments, environment);
}

void* allocate(std::size_t size) {
  if (fails("new")) throw std::bad_alloc();
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  ++gBlocks;
  return block;
}

void release(void* block) {
  if (block != nullptr) --gBlocks;
  std::free(block);
}

}  // namespace

void setFault(const char* call, long number, int error, bool onwards) {
  gIsStarted = false;
  std::snprintf(gPlan.mCall, sizeof(gPlan.mCall), "%s", call);
  gPlan.mNumber = number;
  gPlan.mError = error;
  gPlan.mOnwards = onwards ? 1 : 0;
  gCalls = 0;
  gIsStarted = true;
}
long endFault() {
  gIsStarted = false;
  return gCalls;
}
long blocksInUse() { return gBlocks; }

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept try {
  return allocate(size);
} catch (const std::bad_alloc&) {
  return nullptr;
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept try {
  return allocate(size);
} catch (const std::bad_alloc&) {
  return nullptr;
}
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }

// A call that either fails with the error of the plan or is made.
#define VEXA_FAULT_CALL(type, name, parameters, arguments)   \
  type name parameters {                                     \
    static const auto call = real(&name, #name);             \
    if (fails(#name)) return errno = gPlan.mError, type(-1); \
    return call arguments;                                   \
  }

// One that can also do less than it was asked for: a single byte.
#define VEXA_FAULT_TRANSFER(name, parameters, arguments, shortArguments) \
  ssize_t name parameters {                                              \
    static const auto call = real(&name, #name);                         \
    if (!fails(#name)) return call arguments;                            \
    if (gPlan.mError == 0 && count > 0) return call shortArguments;      \
    return errno = gPlan.mError == 0 ? EIO : gPlan.mError, -1;           \
  }

extern "C" {

VEXA_FAULT_TRANSFER(read, (int fd, void* bytes, size_t count), (fd, bytes, count), (fd, bytes, 1))
VEXA_FAULT_TRANSFER(write, (int fd, const void* bytes, size_t count), (fd, bytes, count),
                    (fd, bytes, 1))
VEXA_FAULT_TRANSFER(pwrite, (int fd, const void* bytes, size_t count, off_t at),
                    (fd, bytes, count, at), (fd, bytes, 1, at))
VEXA_FAULT_CALL(int, rename, (const char* from, const char* to) noexcept, (from, to))
VEXA_FAULT_CALL(int, link, (const char* from, const char* to) noexcept, (from, to))
VEXA_FAULT_CALL(int, mkdir, (const char* path, mode_t mode) noexcept, (path, mode))
VEXA_FAULT_CALL(int, mkdirat, (int folder, const char* path, mode_t mode) noexcept,
                (folder, path, mode))
VEXA_FAULT_CALL(int, renameat, (int a, const char* from, int b, const char* to) noexcept,
                (a, from, b, to))
VEXA_FAULT_CALL(int, unlinkat, (int folder, const char* path, int flags) noexcept,
                (folder, path, flags))
VEXA_FAULT_CALL(int, unlink, (const char* path) noexcept, (path))
VEXA_FAULT_CALL(int, rmdir, (const char* path) noexcept, (path))
VEXA_FAULT_CALL(int, fchmod, (int fd, mode_t mode) noexcept, (fd, mode))
VEXA_FAULT_CALL(int, futimens, (int fd, const struct timespec* times) noexcept, (fd, times))
VEXA_FAULT_CALL(int, fstatat,
                (int folder, const char* path, struct stat* status, int flags) noexcept,
                (folder, path, status, flags))
VEXA_FAULT_CALL(int, stat, (const char* path, struct stat* status) noexcept, (path, status))
VEXA_FAULT_CALL(ssize_t, readlink, (const char* path, char* text, size_t count) noexcept,
                (path, text, count))
VEXA_FAULT_CALL(ssize_t, pread, (int fd, void* bytes, size_t count, off_t at),
                (fd, bytes, count, at))
VEXA_FAULT_CALL(int, fstat, (int fd, struct stat* status) noexcept, (fd, status))
VEXA_FAULT_CALL(int, getentropy, (void* bytes, size_t count), (bytes, count))
VEXA_FAULT_CALL(int, pipe2, (int* ends, int flags) noexcept, (ends, flags))
VEXA_FAULT_CALL(pid_t, fork, (), ())

int openat(int folder, const char* path, int flags, ...) {
  static const auto call =
      reinterpret_cast<int (*)(int, const char*, int, ...)>(dlsym(RTLD_NEXT, "openat"));
  if (fails("openat")) return errno = gPlan.mError, -1;
  __builtin_va_list rest;
  __builtin_va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? __builtin_va_arg(rest, mode_t) : 0;
  __builtin_va_end(rest);
  return call(folder, path, flags, mode);
}

int open(const char* path, int flags, ...) {
  static const auto call =
      reinterpret_cast<int (*)(const char*, int, ...)>(dlsym(RTLD_NEXT, "open"));
  if (fails("open")) return errno = gPlan.mError, -1;
  __builtin_va_list rest;
  __builtin_va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? __builtin_va_arg(rest, mode_t) : 0;
  __builtin_va_end(rest);
  return call(path, flags, mode);
}

// Closes all the same, as the system does.
int close(int fd) {
  static const auto call = real(&close, "close");
  const bool isToFail = fails("close");
  const int result = call(fd);
  return isToFail ? (errno = gPlan.mError, -1) : result;
}

std::FILE* fopen(const char* path, const char* mode) {
  static const auto call = real(&fopen, "fopen");
  if (fails("fopen")) return errno = gPlan.mError, nullptr;
  return call(path, mode);
}

size_t fread(void* bytes, size_t size, size_t count, std::FILE* file) {
  static const auto call = real(&fread, "fread");
  if (fails("fread")) {
    file->_flags |= 0x20;  // what ferror() asks for
    return errno = gPlan.mError, 0;
  }
  return call(bytes, size, count, file);
}

int __libc_start_main(int (*main)(int, char**, char**), int count, char** arguments, void (*init)(),
                      void (*fini)(), void (*loaderFini)(), void* stackEnd) {
  using Start = int (*)(decltype(main), int, char**, void (*)(), void (*)(), void (*)(), void*);
  gMain = main;
  const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return start(startedMain, count, arguments, init, fini, loaderFini, stackEnd);
}

}  // extern "C"
