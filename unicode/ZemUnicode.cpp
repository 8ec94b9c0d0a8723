#include "unicode/ZemUnicode.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "unicode/ShiftJISTables.h"

namespace {

constexpr std::int32_t kUtf16 = 1;
constexpr std::int32_t kAsItIs = 3;

// The output used to collect in a buffer of 10,240 bytes that grew by 1,024 whenever it had 10 bytes or fewer
// left before a unit, and each growth lost the result to repeat. Texts still depend on when that was.
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

constexpr BytePair kLeadByte = Pair(0xFF, 0);

// A code's number from its bytes, and back.
constexpr std::uint16_t Number(BytePair code) {
  return std::endian::native == std::endian::little ? static_cast<std::uint16_t>(code << 8 | code >> 8)
                                                    : code;
}

// The codes of all units, 0 for those without one: a look-up is one load and no test. Going through the page
// tables took a title about three times as long.
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

BytePair lastResult = 0;  // of the conversion that goes on

}  // namespace

std::uint16_t UTSchangeOneChar(std::uint8_t c1, std::uint8_t c2) {
  BytePair code = kCodes[Pair(c1, c2)];
  if (code == 0) [[unlikely]] {
    const bool isNul = c1 == 0 && c2 == 0;
    if (!isNul && !kHasTable[c1]) code = lastResult;
  }
  lastResult = code;
  return Number(code);
}

namespace {

// One unit, high byte first or low byte first.
BytePair Changed(const char *unit, bool lowByteFirst) {
  const auto b0 = static_cast<std::uint8_t>(unit[0]);
  const auto b1 = static_cast<std::uint8_t>(unit[1]);
  return Number(lowByteFirst ? UTSchangeOneChar(b1, b0) : UTSchangeOneChar(b0, b1));
}

// The code of a unit stored high byte first, 0 for one without a code.
BytePair CodeOf(const char *unit) {
  return kCodes[Pair(static_cast<std::uint8_t>(unit[0]), static_cast<std::uint8_t>(unit[1]))];
}

void Store(BytePair pair, char *to) { std::memcpy(to, &pair, sizeof pair); }

// Writes four codes of two bytes; returns their end.
char *StoreFour(BytePair c0, BytePair c1, BytePair c2, BytePair c3, char *out) {
  Store(c0, out);
  Store(c1, out + 2);
  Store(c2, out + 4);
  Store(c3, out + 6);
  return out + 8;
}

// Writes a code that is not 0, and after a single-byte one a byte that does not count; returns the end of
// what counts. Without a branch, which would be mispredicted at every change of scripts in a text.
char *Put(BytePair code, char *out) {
  const unsigned leadMissing = (code & kLeadByte) == 0 ? 1 : 0;
  const unsigned bits = 8 * leadMissing;
  constexpr bool kLittleEndian = std::endian::native == std::endian::little;
  Store(static_cast<BytePair>(kLittleEndian ? code >> bits : code << bits), out);
  return out + (2 - leadMissing);
}

// One conversion, from whole units into a room that holds as many bytes.
class Conversion {
 public:
  Conversion(const char *in, std::size_t units, char *out)
      : in_(in), end_(in + 2 * units), out_(out), full_(out + kFirstRoom) {}

  // Returns the end of what was written.
  char *Run() {
    UTSchangeOneChar(0, 0);
    const char *const stop = EndOfFours();
    ConvertDoubleBytes(stop);
    return in_ == end_ ? out_ : Rest(in_, end_, out_, full_, stop);
  }

 private:
  Conversion(const char *in, const char *end, char *out, const char *full)
      : in_(in), end_(end), out_(out), full_(full) {}

  // What begins with another character than those of two bytes. Apart: it needs all registers there are, and
  // a title without such characters does not wait until they are put aside.
  [[gnu::noinline]] static char *Rest(const char *in, const char *end, char *out, const char *full,
                                      const char *stop) {
    Conversion rest(in, end, out, full);
    for (;; stop = rest.EndOfFours()) {
      if (!rest.lowByteFirst_) rest.ConvertFours(stop);
      if (rest.in_ == rest.end_) return rest.out_;
      rest.ConvertUnit();
    }
  }

  // Where the units end that can be taken four at a time. A unit gives two bytes at the most, so that as much
  // text as there is room reaches no growth.
  const char *EndOfFours() const {
    if (out_ >= full_) return in_;
    return in_ + static_cast<std::size_t>(std::min(end_ - in_, full_ - out_)) / 8 * 8;
  }

  // Takes four units at a time while all of them have codes of two bytes.
  void ConvertDoubleBytes(const char *stop) {
    // Every lead byte has its top bit set, so that something is left when none is missing.
    while (in_ != stop &&
           (CodeOf(in_) & CodeOf(in_ + 2) & CodeOf(in_ + 4) & CodeOf(in_ + 6) & kLeadByte) != 0) {
      const BytePair c0 = Changed(in_, false);
      const BytePair c1 = Changed(in_ + 2, false);
      const BytePair c2 = Changed(in_ + 4, false);
      const BytePair c3 = Changed(in_ + 6, false);
      out_ = StoreFour(c0, c1, c2, c3, out_);
      in_ += 8;
    }
  }

  // Takes four units at a time while all of them have codes. The compiler sees that such units repeat
  // nothing, and makes four look-ups of the four calls.
  void ConvertFours(const char *stop) {
    const char *in = in_;
    char *out = out_;
    for (; in != stop; in += 8) {
      if (CodeOf(in) == 0 || CodeOf(in + 2) == 0 || CodeOf(in + 4) == 0 || CodeOf(in + 6) == 0) break;
      const BytePair c0 = Changed(in, false);
      const BytePair c1 = Changed(in + 2, false);
      const BytePair c2 = Changed(in + 4, false);
      const BytePair c3 = Changed(in + 6, false);
      // Every lead byte has its top bit set, so that something is left when none is missing.
      if ((c0 & c1 & c2 & c3 & kLeadByte) != 0) {
        out = StoreFour(c0, c1, c2, c3, out);
      } else {
        out = Put(c3, Put(c2, Put(c1, Put(c0, out))));
      }
    }
    in_ = in;
    out_ = out;
  }

  void ConvertUnit() {
    if (out_ >= full_) {
      full_ += kGrowth;
      UTSchangeOneChar(0, 0);
    }
    const std::string_view unit(in_, 2);
    if (unit == "\xFF\xFE" || unit == "\xFE\xFF") {
      lowByteFirst_ = unit == "\xFE\xFF";
    } else if (const BytePair code = Changed(in_, lowByteFirst_); code != 0) {
      out_ = Put(code, out_);
    }
    in_ += 2;
  }

  const char *in_;
  const char *end_;
  char *out_;
  const char *full_;  // where the room has to grow
  bool lowByteFirst_ = false;
};

// Whether the text is single-byte characters stored high byte first: every unit is 00 and a byte that is not.
bool IsPlain(std::string_view text) {
  constexpr std::uint64_t kOnes = 0x0001000100010001;
  constexpr std::uint64_t kHighBytes = 0xFF00FF00FF00FF00;
  if (text.size() % 2 != 0 || text.empty() || text[0] != 0) return false;
  for (; text.size() >= 8; text.remove_prefix(8)) {
    std::uint64_t units = 0;
    std::memcpy(&units, text.data(), sizeof units);
    // Second bytes become the low ones of four numbers, of which only 0 has a high byte once 1 is taken away.
    if constexpr (std::endian::native == std::endian::little) units = std::rotl(units, 8);
    if (((units | (units - kOnes)) & kHighBytes) != 0) return false;
  }
  for (; !text.empty(); text.remove_prefix(2)) {
    if (text[0] != 0 || text[1] == 0) return false;
  }
  return true;
}

// Apart from the usual conversion, which is quicker without them in one function.
[[gnu::noinline]] SJISText AsItIs(std::string_view a) {
  return {a.size(), [a](char *out) { return a.copy(out, a.size()); }};
}

[[gnu::noinline]] SJISText Plain(std::string_view a) {
  return {a.size() / 2, [a](char *out) {
            for (std::size_t at = 1; at < a.size(); at += 2) *out++ = a[at];
            return a.size() / 2;
          }};
}

// The byte after the text, which is not the text's, has to be zero. No unit gives more bytes than it has, so
// that the copy is converted in its place.
[[gnu::noinline]] SJISText Odd(std::string_view a) {
  return {a.size() + 1, [a](char *out) {
            out[a.copy(out, a.size())] = '\0';
            return static_cast<std::size_t>(Conversion(out, (a.size() + 1) / 2, out).Run() - out);
          }};
}

}  // namespace

SJISText lUnicode2SJIS(const char *in_con, std::int32_t strSize) {
  if (strSize <= 0) return {};
  const std::size_t units = (static_cast<std::size_t>(strSize) + 1) / 2;
  return {2 * units,
          [=](char *out) { return static_cast<std::size_t>(Conversion(in_con, units, out).Run() - out); }};
}

SJISText ConvSJIS(std::string_view a, std::int32_t encode) {
  if (encode == kAsItIs) return AsItIs(a);
  if (encode != kUtf16 && IsPlain(a)) return Plain(a);
  if (a.size() % 2 != 0) return Odd(a);
  return lUnicode2SJIS(a.data(), static_cast<std::int32_t>(a.size()));
}
