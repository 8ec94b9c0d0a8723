#include "zemhost/output/M3u.h"

#include <string_view>

#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

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

std::string m3uEntry(const ListedSong &song) {
  const std::string title = song.title.empty() ? lastPart(song.path) : song.title;
  const std::string seconds =
      song.duration == 0 ? "-1" : std::to_string((static_cast<uint64_t>(song.duration) + 500) / 1000);
  std::string path = oneLine(song.path);
  if (isMisread(path)) path = "./" + path;
  return "#EXTINF:" + seconds + "," + (song.artist.empty() ? std::string() : oneLine(song.artist) + " - ") +
         oneLine(title) + "\n" + path + "\n";
}

}  // namespace zemhost
