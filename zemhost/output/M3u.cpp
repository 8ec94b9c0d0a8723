#include "zemhost/output/M3u.h"

#include <algorithm>
#include <string_view>

namespace zemhost {

namespace {

std::string oneLine(std::string_view text) {
  std::string line(text);
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; };
  std::replace_if(line.begin(), line.end(), isControl, ' ');
  // Unicode's own line ends, which some readers of lists honour: U+0085, U+2028, U+2029.
  for (const std::string_view end : {"\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
    for (size_t at = 0; (at = line.find(end, at)) != std::string::npos;) line.replace(at, end.size(), 1, ' ');
  }
  return line;
}

// Whether a player of lists would not take the path for a file's: it reads as a comment, loses its first
// blank, or begins as an address ("http:"), a drive ("C:") or a network share does.
bool isMisread(std::string_view path) {
  constexpr std::string_view kSlashes = "/\\";
  constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  if (path.empty()) return false;
  if (path[0] == '#' || path[0] == ' ') return true;
  if (path[0] == '\\' ||
      (path[0] == '/' && path.size() > 1 && kSlashes.find(path[1]) != std::string_view::npos))
    return true;
  const size_t end = path.find_first_not_of(std::string(kLetters) + "0123456789+-.");
  return end != std::string_view::npos && path[end] == ':' &&
         kLetters.find(path[0]) != std::string_view::npos;
}

std::string lastPart(std::string_view path) { return std::string(path.substr(path.find_last_of("/:") + 1)); }

}  // namespace

std::string m3uHeading() { return "#EXTM3U\n"; }

std::string m3uEntry(const M3uSong &song) {
  const std::string title = song.title.empty() ? lastPart(song.path) : song.title;
  const std::string seconds =
      song.duration == 0 ? "-1" : std::to_string((static_cast<uint64_t>(song.duration) + 500) / 1000);
  std::string path = oneLine(song.path);
  if (isMisread(path)) path = "./" + path;
  return "#EXTINF:" + seconds + "," + (song.artist.empty() ? std::string() : oneLine(song.artist) + " - ") +
         oneLine(title) + "\n" + path + "\n";
}

}  // namespace zemhost
