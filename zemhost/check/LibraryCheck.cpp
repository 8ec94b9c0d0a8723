#include "zemhost/check/LibraryCheck.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <system_error>
#include <vector>

#include "player/FileBytes.h"
#include "player/MusicFiles.h"
#include "zemhost/check/SongComparison.h"
#include "zemhost/library/PatientReader.h"
#include "zemhost/library/Phrases.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

class Check {
 public:
  Check(const MusicLibrary &library, bool readFiles, player::Findings &findings)
      : library_(library), readFiles_(readFiles), findings_(findings) {}

  LibraryAccount run() {
    const fs::path &root = library_.location().volumeRoot;
    if (root.empty()) {
      account_.filesLeftOut = "the database is on no player";
    } else if (library_.form() == LibraryForm::Desktop) {
      account_.filesLeftOut = "a desktop library names files of another machine";
    }
    account_.filesRead = readFiles_ && account_.filesLeftOut.empty();
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
      for (const std::string &field : song.lossyTexts) {
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
         songDifferences(song, library_.answeredPath(index), library_.textsInFile(index),
                         library_.form() == LibraryForm::Desktop))
      differs(text);
  }

  void checkFile(int32_t index, const Song &song) {
    const SongFile file = library_.file(song.path);
    if (file.isThere()) {
      ++account_.filesThere;
      const bool isNew = named_.insert(file.path.string()).second;
      compareSize(index, song, file);
      const carbon::Descriptor open = library_.open(file);
      if (const int error = errorOfReading(open); error != 0) {
        addUnreadable(index, song, file, error);
      } else if (readFiles_ && isNew) {
        const std::string places = unreadablePlaces(open, file.size);
        if (places.empty()) return;
        account_.damaged.push_back({index, places});
        add(player::FindingKind::Unreadable,
            songLabel(index, song) + ": " + file.path.string() + ": " + places);
      }
      return;
    }
    ++account_.filesMissing;
    if (file.isUnreadable()) {
      addUnreadable(index, song, file, file.error);
    } else {
      account_.missing.push_back(index);
      add(player::FindingKind::MissingFile, missingFileText(index, song, file));
    }
  }

  void addUnreadable(int32_t index, const Song &song, const SongFile &file, int error) {
    account_.damaged.push_back({index, unreadableFault(error)});
    add(player::FindingKind::Unreadable, unreadableText(index, song, file, error));
  }

  void compareSize(int32_t index, const Song &song, const SongFile &file) {
    const SizeOfFile size = comparedSize(file, song);
    if (size == SizeOfFile::Short) {
      account_.damaged.push_back({index, otherSizeFault(song, file)});
      add(player::FindingKind::ShortFile, otherSizeText(index, song, file));
    }
    if (size != SizeOfFile::Long) return;
    ++account_.filesLong;
    if (account_.remarks.size() < player::Findings::kKept)
      account_.remarks.push_back(otherSizeText(index, song, file));
  }

  // 0 when the first byte can be read.
  static int errorOfReading(const carbon::Descriptor &open) {
    if (!open) return errno;
    try {
      player::readAt(open.number(), 0, 1);
    } catch (const std::system_error &error) {
      return error.code().value();
    }
    return 0;
  }

  // What of the file cannot be read; empty when all can.
  static std::string unreadablePlaces(const carbon::Descriptor &open, uint64_t size) {
    PatientReader reader(open, size);
    for (uint64_t at = 0; at < size && !reader.block(at).empty(); at += PatientReader::kBlock) {
    }
    return reader.gaps().empty() ? std::string() : gapsText(reader.gaps());
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
      const auto answered = library_.trackID(list, static_cast<int32_t>(i));
      if (answered && static_cast<uint32_t>(*answered) == (*held)[i]) continue;
      add(player::FindingKind::ClassDiffers,
          name + ", entry " + std::to_string(i) + ": the class answers another song than the file holds");
      return;
    }
  }

  void checkMusicFolder(const fs::path &root) {
    std::vector<std::string> unnamed;
    player::MusicFileSink sink;
    sink.onFile = [&](const fs::path &file) {
      if (named_.contains(file.string())) return;
      ++account_.filesUnnamed;
      if (unnamed.size() < player::Findings::kKept) unnamed.push_back(file.string());
      if (readFiles_) readUnnamed(file);
    };
    sink.onFailure = [&](const fs::path &path, int error) {
      add(player::FindingKind::Unreadable,
          path.string() + " cannot be read: " + std::generic_category().message(error));
    };
    player::eachMusicFile(root, sink);
    std::sort(unnamed.begin(), unnamed.end());
    for (const std::string &file : unnamed)
      add(player::FindingKind::UnnamedFile, "no song names the file " + file);
  }

  void readUnnamed(const fs::path &file) {
    const carbon::Descriptor open(::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (open && fstat(open.number(), &status) == 0) {
      const std::string places = unreadablePlaces(open, static_cast<uint64_t>(status.st_size));
      if (!places.empty()) add(player::FindingKind::Unreadable, file.string() + ": " + places);
    } else {
      add(player::FindingKind::Unreadable,
          file.string() + " cannot be read: " + std::generic_category().message(errno));
    }
  }

  const MusicLibrary &library_;
  bool readFiles_;
  player::Findings &findings_;
  LibraryAccount account_;
  std::set<std::string> named_;  // files that songs name, as the system calls them
};

}  // namespace

LibraryAccount checkLibrary(const MusicLibrary &library, bool readFiles, player::Findings &findings) {
  return Check(library, readFiles, findings).run();
}

}  // namespace zemhost
