#include "db/ByteOrder.h"

#include <utility>

void Swap2ByteString(uint8_t *obj, size_t n) {
  if (obj == nullptr) return;
  for (size_t i = 0; i < n; i += 2) std::swap(obj[i], obj[i + 1]);
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
