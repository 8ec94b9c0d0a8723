#include "zemhost/rescue/FileCopy.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "player/FileBytes.h"

namespace zemhost {

namespace {

using enum CopyFailure::Reach;

constexpr size_t kBlock = size_t{256} * 1024;

[[noreturn]] void failSource(int error) { throw CopyFailure(ThisFile, error); }

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

}  // namespace

CopyFailure::CopyFailure(Reach reach, int error)
    : CopyFailure(reach, error, std::generic_category().message(error)) {}

CopyFailure::CopyFailure(Reach reach, int error, const std::string &what)
    : std::runtime_error(what), reach_(reach), error_(error) {}

void failTarget(int error) {
  constexpr int kOfTheName[] = {ENAMETOOLONG, EILSEQ, EINVAL, ENOTDIR, EEXIST, EFBIG,
                                ELOOP,        EISDIR, EACCES, EPERM,   EXDEV};
  const bool name = std::find(std::begin(kOfTheName), std::end(kOfTheName), error) != std::end(kOfTheName);
  throw CopyFailure(name ? ThisFile : Destination, error);
}

bool sameContent(const carbon::Descriptor &one, const carbon::Descriptor &other) {
  std::vector<char> left(kBlock);
  std::vector<char> right(kBlock);
  for (uint64_t at = 0;; at += kBlock) {
    const size_t got = readBlock(one, at, left);
    if (got != readBlock(other, at, right)) return false;
    if (!std::equal(left.begin(), left.begin() + static_cast<ptrdiff_t>(got), right.begin())) return false;
    if (got < kBlock) return true;
  }
}

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

void copyContent(const carbon::Descriptor &source, const carbon::Descriptor &copy,
                 const std::function<void(uint64_t)> &onBytes) {
  const struct stat before = statusOf(source);
  if (!S_ISREG(before.st_mode)) failSource(EINVAL);
  const auto size = static_cast<uint64_t>(before.st_size);
  std::vector<char> block(kBlock);
  uint64_t done = 0;
  for (size_t got = kBlock; got == kBlock;) {
    got = readBlock(source, done, block);
    writeBlock(copy, {block.data(), got});
    done += got;
    onBytes(got);
  }
  // A file that is cut off on the way, or still growing, is no copy.
  if (done != size || static_cast<uint64_t>(statusOf(copy).st_size) != size) failSource(EIO);
  const timespec times[] = {before.st_atim, before.st_mtim};
  // A file system that keeps no times is no reason to do without the copy.
  [[maybe_unused]] const int kept = futimens(copy.number(), times);
  if (fsync(copy.number()) != 0 && errno != EINVAL) failTarget(errno);
}

}  // namespace zemhost
