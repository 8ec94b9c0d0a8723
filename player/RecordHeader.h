#pragma once

// The numbers in the header of a record, each there when the header holds all of it.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "player/Fields.h"
#include "player/FileWord.h"
#include "player/SongFacts.h"

namespace player {

template <typename Number>
std::optional<Number> unlessZero(std::optional<Number> number) {
  return number && *number != 0 ? number : std::nullopt;
}

// Of a header that is given from its tag on, to its end or further; or as much of it as the file has.
class RecordHeader : public Fields {
 public:
  RecordHeader(std::string_view bytes, bool bigEndian)
      : Fields(bytes.size() < 8 ? bytes : bytes.substr(0, wordAt(bytes, 4, bigEndian)), bigEndian) {}

  std::optional<uint32_t> date(size_t at) const { return known(word(at), knownDate); }
  std::optional<uint32_t> event(size_t at) const { return known(word(at), knownEvent); }
  std::optional<bool> flag(size_t at) const {
    const auto mark = byte(at);
    return mark ? std::optional(*mark != 0) : std::nullopt;
  }
  // Of a mark with one value for each answer, and others that say nothing.
  std::optional<bool> mark(size_t at, uint8_t yes, uint8_t no) const {
    const auto found = byte(at);
    return found && (*found == yes || *found == no) ? std::optional(*found == yes) : std::nullopt;
  }

 private:
  static std::optional<uint32_t> known(std::optional<uint32_t> stored,
                                       std::optional<uint32_t> (*rule)(uint32_t)) {
    return stored ? rule(*stored) : std::nullopt;
  }
};

}  // namespace player
