#include "zemhost/files/TemporaryPath.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "host/Error.h"

namespace zemhost {

namespace {

// A signal handler may neither allocate nor lock, so the paths lie in fixed places.
struct Slot {
  std::atomic<bool> used{false};
  std::array<char, PATH_MAX> path{};
};
static_assert(std::atomic<bool>::is_always_lock_free);

std::array<Slot, 16> slots;

void removeNamed(const char *path) noexcept {
  const int before = errno;
  if (unlink(path) != 0) rmdir(path);
  errno = before;
}

// While one lives, no signal reaches the program.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, &before_);
  }
  SignalsHeld(const SignalsHeld &) = delete;
  SignalsHeld &operator=(const SignalsHeld &) = delete;
  ~SignalsHeld() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

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
  if (slot_ != kNone) removeNamed(slots[slot_].path.data());
  keep();
}

void TemporaryPath::keep() noexcept {
  if (slot_ != kNone) slots[std::exchange(slot_, kNone)].used = false;
}

void TemporaryPath::nameAs(int folder, const std::string &name) {
  const char *const from = slots[slot_].path.data();
  const char *const to = name.c_str();
  int error = renameat2(AT_FDCWD, from, folder, to, RENAME_NOREPLACE) == 0 ? 0 : errno;
  if (error == EINVAL || error == ENOSYS) {
    // Not every file system knows that call: a second name does the same, and the first one goes.
    error = linkat(AT_FDCWD, from, folder, to, 0) == 0 ? 0 : errno;
    if (error == 0) {
      remove();
      return;
    }
    // Nor a second name for a file: take the name first, which fails where it is taken.
    if (error != EEXIST) {
      const carbon::Descriptor taken(
          openat(folder, to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
      error = taken && renameat(AT_FDCWD, from, folder, to) == 0 ? 0 : errno;
      if (taken && error != 0) unlinkat(folder, to, 0);
    }
  }
  if (error != 0) throw std::system_error(error, std::generic_category());
  keep();
}

TemporaryFile makeTemporaryFile(const std::filesystem::path &folder) {
  std::random_device random;
  for (;;) {
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), ".zemhost-%08x%08x.part", random(), random());
    std::filesystem::path path = folder / name.data();
    const SignalsHeld held;  // between its making and its being known it would stay behind
    carbon::Descriptor content(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (content) return {TemporaryPath(std::move(path)), std::move(content)};
    if (errno != EEXIST) throw std::system_error(errno, std::generic_category());
  }
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
    if (slots[i].used) removeNamed(slots[i].path.data());
  }
}

}  // namespace zemhost
