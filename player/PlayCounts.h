#pragma once

// The file in which a player notes what it played since the last synchronisation, one entry a song.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "player/SongFacts.h"

namespace player {

// Times in milliseconds, dates as in SongFacts. What the entry is too short for has no value.
struct PlayCount {
  uint32_t plays = 0;
  std::optional<uint32_t> lastPlayed;
  std::optional<uint32_t> bookmark;
  std::optional<uint8_t> rating;  // as it is now; 0: none given
  std::optional<bool> heard;
  std::optional<uint32_t> skips;
  std::optional<uint32_t> lastSkipped;
  std::optional<uint32_t> never;  // as it stands in the entry, by the player's clock
};

// The file "Play Counts" beside a player's database, or beside the folder of a SQLite one; empty when there
// is none, or when the database has another name than on a player.
std::filesystem::path playCountsBeside(const std::filesystem::path &database);

// Its entries, in the order of the songs in the database. Throws PlayerError, naming the file and what is
// wrong with it, when it cannot be read, is none of these, is cut short, or is of another number of songs.
std::vector<PlayCount> readPlayCounts(const std::filesystem::path &file, uint64_t songs);

// The zone of the player's clock, in seconds east of UTC, as most of the dates that stand for never show it:
// these are the start of 2001 in UTC. None when there are no such dates.
std::optional<int32_t> zoneOf(const std::vector<PlayCount> &counts);

// Makes the dates of such a clock UTC.
void makeUtc(std::vector<PlayCount> &counts, int32_t zone);

// Joins the entries with what the database says of the same songs.
class PlayCountMerge {
 public:
  // Looks at every song once, with what the database says of it. `slack`: by how many seconds the clocks of
  // the entries and of the database may differ; dates that differ by no more are the same.
  PlayCountMerge(std::vector<PlayCount> counts, const std::function<SongFacts(size_t)> &facts,
                 uint32_t slack = 0);

  // Whether the file is older than the database: most of its dates are.
  bool isLeftOver() const { return isLeftOver_; }

  // What the player counted of a song; the position must be below the number of songs.
  const PlayCount &count(size_t song) const { return counts_[song]; }

  // The facts of this song as they are with what the player counted.
  SongFacts merged(size_t song, SongFacts facts) const;

 private:
  std::vector<PlayCount> counts_;
  uint32_t slack_;
  bool isLeftOver_ = false;
  bool carriesRatings_ = false;  // so that 0 is an answer too
};

}  // namespace player
