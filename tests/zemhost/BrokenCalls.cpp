// Loaded before the C library, to make calls fail as they do on file systems that tests cannot mount.
// BROKEN_CALLS names those that fail, with blanks around each.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool isBroken(const char *call) {
  const char *const calls = std::getenv("BROKEN_CALLS");
  return calls != nullptr && std::strstr(calls, call) != nullptr;
}

int fail(int error) {
  errno = error;
  return -1;
}

// Whether the descriptor is open on a file that is still being written.
bool isPartial(int file) {
  char path[4096];
  const std::string link = "/proc/self/fd/" + std::to_string(file);
  const ssize_t length = readlink(link.c_str(), path, sizeof path);
  return length > 5 && std::memcmp(path + length - 5, ".part", 5) == 0;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

int flock(int file, int operation) {
  return isBroken(" flock ") ? fail(ENOLCK) : static_cast<int>(syscall(SYS_flock, file, operation));
}

int renameat2(int oldFolder, const char *oldName, int newFolder, const char *newName,
              unsigned flags) noexcept {
  if (flags != 0 && isBroken(" renameat2 ")) return fail(EINVAL);
  return static_cast<int>(syscall(SYS_renameat2, oldFolder, oldName, newFolder, newName, flags));
}

int linkat(int oldFolder, const char *oldName, int newFolder, const char *newName, int flags) noexcept {
  if (isBroken(" linkat ")) return fail(EPERM);
  return static_cast<int>(syscall(SYS_linkat, oldFolder, oldName, newFolder, newName, flags));
}

int syncfs(int file) noexcept {
  return isBroken(" syncfs ") ? fail(EIO) : static_cast<int>(syscall(SYS_syncfs, file));
}

// What was written is lost, as where a server finds no room for it at last.
int close(int file) {
  const bool lost = isBroken(" close ") && isPartial(file);
  const int result = static_cast<int>(syscall(SYS_close, file));
  return lost ? fail(ENOSPC) : result;
}

}  // extern "C"
#pragma GCC visibility pop
