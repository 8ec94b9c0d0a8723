#include "zemhost/check/LibraryCheck.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>
#include <vector>

#include "host/Error.h"
#include "player/DatabaseLocation.h"
#include "zemhost/check/SongComparison.h"
#include "zemhost/library/Phrases.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

bool isBelow(const fs::path &path, const fs::path &folder) {
  const auto [end, unused] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
  return end == folder.end();
}

class Check {
 public:
  Check(const MusicLibrary &library, player::Findings &findings) : library_(library), findings_(findings) {}

  LibraryAccount run() {
    const fs::path &root = library_.location().volumeRoot;
    if (root.empty()) {
      account_.filesLeftOut = "the database is on no player";
    } else if (library_.form() == LibraryForm::Desktop) {
      account_.filesLeftOut = "a desktop library names files of another machine";
    }
    checkSongs();
    checkPlaylists();
    if (account_.filesLeftOut.empty()) checkMusicFolder(root);
    return account_;
  }

 private:
  void add(player::FindingKind kind, std::string text) { findings_.add(kind, std::move(text)); }

  void checkSongs() {
    const int32_t count = library_.songCount();
    for (int32_t index = 0; index < count; ++index) {
      const Song song = library_.song(index);
      for (const std::string &field : library_.lossyTexts(index)) {
        ++account_.lossyTexts;
        add(player::FindingKind::LossyText,
            songLabel(index, song) + ": the " + field + " holds characters that are not valid");
      }
      if (library_.object() != nullptr) compareReaders(index, song);
      if (account_.filesLeftOut.empty()) checkFile(index, song);
    }
  }

  void compareReaders(int32_t index, const Song &song) {
    const auto differs = [&](const std::string &text) {
      add(player::FindingKind::ClassDiffers, songLabel(index, song) + ": " + text);
    };
    if (song.facts.id != static_cast<uint32_t>(song.id.value_or(0))) {
      differs("the file holds no song of the ID " + std::to_string(song.id.value_or(0)) + " at its place");
      return;
    }
    for (const std::string &text :
         songDifferences(song, library_.textsInFile(index), library_.form() == LibraryForm::Desktop))
      differs(text);
  }

  void checkFile(int32_t index, const Song &song) {
    const SongFile file = library_.file(song.path);
    if (file.isThere()) {
      ++account_.filesThere;
      named_.insert(file.path.string());
      if (library_.form() == LibraryForm::Sqlite && song.facts.size && file.size != song.size) {
        add(player::FindingKind::OtherSize,
            songLabel(index, song) + ": its file has " + std::to_string(file.size) +
                " bytes, and the library states " + std::to_string(song.size) + ": " + file.place);
      }
      return;
    }
    ++account_.filesMissing;
    add(player::FindingKind::MissingFile, missingFileText(index, song, file));
  }

  void checkPlaylists() {
    const int32_t count = library_.playlistCount();
    for (int32_t list = 0; list < count; ++list) {
      size_t lost = 0;
      const std::string name = playlistLabel(list, library_.playlistName(list, &lost));
      if (lost > 0) {
        ++account_.lossyTexts;
        add(player::FindingKind::LossyText, name + ": the name holds characters that are not valid");
      }
      comparePlaylist(list, name);
      const int32_t entries = library_.entryCount(list);
      for (int32_t position = 0; position < entries; ++position) {
        const PlaylistEntry entry = library_.entry(list, position);
        if (entry.song >= 0) continue;
        ++account_.entriesWithoutSong;
        add(player::FindingKind::EntryWithoutSong,
            name + ", entry " + std::to_string(position) + ": no song has the ID " + entry.id);
      }
    }
  }

  void comparePlaylist(int32_t list, const std::string &name) {
    const auto held = library_.idsInFile(list);
    if (!held || held->size() != static_cast<size_t>(library_.entryCount(list))) return;  // reported already
    for (size_t i = 0; i < held->size(); ++i) {
      const auto answered = library_.entry(list, static_cast<int32_t>(i)).trackID;
      if (answered && static_cast<uint32_t>(*answered) == (*held)[i]) continue;
      add(player::FindingKind::ClassDiffers,
          name + ", entry " + std::to_string(i) + ": the class answers another song than the file holds");
      return;
    }
  }

  void checkMusicFolder(const fs::path &root) {
    const fs::path folder = player::musicFolder(root);
    if (folder.empty() || !isBelow(folder, fs::canonical(root))) return;
    std::vector<std::string> unnamed;
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
      // A link is no file of the folder, and may lead anywhere.
      const bool isFile = fs::is_regular_file(entry->symlink_status(error));
      if (!isFile || named_.contains(entry->path().string())) continue;
      ++account_.filesUnnamed;
      if (unnamed.size() < player::Findings::kKept) unnamed.push_back(entry->path().string());
    }
    if (error) throw HostError(folder.string(), error.value());
    std::sort(unnamed.begin(), unnamed.end());
    for (const std::string &file : unnamed)
      add(player::FindingKind::UnnamedFile, "no song names the file " + file);
  }

  const MusicLibrary &library_;
  player::Findings &findings_;
  LibraryAccount account_;
  std::set<std::string> named_;  // files that songs name, as the system calls them
};

}  // namespace

LibraryAccount checkLibrary(const MusicLibrary &library, player::Findings &findings) {
  return Check(library, findings).run();
}

}  // namespace zemhost
