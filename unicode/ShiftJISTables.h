#pragma once

#include <cstdint>

// The codes of one Unicode page (the code units with one high byte): codes[k] belongs to the low byte first +
// k. A code is a double-byte Shift_JIS code (lead byte high), a single-byte one below 0x100, or 0: no
// mapping. A page without a table has no codes and a count of 0.
struct ShiftJISPage {
  const std::uint16_t *codes;
  std::uint8_t first;
  std::uint16_t count;
};

// One row per high byte. Page 00 has none: it goes by rule.
extern const ShiftJISPage shiftJISPages[256];

// Page 00 of the published mapping, from U+005C on: kept with the others, never consulted.
extern const std::uint16_t changetoShiftJIS00[156];
