#include "db/KeyedHash.h"

#include <bit>
#include <cstring>

namespace {

// Eight bytes, the first one lowest.
uint64_t Word(const char *bytes) {
  uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

// The 0 to 7 bytes of the text that are left after its whole words, and its length above them.
uint64_t LastWord(std::string_view text) {
  const size_t rest = text.size() % 8;
  uint64_t word = 0;
  if (text.size() >= 8) {
    if (rest != 0) word = Word(text.data() + text.size() - 8) >> (64 - 8 * rest);
  } else {
    for (size_t i = 0; i < rest; ++i) word |= uint64_t{static_cast<uint8_t>(text[i])} << (8 * i);
  }
  return word | uint64_t{text.size()} << 56;
}

struct State {
  uint64_t a, b, c, d;

  void Round() {
    a += b;
    c += d;
    b = std::rotl(b, 13) ^ a;
    d = std::rotl(d, 16) ^ c;
    a = std::rotl(a, 32);
    c += b;
    a += d;
    b = std::rotl(b, 17) ^ c;
    d = std::rotl(d, 21) ^ a;
    c = std::rotl(c, 32);
  }
  void Take(uint64_t word) {
    d ^= word;
    Round();
    a ^= word;
  }
};

}  // namespace

uint64_t KeyedHash::operator()(std::string_view text) const noexcept {
  State state = {first_ ^ 0x736f6d6570736575, second_ ^ 0x646f72616e646f6d, first_ ^ 0x6c7967656e657261,
                 second_ ^ 0x7465646279746573};
  const char *end = text.data() + text.size() / 8 * 8;
  for (const char *at = text.data(); at != end; at += 8) state.Take(Word(at));
  state.Take(LastWord(text));
  state.c ^= 0xff;
  for (int i = 0; i < 3; ++i) state.Round();
  return state.a ^ state.b ^ state.c ^ state.d;
}
