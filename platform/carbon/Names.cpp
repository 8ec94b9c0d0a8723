#include "platform/carbon/Names.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "platform/carbon/MacNames.h"

namespace carbon {
namespace {

// Capital letters from `first` to `last`, each `step` apart, and the distance to their small letters.
struct CapitalRange {
  char32_t first;
  char32_t last;
  char32_t step;
  int32_t toSmall;
};

constexpr CapitalRange kCapitals[] = {
    {0x0041, 0x005A, 1, 32},    // Latin
    {0x00C0, 0x00D6, 1, 32},    // with accents
    {0x00D8, 0x00DE, 1, 32},    //
    {0x0100, 0x012E, 2, 1},     //
    {0x0132, 0x0136, 2, 1},     //
    {0x0139, 0x0147, 2, 1},     //
    {0x014A, 0x0176, 2, 1},     //
    {0x0178, 0x0178, 1, -121},  //
    {0x0179, 0x017D, 2, 1},     //
    {0x01CD, 0x01DB, 2, 1},     //
    {0x01DE, 0x01EE, 2, 1},     //
    {0x01F8, 0x021E, 2, 1},     //
    {0x0222, 0x0232, 2, 1},     //
    {0x0386, 0x0386, 1, 38},    // Greek
    {0x0388, 0x038A, 1, 37},    //
    {0x038C, 0x038C, 1, 64},    //
    {0x038E, 0x038F, 1, 63},    //
    {0x0391, 0x03A1, 1, 32},    //
    {0x03A3, 0x03AB, 1, 32},    //
    {0x0400, 0x040F, 1, 80},    // Cyrillic
    {0x0410, 0x042F, 1, 32},    //
    {0x0460, 0x0480, 2, 1},     //
    {0x048A, 0x04BE, 2, 1},     //
    {0x04C0, 0x04C0, 1, 15},    //
    {0x04C1, 0x04CD, 2, 1},     //
    {0x04D0, 0x052E, 2, 1},     //
    {0x0531, 0x0556, 1, 48},    // Armenian
    {0x1E00, 0x1E94, 2, 1},     // Latin, Vietnamese included
    {0x1EA0, 0x1EFE, 2, 1},     //
    {0x2160, 0x216F, 1, 16},    // Roman numerals
    {0xFF21, 0xFF3A, 1, 32},    // full-width Latin
};

char32_t small(char32_t letter) {
  const auto *range = std::lower_bound(std::begin(kCapitals), std::end(kCapitals), letter,
                                       [](const CapitalRange &r, char32_t c) { return r.last < c; });
  if (range == std::end(kCapitals) || letter < range->first || (letter - range->first) % range->step != 0)
    return letter;
  return letter + static_cast<char32_t>(range->toSmall);
}

constexpr char32_t kStrayByte = 0x110000;  // past every code point

// The length of the UTF-8 sequence that a byte begins; 0 for a byte that begins none.
size_t sequenceLength(uint8_t lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead < 0xE0) return 2;
  if (lead >= 0xE0 && lead < 0xF0) return 3;
  return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

}  // namespace

bool isValidName(std::string_view macName) {
  if (macName.empty() || macName.size() > kLongestName || macName == "." || macName == "..") return false;
  return macName.find(':') == std::string_view::npos && macName.find('\0') == std::string_view::npos;
}

std::u32string folded(std::string_view name) {
  std::u32string result;
  result.reserve(name.size());
  for (size_t at = 0; at < name.size();) {
    const auto lead = static_cast<uint8_t>(name[at]);
    const size_t length = sequenceLength(lead);
    char32_t point = length < 2 ? lead : lead & (0xFFU >> (length + 1));
    bool whole = length != 0 && length <= name.size() - at;
    for (size_t i = 1; whole && i < length; ++i) {
      const auto byte = static_cast<uint8_t>(name[at + i]);
      whole = (byte & 0xC0U) == 0x80U;
      point = point << 6U | (byte & 0x3FU);
    }
    result.push_back(whole ? small(point) : kStrayByte + lead);
    at += whole ? length : 1;
  }
  return result;
}

}  // namespace carbon
