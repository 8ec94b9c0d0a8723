#include "zemhost/rescue/FileCopy.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "player/FileBytes.h"
#include "zemhost/files/Sha256.h"

namespace zemhost {

namespace {

using enum CopyFailure::Reach;

constexpr size_t kBlock = PatientReader::kBlock;

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

void writeBlockAt(const carbon::Descriptor &file, uint64_t at, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = pwrite(file.number(), bytes.data(), bytes.size(), static_cast<off_t>(at));
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) failTarget(errno);
    bytes.remove_prefix(static_cast<size_t>(written));
    at += static_cast<uint64_t>(written);
  }
}

// Reads the gaps again, and puts what comes now into the copy. Returns those that stay.
std::vector<Gap> closeGaps(PatientReader &reader, const carbon::Descriptor &copy) {
  std::vector<Gap> left;
  for (const Gap &gap : reader.gaps()) {
    for (uint64_t done = 0; done < gap.size; done += PatientReader::kBlock) {
      const Gap part{gap.offset + done, std::min<uint64_t>(PatientReader::kBlock, gap.size - done)};
      const std::string_view bytes = reader.retry(part);
      if (!bytes.empty()) {
        writeBlockAt(copy, part.offset, bytes);
      } else if (!left.empty() && left.back().offset + left.back().size == part.offset) {
        left.back().size += part.size;
      } else {
        left.push_back(part);
      }
    }
  }
  return left;
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

CopiedContent copyContent(const carbon::Descriptor &source, const carbon::Descriptor &copy,
                          const std::function<void(uint64_t)> &onBytes) {
  const struct stat before = statusOf(source);
  if (!S_ISREG(before.st_mode)) failSource(EINVAL);
  const auto size = static_cast<uint64_t>(before.st_size);
  // The system then reads further ahead.
  if (size > kBlock) [[maybe_unused]]
    const int advised = posix_fadvise(source.number(), 0, 0, POSIX_FADV_SEQUENTIAL);
  PatientReader reader(source, size);
  Sha256 sum;
  uint64_t done = 0;
  for (size_t got = kBlock; got == kBlock;) {
    const std::string_view block = reader.block(done);
    got = block.size();
    writeBlock(copy, block);
    sum.add(block);
    done += got;
    onBytes(got);
  }
  // A file that is cut off on the way, or still growing, is no copy.
  if (done != size || static_cast<uint64_t>(statusOf(copy).st_size) != size) failSource(EIO);
  CopiedContent content;
  if (!reader.gaps().empty()) content.gaps = closeGaps(reader, copy);
  if (content.gaps.size() == 1 && content.gaps.front().size == size) failSource(reader.error());
  const timespec times[] = {before.st_atim, before.st_mtim};
  // A file system that keeps no times is no reason to do without the copy.
  [[maybe_unused]] const int kept = futimens(copy.number(), times);
  content.sha256 = reader.gaps().empty() ? sum.take() : sha256OnDisk(copy);
  return content;
}

std::string sha256OnDisk(const carbon::Descriptor &file) {
  // What the system keeps in memory would come back even where the disk has lost it.
  [[maybe_unused]] const int advised = posix_fadvise(file.number(), 0, 0, POSIX_FADV_DONTNEED);
  std::vector<char> block(kBlock);
  Sha256 sum;
  uint64_t at = 0;
  for (size_t got = kBlock; got == kBlock; at += got) {
    got = readBlock(file, at, block);
    sum.add({block.data(), got});
  }
  return sum.take();
}

}  // namespace zemhost
