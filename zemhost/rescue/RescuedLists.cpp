#include "zemhost/rescue/RescuedLists.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>
#include <utility>

#include "host/Error.h"
#include "player/FileBytes.h"
#include "zemhost/files/OutputFile.h"
#include "zemhost/library/ListedSongs.h"
#include "zemhost/library/Phrases.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

// Marks a list that was written here and may be written anew.
constexpr const char *kListMark = "written by zemhost rescue";

// The paths of a list, sorted.
std::vector<std::string_view> entriesOf(const ListFormat &format, std::string_view text) {
  std::vector<std::string_view> entries;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size() - 1);
    const std::string_view line = text.substr(0, end);
    if (format.isPath(line)) entries.push_back(line);
    text.remove_prefix(end + 1);
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

// Whether the mark stands in the second line, where a heading has it.
bool isMarked(std::string_view list) {
  const size_t first = list.find('\n');
  const size_t second = first == std::string_view::npos ? first : list.find('\n', first + 1);
  return second != std::string_view::npos &&
         list.substr(first, second - first).find(kListMark) != std::string_view::npos;
}

}  // namespace

RescuedLists::RescuedLists(const MusicLibrary &library, const ListFormat &format, RescuePlan &plan,
                           const DestinationFolder &destination, std::function<std::string(int32_t)> copyOf,
                           RescueResult &result)
    : library_(library),
      format_(format),
      plan_(plan),
      destination_(destination),
      copyOf_(std::move(copyOf)),
      result_(result) {}

void RescuedLists::write(const std::vector<int32_t> &playlists) {
  // All names first, so that a list that moves out of the way of an older one takes no other's name.
  std::vector<std::string> files;
  files.reserve(playlists.size());
  for (const int32_t playlist : playlists) {
    files.push_back(plan_.playlistFile(library_.playlistName(playlist), playlist, format_.extension,
                                       [&](const std::string &file) {
                                         const bool others = isOthers(file);
                                         if (others) ++result_.evaded;
                                         return !others;
                                       }));
  }
  for (size_t i = 0; i < playlists.size(); ++i) {
    const std::string name = library_.playlistName(playlists[i]);
    try {
      writeOne(playlists[i], name, files[i]);
      ++result_.playlists;
    } catch (const std::runtime_error &failure) {
      result_.problems.push_back(playlistLabel(playlists[i], name) + ": " + failure.what());
    }
  }
}

void RescuedLists::writeOne(int32_t playlist, const std::string &name, std::string file) {
  const std::string text = textOf(playlist, name);
  const std::string first = file;
  for (bool written = false; !written;) {
    const bool isNew = !destination_.statusOf(file);
    if (isNew || takesNothingAway(file, text)) {
      try {
        OutputFile out(destination_.path() / file);
        out.write(text);
        out.finish();
        written = true;
      } catch (const HostError &) {
        // Another run may have taken the name just now; it is the other's then.
        if (!isNew || !destination_.statusOf(file)) throw;
      }
    }
    if (!written) {
      file = plan_.playlistFile(name, playlist, format_.extension, [&](const std::string &other) {
        return !destination_.statusOf(other) || (!isOthers(other) && takesNothingAway(other, text));
      });
    }
  }
  if (file != first) {
    result_.remarks.push_back(playlistLabel(playlist, name) + ": " + first +
                              " has entries that the new list lacks, so it stays as it is; the new list is " +
                              file);
  }
}

std::string RescuedLists::textOf(int32_t playlist, const std::string &name) {
  std::string text = format_.heading(name, kListMark);
  uint64_t missing = 0;
  for (const int32_t index : listedSongs(library_, playlist)) {
    const std::string copy = index < 0 ? std::string() : copyOf_(index);
    if (copy.empty()) {
      ++missing;
      continue;
    }
    const Song song = library_.song(index);
    text += format_.entry({song.duration, song.artist, song.title, copy, song.album});
  }
  if (missing > 0) {
    result_.problems.push_back(playlistLabel(playlist, name) + " lacks " +
                               countText(missing, "song", "songs"));
  }
  return text + format_.end();
}

std::string RescuedLists::contentOf(const std::string &file) const {
  const auto size = static_cast<size_t>(destination_.statusOf(file).value().st_size);
  return player::readAt(destination_.open(file).number(), 0, size);
}

// Whether a file is there that is no list of a rescue.
bool RescuedLists::isOthers(const std::string &file) const {
  const auto status = destination_.statusOf(file);
  if (!status) return false;
  try {
    return !S_ISREG(status->st_mode) || !isMarked(contentOf(file));
  } catch (const std::runtime_error &) {
    return true;  // it cannot be read
  }
}

// Whether every entry of a list that is there stands in the new text too, as often.
bool RescuedLists::takesNothingAway(const std::string &file, const std::string &text) const {
  const std::string before = contentOf(file);
  const std::vector<std::string_view> old = entriesOf(format_, before);
  const std::vector<std::string_view> now = entriesOf(format_, text);
  return std::includes(now.begin(), now.end(), old.begin(), old.end());
}

}  // namespace zemhost
