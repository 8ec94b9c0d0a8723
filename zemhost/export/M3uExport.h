#pragma once

// A library or one of its playlists as an M3U8 list.

#include <cstdint>
#include <filesystem>
#include <string>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/output/EncodedOutput.h"

namespace zemhost {

enum class M3uPaths {
  Host,      // files on this machine, absolute
  Relative,  // the same, from the folder of the list
  Device     // as on the player, with '/' between the parts
};

class M3uExport {
 public:
  // `folder` is where the list will lie; it matters to relative paths alone. Writes the heading.
  M3uExport(const MusicLibrary &library, EncodedOutput &out, M3uPaths paths, std::filesystem::path folder);

  // Adds a song. One whose path names no place on this machine is left out, and counted; with the
  // device's paths, one whose path does not go down from the root by names alone.
  void addSong(int32_t index);

  // The numbers of songs that the list has, and that were left out.
  uint64_t written() const { return written_; }
  uint64_t leftOut() const { return leftOut_; }

 private:
  std::string pathOf(const Song &song) const;
  bool isPlain(const std::string &path) const;

  const MusicLibrary &library_;
  EncodedOutput &out_;
  M3uPaths paths_;
  std::filesystem::path folder_;
  uint64_t written_ = 0;
  uint64_t leftOut_ = 0;
};

}  // namespace zemhost
