#include "zemhost/rescue/SafeName.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

constexpr size_t kLongestName = 255;      // bytes
constexpr size_t kLongestExtension = 16;  // longer ones are part of the name

bool isReserved(char c) {
  constexpr std::string_view kReserved = "\\/:*?\"<>|\x7F";
  return static_cast<unsigned char>(c) < ' ' || kReserved.find(c) != std::string_view::npos;
}

// C1 control characters, two bytes in UTF-8.
void replaceHighControls(std::string &text) {
  for (size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == '\xC2' && static_cast<unsigned char>(text[i + 1]) < 0xA0) text.replace(i, 2, 1, '_');
  }
}

void trimEnd(std::string &text) {
  text.erase(text.find_last_not_of(". ") + 1);  // npos + 1 is 0
}

std::string withoutReserved(std::string_view text) {
  std::string safe = composedText(text);
  std::replace_if(safe.begin(), safe.end(), isReserved, '_');
  replaceHighControls(safe);
  return safe;
}

// Of the start of a text that fits in `size` bytes, whole characters.
std::string cutToBytes(std::string text, size_t size) {
  if (text.size() <= size) return text;
  while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) --size;
  text.resize(size);
  return text;
}

// Devices of another system, whatever comes after a dot.
bool isDevice(std::string_view name) {
  constexpr std::array<std::string_view, 4> kDevices = {"con", "prn", "aux", "nul"};
  const std::string stem = foldedText(name.substr(0, name.find('.')));
  if (std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end()) return true;
  if (!stem.starts_with("com") && !stem.starts_with("lpt")) return false;
  const std::string_view number = std::string_view(stem).substr(3);
  return (number.size() == 1 && number[0] >= '1' && number[0] <= '9') || number == "\u00B9" ||
         number == "\u00B2" || number == "\u00B3";
}

}  // namespace

std::string safeName(std::string_view text, std::string_view fallback, std::string_view suffix,
                     std::string_view extension) {
  std::string name = withoutReserved(text);
  name.erase(0, name.find_first_not_of(' '));
  std::string end = withoutReserved(extension);
  trimEnd(end);
  if (end.size() > kLongestExtension) {
    name += end;
    end.clear();
  }
  trimEnd(name);
  if (name.empty()) name = fallback;
  if (name.front() == '.') name.front() = '_';
  if (isDevice(name)) name.insert(std::min(name.find('.'), name.size()), 1, '_');
  name = cutToBytes(std::move(name), kLongestName - suffix.size() - end.size());
  trimEnd(name);
  return name.append(suffix).append(end);
}

}  // namespace zemhost
