#include "zemhost/library/PlaylistChoice.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "host/Error.h"
#include "host/runtime/Names.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

std::optional<int32_t> numberIn(std::string_view text, size_t count) {
  int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (number < 0 || static_cast<size_t>(number) >= count) return std::nullopt;
  return number;
}

// Where the test holds, in order.
template <typename Test>
std::vector<int32_t> matches(const std::vector<std::string> &names, const Test &test) {
  std::vector<int32_t> found;
  for (size_t i = 0; i < names.size(); ++i) {
    if (test(names[i])) found.push_back(static_cast<int32_t>(i));
  }
  return found;
}

}  // namespace

int32_t choosePlaylist(const std::vector<std::string> &names, std::string_view wanted) {
  if (const auto number = numberIn(wanted, names.size())) return *number;
  std::vector<int32_t> found = matches(names, [&](const std::string &name) { return name == wanted; });
  if (found.empty() && !wanted.empty()) {
    const std::string beginning = foldedText(wanted);
    found = matches(names, [&](const std::string &name) { return foldedText(name) == beginning; });
    if (found.empty()) {
      found =
          matches(names, [&](const std::string &name) { return foldedText(name).starts_with(beginning); });
    }
  }
  if (found.empty()) {
    throw HostError("no playlist is named " + inQuotes(wanted) + " or has that number; there are " +
                    std::to_string(names.size()) + " of them");
  }
  if (found.size() == 1) return found.front();
  constexpr size_t kShown = 20;
  std::string list;
  for (size_t i = 0; i < std::min(found.size(), kShown); ++i) {
    if (!list.empty()) list += ", ";
    list += std::to_string(found[i]) + " " + inQuotes(names[static_cast<size_t>(found[i])]);
  }
  if (found.size() > kShown) list += ", and " + std::to_string(found.size() - kShown) + " more";
  throw HostError(inQuotes(wanted) + " may be any of the playlists " + list);
}

int32_t choosePlaylist(const MusicLibrary &library, std::string_view wanted) {
  std::vector<std::string> names;
  const int32_t count = library.playlistCount();
  names.reserve(static_cast<size_t>(count));
  for (int32_t number = 0; number < count; ++number) names.push_back(library.playlistName(number));
  try {
    return choosePlaylist(names, wanted);
  } catch (const HostError &error) {
    throw HostError(library.location().name + ": " + error.what());
  }
}

}  // namespace zemhost
