#include "zemhost/files/TemporaryPath.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "host/Error.h"
#include "zemhost/files/Signals.h"

namespace zemhost {

namespace {

// A signal handler may neither allocate nor lock, so the paths lie in fixed places.
struct Slot {
  std::atomic<bool> used{false};
  std::array<char, PATH_MAX> path{};
};
static_assert(std::atomic<bool>::is_always_lock_free);

std::array<Slot, 16> slots;

constexpr std::string_view kBeginning = ".zemhost-";
constexpr std::string_view kEnd = ".part";
constexpr size_t kDigits = 16;

// Removes the files in an open directory; how many went. What is no file stays.
int removeFilesOf(int directory) noexcept {
  alignas(dirent64) std::array<char, 4096> entries{};
  int removed = 0;
  for (;;) {
    // Unlike readdir() this call needs no memory, which a signal handler cannot ask for.
    const ssize_t size = getdents64(directory, entries.data(), entries.size());
    if (size <= 0) return removed;
    for (ssize_t at = 0; at < size;) {
      const auto *const entry = reinterpret_cast<const dirent64 *>(entries.data() + at);
      if (unlinkat(directory, entry->d_name, 0) == 0) ++removed;
      at += entry->d_reclen;
    }
  }
}

// Whether a new file or directory is locked now, or cannot be; not when another program has just taken it
// for a leftover.
bool lockNew(const carbon::Descriptor &made, const std::filesystem::path &path) {
  if (flock(made.number(), LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
  struct stat own {};
  struct stat named {};
  return fstat(made.number(), &own) == 0 && lstat(path.c_str(), &named) == 0 && own.st_ino == named.st_ino;
}

}  // namespace

TemporaryPath::TemporaryPath(std::filesystem::path path) : path_(std::move(path)) {
  // A signal may find the program in another directory than this one is relative to.
  const std::string full = std::filesystem::absolute(path_).string();
  if (full.size() >= PATH_MAX) throw HostError(path_.string(), ENAMETOOLONG);
  for (size_t i = 0; i < slots.size(); ++i) {
    if (slots[i].used) continue;
    std::memcpy(slots[i].path.data(), full.c_str(), full.size() + 1);
    slots[i].used = true;
    slot_ = i;
    return;
  }
  throw HostError(path_.string() + ": too many temporary files");
}

TemporaryPath::TemporaryPath(TemporaryPath &&other) noexcept
    : path_(std::move(other.path_)), slot_(std::exchange(other.slot_, kNone)) {}

TemporaryPath &TemporaryPath::operator=(TemporaryPath &&other) noexcept {
  std::swap(path_, other.path_);
  std::swap(slot_, other.slot_);
  return *this;
}

void TemporaryPath::remove() noexcept {
  if (slot_ != kNone) removeTemporary(AT_FDCWD, slots[slot_].path.data());
  keep();
}

void TemporaryPath::keep() noexcept {
  if (slot_ != kNone) slots[std::exchange(slot_, kNone)].used = false;
}

void TemporaryPath::nameAs(int folder, const std::string &name) {
  giveName(AT_FDCWD, slots[slot_].path.data(), folder, name);
  keep();
}

void giveName(int from, const std::string &file, int folder, const std::string &name) {
  const char *const old = file.c_str();
  const char *const to = name.c_str();
  int error = renameat2(from, old, folder, to, RENAME_NOREPLACE) == 0 ? 0 : errno;
  if (error == EINVAL || error == ENOSYS) {
    // Not every file system knows that call: a second name does the same, and the first one goes.
    error = linkat(from, old, folder, to, 0) == 0 ? 0 : errno;
    if (error == 0) {
      unlinkat(from, old, 0);
      return;
    }
    // Nor a second name for a file: take the name first, which fails where it is taken.
    if (error != EEXIST) {
      const carbon::Descriptor taken(
          openat(folder, to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
      error = taken && renameat(from, old, folder, to) == 0 ? 0 : errno;
      if (taken && error != 0) unlinkat(folder, to, 0);
    }
  }
  if (error != 0) throw std::system_error(error, std::generic_category());
}

namespace {

// `make` makes something under a name that is free; no descriptor and errno EEXIST where it is not.
template <typename Make>
TemporaryFile makeTemporary(const std::filesystem::path &folder, Make make) {
  std::random_device random;
  for (;;) {
    std::array<char, kDigits + 1> number{};
    std::snprintf(number.data(), number.size(), "%08x%08x", random(), random());
    std::string name(kBeginning);
    name.append(number.data()).append(kEnd);
    std::filesystem::path path = folder / name;
    const SignalsHeld held;  // between its making and its being known it would stay behind
    carbon::Descriptor content = make(path);
    if (!content && errno == EEXIST) continue;
    if (!content) throw std::system_error(errno, std::generic_category());
    TemporaryPath owner(path);
    if (lockNew(content, path)) return {std::move(owner), std::move(content)};
  }
}

}  // namespace

TemporaryFile makeTemporaryFile(const std::filesystem::path &folder) {
  return makeTemporary(folder, [](const std::filesystem::path &path) {
    return carbon::Descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
  });
}

TemporaryFile makeTemporaryFolder(const std::filesystem::path &folder) {
  return makeTemporary(folder, [](const std::filesystem::path &path) {
    if (mkdir(path.c_str(), 0700) != 0) return carbon::Descriptor();
    carbon::Descriptor made(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    if (!made) {
      const int error = errno;
      rmdir(path.c_str());
      errno = error;
    }
    return made;
  });
}

bool isTemporaryName(std::string_view name) {
  if (name.size() != kBeginning.size() + kDigits + kEnd.size()) return false;
  return name.starts_with(kBeginning) && name.ends_with(kEnd) &&
         name.substr(kBeginning.size(), kDigits).find_first_not_of("0123456789abcdef") ==
             std::string_view::npos;
}

bool removeTemporary(int folder, const char *name) noexcept {
  const int before = errno;
  bool isGone = unlinkat(folder, name, 0) == 0;
  const int directory = isGone ? -1 : openat(folder, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
  if (directory >= 0) {
    // A directory may be passed over in part while it changes.
    while (removeFilesOf(directory) > 0) lseek(directory, 0, SEEK_SET);
    close(directory);
    isGone = unlinkat(folder, name, AT_REMOVEDIR) == 0;
  }
  errno = before;
  return isGone;
}

TemporaryPath makeTemporaryDirectory() {
  const char *named = std::getenv("TMPDIR");
  const std::filesystem::path place = named != nullptr && *named != '\0' ? named : "/tmp";
  std::string name = (place / "zemhost-XXXXXX").string();
  const SignalsHeld held;  // between its making and its being known it would stay behind
  if (mkdtemp(name.data()) == nullptr) {
    throw HostError(place.string() + ": no temporary directory can be made here", errno);
  }
  return TemporaryPath(name);
}

void removeTemporaryPaths() noexcept {
  for (size_t i = slots.size(); i-- > 0;) {
    if (slots[i].used) removeTemporary(AT_FDCWD, slots[i].path.data());
  }
}

}  // namespace zemhost
