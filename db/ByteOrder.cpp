#include "db/ByteOrder.h"

#include <cstring>
#include <utility>

void Swap2ByteString(uint8_t *obj, size_t n) {
  if (obj == nullptr) return;
  size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    constexpr uint64_t kEven = 0x00ff00ff00ff00ff;
    uint64_t pairs = 0;
    std::memcpy(&pairs, obj + i, sizeof pairs);
    pairs = (pairs >> 8 & kEven) | (pairs & kEven) << 8;
    std::memcpy(obj + i, &pairs, sizeof pairs);
  }
  for (; i < n; i += 2) std::swap(obj[i], obj[i + 1]);
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
