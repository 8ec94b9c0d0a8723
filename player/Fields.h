#pragma once

// The numbers of a piece of a file, those that lie wholly in it.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "player/FileWord.h"

namespace player {

class Fields {
 public:
  // The bytes must stay where they are. Offsets below are from their beginning; a number that does not lie
  // wholly in them has no value.
  explicit Fields(std::string_view bytes, bool bigEndian = false) : bytes_(bytes), bigEndian_(bigEndian) {}

  std::optional<uint8_t> byte(size_t at) const {
    return has(at, 1) ? std::optional(static_cast<uint8_t>(bytes_[at])) : std::nullopt;
  }
  std::optional<uint16_t> half(size_t at) const {
    if (!has(at, 2)) return std::nullopt;
    const uint32_t first = *byte(at);
    const uint32_t second = *byte(at + 1);
    return static_cast<uint16_t>(bigEndian_ ? first << 8 | second : second << 8 | first);
  }
  std::optional<uint32_t> word(size_t at) const {
    return has(at, 4) ? std::optional(wordAt(bytes_, at, bigEndian_)) : std::nullopt;
  }
  std::optional<uint64_t> twoWords(size_t at) const {
    if (!has(at, 8)) return std::nullopt;
    const uint64_t first = *word(at);
    const uint64_t second = *word(at + 4);
    return bigEndian_ ? first << 32 | second : second << 32 | first;
  }

 private:
  bool has(size_t at, size_t size) const { return bytes_.size() >= size && at <= bytes_.size() - size; }

  std::string_view bytes_;
  bool bigEndian_;
};

}  // namespace player
