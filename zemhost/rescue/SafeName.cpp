#include "zemhost/rescue/SafeName.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "platform/carbon/UnicodeForms.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

constexpr size_t kLongestName = 255;  // bytes

// Of music and video, in small letters.
constexpr std::array<std::string_view, 46> kExtensions = {
    ".3g2", ".3gp", ".aa",  ".aac", ".aax",  ".ac3",  ".aif",  ".aifc", ".aiff", ".alac", ".amr", ".ape",
    ".asf", ".au",  ".avi", ".caf", ".dts",  ".flac", ".flv",  ".m2ts", ".m4a",  ".m4b",  ".m4p", ".m4r",
    ".m4v", ".mid", ".mka", ".mkv", ".mov",  ".mp1",  ".mp2",  ".mp3",  ".mp4",  ".mpa",  ".mpc", ".mpeg",
    ".mpg", ".oga", ".ogg", ".ogv", ".opus", ".wav",  ".webm", ".wma",  ".wmv",  ".wv"};

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

// Takes away what would show a name in another order or on more than one line than it has, and the mark of
// byte order, which shows as nothing.
void removeMarks(std::string &text) {
  // NOLINTBEGIN(misc-misleading-bidirectional): they stand as escapes
  constexpr std::array<std::string_view, 15> kMarks = {"\u061C", "\u200E", "\u200F", "\u2028", "\u2029",
                                                       "\u202A", "\u202B", "\u202C", "\u202D", "\u202E",
                                                       "\u2066", "\u2067", "\u2068", "\u2069", "\uFEFF"};
  // NOLINTEND(misc-misleading-bidirectional)
  const auto mayBeginOne = [](char c) { return c == '\xD8' || c == '\xE2' || c == '\xEF'; };
  if (std::none_of(text.begin(), text.end(), mayBeginOne)) return;
  std::string kept;
  for (size_t at = 0; at < text.size();) {
    const auto *const mark = std::find_if(kMarks.begin(), kMarks.end(), [&](std::string_view one) {
      return mayBeginOne(text[at]) && text.compare(at, one.size(), one) == 0;
    });
    if (mark != kMarks.end()) {
      at += mark->size();
    } else {
      kept += text[at++];
    }
  }
  text = std::move(kept);
}

std::string withoutReserved(std::string_view text) {
  std::string plain(text);
  removeMarks(plain);
  std::string safe = composedText(plain);
  std::replace_if(safe.begin(), safe.end(), isReserved, '_');
  replaceHighControls(safe);
  return safe;
}

// Devices of another system, whatever comes after a dot, and the file that it runs by itself.
bool isSpecial(std::string_view name) {
  constexpr std::array<std::string_view, 6> kDevices = {"con", "prn", "aux", "nul", "conin$", "conout$"};
  if (foldedText(name) == "autorun.inf") return true;
  std::string stem = foldedText(name.substr(0, name.find('.')));
  stem.erase(stem.find_last_not_of(' ') + 1);
  if (std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end()) return true;
  if (!stem.starts_with("com") && !stem.starts_with("lpt")) return false;
  const std::string_view number = std::string_view(stem).substr(3);
  return (number.size() == 1 && number[0] >= '1' && number[0] <= '9') || number == "\u00B9" ||
         number == "\u00B2" || number == "\u00B3";
}

}  // namespace

std::string safeName(std::string_view text, std::string_view fallback, std::string_view suffix,
                     std::string_view extension) {
  const size_t room = kLongestName - suffix.size() - extension.size();
  std::string name = withoutReserved(text);
  name.erase(0, name.find_first_not_of(' '));
  trimEnd(name);
  if (name.empty()) name = fallback;
  if (name.front() == '.') name.front() = '_';
  name.resize(unicode::wholeCharacters(name, room));
  trimEnd(name);
  // After the cut, which can leave such a name of a longer one.
  if (isSpecial(std::string(name).append(suffix).append(extension))) {
    name.insert(std::min(name.find('.'), name.size()), 1, '_');
    name.resize(unicode::wholeCharacters(name, room));
    trimEnd(name);
  }
  return name.append(suffix).append(extension);
}

std::string_view safeExtension(std::string_view extension) {
  const std::string folded = foldedText(extension);
  return std::find(kExtensions.begin(), kExtensions.end(), folded) == kExtensions.end() ? ".bin" : extension;
}

}  // namespace zemhost
