#pragma once

// Numbers that the class gives as 32-bit words of the file, made into values.

#include <cstdint>

namespace zemhost {

// The word with its four bytes in the other order.
constexpr uint32_t reversedWord(uint32_t word) {
  return word >> 24 | (word >> 8 & 0xFF00) | (word << 8 & 0xFF0000) | word << 24;
}

// The value of a rate word as the class gives it: the four bytes of the file, first one highest. Those of a
// little-endian file (LibType other than 0) come reversed, those of a big-endian one straight.
constexpr uint32_t rateWord(int32_t fromClass, int32_t libType) {
  const auto word = static_cast<uint32_t>(fromClass);
  return libType == 0 ? word : reversedWord(word);
}

// Hertz, rounded, of a sample rate word in 16.16 fixed point.
constexpr uint32_t sampleRateHertz(uint32_t rateWord) { return (rateWord >> 16) + (rateWord >> 15 & 1); }

}  // namespace zemhost
