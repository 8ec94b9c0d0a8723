#include "player/Utf16.h"

#include <cstddef>

#include "platform/carbon/UnicodeForms.h"

namespace player {

namespace {

template <bool bigEndian>
std::string utf8Of(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() / 2);
  for (size_t at = 0; at < bytes.size();) {
    const char32_t c = unicode::readUtf16<bigEndian>(bytes, at);
    unicode::appendUtf8(text, c == unicode::kNoCharacter ? unicode::kReplacement : c);
  }
  return text;
}

}  // namespace

std::string utf8OfUtf16(std::string_view bytes, bool bigEndian) {
  bytes.remove_suffix(bytes.size() % 2);
  return bigEndian ? utf8Of<true>(bytes) : utf8Of<false>(bytes);
}

}  // namespace player
