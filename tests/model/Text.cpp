#include "tests/model/Text.h"

#include <cstddef>

#include "tests/model/ShiftJis.h"

namespace model {
namespace {

constexpr uint32_t kUnicode = 0x0100;
constexpr uint32_t kAscii = 0x0600;
constexpr uint32_t kShiftJis = 0x0A01;
constexpr uint32_t kUtf8 = 0x08000100;

// A text of unknown form: two-byte characters below U+0100, printable ASCII, or else UTF-16.
HostText CutOffZeroInString(const std::string &text) {
  const std::string terminated = text + '\0';
  std::string seconds;
  bool everyUnitPassed = true;
  for (size_t i = 0; i < text.size() && everyUnitPassed; i += 2) {
    everyUnitPassed = terminated[i] == '\0' && terminated[i + 1] != '\0';
    if (everyUnitPassed) seconds += terminated[i + 1];
  }
  if (everyUnitPassed) return {seconds, kAscii};
  for (const char byte : text)
    if (byte < 0x20 || byte > 0x7E) return {text, kUnicode};
  return {text, kAscii};
}

}  // namespace

std::optional<HostText> HandOut(const Cell &cell, int32_t object, bool useSJIS, uint32_t resultEncode,
                                Host &host) {
  if (cell.text.empty()) return std::nullopt;
  HostText result;
  uint32_t carried = 0;
  if (object == 2) {
    result = {cell.text, kAscii};
    carried = kAscii;
  } else if (cell.enc == 3) {
    result = CutOffZeroInString(cell.text);
    carried = result.encoding;
  } else if (useSJIS) {
    result = {cell.enc == kShiftJis ? cell.text : ConvertToShiftJis(cell.text, cell.enc), kShiftJis};
    carried = kShiftJis;
  } else if (cell.enc == static_cast<uint32_t>(-100)) {
    result = {cell.text, kAscii};
  } else if (cell.enc == kShiftJis) {
    result = {cell.text, kShiftJis};
    carried = kShiftJis;
  } else if (cell.enc == kUtf8) {
    result = {cell.text, kUtf8};
    carried = kUtf8;
  } else {
    result = {cell.text, kUnicode};
    carried = kUnicode;
  }
  if (!host.Build(result.bytes)) return std::nullopt;
  if (carried == resultEncode) return result;
  return host.Convert(result, resultEncode);
}

}  // namespace model
