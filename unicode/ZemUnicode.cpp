#include "unicode/ZemUnicode.h"

#include <algorithm>
#include <array>
#include <new>

#include "unicode/ShiftJISTables.h"

namespace {

enum StoredForm : std::int32_t { kUtf16 = 1, kAsItIs = 3 };

// The output used to collect in a buffer of 10,240 bytes that grew by 1,024 whenever fewer than 10 bytes
// beyond the next unit's were free, and each growth lost the result to repeat. The buffer is gone; its
// thresholds stay.
constexpr std::size_t kFirstGrowth = 10'240 - 10;
constexpr std::size_t kGrowth = 1'024;

std::uint16_t CodeOf(std::uint8_t high, std::uint8_t low, std::uint16_t lastResult) {
  constexpr std::uint8_t kLastPlainByte = 0x7C;
  if (high == 0) return low <= kLastPlainByte ? low : lastResult;
  const ShiftJISPage &page = shiftJISPages[high];
  if (page.count == 0) return lastResult;
  const std::size_t entry = std::size_t{low} - page.first;
  return entry < page.count ? page.codes[entry] : std::uint16_t{0};
}

// One conversion, which may be fed its text in pieces.
class Conversion {
 public:
  // Writes the Shift_JIS text of `text` to `out` and returns its length, at most that of `text` plus one.
  // Only the last piece may be odd: its last byte is paired with byteAfter.
  std::size_t Convert(std::string_view text, char byteAfter, char *out) {
    char *end = out;
    for (std::size_t at = 0; at + 1 < text.size(); at += 2) end = ConvertUnit(text[at], text[at + 1], end);
    if (text.size() % 2 != 0) end = ConvertUnit(text.back(), byteAfter, end);
    return static_cast<std::size_t>(end - out);
  }

 private:
  char *ConvertUnit(char first, char second, char *out) {
    if (length_ >= nextGrowth_) {
      nextGrowth_ += kGrowth;
      lastResult_ = 0;
    }
    const auto b0 = static_cast<std::uint8_t>(first);
    const auto b1 = static_cast<std::uint8_t>(second);
    if (b0 == 0xFF && b1 == 0xFE) {
      lowByteFirst_ = false;
      return out;
    }
    if (b0 == 0xFE && b1 == 0xFF) {
      lowByteFirst_ = true;
      return out;
    }
    lastResult_ = lowByteFirst_ ? CodeOf(b1, b0, lastResult_) : CodeOf(b0, b1, lastResult_);
    char *end = out;
    if (lastResult_ > 0xFF) *end++ = static_cast<char>(lastResult_ >> 8);
    if (lastResult_ != 0) *end++ = static_cast<char>(lastResult_);
    length_ += static_cast<std::size_t>(end - out);
    return end;
  }

  std::uint16_t lastResult_ = 0;
  bool lowByteFirst_ = false;
  std::size_t length_ = 0;
  std::size_t nextGrowth_ = kFirstGrowth;
};

std::string Converted(std::string_view text, char byteAfter) {
  std::string result;
  std::array<char, kFirstGrowth + 1> piece;
  Conversion conversion;
  try {
    while (!text.empty()) {
      const std::string_view next = text.substr(0, kFirstGrowth);
      result.append(piece.data(), conversion.Convert(next, byteAfter, piece.data()));
      text.remove_prefix(next.size());
    }
  } catch (const std::bad_alloc &) {
    return result;
  }
  return result;
}

// Single-byte characters stored high byte first: every unit is 00 and a byte that is not.
bool IsPlain(std::string_view text) {
  if (text.size() % 2 != 0) return false;
  for (std::size_t at = 0; at < text.size(); at += 2) {
    if (text[at] != 0 || text[at + 1] == 0) return false;
  }
  return true;
}

void CopyPlain(std::string_view text, char *out) {
  for (std::size_t at = 1; at < text.size(); at += 2) *out++ = text[at];
}

}  // namespace

std::uint16_t UTSchangeOneChar(std::uint8_t c1, std::uint8_t c2) {
  static std::uint16_t lastResult = 0;
  return lastResult = CodeOf(c1, c2, lastResult);
}

std::string lUnicode2SJIS(const char *in_con, std::int32_t strSize) {
  if (strSize <= 0) return {};
  const auto size = static_cast<std::size_t>(strSize);
  return Converted({in_con, size}, size % 2 != 0 ? in_con[size] : '\0');
}

std::string ConvSJIS(std::string_view a, std::int32_t encode) {
  try {
    if (encode == kAsItIs) return std::string(a);
    if (encode != kUtf16 && IsPlain(a)) {
      std::string result(a.size() / 2, '\0');
      CopyPlain(a, result.data());
      return result;
    }
  } catch (const std::bad_alloc &) {
    return {};
  }
  return Converted(a, '\0');
}

std::size_t ConvSJISInto(std::string_view a, std::int32_t encode, char *out) {
  if (encode == kAsItIs) {
    std::copy(a.begin(), a.end(), out);
    return a.size();
  }
  if (encode != kUtf16 && IsPlain(a)) {
    CopyPlain(a, out);
    return a.size() / 2;
  }
  return Conversion().Convert(a, '\0', out);
}
