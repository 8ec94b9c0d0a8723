#pragma once

// The songs of a player: what its database says of each, with what the player counted since the last
// synchronisation.

#include <optional>
#include <string>
#include <vector>

#include "player/ChunkWalk.h"
#include "player/DatabaseLocation.h"
#include "player/PlayCounts.h"
#include "player/SongReader.h"

namespace player {

class PlayerSongs {
 public:
  // `content` is the database, plain or inflated, and must stay open; `account` is what a walk over it found,
  // and `location` where it lies, for the files beside it. Throws std::system_error when it cannot be read.
  PlayerSongs(int content, const FileAccount &account, const DatabaseLocation &location);

  size_t count() const { return reader_.count(); }

  // What is known of a song, in the order of the file; the position must be below count(). Throws
  // std::system_error when the database cannot be read any more.
  SongFacts facts(size_t song) const;
  std::vector<SongText> texts(size_t song) const { return reader_.texts(song); }
  std::optional<std::string> path(size_t song) const { return reader_.path(song); }
  std::vector<Chapter> chapters(size_t song) const { return reader_.chapters(song); }

  // Likewise what the database alone says, as of the last synchronisation.
  SongFacts storedFacts(size_t song) const { return reader_.facts(song); }

  // What the player counted of it; nullptr when it left no counts that fit the database.
  const PlayCount *counted(size_t song) const { return merge_ ? &merge_->count(song) : nullptr; }
  bool hasCounts() const { return merge_.has_value(); }

  // One line about counts that were left out; empty when there were none, or all were used.
  const std::string &warning() const { return warning_; }

 private:
  SongReader reader_;
  std::optional<PlayCountMerge> merge_;
  std::string warning_;
};

}  // namespace player
