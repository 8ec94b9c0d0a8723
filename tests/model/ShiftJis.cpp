#include "tests/model/ShiftJis.h"

#include <cstddef>
#include <fstream>
#include <set>
#include <stdexcept>
#include <vector>

namespace model {
namespace {

// The next code point of UTF-8 text, which the rows are written in.
uint32_t NextCodePoint(const std::string &text, size_t &at) {
  const auto lead = static_cast<uint8_t>(text.at(at++));
  if (lead < 0x80) return lead;
  const int more = lead >= 0xE0 ? 2 : 1;
  uint32_t codePoint = lead & (more == 2 ? 0x0FU : 0x1FU);
  for (int i = 0; i < more; ++i) codePoint = codePoint << 6U | (static_cast<uint8_t>(text.at(at++)) & 0x3FU);
  return codePoint;
}

// Two rows share a lead byte; the odd one has the lower trail bytes, in which 0x7F is left out.
uint32_t CodeOfCell(uint32_t row, uint32_t cell) {
  const uint32_t lead = (row - 1) / 2 + (row < 63 ? 0x81 : 0xC1);
  if (row % 2 == 0) return lead << 8U | (cell + 0x9E);
  return lead << 8U | (cell + (cell < 64 ? 0x3F : 0x40));
}

std::map<uint32_t, uint32_t> ReadCodes() {
  constexpr uint32_t kFullWidthReverseSolidus = 0xFF3C;  // its cell is U+005C here
  constexpr uint32_t kFullWidthYen = 0xFFE5;             // past the end of the last page's table
  std::map<uint32_t, uint32_t> codes;
  std::ifstream rows(ZEM_MODEL_ROWS);
  std::string line;
  uint32_t row = 0;
  while (std::getline(rows, line)) {
    ++row;
    uint32_t cell = 0;
    for (size_t at = 0; at < line.size();) {
      ++cell;
      const uint32_t codePoint = NextCodePoint(line, at);
      if (codePoint <= 0xFF || codePoint == kFullWidthReverseSolidus || codePoint == kFullWidthYen) continue;
      codes[codePoint] = CodeOfCell(row, cell);
    }
  }
  if (row != 84) throw std::runtime_error("cannot read " ZEM_MODEL_ROWS);
  for (uint32_t katakana = 0xA1; katakana <= 0xDF; ++katakana) codes[0xFF61 + katakana - 0xA1] = katakana;
  codes[0x203E] = 0x7E;
  return codes;
}

std::set<uint32_t> PagesWithCodes() {
  std::set<uint32_t> pages;
  for (const auto &[codePoint, code] : ShiftJisCodes()) pages.insert(codePoint >> 8U);
  return pages;
}

class OneUnit {
 public:
  uint32_t Change(uint8_t high, uint8_t low) {
    static const std::set<uint32_t> pages = PagesWithCodes();
    if (high == 0 && low <= 0x7C) {
      last_ = low;
    } else if (pages.count(high) != 0) {
      const auto found = ShiftJisCodes().find(uint32_t{high} << 8U | low);
      last_ = found == ShiftJisCodes().end() ? 0 : found->second;
    }
    return last_;
  }

  void Forget() { last_ = 0; }

 private:
  uint32_t last_ = 0;
};

}  // namespace

const std::map<uint32_t, uint32_t> &ShiftJisCodes() {
  static const std::map<uint32_t, uint32_t> codes = ReadCodes();
  return codes;
}

std::string UnicodeToShiftJis(const std::string &text) {
  std::vector<uint8_t> buffer(10240);
  size_t written = 0;
  bool lowFirst = false;
  OneUnit unit;
  for (size_t i = 0; i < text.size(); i += 2) {
    if (written + 10 >= buffer.size()) {
      buffer.resize(buffer.size() + 1024);
      unit.Forget();
    }
    const auto first = static_cast<uint8_t>(text[i]);
    const auto second = i + 1 < text.size() ? static_cast<uint8_t>(text[i + 1]) : uint8_t{0};
    if (first == 0xFF && second == 0xFE) {
      lowFirst = false;
    } else if (first == 0xFE && second == 0xFF) {
      lowFirst = true;
    } else {
      const uint32_t code = lowFirst ? unit.Change(second, first) : unit.Change(first, second);
      if (code > 0xFF) {
        buffer[written++] = static_cast<uint8_t>(code >> 8U);
        buffer[written++] = static_cast<uint8_t>(code & 0xFFU);
      } else if (code != 0) {
        buffer[written++] = static_cast<uint8_t>(code);
      }
    }
  }
  return {buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(written)};
}

std::string ConvertToShiftJis(const std::string &text, uint32_t encoding) {
  if (text.empty()) return "";
  if (encoding == 3) return text;
  if (encoding == 1) return UnicodeToShiftJis(text);
  std::string collected;
  for (size_t i = 0; i < text.size(); i += 2) {
    const char second = i + 1 < text.size() ? text[i + 1] : '\0';
    if (text[i] != '\0' || second == '\0') return UnicodeToShiftJis(text);
    collected += second;
  }
  return collected;
}

}  // namespace model
