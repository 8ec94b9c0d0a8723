// The Shift_JIS conversion, held against the plain one: the first byte chooses the encoding code and how
// often the text after it is repeated.

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "tests/model/ShiftJis.h"
#include "unicode/ZemUnicode.h"

namespace {

using fuzz::Require;

constexpr size_t kLongest = 4096;  // of a text that is repeated

constexpr std::array<uint32_t, 8> kEncodings = {1, 3, 0, 2, 0x01000000, 0x03000000, 0xffffffff, 0x80000000};

void ConvertsAsTheModel(std::string_view text, uint32_t encoding) {
  const auto code = static_cast<int32_t>(encoding);
  const std::string expected = model::ConvertToShiftJis(std::string(text), encoding);
  // A block of just the text's size.
  const auto block = std::make_unique<char[]>(text.size());
  std::copy(text.begin(), text.end(), block.get());
  Require(ConvSJIS({block.get(), text.size()}, code).View() == expected, "ConvSJIS differs from the model");
}

// An odd text is paired with the byte after it.
void ConvertsPlainUtf16(std::string_view text) {
  const auto block = std::make_unique<char[]>(text.size() + 1);
  std::copy(text.begin(), text.end(), block.get());
  block[text.size()] = 'A';
  const auto size = static_cast<int32_t>(text.size());
  const std::string all(block.get(), text.size() + text.size() % 2);
  Require(lUnicode2SJIS(block.get(), size).View() == model::UnicodeToShiftJis(all), "lUnicode2SJIS differs");
  Require(lUnicode2SJIS(block.get(), -size).View().empty(), "a text of negative length gives something");
}

// One unit after the other, as long as no byte-order mark stands among them and the text is too short for the
// conversion's room to grow.
void ConvertsByUnits(std::string_view text) {
  constexpr size_t kShort = 10'000;
  if (text.size() > kShort) return;
  std::string bytes;
  UTSchangeOneChar(0, 0);
  for (size_t i = 0; i + 1 < text.size(); i += 2) {
    const auto high = static_cast<uint8_t>(text[i]);
    const auto low = static_cast<uint8_t>(text[i + 1]);
    if (high >= 0xfe && low >= 0xfe) return;
    const uint16_t code = UTSchangeOneChar(high, low);
    if (code >= 0x100) bytes += static_cast<char>(code >> 8);
    if (code != 0) bytes += static_cast<char>(code & 0xff);
  }
  Require(bytes == model::UnicodeToShiftJis(std::string(text.substr(0, text.size() / 2 * 2))),
          "UTSchangeOneChar differs from the whole text");
}

}  // namespace

FUZZ_TARGET(shift_jis) {
  if (size == 0) return;
  const std::string_view piece(reinterpret_cast<const char *>(data) + 1, size - 1);
  std::string text(piece);
  if (piece.size() < kLongest) {
    for (int times = data[0] / 16; times > 0; --times) text += piece;
  }
  ConvertsAsTheModel(text, kEncodings[data[0] % kEncodings.size()]);
  ConvertsPlainUtf16(text);
  ConvertsByUnits(text);
}
