#include "zemhost/report/Privacy.h"

#include <filesystem>
#include <system_error>

#include "host/runtime/Names.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kAddressLeftOut = "(address left out)";
constexpr std::string_view kLeftOut = "(left out)";

// Whether a byte can be part of a mail address; those of letters beyond ASCII can.
bool isOfAddress(char c) {
  constexpr std::string_view kAround = "()<>[]{},;:\"'`|\\/=!?*";
  return static_cast<unsigned char>(c) > ' ' && c != 0x7F && kAround.find(c) == std::string_view::npos;
}

// Whether what stands behind an '@' begins with a domain of several parts.
bool isDomain(std::string_view text) {
  const size_t dot = text.find('.');
  return dot != std::string_view::npos && dot != 0 && dot + 1 < text.size() && text[dot + 1] != '.';
}

}  // namespace

std::string withoutMailAddresses(std::string_view text) {
  if (text.find('@') == std::string_view::npos) return std::string(text);
  std::string kept;
  while (!text.empty()) {
    size_t end = 0;
    while (end < text.size() && isOfAddress(text[end])) ++end;
    const std::string_view word = text.substr(0, end);
    const size_t at = word.find('@');
    const bool isAddress = at != std::string_view::npos && at != 0 && isDomain(word.substr(at + 1));
    kept += isAddress ? kAddressLeftOut : word;
    if (end < text.size()) kept += text[end++];
    text.remove_prefix(end);
  }
  return kept;
}

Privacy::Privacy(const player::DatabaseLocation &location, const player::Device &device,
                 const std::string &name)
    : isAsked_(true) {
  constexpr size_t kShortest = 4;                      // of a number that says which player it is
  const bool hasMark = device.guid.starts_with("0x");  // without which it may stand elsewhere
  for (const std::string &number : {device.serialNumber, device.guid.substr(hasMark ? 2 : 0)}) {
    if (number.size() >= kShortest) numbers_.emplace_back(number, kLeftOut);
  }
  // Files are shown from the player's root; without a player by their names.
  const auto addFolder = [this](const std::string &folder, const char *end) {
    if (folder.size() > 1) places_.emplace_back(folder + end, "");
  };
  const bool isOnPlayer = !location.volumeRoot.empty();
  const fs::path folder = isOnPlayer ? location.volumeRoot : location.file.parent_path();
  const char *const end = isOnPlayer ? "" : "/";
  std::error_code error;
  addFolder(fs::weakly_canonical(folder, error).string(), end);
  addFolder(folder.string(), end);
  addFolder(fs::path(location.name).parent_path().string(), "/");
  if (!name.empty()) places_.emplace_back(inQuotes(name), inQuotes(kLeftOut));
}

std::string Privacy::replaced(std::string_view text, const Replacements &replacements) {
  std::string result(text);
  for (const auto &[what, by] : replacements) {
    if (result.find(what) == std::string::npos) continue;
    const std::string before = std::move(result);
    result.clear();
    size_t at = 0;
    for (size_t found = 0; (found = before.find(what, at)) != std::string::npos; at = found + what.size())
      result.append(before, at, found - at).append(by);
    result.append(before, at);
  }
  return result;
}

std::string Privacy::text(const std::string &text) const {
  return isAsked_ ? withoutMailAddresses(replaced(text, numbers_)) : text;
}

std::string Privacy::line(const std::string &line) const {
  return isAsked_ ? text(replaced(line, places_)) : line;
}

}  // namespace zemhost
