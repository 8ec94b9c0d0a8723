// A pattern of file names and a song's texts: the parts of the input are the pattern, five texts for its
// fields, what tells copies apart, and the extension. A pattern is refused in one line, or every
// name it makes is one that every usual file system takes, and that leads nowhere.

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "fuzz/Texts.h"
#include "host/Error.h"
#include "zemhost/rescue/NamePattern.h"
#include "zemhost/rescue/SafeName.h"

namespace {

using fuzz::Require;
using namespace zemhost;

constexpr size_t kLongestName = 255;

// The names that stand for devices elsewhere, whatever follows their first dot or blank.
bool IsDevice(std::string_view name) {
  std::string stem(name.substr(0, name.find('.')));
  stem.erase(stem.find_last_not_of(' ') + 1);
  std::transform(stem.begin(), stem.end(), stem.begin(),
                 [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
  for (const std::string_view device : {"CON", "PRN", "AUX", "NUL"}) {
    if (stem == device) return true;
  }
  return stem.size() == 4 && (stem.starts_with("COM") || stem.starts_with("LPT")) && stem[3] >= '1' &&
         stem[3] <= '9';
}

void IsSafe(const std::string &name) {
  Require(!name.empty() && name.size() <= kLongestName, "a name of a length that no file has: " + name);
  Require(name.front() != '.' && name.front() != ' ', "hidden, or begins with a blank: " + name);
  Require(name.back() != '.' && name.back() != ' ', "ends with a dot or a blank: " + name);
  for (const char32_t c : fuzz::CodePoints(name)) {
    Require(c >= ' ' && (c < 0x7F || c >= 0xA0), "a control character in " + name);
    Require(std::u32string_view(U"\\/:*?\"<>|").find(c) == std::u32string_view::npos,
            "a reserved character in " + name);
  }
  Require(!IsDevice(name), "the name of a device: " + name);
}

// A text of the input, a number, a boolean or nothing, as a column may have, whatever its name.
Json ValueOf(const std::string &field, const std::vector<std::string> &parts) {
  const std::string &text = parts[1 + field.size() % 5];
  if (field.front() == 't' || field.front() == 'a') return text.empty() ? Json() : Json(text);
  if (text.size() % 3 == 0) return text.size();
  return text.size() % 3 == 1 ? Json(field.size() % 2 == 0) : Json();
}

}  // namespace

FUZZ_TARGET(names) {
  std::vector<std::string> parts = fuzz::PartsOf({reinterpret_cast<const char *>(data), size});
  parts.resize(8);
  const std::string suffix = parts[6].empty() ? "" : " (" + std::to_string(parts[6].size()) + ")";
  for (const std::string &text : parts) IsSafe(safeName(text, "Unknown", suffix, ".mp3"));
  try {
    const NamePattern pattern(parts[0]);
    Row values;
    for (const std::string &field : pattern.fields()) values.push_back(ValueOf(field, parts));
    const NamePattern::Names names = pattern.names(values);
    for (const std::string &name : names.folders) IsSafe(name);
    IsSafe(safeName(names.file, kUnknownName, suffix, safeExtension(parts[7])));
  } catch (const HostError &error) {
    Require(std::string_view(error.what()).starts_with("the pattern "), "a message about something else");
  }
}
