#pragma once

// The sum by which a file is known again: SHA-256.

#include <nettle/sha2.h>
#include <string>
#include <string_view>

namespace zemhost {

class Sha256 {
 public:
  Sha256() { sha256_init(&state_); }

  // Adds the next bytes.
  void add(std::string_view bytes);
  // The sum of all bytes until now, 64 hexadecimal digits in small letters; the object begins anew.
  std::string take();

 private:
  sha256_ctx state_{};
};

}  // namespace zemhost
