// Reads the bytes of a written file on its own, without the writer: words by value, chunks by walking.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace samples_test {

inline uint8_t ByteAt(std::string_view file, size_t at) { return static_cast<uint8_t>(file.at(at)); }

inline uint32_t Little(std::string_view file, size_t at) {
  return ByteAt(file, at) | uint32_t{ByteAt(file, at + 1)} << 8 | uint32_t{ByteAt(file, at + 2)} << 16 |
         uint32_t{ByteAt(file, at + 3)} << 24;
}

inline uint32_t Big(std::string_view file, size_t at) {
  return ByteAt(file, at + 3) | uint32_t{ByteAt(file, at + 2)} << 8 | uint32_t{ByteAt(file, at + 1)} << 16 |
         uint32_t{ByteAt(file, at)} << 24;
}

struct ChunkAt {
  std::string tag;
  size_t at = 0;
  uint32_t headerLength = 0;
  uint32_t length = 0;
  uint32_t count = 0;
};

// Every chunk of the file in order. A data object is left by its total length, any other chunk by its header.
inline std::vector<ChunkAt> Walk(std::string_view file) {
  const bool little = file.substr(0, 4) == "mhbd";
  const auto word = [&](size_t at) { return little ? Little(file, at) : Big(file, at); };
  std::vector<ChunkAt> chunks;
  for (size_t at = 0; at < file.size();) {
    const ChunkAt chunk{std::string(file.substr(at, 4)), at, word(at + 4), word(at + 8), word(at + 12)};
    chunks.push_back(chunk);
    at += chunk.tag == "mhod" || chunk.tag == "hohm" ? chunk.length : chunk.headerLength;
  }
  return chunks;
}

inline std::vector<ChunkAt> Only(const std::vector<ChunkAt> &chunks, std::string_view tag) {
  std::vector<ChunkAt> only;
  for (const ChunkAt &chunk : chunks) {
    if (chunk.tag == tag) only.push_back(chunk);
  }
  return only;
}

}  // namespace samples_test
