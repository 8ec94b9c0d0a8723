#include "player/Utf16.h"

#include <cstddef>

#include "platform/carbon/UnicodeForms.h"

namespace player {

std::string utf8OfUtf16(std::string_view bytes, bool bigEndian) {
  const auto read = bigEndian ? unicode::readUtf16<true> : unicode::readUtf16<false>;
  bytes.remove_suffix(bytes.size() % 2);
  std::string text;
  for (size_t at = 0; at < bytes.size();) {
    const char32_t c = read(bytes, at);
    unicode::appendUtf8(text, c == unicode::kNoCharacter ? unicode::kReplacement : c);
  }
  return text;
}

}  // namespace player
