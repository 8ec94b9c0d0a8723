// Loaded before the C library, to make a disk fail where a test wants it to. BROKEN_DISK holds lines:
//
//   open PATH ERROR             opening this file or reading this folder fails with an error number
//   read PATH OFFSET BYTES TIMES    reading any of these bytes of the file fails, as often as this
//   gone FOLDER AFTER TIMES     all that lies below is gone once this many reads there have come through; so
//                               many calls fail, and then it is back
//   log FILE                    each opening adds a line to this file, "look PATH" where it is for looking
//                               only, else "open PATH"
//
// Reads and opens only: what a name stands for can always be asked, as on a disk whose folders are in memory.

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sstream>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

struct Fault {
  std::string kind, path;
  uint64_t first = 0;
  uint64_t bytes = 0;
  uint64_t times = 0;
};

std::vector<Fault> &faults() {
  static std::vector<Fault> list = [] {
    std::vector<Fault> read;
    const char *const text = std::getenv("BROKEN_DISK");
    std::istringstream lines(text != nullptr ? text : "");
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      Fault fault;
      words >> fault.kind >> fault.path >> fault.first;
      if (fault.kind == "read") words >> fault.bytes;
      words >> fault.times;
      read.push_back(fault);
    }
    return read;
  }();
  return list;
}

std::string pathOf(int file) {
  char path[PATH_MAX];
  const std::string link = "/proc/self/fd/" + std::to_string(file);
  const ssize_t length = readlink(link.c_str(), path, sizeof path);
  return length > 0 ? std::string(path, static_cast<size_t>(length)) : std::string();
}

std::string pathFrom(int folder, const char *name) {
  if (name == nullptr) return {};
  std::string text = name;
  if (text.starts_with('/')) return text;
  if (folder == AT_FDCWD) return text;
  return text == "." ? pathOf(folder) : pathOf(folder) + "/" + text;
}

bool liesBelow(const std::string &path, const std::string &folder) { return path.starts_with(folder + "/"); }

// Whether a folder that has gone stays so for this call.
bool isGone(const std::string &path) {
  for (Fault &fault : faults()) {
    if (fault.kind != "gone" || !liesBelow(path, fault.path)) continue;
    if (fault.first > 0 || fault.times == 0) continue;
    --fault.times;
    return true;
  }
  return false;
}

void logOpening(const std::string &path, int flags) {
  for (const Fault &fault : faults()) {
    if (fault.kind != "log") continue;
    const std::string line = ((flags & O_PATH) != 0 ? "look " : "open ") + path + "\n";
    const long log = ::syscall(SYS_openat, AT_FDCWD, fault.path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    if (log < 0 || write(static_cast<int>(log), line.data(), line.size()) < 0) std::abort();
    close(static_cast<int>(log));
  }
}

int errorOfOpening(const std::string &path, int flags) {
  logOpening(path, flags);
  if ((flags & O_PATH) != 0) return 0;
  if (isGone(path)) return EIO;
  for (const Fault &fault : faults()) {
    if (fault.kind == "open" && fault.path == path) return static_cast<int>(fault.first);
  }
  return 0;
}

int errorOfReading(const std::string &path, uint64_t offset, uint64_t bytes) {
  if (isGone(path)) return EIO;
  for (Fault &fault : faults()) {
    if (fault.kind == "gone" && fault.first > 0 && liesBelow(path, fault.path)) --fault.first;
    if (fault.kind != "read" || fault.path != path || fault.times == 0) continue;
    if (offset >= fault.first + fault.bytes || offset + bytes <= fault.first) continue;
    --fault.times;
    return EIO;
  }
  return 0;
}

long failed(int error) {
  errno = error;
  return -1;
}

int openAt(int folder, const char *name, int flags, mode_t mode) {
  if (const int error = errorOfOpening(pathFrom(folder, name), flags); error != 0)
    return static_cast<int>(failed(error));
  static const auto real = reinterpret_cast<int (*)(int, const char *, int, ...)>(dlsym(RTLD_NEXT, "openat"));
  return real(folder, name, flags, mode);
}

ssize_t readFrom(int file, void *bytes, size_t size, off_t offset) {
  if (const int error = errorOfReading(pathOf(file), static_cast<uint64_t>(offset), size); error != 0)
    return failed(error);
  static const auto real =
      reinterpret_cast<ssize_t (*)(int, void *, size_t, off_t)>(dlsym(RTLD_NEXT, "pread64"));
  return real(file, bytes, size, offset);
}

mode_t modeIn(int flags, va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

// Programs call one of these names each, by how they were compiled: with offsets of 64 bits, or without.
#define ZEM_OPEN_AS(function, name)                             \
  int function(const char *path, int flags, ...) __asm__(name); \
  int function(const char *path, int flags, ...) {              \
    va_list arguments;                                          \
    va_start(arguments, flags);                                 \
    const mode_t mode = modeIn(flags, arguments);               \
    va_end(arguments);                                          \
    return openAt(AT_FDCWD, path, flags, mode);                 \
  }
ZEM_OPEN_AS(brokenOpen, "open")
ZEM_OPEN_AS(brokenOpen64, "open64")

#define ZEM_OPEN_AT_AS(function, name)                                      \
  int function(int folder, const char *path, int flags, ...) __asm__(name); \
  int function(int folder, const char *path, int flags, ...) {              \
    va_list arguments;                                                      \
    va_start(arguments, flags);                                             \
    const mode_t mode = modeIn(flags, arguments);                           \
    va_end(arguments);                                                      \
    return openAt(folder, path, flags, mode);                               \
  }
ZEM_OPEN_AT_AS(brokenOpenAt, "openat")
ZEM_OPEN_AT_AS(brokenOpenAt64, "openat64")

#define ZEM_READ_AS(function, name)                                                 \
  ssize_t function(int file, void *bytes, size_t size, off_t offset) __asm__(name); \
  ssize_t function(int file, void *bytes, size_t size, off_t offset) {              \
    return readFrom(file, bytes, size, offset);                                     \
  }
ZEM_READ_AS(brokenRead, "pread")
ZEM_READ_AS(brokenRead64, "pread64")

// The way to openat2, which the C library does not have.
long syscall(long number, ...) noexcept {
  va_list arguments;
  va_start(arguments, number);
  long words[6];
  for (long &word : words) word = va_arg(arguments, long);
  va_end(arguments);
  if (number == SYS_openat2) {
    uint64_t flags = 0;  // the first of its struct
    // The arguments of a system call are words. NOLINTNEXTLINE(performance-no-int-to-ptr)
    __builtin_memcpy(&flags, reinterpret_cast<const void *>(words[2]), sizeof flags);
    const auto *const name = reinterpret_cast<const char *>(words[1]);  // NOLINT(performance-no-int-to-ptr)
    const std::string path = pathFrom(static_cast<int>(words[0]), name);
    if (const int error = errorOfOpening(path, static_cast<int>(flags)); error != 0) return failed(error);
  }
  static const auto real = reinterpret_cast<long (*)(long, ...)>(dlsym(RTLD_NEXT, "syscall"));
  return real(number, words[0], words[1], words[2], words[3], words[4], words[5]);
}

}  // extern "C"
#pragma GCC visibility pop
