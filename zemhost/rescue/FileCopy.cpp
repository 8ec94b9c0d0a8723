#include "zemhost/rescue/FileCopy.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "player/FileBytes.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

using enum CopyFailure::Reach;

constexpr size_t kBlock = size_t{256} * 1024;

[[noreturn]] void failSource(int error) { throw CopyFailure(ThisFile, error); }

// A name that this file system cannot hold, or a file in the way of a folder, says nothing of other files.
[[noreturn]] void failTarget(int error) {
  constexpr int kOfTheName[] = {ENAMETOOLONG, EILSEQ, EINVAL, ENOTDIR, EEXIST,
                                EFBIG,        ELOOP,  EISDIR, EACCES,  EPERM};
  const bool name = std::find(std::begin(kOfTheName), std::end(kOfTheName), error) != std::end(kOfTheName);
  throw CopyFailure(name ? ThisFile : Destination, error);
}

carbon::Descriptor openSource(const fs::path &source) {
  // Without O_NONBLOCK, opening a pipe would wait for a writer.
  carbon::Descriptor file(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.number() < 0) failSource(errno);
  return file;
}

struct stat statusOf(const carbon::Descriptor &file) {
  struct stat status {};
  if (fstat(file.number(), &status) != 0) failSource(errno);
  return status;
}

size_t readBlock(const carbon::Descriptor &file, uint64_t at, std::vector<char> &block) {
  try {
    return player::readAt(file.number(), at, block.data(), block.size());
  } catch (const std::system_error &error) {
    failSource(error.code().value());
  }
}

void writeBlock(const carbon::Descriptor &file, std::string_view bytes) {
  try {
    player::writeAll(file.number(), bytes);
  } catch (const std::system_error &error) {
    failTarget(error.code().value());
  }
}

bool sameContent(const fs::path &one, const fs::path &other) {
  const carbon::Descriptor first = openSource(one);
  const carbon::Descriptor second = openSource(other);
  std::vector<char> left(kBlock);
  std::vector<char> right(kBlock);
  for (uint64_t at = 0;; at += kBlock) {
    const size_t got = readBlock(first, at, left);
    if (got != readBlock(second, at, right)) return false;
    if (!std::equal(left.begin(), left.begin() + static_cast<ptrdiff_t>(got), right.begin())) return false;
    if (got < kBlock) return true;
  }
}

// Whether a file system that was given one time may have kept the other: it drops what is finer than it
// knows, down to the two seconds of FAT.
bool isKeptTime(const timespec &kept, const timespec &given) {
  constexpr int64_t kSecond = 1'000'000'000;
  const auto number = [](const timespec &time) {
    return int64_t{time.tv_sec} * kSecond + int64_t{time.tv_nsec};
  };
  for (const int64_t grain : {int64_t{1}, int64_t{100}, int64_t{1000}, kSecond / 100, kSecond, 2 * kSecond}) {
    if (number(kept) == number(given) - number(given) % grain) return true;
  }
  return false;
}

// Gives the file its name without ever replacing another. Not every file system can do both in one step.
void nameIt(const fs::path &partial, const fs::path &target) {
  if (renameat2(AT_FDCWD, partial.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return;
  if (errno != EINVAL && errno != ENOSYS) failTarget(errno);
  struct stat status {};
  if (lstat(target.c_str(), &status) == 0) failTarget(EEXIST);
  if (rename(partial.c_str(), target.c_str()) != 0) failTarget(errno);
}

void makeFolder(const fs::path &folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) failTarget(error.value());
}

}  // namespace

CopyFailure::CopyFailure(Reach reach, int error)
    : std::runtime_error(std::generic_category().message(error)), reach_(reach), error_(error) {}

FileFacts factsOf(const fs::path &file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) failSource(errno);
  if (!S_ISREG(status.st_mode)) failSource(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
  return {static_cast<uint64_t>(status.st_size), status.st_mtim};
}

bool isCopyOf(const fs::path &copy, const fs::path &source, const FileFacts &facts) {
  struct stat status {};
  if (lstat(copy.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  if (static_cast<uint64_t>(status.st_size) != facts.size) return false;
  return isKeptTime(status.st_mtim, facts.modified) || sameContent(copy, source);
}

void copyFile(const fs::path &source, const fs::path &partial, const fs::path &target,
              const std::function<void(uint64_t)> &onBytes) {
  const carbon::Descriptor from = openSource(source);
  const struct stat before = statusOf(from);
  const auto size = static_cast<uint64_t>(before.st_size);
  carbon::Descriptor to(open(partial.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0666));
  if (to.number() < 0) throw CopyFailure(Destination, errno);
  std::vector<char> block(kBlock);
  uint64_t done = 0;
  for (size_t got = kBlock; got == kBlock;) {
    got = readBlock(from, done, block);
    writeBlock(to, {block.data(), got});
    done += got;
    onBytes(got);
  }
  // A file that is cut off on the way, or still growing, is no copy.
  if (done != size || static_cast<uint64_t>(statusOf(to).st_size) != size) failSource(EIO);
  const timespec times[] = {before.st_atim, before.st_mtim};
  // A file system that keeps no times is no reason to do without the copy.
  [[maybe_unused]] const int kept = futimens(to.number(), times);
  if (fsync(to.number()) != 0 && errno != EINVAL) failTarget(errno);
  to = carbon::Descriptor();
  makeFolder(target.parent_path());
  nameIt(partial, target);
}

}  // namespace zemhost
