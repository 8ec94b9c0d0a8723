#pragma once

// Smart playlists of a library: their rules in words, and what they choose today.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "player/SmartEvaluation.h"
#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

class SmartLists {
 public:
  // The library must outlive it.
  explicit SmartLists(const MusicLibrary &library) : library_(library) {}

  // The rules in words.
  std::string text(const player::SmartRules &rules) const;

  // The songs that the rules choose at a moment of the player's clock, from what the library says of them as
  // of the last synchronisation.
  player::SmartResult evaluate(const player::SmartRules &rules, uint32_t now) const;

  // The songs of a playlist, in its order; entries without a song are left out.
  std::vector<size_t> songsOf(int32_t playlist) const;

 private:
  player::SmartSong song(int32_t index) const;
  std::optional<int32_t> listOf(uint64_t persistentId) const;
  std::optional<bool> isIn(uint64_t persistentId, size_t song) const;

  const MusicLibrary &library_;
  // Found when they are first asked for: the playlists by persistent ID, and which songs stand in one.
  mutable std::optional<std::map<uint64_t, int32_t>> lists_;
  mutable std::map<int32_t, std::vector<bool>> members_;
};

// The end of a day, "2006-07-22", in seconds since the start of 1904; none for what is no day of those that
// fit.
std::optional<uint32_t> endOfDay(const std::string &day);

// This day, by the clock and the zone of this machine.
std::string today();

}  // namespace zemhost
