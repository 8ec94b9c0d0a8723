#pragma once

// The songs of a library as a playlist's file names them.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/output/ListedSong.h"

namespace zemhost {

enum class ListPaths {
  Host,      // files on this machine, absolute
  Relative,  // the same, from the folder of the list
  Device     // as on the player, with '/' between the parts
};

// "host", "relative" or "device".
ListPaths listPathsNamed(const std::string &name);

class ListEntries {
 public:
  // `folder` is where the list will lie; it matters to relative paths alone.
  ListEntries(const MusicLibrary &library, ListPaths paths, std::filesystem::path folder);

  // A song; nothing for one whose path names no place on this machine, and with the device's paths for one
  // whose path does not go down from the root by names alone.
  std::optional<ListedSong> of(int32_t song) const;

  // Why it is nothing, for messages.
  std::string whyLeftOut() const;

 private:
  std::string pathOf(const Song &song) const;
  bool isPlain(const std::string &path) const;

  const MusicLibrary &library_;
  ListPaths paths_;
  std::filesystem::path folder_;
};

}  // namespace zemhost
