#pragma once

// A sound database of what was salvaged from a damaged one, for readers that expect a whole file.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "player/Salvage.h"

namespace player {

class MendedDatabase {
 public:
  // `bytes` are those that were salvaged, and must stay where they are.
  MendedDatabase(std::string_view bytes, Salvage salvaged);

  uint64_t songs() const { return salvaged_.songs.size(); }
  // By the damaged file's own lists; 0 when it does not say any more.
  uint64_t announcedSongs() const { return salvaged_.announcedSongs; }
  // Playlists that were found, each counted once.
  uint64_t lists() const { return lists_.size(); }
  uint64_t entries() const;
  const Salvage &salvaged() const { return salvaged_; }

  // Hands on the file piece by piece: its own header, the songs, the playlists that readers show, and those
  // that hold podcasts in groups. Records are as they stand in the damaged file, but for lengths and counts
  // where something of them is lost. Where the list of all songs is lost, one without a name is put first.
  void write(const std::function<void(std::string_view)> &take) const;

 private:
  void chooseLists();
  bool isHeading(const SalvagedRecord &entry) const;
  std::string keyOf(const SalvagedList &list) const;
  uint64_t entriesOf(const SalvagedList &list) const;

  std::string_view bytes_;
  Salvage salvaged_;
  std::vector<SalvagedList> lists_;    // that readers show, that of all songs first, if there is one
  std::vector<SalvagedList> grouped_;  // that hold podcasts in groups
};

}  // namespace player
