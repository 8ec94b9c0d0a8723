// Compressed databases. With an even first byte the rest is such a file as it is: it is inflated within its
// bounds or refused in one line. With an odd one the rest is a plain database, compressed here: inflated, it
// is the same again, and cut short, it is refused.

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include <zlib.h>

#include "fuzz/MemoryFile.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "player/CompressedDatabase.h"
#include "player/Error.h"
#include "player/FileWord.h"

namespace {

using fuzz::MemoryFile;
using fuzz::Require;

constexpr size_t kCommonHeader = 16;
constexpr size_t kTotalLength = 8;

struct Inflated {
  bool refused = false;
  uint64_t left = 0;
  std::string bytes;
};

Inflated Inflate(std::string_view file) {
  static const MemoryFile from;
  static const MemoryFile to;
  from.Set(file);
  to.Set({});
  Inflated result;
  try {
    result.left = player::inflateDatabase(from.Number(), "file", to.Number(), "copy");
  } catch (const player::PlayerError &error) {
    const std::string_view words = error.what();
    Require(words.starts_with("file: ") && words.find('\n') == std::string_view::npos, words);
    result.refused = true;
  }
  result.bytes = to.Content();
  return result;
}

void TryAnyFile(std::string_view file) {
  const Inflated result = Inflate(file);
  constexpr uint64_t kAlwaysAllowed = 64ULL << 20;
  constexpr uint64_t kBlock = 128ULL << 10;  // may be written before the bound is noticed
  Require(result.bytes.size() <= std::max<uint64_t>(kAlwaysAllowed, 100 * file.size()) + kBlock,
          "more than the bound was written");
  if (result.refused) return;
  Require(result.left <= file.size(), "more bytes are left than there were");
  const bool bigEndian = file.starts_with("hdfm");
  Require(player::wordAt(result.bytes, kTotalLength, bigEndian) == result.bytes.size(), "a wrong length");
}

std::string Deflated(std::string_view bytes, int level) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string result(size, '\0');
  Require(compress2(reinterpret_cast<Bytef *>(result.data()), &size,
                    reinterpret_cast<const Bytef *>(bytes.data()), static_cast<uLong>(bytes.size()),
                    level) == Z_OK,
          "cannot compress");
  result.resize(size);
  return result;
}

std::string WithoutLength(std::string bytes) { return bytes.replace(kTotalLength, 4, 4, '\0'); }

void TryPlainDatabase(uint8_t options, std::string_view plain) {
  if (plain.size() < kCommonHeader) return;
  const uint32_t header = player::wordAt(plain, 4, plain.starts_with("hdfm"));
  if (header < kCommonHeader || header > plain.size()) return;
  const std::string file =
      std::string(plain.substr(0, header)) + Deflated(plain.substr(header), options >> 4 & 7);
  const size_t rest = options >> 1 & 7;
  const Inflated whole = Inflate(file + std::string(rest, 'x'));
  Require(!whole.refused && whole.left == rest, "what follows the stream is counted otherwise");
  Require(WithoutLength(whole.bytes) == WithoutLength(std::string(plain)), "another database");
  Require(Inflate(std::string_view(file).substr(0, file.size() - 1)).refused, "cut short, and not refused");
}

}  // namespace

FUZZ_TARGET(compressed) {
  if (size == 0) return;
  const std::string_view bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
  if (data[0] % 2 == 0) {
    TryAnyFile(bytes);
  } else {
    TryPlainDatabase(data[0], bytes);
  }
}
