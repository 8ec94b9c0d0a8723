#pragma once

#include <cstdint>
#include <string_view>

#include "db/RandomKey.h"

// SipHash-1-3 of texts. Whoever writes a file does not know the key, and no way is known to find texts that
// meet under a key one does not know, so a table by this hash stays fast whatever the file holds.
class KeyedHash {
 public:
  // Under the process's random key.
  KeyedHash() noexcept : KeyedHash(randomKey.texts[0], randomKey.texts[1]) {}
  // Under this very key, of which the first byte is the lowest of `first`.
  KeyedHash(uint64_t first, uint64_t second) noexcept : first_(first), second_(second) {}

  // The hash, the same on machines of either byte order.
  uint64_t operator()(std::string_view text) const noexcept;

 private:
  uint64_t first_;
  uint64_t second_;
};
