#include "zemhost/files/Sha256.h"

#include <array>
#include <cstdint>

namespace zemhost {

void Sha256::add(std::string_view bytes) {
  sha256_update(&state_, bytes.size(), reinterpret_cast<const uint8_t *>(bytes.data()));
}

std::string Sha256::take() {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::array<uint8_t, SHA256_DIGEST_SIZE> sum{};
  sha256_digest(&state_, sum.size(), sum.data());
  std::string text;
  for (const uint8_t byte : sum) text.append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
  return text;
}

}  // namespace zemhost
