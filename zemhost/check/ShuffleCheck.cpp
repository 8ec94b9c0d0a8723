#include "zemhost/check/ShuffleCheck.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "host/runtime/Names.h"
#include "player/FileBytes.h"
#include "player/ShuffleDatabase.h"
#include "zemhost/library/Phrases.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

constexpr const char *kShuffleList = ":iPod_Control:iTunes:iTunesSD";
constexpr const char *kShuffleCounts = ":iPod_Control:iTunes:iTunesStats";

class ShuffleCheck {
 public:
  ShuffleCheck(const MusicLibrary &library, player::Findings &findings)
      : library_(library), findings_(findings) {}

  std::optional<ShuffleAccount> run() {
    const SongFile file = library_.file(kShuffleList);
    if (file.error == ENOENT || file.error == ENOTDIR) return std::nullopt;
    const auto bytes = contentOf(file);
    if (!bytes) return std::nullopt;
    const auto list = player::readShuffleDatabase(*bytes);
    if (!list) {
      add(file.path.string() + ": it is no list of a shuffle's songs");
      return std::nullopt;
    }
    if (list->isCutShort) add(file.path.string() + ": it is cut short: " + list->summary());
    compareSongs(file.path.string(), *list);
    account_.songs = list->songs.size();
    readCounts();
    return account_;
  }

 private:
  void add(std::string text) { findings_.add(player::FindingKind::UnusedFile, std::move(text)); }

  // What cannot be read becomes a finding.
  std::optional<std::string> contentOf(const SongFile &file) {
    const std::string &name = file.place;
    if (file.isOutside()) {
      add(name + " lies outside the player");
      return std::nullopt;
    }
    const carbon::Descriptor open = file.isThere() ? library_.open(file) : carbon::Descriptor();
    try {
      if (open)
        return player::readAt(open.number(), 0, std::min<uint64_t>(file.size, player::kMostShuffleBytes) + 1);
      add(name + ": " + std::generic_category().message(file.isThere() ? errno : file.error));
    } catch (const std::system_error &error) {
      add(name + ": " + error.code().message());
    }
    return std::nullopt;
  }

  // Paths in a form in which separators and case do not count.
  static std::string plain(std::string path) {
    std::replace(path.begin(), path.end(), '/', ':');
    return foldedText(path);
  }

  void compareSongs(const std::string &name, const player::ShuffleDatabase &list) {
    std::map<std::string, const player::ShuffleSong *> listed;
    for (const player::ShuffleSong &song : list.songs) listed.emplace(plain(song.path), &song);
    std::map<std::string, bool> isNamed;
    const uint64_t before = findings_.total();
    const int32_t songs = library_.songCount();
    if (list.songs.size() != static_cast<size_t>(songs)) {
      add(name + ": " + list.summary() + ", and the database has " +
          countText(static_cast<uint64_t>(songs), "song", "songs"));
    }
    for (int32_t index = 0; index < songs; ++index) {
      const Song song = library_.song(index);
      const std::string path = plain(song.path);
      isNamed[path] = true;
      const auto found = listed.find(path);
      if (found == listed.end()) {
        add(name + ": it does not list " + songLabel(index, song));
      } else if (found->second->persistentId && song.facts.persistentId &&
                 *found->second->persistentId != *song.facts.persistentId) {
        add(name + ": it gives " + songLabel(index, song) + " another persistent ID than the database");
      }
    }
    for (const auto &[path, song] : listed) {
      if (!isNamed.contains(path))
        add(name + ": no song of the database has the file " + inQuotes(song->path));
    }
    if (findings_.total() == before) compareOrder(name, list);
  }

  // A shuffle plays in the order of the list of all songs, which is the first.
  void compareOrder(const std::string &name, const player::ShuffleDatabase &list) {
    if (library_.playlistCount() == 0 || static_cast<size_t>(library_.entryCount(0)) != list.songs.size())
      return;
    for (size_t place = 0; place < list.songs.size(); ++place) {
      const int32_t index = library_.entry(0, static_cast<int32_t>(place)).song;
      if (index < 0) return;
      const Song song = library_.song(index);
      if (plain(song.path) == plain(list.songs[place].path)) continue;
      add(name + ": its songs stand in another order than the library's, beginning with " +
          songLabel(index, song));
      return;
    }
  }

  void readCounts() {
    const SongFile file = library_.file(kShuffleCounts);
    if (file.error == ENOENT || file.error == ENOTDIR) return;
    const auto bytes = contentOf(file);
    if (!bytes) return;
    const auto counts = player::readShuffleCounts(*bytes);
    if (!counts) {
      add(file.path.string() + ": it holds no counts of a shuffle");
      return;
    }
    if (counts->size() != account_.songs) {
      add(file.path.string() + ": it counts " + countText(counts->size(), "song", "songs") +
          ", and iTunesSD lists " + std::to_string(account_.songs));
    }
    account_.plays = 0;
    account_.skips = 0;
    for (const player::ShuffleCount &count : *counts) {
      *account_.plays += count.plays;
      *account_.skips += count.skips;
    }
  }

  const MusicLibrary &library_;
  player::Findings &findings_;
  ShuffleAccount account_;
};

}  // namespace

std::optional<ShuffleAccount> checkShuffle(const MusicLibrary &library, player::Findings &findings) {
  if (library.location().volumeRoot.empty() || library.form() == LibraryForm::Desktop) return std::nullopt;
  return ShuffleCheck(library, findings).run();
}

}  // namespace zemhost
