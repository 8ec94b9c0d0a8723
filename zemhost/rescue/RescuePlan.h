#pragma once

// Which files go where: decided for all songs before the first is copied, and the same each time, so that an
// interrupted copying goes on when it is asked for again.

#include <cstdint>
#include <filesystem>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/rescue/FileCopy.h"
#include "zemhost/rescue/NamePattern.h"

namespace zemhost {

struct PlannedFile {
  int32_t song = 0;  // the first that names it
  std::filesystem::path source;
  std::string target;  // below the destination, UTF-8
  FileFacts facts;
  bool there = false;  // a complete copy is there already
};

class RescuePlan {
 public:
  RescuePlan(const MusicLibrary &library, const NamePattern &pattern, std::filesystem::path destination);

  // Plans the song's file. A song whose file another one names too shares its copy where it would get the
  // same name.
  void addSong(int32_t index);

  // A name for a playlist's file, not taken by a song or another playlist.
  std::string playlistFile(const std::string &name, int32_t number);

  const std::vector<PlannedFile> &files() const { return files_; }
  // The place in files() of a song's file; -1 when there is none.
  ptrdiff_t fileOf(int32_t song) const;
  // What was planned in vain, in plain words, each naming its song.
  const std::vector<std::string> &problems() const { return problems_; }
  // The songs whose file has another size than the database tells, likewise.
  const std::vector<std::string> &otherSizes() const { return otherSizes_; }
  // Songs that got a number because a file that is no copy of theirs has the name.
  uint64_t evaded() const { return evaded_; }
  // Of the files that are still to be copied.
  uint64_t songsLeft() const { return songsLeft_; }
  uint64_t bytesLeft() const { return bytesLeft_; }

 private:
  std::string folderFor(const std::vector<std::string> &names);
  void place(int32_t index, const Song &song, PlannedFile file);

  const MusicLibrary &library_;
  const NamePattern &pattern_;
  std::filesystem::path destination_;
  std::vector<PlannedFile> files_;
  std::unordered_map<int32_t, size_t> fileOf_;
  // By names in which differences of case and composition have gone.
  std::unordered_map<std::string, std::string> folders_;   // as first written
  std::unordered_map<std::string, size_t> taken_;          // the place in files(), or kNoFile
  std::unordered_map<std::string, uint32_t> numberToTry_;  // of a name that was taken before
  std::vector<std::string> problems_;
  std::vector<std::string> otherSizes_;
  uint64_t evaded_ = 0;
  uint64_t songsLeft_ = 0;
  uint64_t bytesLeft_ = 0;
};

}  // namespace zemhost
