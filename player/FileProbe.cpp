#include "player/FileProbe.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "platform/carbon/Descriptor.h"
#include "player/DiskImage.h"
#include "player/FileBytes.h"
#include "player/FileWord.h"
#include "player/ForeignFile.h"

namespace player {

namespace {

constexpr size_t kChunkHeader = 16;
static_assert(kForeignHead <= kChunkHeader);

// How much of the body is looked at to distinguish scrambled bytes from a damaged file.
constexpr size_t kSample = 256;

FileProbe unusable(std::string reason) { return {FileContent::Unusable, std::move(reason)}; }
FileProbe damaged(std::string reason) { return {FileContent::Damaged, std::move(reason)}; }

FileProbe failed(int error) { return unusable(std::generic_category().message(error)); }

bool isZlibStream(std::string_view body) {
  if (body.size() < 2) return false;
  const auto method = static_cast<unsigned char>(body[0]);
  const auto flags = static_cast<unsigned char>(body[1]);
  return method == 0x78 && (method * 256U + flags) % 31 == 0;
}

// Chunk headers are mostly zero bytes; encrypted bytes have one in 256.
bool looksScrambled(std::string_view body) {
  const auto zeros = std::count(body.begin(), body.end(), '\0');
  return static_cast<size_t>(zeros) * 16 < body.size();
}

bool isChunk(std::string_view body) {
  return body.size() >= kChunkHeader &&
         std::all_of(body.begin(), body.begin() + 4, [](char c) { return c >= 'a' && c <= 'z'; });
}

bool isDataSet(std::string_view chunk) { return chunk.substr(2, 2) == "sd" || chunk.substr(0, 4) == "hdsm"; }

FileProbe truncated(uint64_t expected, uint64_t actual) {
  return damaged("the file is truncated: it should hold " + std::to_string(expected) + " bytes and holds " +
                 std::to_string(actual));
}

FileProbe probeOpenFile(int file, uint64_t size, const std::filesystem::path &name) {
  if (size == 0) return unusable("the file is empty");
  const std::string header = readAt(file, 0, kChunkHeader);
  const std::string_view tag = std::string_view(header).substr(0, 4);
  const bool littleEndian = tag.size() == 4 && tag.substr(2) == "bd";
  const bool bigEndian = tag == "hdfm";
  if (!littleEndian && !bigEndian) {
    const std::string foreign = foreignFileText(header, name);
    const std::string image = foreign.empty() ? diskImageText(file, name.string()) : std::string();
    if (!image.empty()) return unusable(image);
    if (foreign.empty()) return damaged("not an iTunesDB database");
    return unusable("it is " + foreign + "; name the player, or its iTunesDB");
  }
  if (header.size() < kChunkHeader) return damaged("the file is truncated: its header is not complete");
  if (size > static_cast<uint64_t>(std::numeric_limits<int32_t>::max())) {
    return unusable("the file is too large: 2 GB and more cannot be read");
  }

  const uint64_t headerLength = wordAt(header, 4, bigEndian);
  const uint64_t totalLength = wordAt(header, 8, bigEndian);
  if (headerLength < kChunkHeader)
    return damaged("the file is damaged: its header states a length that is not possible");
  if (headerLength > size) return truncated(std::max(headerLength, totalLength), size);
  const std::string body = readAt(file, headerLength, kSample);
  if (isZlibStream(body)) return {FileContent::Compressed, {}};
  if (body.size() >= kChunkHeader && !isChunk(body) && looksScrambled(body)) {
    return {FileContent::Encrypted, "the library is encrypted and cannot be read"};
  }
  if (totalLength > size) return truncated(totalLength, size);
  if (body.empty()) return {FileContent::Database, {}};
  if (!isChunk(body)) return damaged("the file is damaged: no chunk follows its header");
  if (!isDataSet(body)) return {FileContent::Database, {}};
  const uint64_t firstSetEnd = headerLength + wordAt(body, 8, bigEndian);
  if (firstSetEnd > size) return truncated(firstSetEnd, size);
  return {FileContent::Database, {}};
}

}  // namespace

FileProbe probeFile(const std::filesystem::path &file) {
  // Without O_NONBLOCK, opening a pipe would wait for a writer.
  const carbon::Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (descriptor.number() < 0) return failed(errno);
  struct stat status {};
  if (fstat(descriptor.number(), &status) != 0) return failed(errno);
  if (S_ISDIR(status.st_mode)) return failed(EISDIR);
  try {
    if (!S_ISREG(status.st_mode)) {
      const std::string disk =
          S_ISBLK(status.st_mode) ? diskImageText(descriptor.number(), file.string()) : std::string();
      return unusable(disk.empty() ? "not a regular file" : disk);
    }
    return probeOpenFile(descriptor.number(), static_cast<uint64_t>(status.st_size), file);
  } catch (const std::system_error &error) {
    return failed(error.code().value());
  }
}

}  // namespace player
