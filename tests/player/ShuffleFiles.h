#pragma once

// Writes what a shuffle plays from, in both forms.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace player {

inline std::string bigBytes(uint64_t number, int count) {
  std::string bytes;
  while (count-- > 0) bytes += static_cast<char>(number >> (8 * count));
  return bytes;
}

inline std::string littleBytes(uint64_t number, int count) {
  const std::string bytes = bigBytes(number, count);
  return {bytes.rbegin(), bytes.rend()};
}

inline std::string filled(std::string bytes, size_t size) {
  bytes.resize(size, '\0');
  return bytes;
}

// Paths are ASCII.
inline std::string olderShuffleList(const std::vector<std::string> &paths) {
  std::string bytes = filled(bigBytes(paths.size(), 3) + bigBytes(0x010800, 3) + bigBytes(0x12, 3), 0x12);
  for (const std::string &path : paths) {
    std::string song = filled(bigBytes(0x22e, 3), 0x21);
    for (const char c : path) song += littleBytes(static_cast<unsigned char>(c), 2);
    bytes += filled(song, 0x22e);
  }
  return bytes;
}

// The songs have the persistent ids 1000, 1001, ...
inline std::string newerShuffleList(const std::vector<std::string> &paths) {
  const size_t count = paths.size();
  const uint64_t first = 0x40 + 0x14 + 4 * count;
  std::string bytes = filled("bdhs" + filled("", 4) + littleBytes(0x40, 4) + littleBytes(count, 4), 0x24);
  bytes = filled(bytes + littleBytes(count == 0 ? 0 : 0x40, 4), 0x40);
  bytes += filled("hths" + littleBytes(0x14 + 4 * count, 4) + littleBytes(count, 4), 0x14);
  for (size_t i = 0; i < count; ++i) bytes += littleBytes(first + 0x174 * i, 4);
  for (size_t i = 0; i < count; ++i) {
    const std::string song = filled(filled("rths" + littleBytes(0x174, 4), 0x18) + paths[i], 0x148);
    bytes += filled(song + littleBytes(1000 + i, 8), 0x174);
  }
  return bytes;
}

// Plays and skips of each song.
using ShuffleCounted = std::vector<std::pair<uint32_t, uint32_t>>;

inline std::string olderShuffleCounts(const ShuffleCounted &counts) {
  std::string bytes = littleBytes(counts.size(), 3) + littleBytes(0, 3);
  for (const auto &[plays, skips] : counts)
    bytes += filled(littleBytes(0x12, 3), 0x0c) + littleBytes(plays, 3) + littleBytes(skips, 3);
  return bytes;
}

inline std::string newerShuffleCounts(const ShuffleCounted &counts) {
  std::string bytes = littleBytes(counts.size(), 4) + littleBytes(0, 4);
  for (const auto &[plays, skips] : counts) {
    bytes += filled(
        filled(filled(littleBytes(0x20, 4), 8) + littleBytes(plays, 4), 0x10) + littleBytes(skips, 4), 0x20);
  }
  return bytes;
}

}  // namespace player
