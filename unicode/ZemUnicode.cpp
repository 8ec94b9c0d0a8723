#include "unicode/ZemUnicode.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

#include "unicode/ShiftJISTables.h"

namespace {

constexpr std::int32_t kUtf16 = 1;
constexpr std::int32_t kAsItIs = 3;

// The output used to collect in a buffer of 10,240 bytes that grew by 1,024 whenever it had 10 bytes or fewer
// left before a unit, and each growth lost the result to repeat. The buffer is gone; its thresholds stay.
constexpr std::ptrdiff_t kFirstRoom = 10'240 - 10;
constexpr std::ptrdiff_t kGrowth = 1'024;

// Two bytes as they lie in memory: a UTF-16 unit stored high byte first, or a Shift_JIS code, lead byte
// first, 0 for the lead byte of a single-byte code. Units are looked up and codes written without exchanging
// bytes on any machine.
using BytePair = std::uint16_t;

constexpr BytePair Pair(unsigned first, unsigned second) {
  return std::bit_cast<BytePair>(
      std::array{static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(second)});
}

constexpr BytePair kHighByteFirstMark = Pair(0xFF, 0xFE);
constexpr BytePair kLowByteFirstMark = Pair(0xFE, 0xFF);

constexpr BytePair kLeadByte = Pair(0xFF, 0);

// The codes of all units, holes included: a look-up is one load and no test. Going through the page tables
// took a title about three times as long.
constexpr std::array<BytePair, 0x10000> kCodes = [] {
  constexpr unsigned kLastPlainByte = 0x7C;
  std::array<BytePair, 0x10000> codes{};
  for (unsigned low = 0; low <= kLastPlainByte; ++low) codes[Pair(0, low)] = Pair(0, low);
  for (unsigned high = 0; high < 0x100; ++high) {
    const ShiftJISPage &page = shiftJISPages[high];
    for (unsigned entry = 0; entry < page.count; ++entry) {
      const unsigned code = page.codes[entry];
      codes[Pair(high, page.first + entry)] = Pair(code >> 8, code & 0xFF);
    }
  }
  return codes;
}();

constexpr std::array<bool, 0x100> kHasTable = [] {
  std::array<bool, 0x100> hasTable{};
  for (std::size_t high = 0; high < hasTable.size(); ++high) hasTable[high] = shiftJISPages[high].count != 0;
  return hasTable;
}();

BytePair CodeOf(std::uint8_t high, std::uint8_t low, BytePair lastResult) {
  const BytePair code = kCodes[Pair(high, low)];
  const bool isNul = high == 0 && low == 0;
  return code != 0 || isNul || kHasTable[high] ? code : lastResult;
}

BytePair Load(const char *from) {
  BytePair pair = 0;
  std::memcpy(&pair, from, sizeof pair);
  return pair;
}

void Store(BytePair pair, char *to) { std::memcpy(to, &pair, sizeof pair); }

// Writes a code that is not 0, and after a single-byte one a byte that does not count; returns the end of
// what counts. Without a branch, which would be mispredicted at every change of scripts in a text.
char *Put(BytePair code, char *out) {
  const unsigned leadMissing = (code & kLeadByte) == 0 ? 1 : 0;
  const unsigned bits = 8 * leadMissing;
  constexpr bool kLittleEndian = std::endian::native == std::endian::little;
  Store(static_cast<BytePair>(kLittleEndian ? code >> bits : code << bits), out);
  return out + (2 - leadMissing);
}

struct Cursor {
  const char *in;
  char *out;
};

// Converts whole units up to `end` or the first one without a code of its own, high byte first.
Cursor ConvertMapped(Cursor at, const char *end) {
  auto [in, out] = at;
  for (; end - in >= 8; in += 8) {
    const BytePair c0 = kCodes[Load(in)];
    const BytePair c1 = kCodes[Load(in + 2)];
    const BytePair c2 = kCodes[Load(in + 4)];
    const BytePair c3 = kCodes[Load(in + 6)];
    // Every lead byte has its top bit set, so that something is left when none is missing.
    if ((c0 & c1 & c2 & c3 & kLeadByte) != 0) {
      Store(c0, out);
      Store(c1, out + 2);
      Store(c2, out + 4);
      Store(c3, out + 6);
      out += 8;
    } else if (c0 != 0 && c1 != 0 && c2 != 0 && c3 != 0) {
      out = Put(c3, Put(c2, Put(c1, Put(c0, out))));
    } else {
      break;
    }
  }
  for (; in != end; in += 2) {
    const BytePair code = kCodes[Load(in)];
    if (code == 0) break;
    out = Put(code, out);
  }
  return {in, out};
}

// One conversion, which may be fed its text in pieces.
class Conversion {
 public:
  // Writes the Shift_JIS text of `text` to `out` and returns its length, at most that of `text` plus one.
  // Only the last piece may be odd: its last byte is paired with byteAfter.
  std::size_t Convert(std::string_view text, char byteAfter, char *out) {
    Cursor at = {text.data(), out};
    const char *const end = text.data() + text.size();
    while (at.in != end) {
      if (!lowByteFirst_) at = ConvertUpToGrowth(at, end);
      if (at.in == end) break;
      const bool odd = end - at.in == 1;
      at.out = ConvertUnit(at.in[0], odd ? byteAfter : at.in[1], at.out);
      at.in += odd ? 1 : 2;
    }
    return static_cast<std::size_t>(at.out - out);
  }

 private:
  // A unit gives two bytes at the most: as much text as there is room reaches no growth.
  Cursor ConvertUpToGrowth(Cursor from, const char *end) {
    const std::ptrdiff_t units = std::min(end - from.in, room_) / 2;
    const Cursor to = ConvertMapped(from, from.in + 2 * units);
    if (to.in != from.in) lastResult_ = kCodes[Load(to.in - 2)];
    room_ -= to.out - from.out;
    return to;
  }

  char *ConvertUnit(char first, char second, char *out) {
    if (room_ <= 0) {
      room_ += kGrowth;
      lastResult_ = 0;
    }
    const auto b0 = static_cast<std::uint8_t>(first);
    const auto b1 = static_cast<std::uint8_t>(second);
    if (const BytePair unit = Pair(b0, b1); unit == kHighByteFirstMark || unit == kLowByteFirstMark) {
      lowByteFirst_ = unit == kLowByteFirstMark;
      return out;
    }
    lastResult_ = lowByteFirst_ ? CodeOf(b1, b0, lastResult_) : CodeOf(b0, b1, lastResult_);
    if (lastResult_ == 0) return out;
    char *const end = Put(lastResult_, out);
    room_ -= end - out;
    return end;
  }

  BytePair lastResult_ = 0;
  bool lowByteFirst_ = false;
  std::ptrdiff_t room_ = kFirstRoom;
};

std::string Converted(std::string_view text, char byteAfter) {
  constexpr std::size_t kPiece = 8'192;
  std::array<char, kPiece + 1> piece;
  std::string result;
  Conversion conversion;
  try {
    while (!text.empty()) {
      const std::string_view next = text.substr(0, kPiece);
      result.append(piece.data(), conversion.Convert(next, byteAfter, piece.data()));
      text.remove_prefix(next.size());
    }
  } catch (const std::bad_alloc &) {
    return result;
  }
  return result;
}

// Whether the text is single-byte characters stored high byte first: every unit is 00 and a byte that is not.
bool IsPlain(std::string_view text) {
  constexpr auto kFirstBytes =
      std::bit_cast<std::uint64_t>(std::array<std::uint8_t, 8>{0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF, 0});
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kTopBits = 0x8080808080808080;
  if (text.size() % 2 != 0) return false;
  for (; text.size() >= 8; text.remove_prefix(8)) {
    std::uint64_t units = 0;
    std::memcpy(&units, text.data(), sizeof units);
    // The usual test for a zero byte in a word, with the first bytes out of its way.
    const std::uint64_t seconds = units | kFirstBytes;
    const std::uint64_t zeroSeconds = (seconds - kOnes) & ~seconds & kTopBits;
    if ((units & kFirstBytes) != 0 || zeroSeconds != 0) return false;
  }
  for (; !text.empty(); text.remove_prefix(2)) {
    if (text[0] != 0 || text[1] == 0) return false;
  }
  return true;
}

void CopyPlain(std::string_view text, char *out) {
  for (std::size_t at = 1; at < text.size(); at += 2) *out++ = text[at];
}

}  // namespace

std::uint16_t UTSchangeOneChar(std::uint8_t c1, std::uint8_t c2) {
  static BytePair lastResult = 0;
  lastResult = CodeOf(c1, c2, lastResult);
  const auto bytes = std::bit_cast<std::array<std::uint8_t, 2>>(lastResult);
  return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
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
