#pragma once

// Which files go where: decided for all songs before the first is copied, and the same each time, so that an
// interrupted copying continues when it is asked for again.

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/rescue/CopyReport.h"
#include "zemhost/rescue/DestinationFolder.h"
#include "zemhost/rescue/NamePattern.h"
#include "zemhost/rescue/SongNames.h"
#include "zemhost/rescue/TargetNames.h"

namespace zemhost {

struct PlannedFile {
  int32_t song = 0;  // the first that names it
  SongFile source;
  std::string target;    // below the destination, UTF-8
  bool there = false;    // a complete copy is there already
  std::string identity;  // of the song, for the report
};

class RescuePlan {
 public:
  RescuePlan(const MusicLibrary &library, const NamePattern &pattern, const DestinationFolder &destination,
             const CopyReport &report);

  // Plans the song's file. A song whose file another one names too shares its copy where it would get the
  // same name.
  void addSong(int32_t index);

  // Gives a file another name, since its own was taken after it was planned; finds a copy there as addSong()
  // does. Throws CopyFailure.
  void evade(size_t file);

  // Gives the file the name of a damaged copy, "Title (damaged).mp3", or one with a number; `copy` is what
  // could be read. An earlier copy with the same bytes counts as there. Throws CopyFailure.
  void markDamaged(size_t file, const carbon::Descriptor &copy);

  // A name for a playlist's file, not taken by a song or another playlist, that `isFree` takes.
  std::string playlistFile(const std::string &name, int32_t number, std::string_view extension,
                           const std::function<bool(const std::string &)> &isFree);

  const std::vector<PlannedFile> &files() const { return files_; }
  // The place in files() of a song's file; -1 when there is none.
  ptrdiff_t fileOf(int32_t song) const;
  // The copy of a song that an earlier run made and that is still there, below the destination; empty when
  // there is none.
  std::string earlierCopy(int32_t song) const;

  // What cannot be copied and why, in plain words, each naming its song.
  const std::vector<std::string> &problems() const { return problems_; }
  // The songs whose file is empty or shorter than the database states, likewise.
  const std::vector<std::string> &shortFiles() const { return shortFiles_; }
  // The songs whose file is longer, and those whose file's extension is of neither music nor video, likewise.
  const std::vector<std::string> &remarks() const { return remarks_; }
  // Songs that got a number because a file that is no copy of theirs has the name.
  uint64_t evaded() const { return evaded_; }
  // Of the files that are still to be copied.
  uint64_t songsLeft() const { return songsLeft_; }
  uint64_t bytesLeft() const { return bytesLeft_; }

 private:
  // What a song's file is called by.
  struct Naming {
    std::string folder;  // with a slash at the end; empty for the destination itself
    std::string text;    // that its name is made from
    std::string_view fallback;
    std::string extension;
  };

  std::string folderFor(const std::vector<std::string> &names);
  Naming namingOf(int32_t index, const Song &song, const SongFile &source);
  Naming namingOf(const PlannedFile &file) {
    return namingOf(file.song, library_.song(file.song), file.source);
  }
  static std::string nameOf(const Naming &naming, std::string_view suffix);
  void place(int32_t index, const Song &song, PlannedFile file);
  std::string freeName(const Naming &naming, const std::string &mark,
                       const std::function<bool(const std::string &)> &isFree);
  void takeFreeName(const Naming &naming, PlannedFile &file);
  bool isFree(const std::string &target, PlannedFile &file);
  bool isCopy(const std::string &target, const struct stat &status, const PlannedFile &file) const;

  const MusicLibrary &library_;
  const NamePattern &pattern_;
  const SongNames songNames_;
  const DestinationFolder &destination_;
  const CopyReport &report_;
  std::vector<PlannedFile> files_;
  std::unordered_map<int32_t, size_t> fileOf_;
  std::map<std::string, std::string> folders_;  // as first written, by names without case and composition
  std::map<std::pair<std::string, std::string>, size_t> shared_;  // by the source's path and the name wanted
  TargetNames names_;
  std::vector<std::string> problems_;
  std::vector<std::string> shortFiles_;
  std::vector<std::string> remarks_;
  uint64_t evaded_ = 0;
  uint64_t songsLeft_ = 0;
  uint64_t bytesLeft_ = 0;
};

}  // namespace zemhost
