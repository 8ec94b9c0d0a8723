#include "db/ByteOrder.h"

#include <cstring>

void Swap2ByteString(uint8_t *obj, size_t n) {
  if (obj == nullptr) return;
  const auto swapPair = [](uint8_t *at) {
    uint16_t pair = 0;
    std::memcpy(&pair, at, sizeof pair);
    Swap2ByteMW(&pair);
    std::memcpy(at, &pair, sizeof pair);
  };
  for (size_t i = 0; i < n / 2; ++i) swapPair(obj + 2 * i);
  if (n % 2 != 0) swapPair(obj + n - 1);
}

size_t RemoveZeroFromAsciiUTF16(std::string_view text, char *out) {
  char *end = out;
  for (size_t i = 0; i + 1 < text.size(); i += 2) {
    if (text[i] == 0 && text[i + 1] != 0) *end++ = text[i + 1];
  }
  return static_cast<size_t>(end - out);
}

ByteString RemoveZeroFromAsciiUTF16(const ByteString *a) {
  if (a == nullptr) return {};
  ScratchText scratch;
  char *out = scratch.Room(a->size() / 2);
  return std::string_view(out, RemoveZeroFromAsciiUTF16(a->View(), out));
}
